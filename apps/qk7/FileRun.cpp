#include "apps/qk7/FileRun.h"

#include "apps/qk7/Arguments.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/File.h"
#include "apps/qk7/Progress.h"
#include "apps/qk7/TargetReport.h"
#include "apps/qk7/TemporaryFiles.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>

#include <sched.h>

namespace qk7 {

namespace {

constexpr unsigned int cnMostJobs = 64;

unsigned int Processors() {
    cpu_set_t processors;
    if (sched_getaffinity(0, sizeof processors, &processors) != 0)
        return 1;
    return static_cast<unsigned int>(std::max(CPU_COUNT(&processors), 1));
}

std::size_t JobsOf(const StFileOptions& Options, std::size_t nFiles) {
    const unsigned int nWanted = Options.m_nJobs > 0 ? Options.m_nJobs : Processors();
    return std::min<std::size_t>({nWanted, cnMostJobs, nFiles});
}

// As StTold. NOLINTNEXTLINE(bugprone-exception-escape)
struct StOutcome {
    StTold m_Told;
    std::exception_ptr m_pFailure; ///< null when it did not fail
};

struct StCounts {
    std::size_t m_nDone = 0;
    std::size_t m_nLeftOut = 0;
    std::size_t m_nDoubtful = 0;
    std::size_t m_nBad = 0;
    std::size_t m_nFailed = 0;
};

std::string SummaryOf(const StFileRun& Run, const StCounts& Counts, const StPace& Pace) {
    std::string text = std::to_string(Counts.m_nDone) + " " + Run.m_Done;
    if (Counts.m_nDoubtful > 0)
        text += ", " + std::to_string(Counts.m_nDoubtful) + " doubtful";
    if (Counts.m_nBad > 0)
        text += ", " + std::to_string(Counts.m_nBad) + " bad";
    if (Counts.m_nLeftOut > 0)
        text += ", " + std::to_string(Counts.m_nLeftOut) + " skipped";
    if (Counts.m_nFailed > 0)
        text += ", " + std::to_string(Counts.m_nFailed) + " failed";
    char szTime[96];
    std::snprintf(szTime, sizeof szTime, " in %.2f s (%.1f per second)", Pace.m_dSeconds,
                  Pace.Rate());
    return text + szTime;
}

class ClFileRun {
public:
    ClFileRun(const StFileRun& Run, const StFileOptions& Options,
              const std::vector<StInput>& aFiles)
        : m_Run(Run), m_Options(Options), m_aFiles(aFiles), m_aOutcomes(aFiles.size()),
          m_Progress(aFiles.size(), Options.m_bQuiet) {
        if (!Run.m_LastWords.empty())
            m_LastWords = (m_Progress.IsShown() ? "\r\033[K" : "") + std::string("qk7 ") +
                          Run.m_Command + ": " + Run.m_LastWords + "\n";
    }
    ClFileRun(const ClFileRun&) = delete;
    ClFileRun& operator=(const ClFileRun&) = delete;
    ~ClFileRun() { SetLastWords(nullptr); }

    void Do(const FileWork& first, const std::function<FileWork()>& makeWork) {
        if (!m_LastWords.empty())
            SetLastWords(m_LastWords.c_str());
        std::vector<std::thread> helpers = StartHelpers(makeWork);
        DoAll(first);
        for (std::thread& rHelper : helpers)
            rHelper.join();
        SetLastWords(nullptr);
        m_Progress.Clear();
        if (m_pStopped)
            std::rethrow_exception(m_pStopped);
        End();
    }

private:
    /// Fewer where the system gives no more; the others do their work.
    std::vector<std::thread> StartHelpers(const std::function<FileWork()>& makeWork) {
        std::vector<std::thread> helpers;
        const std::size_t nJobs = JobsOf(m_Options, m_aFiles.size());
        helpers.reserve(nJobs);
        try {
            while (helpers.size() + 1 < nJobs)
                helpers.emplace_back([this, &makeWork] { Help(makeWork); });
        } catch (const std::system_error&) {
        }
        return helpers;
    }

    /// One that cannot prepare leaves its share to the others.
    void Help(const std::function<FileWork()>& makeWork) noexcept {
        LeaveSignalsToOthers();
        FileWork work;
        try {
            work = makeWork();
        } catch (...) {
            return;
        }
        DoAll(work);
    }

    void DoAll(const FileWork& work) noexcept {
        for (std::size_t i = m_nNext++; i < m_aFiles.size(); i = m_nNext++) {
            try {
                Begin(i);
                Keep(i, Try(work, i));
            } catch (...) {
                Stop(std::current_exception());
            }
        }
    }

    void Begin(std::size_t nFile) {
        const std::lock_guard<std::mutex> lock(m_Mutex);
        m_Progress.Begin(std::filesystem::path(m_aFiles[nFile].m_Path).filename().string());
    }

    StOutcome Try(const FileWork& work, std::size_t nFile) const {
        StOutcome outcome;
        try {
            const StInput& file = m_aFiles[nFile];
            if (!file.m_Fault.empty())
                throw ClFailure(file.m_Path, file.m_Fault);
            outcome.m_Told = work(nFile);
        } catch (const std::exception&) {
            outcome.m_pFailure = std::current_exception();
        }
        return outcome;
    }

