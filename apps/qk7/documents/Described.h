#pragma once

/// The commands of the tool as the parser knows them, for what is written about them: the help is
/// printed by the parser itself, the manual and the completion of the shells are made from here.

#include "apps/qk7/Examples.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qk7 {

struct StDescribedOption {
    std::vector<std::string> m_aNames; ///< "-d", "--data"; the short ones first
    std::string m_Value;               ///< "FILE"; empty for a flag
    std::string m_Words;
    std::string m_Default; ///< empty without one
    bool m_bRequired = false;
    bool m_bRepeatable = false;
    std::vector<std::string> m_aChoices; ///< empty where a value is free

    bool IsFlag() const { return m_Value.empty(); }
};

struct StDescribedArgument {
    std::string m_Name;
    std::string m_Words;
    bool m_bRequired = false;
    bool m_bRepeatable = false;
};

struct StDescribedCommand {
    std::string m_Name;
    std::string m_Words;
    std::vector<StDescribedOption> m_aOptions;
    std::vector<StDescribedArgument> m_aArguments;
    std::vector<StExample> m_aExamples;
};

/// The tool itself comes first, under its own name; its arguments are left out.
std::vector<StDescribedCommand> Describe(const CLI::App& App);

/// The first clause of an option's words, for where there is little room.
std::string FirstClause(const std::string& Words);

} // namespace qk7
