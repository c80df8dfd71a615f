#pragma once

/// What completes the tool's commands, options and values on the command lines of three shells.

#include "apps/qk7/documents/Described.h"

#include <string>
#include <vector>

namespace qk7 {

/// The first of the commands is the tool itself.
std::string BashCompletion(const std::vector<StDescribedCommand>& aCommands);
std::string ZshCompletion(const std::vector<StDescribedCommand>& aCommands);
std::string FishCompletion(const std::vector<StDescribedCommand>& aCommands);

} // namespace qk7
