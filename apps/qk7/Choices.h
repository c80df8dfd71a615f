#pragma once

/// What an option can be given, stated once: the parser checks it, the shells complete it.

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace qk7 {

/// Lets one of these through.
CLI::Validator OneOf(const std::vector<std::string>& aChoices);
/// Lets everything through; these are what is usual.
CLI::Validator Suggested(const std::vector<std::string>& aChoices);

/// What one of the two above was made with for an option; empty without one.
std::vector<std::string> ChoicesOf(const CLI::Option& Option);

} // namespace qk7
