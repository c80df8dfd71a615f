#pragma once

/// Examples of each command, for its help and its page of the manual. They build on each other: in
/// the order of `ExampleCommands` each finds the files that it reads.

#include <string>
#include <vector>

namespace qk7 {

struct StExample {
    const char* m_szLine; ///< for a shell
    const char* m_szWords;
};

/// Empty for a name that is no command's.
std::vector<StExample> ExamplesOf(const std::string& Command);

/// The commands, those first whose results the others read.
std::vector<std::string> ExampleCommands();

} // namespace qk7
