// Shows where a Calibrate() spends its time: for every processor class how often it runs, its time
// with and its own time without that of the processors which it runs itself.
//
//     profile scanner.cal capture.bmp [runs]
//
// The library has two hooks for this. `g_pProfileTimer` gets a mark when the run of a processor
// begins and when it ends; `g_pClassCallProfile` counts runs and time by class. Neither is
// exported: a program that measures links the library statically.

#include "Tools/ClassCallProfile.h"
#include "Tools/ProfileTimer.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;
using Clock = std::chrono::steady_clock;

constexpr std::size_t fileHeaderSize = 14;
constexpr int defaultRuns = 20;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Figures {
    long calls = 0;
    double total = 0.0; ///< seconds
    double own = 0.0;   ///< seconds
};

/// Adds up the runs of processors. The mark at the beginning of a run tells no name, that at its
/// end does; runs are nested, so the end belongs to the run begun last. A run that fails has no
/// mark at its end: what is measured has to succeed. For one thread.
class CallTimer : public ClProfileTimer {
public:
    // A mark with a text is one within a run; it counts for that run.
    void TimerStart(const char* pFormat, ...) override {
        if (pFormat == nullptr)
            m_open.push_back({Clock::now(), 0.0, {}});
    }

    void TimerStop(const char* pFormat, ...) override {
        if (std::strcmp(pFormat, "%s %s") != 0 || m_open.empty())
            return;
        va_list arguments;
        va_start(arguments, pFormat);
        const char* name = va_arg(arguments, const char*); // the settings follow
        va_end(arguments);
        endRun(name);
    }

    void clear() {
        m_open.clear();
        m_figures.clear();
    }
    std::size_t openRuns() const { return m_open.size(); }
    const std::map<std::string, Figures>& figures() const { return m_figures; }

private:
    struct Run {
        Clock::time_point start;
        double inner;                         ///< seconds in runs within this one
        std::map<std::string, double> totals; ///< of the classes within this one
    };

    void endRun(const std::string& name) {
        Run run = std::move(m_open.back());
        m_open.pop_back();
        const double seconds = secondsSince(run.start);
        run.totals[name] = seconds; // it holds those of its own class that ran within
        Figures& figures = m_figures[name];
        ++figures.calls;
        figures.own += seconds - run.inner;
        if (!m_open.empty())
            m_open.back().inner += seconds;
        for (const auto& [inner, total] : run.totals)
            (m_open.empty() ? m_figures[inner].total : m_open.back().totals[inner]) += total;
    }

    std::vector<Run> m_open;
    std::map<std::string, Figures> m_figures;
};

/// Sets the two hooks while it lives. A processor takes the timer when it is constructed, so the
/// handle is created meanwhile.
struct Hooks {
    Hooks() {
        g_pProfileTimer = &timer;
        g_pClassCallProfile = &classes;
    }
    Hooks(const Hooks&) = delete;
    Hooks& operator=(const Hooks&) = delete;
    ~Hooks() {
        g_pProfileTimer = nullptr;
        g_pClassCallProfile = nullptr;
    }

    CallTimer timer;
    ClClassCallProfile classes;
};

/// A handle, released with its owner.
struct Calibration {
    Calibration() : handle(CalibrateCreate()) {}
    Calibration(const Calibration&) = delete;
    Calibration& operator=(const Calibration&) = delete;
    ~Calibration() { CalibrateDelete(&handle); }

    void* handle;
};

void require(const char* what, long status) {
    if (status != QMT_SUCCESS)
        throw std::runtime_error(std::string(what) + ": " + std::to_string(status) + " " +
                                 CalibrateGetErrorDescription(status));
}

Bytes readFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    if (!file)
        throw std::runtime_error(name + ": cannot be read");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The bitmap block of a bitmap file.
Bytes readBitmap(const std::string& name) {
    Bytes file = readFile(name);
    if (file.size() < fileHeaderSize)
        throw std::runtime_error(name + ": is no bitmap file");
    file.erase(file.begin(), file.begin() + fileHeaderSize);
    return file;
}