    /// Tells all outcomes up to the first file that is not done.
    void Keep(std::size_t nFile, StOutcome&& rOutcome) {
        const std::lock_guard<std::mutex> lock(m_Mutex);
        m_Progress.Done(rOutcome.m_Told.m_bLeftOut);
        m_aOutcomes[nFile] = std::move(rOutcome);
        for (; m_nTold < m_aFiles.size() && m_aOutcomes[m_nTold]; ++m_nTold) {
            Tell(m_nTold, *m_aOutcomes[m_nTold]);
            m_aOutcomes[m_nTold] = StOutcome();
        }
    }

    void Tell(std::size_t nFile, const StOutcome& Outcome) {
        if (Outcome.m_pFailure)
            TellFailure(m_aFiles[nFile].m_Path, Outcome.m_pFailure);
        else
            Tell(Outcome.m_Told);
    }

    void Tell(const StTold& Told) {
        ++(Told.m_bBad        ? m_Counts.m_nBad
           : Told.m_bDoubtful ? m_Counts.m_nDoubtful
           : Told.m_bLeftOut  ? m_Counts.m_nLeftOut
                              : m_Counts.m_nDone);
        m_Results.push_back(Told.m_Json);
        if (m_Run.m_eForm != EForm::eText || Told.m_Text.empty())
            return;
        m_Progress.Clear();
        Print(Told.m_Text);
    }

    void TellFailure(const std::string& Path, const std::exception_ptr& pFailure) {
        ++m_Counts.m_nFailed;
        try {
            std::rethrow_exception(pFailure);
        } catch (const std::exception& error) {
            m_Progress.Clear();
            PrintError("qk7 " + m_Run.m_Command, WordsOf(error));
            m_Results.push_back(FailureJson(Path, error));
        }
    }

    /// What is told cannot be told: no file is begun any more.
    void Stop(const std::exception_ptr& pReason) noexcept {
        const std::lock_guard<std::mutex> lock(m_Mutex);
        m_nNext = m_aFiles.size();
        if (!m_pStopped)
            m_pStopped = pReason;
    }

    void End() {
        if (m_Run.m_Last)
            m_Run.m_Last();
        if (m_Run.m_eForm == EForm::eJson)
            PrintDocument(m_Run.m_Command, m_Results);
        if (m_aFiles.size() > 1 && !m_Options.m_bQuiet && !m_Run.m_Done.empty())
            PrintNote("qk7 " + m_Run.m_Command, SummaryOf(m_Run, m_Counts, m_Progress.Pace()));
        if (m_Counts.m_nFailed + m_Counts.m_nBad > 0)
            throw CLI::RuntimeError(eFailed);
        if (m_Counts.m_nDoubtful > 0)
            throw CLI::RuntimeError(eDoubtful);
    }

    const StFileRun& m_Run;
    const StFileOptions& m_Options;
    const std::vector<StInput>& m_aFiles;
    std::atomic<std::size_t> m_nNext{0};
    std::mutex m_Mutex; ///< for all below
    std::vector<std::optional<StOutcome>> m_aOutcomes;
    std::size_t m_nTold = 0;
    StCounts m_Counts;
    Json m_Results = Json::array();
    ClProgress m_Progress;
    std::exception_ptr m_pStopped;
    std::string m_LastWords;
};

} // namespace

void AddFileOptions(CLI::App& rCommand, StFileOptions& rOptions, const std::string& Name,
                    const std::string& Words) {
    rCommand
        .add_option(Name, rOptions.m_aArguments,
                    Words + "; a folder stands for those in it, a quoted pattern such as "
                            "'*.png' for all that match, - for standard input")
        ->required()
        ->type_name("");
    rCommand.add_flag("-r,--recursive", rOptions.m_bRecursive,
                      "Look into the folders of folders, too");
    rCommand.add_flag("-q,--quiet", rOptions.m_bQuiet,
                      "Show no progress and no summary; failures are told");
    rCommand.add_flag("--json", rOptions.m_bJson,
                      "Print one JSON document with an object for each file");
}

void AddJobsOption(CLI::App& rCommand, StFileOptions& rOptions) {
    rCommand
        .add_option("-j,--jobs", rOptions.m_nJobs,
                    "Files to work on at the same time; 0 for one on each processor")
        ->transform(Whole())
        ->check(CLI::Range(0U, cnMostJobs).description(""))
        ->type_name("N")
        ->capture_default_str();
}

void DoFiles(const StFileRun& Run, const StFileOptions& Options, const std::vector<StInput>& aFiles,
             const FileWork& first, const std::function<FileWork()>& makeWork) {
    ClFileRun(Run, Options, aFiles).Do(first, makeWork);
}

void DoFiles(const StFileRun& Run, StFileOptions options, const std::vector<StInput>& aFiles,
             const FileWork& work) {
    options.m_nJobs = 1;
    DoFiles(Run, options, aFiles, work, [&] { return work; });
}

} // namespace qk7
