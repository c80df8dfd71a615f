#pragma once

/// The pages of the manual, in the macros of man(7).

#include "apps/qk7/documents/Described.h"

#include <string>
#include <vector>

namespace qk7 {

struct StManual {
    std::string m_Version;
    std::string m_Date; ///< of the words, as 2026-11-22
};

/// "qk7-check", the name of a command's page; "qk7" for the tool's own.
std::string PageName(const StDescribedCommand& Command);

/// The page of a command. The first of all commands is the tool itself, whose page lists the
/// others.
std::string PageOf(const StDescribedCommand& Command,
                   const std::vector<StDescribedCommand>& aCommands, const StManual& Manual);

} // namespace qk7