/// Room for the corrected image: a first run asks for its size.
Bytes roomFor(void* handle, Bytes& capture) {
    unsigned long size = 0;
    const long status = Calibrate(handle, capture.data(), capture.size(), nullptr, &size);
    if (status != QMT_ERROR_TEMPLATE_SIZE)
        require("Calibrate", status);
    return Bytes(size);
}

/// Corrects the capture so many times. Returns the seconds that it took.
double correct(void* handle, Bytes& capture, Bytes& corrected, int runs) {
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < runs; ++i) {
        unsigned long size = corrected.size();
        require("Calibrate",
                Calibrate(handle, capture.data(), capture.size(), corrected.data(), &size));
    }
    return secondsSince(start);
}

void printTimes(const CallTimer& timer, double seconds, int runs) {
    std::vector<std::pair<std::string, Figures>> rows(timer.figures().begin(),
                                                      timer.figures().end());
    std::sort(rows.begin(), rows.end(),
              [](const auto& a, const auto& b) { return a.second.own > b.second.own; });
    std::printf("%-36s %7s %10s %10s %6s\n", "processor", "calls", "total ms", "own ms", "own %");
    double rest = seconds;
    const auto print = [&](const std::string& name, const Figures& figures) {
        std::printf("%-36s %7.1f %10.3f %10.3f %6.1f\n", name.c_str(),
                    static_cast<double>(figures.calls) / runs, 1e3 * figures.total / runs,
                    1e3 * figures.own / runs, 100.0 * figures.own / seconds);
        rest -= figures.own;
    };
    for (const auto& [name, figures] : rows)
        print(name, figures);
    print("Calibrate(), bitmaps and checks", {runs, seconds, rest});
}

/// What `g_pClassCallProfile` has: no timer is needed for it, but it knows no own times.
void printClasses(ClClassCallProfile& classes, int runs) {
    std::printf("\n%-36s %7s %10s\n", "class", "calls", "total ms");
    for (unsigned long i = 0; i < classes.m_aEntries.Entries(); ++i) {
        const ClClassCallProfile::ClEntry& entry = classes.m_aEntries[i];
        const std::unique_ptr<char, decltype(&std::free)> name(
            abi::__cxa_demangle(entry.m_pType->name(), nullptr, nullptr, nullptr), std::free);
        std::printf("%-36s %7.1f %10.3f\n", name != nullptr ? name.get() : entry.m_pType->name(),
                    static_cast<double>(entry.m_nCalls) / runs, 1e3 * entry.m_dSeconds / runs);
    }
}

void profile(Bytes& data, Bytes& capture, int runs) {
    Hooks hooks;
    Calibration calibration; // with the default options
    require("CalibrateSetData", CalibrateSetData(calibration.handle, data.data(), data.size()));
    Bytes corrected = roomFor(calibration.handle, capture);
    hooks.timer.clear(); // what happens once is not of interest
    hooks.classes.Clear();
    const double seconds = correct(calibration.handle, capture, corrected, runs);
    if (hooks.timer.openRuns() != 0)
        throw std::runtime_error(
            "a run of a processor has failed: the times are not to be trusted");
    std::printf("One Calibrate(), mean of %d\n\n", runs);
    printTimes(hooks.timer, seconds, runs);
    printClasses(hooks.classes, runs);
}

} // namespace

int main(int argc, char** argv) {
    const int runs = argc == 4 ? std::atoi(argv[3]) : defaultRuns;
    if ((argc != 3 && argc != 4) || runs < 1) {
        std::fprintf(stderr, "usage: %s scanner.cal capture.bmp [runs]\n", argv[0]);
        return 2;
    }
    try {
        Bytes data = readFile(argv[1]);
        Bytes capture = readBitmap(argv[2]);
        profile(data, capture, runs);
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
