#pragma once

/// The commands put together: what main() parses, and what the manual and the completion of the
/// shells are made from.

#include <vector>

namespace CLI {
class App;
}

namespace qk7 {

/// Registers version, commands, what they have in common, and examples.
void BuildTool(CLI::App& rApp);

/// What the tool is, in one sentence, and what holds for all commands.
extern const char* const g_szSummary;
extern const char* const g_szConventions;

struct StExitStatus {
    int m_nStatus;
    const char* m_szWords;
};

const std::vector<StExitStatus>& ExitStatuses();

} // namespace qk7
