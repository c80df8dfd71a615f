#pragma once

/// What a command does with each of its files: in threads, told in the order of the files, with a
/// bar, and a summary at the end.
///
/// A file that fails is told at once, behind all files before it, and the others are done. What is
/// told, and every file written, is the same whatever the number of threads.

#include "apps/qk7/Document.h"
#include "apps/qk7/Inputs.h"

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qk7 {

/// The options that commands for many files share.
struct StFileOptions {
    std::vector<std::string> m_aArguments;
    bool m_bRecursive = false;
    unsigned int m_nJobs = 0; ///< 0 stands for the number of processors
    bool m_bQuiet = false;
    bool m_bJson = false;
};

/// Registers the positional argument and --recursive, --quiet and --json.
void AddFileOptions(CLI::App& rCommand, StFileOptions& rOptions, const std::string& Name,
                    const std::string& Words);
/// Registers --jobs.
void AddJobsOption(CLI::App& rCommand, StFileOptions& rOptions);

enum class EForm { eSilent, eText, eJson };

/// What is told of a file that did not fail.
// A tree of Json takes memory when it ends. NOLINTNEXTLINE(bugprone-exception-escape)
struct StTold {
    std::string m_Text;
    Json m_Json;
    bool m_bLeftOut = false;  ///< there was nothing to do
    bool m_bBad = false;      ///< the work was done, and what it found is bad
    bool m_bDoubtful = false; ///< the same, and what it found is doubtful
};

/// Does the file of this number. Throws what went wrong with it.
using FileWork = std::function<StTold(std::size_t nFile)>;

struct StFileRun {
    std::string m_Command;
    EForm m_eForm = EForm::eText;
    std::string m_Done;      ///< the summary's word for a file that was done; empty for no summary
    std::string m_LastWords; ///< a sentence for a run that is interrupted; empty for none
    std::function<void()> m_Last; ///< what is left to do before the run is told as a whole
};

/// Does the files: `first` in the calling thread, and what `makeWork` makes in further ones, each
/// in its thread. Ends with the status for failures when a file failed or was bad, else with that
/// for doubt when one was doubtful.
void DoFiles(const StFileRun& Run, const StFileOptions& Options, const std::vector<StInput>& aFiles,
             const FileWork& first, const std::function<FileWork()>& makeWork);
/// Does them one after the other.
void DoFiles(const StFileRun& Run, StFileOptions options, const std::vector<StInput>& aFiles,
             const FileWork& work);

} // namespace qk7
