#include "Mutations.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>

namespace Fuzz {

namespace {

constexpr std::size_t cnKept = 12;
constexpr std::size_t cnMostBytes = 1U << 20;

struct StTimed {
    double m_dSeconds;
    std::string m_Bytes;
};

double ProcessorTime() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// The shorter of two runs: the first may have made what a harness keeps.
double TimeOf(const std::string& Bytes) {
    double dLeast = 1e9;
    for (int i = 0; i < 2; ++i) {
        const double dStart = ProcessorTime();
        Run(Bytes);
        dLeast = std::min(dLeast, ProcessorTime() - dStart);
    }
    return dLeast;
}

bool IsSlower(const StTimed& a, const StTimed& b) {
    return a.m_dSeconds > b.m_dSeconds;
}

class ClSlowest {
public:
    void Try(const std::string& Bytes) {
        m_aKept.push_back({TimeOf(Bytes), Bytes});
        std::sort(m_aKept.begin(), m_aKept.end(), IsSlower);
        m_aKept.resize(std::min(m_aKept.size(), cnKept));
    }
    const StTimed& Any(ClRandom& rRandom) const { return m_aKept[rRandom.Below(m_aKept.size())]; }
    const StTimed& First() const { return m_aKept.front(); }

private:
    std::vector<StTimed> m_aKept;
};

} // namespace

void SearchSlowest(const std::vector<std::string>& aInputs, int nSeconds,
                   const std::string& OutputPath) {
    ClSlowest Slowest;
    for (const std::string& Bytes : aInputs)
        Slowest.Try(Bytes);
    const double dGiven = Slowest.First().m_dSeconds;
    ClRandom Random(aInputs.size());
    long nTried = 0;
    for (const double dEnd = ProcessorTime() + nSeconds; ProcessorTime() < dEnd; ++nTried) {
        const std::string Bytes = Mutation(Slowest.Any(Random).m_Bytes, Random);
        if (Bytes.size() <= cnMostBytes)
            Slowest.Try(Bytes);
    }
    std::ofstream(OutputPath, std::ios::binary) << Slowest.First().m_Bytes;
    std::printf("%ld mutations tried: slowest %.3f ms, of those given %.3f ms\n", nTried,
                Slowest.First().m_dSeconds * 1e3, dGiven * 1e3);
}

} // namespace Fuzz
