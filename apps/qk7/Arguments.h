#pragma once

/// The arguments of a call on their way through the parser.
///
/// The parser has conventions of its own that a file's name, or a number, may meet by chance: it
/// takes "[a,b]" for a list, an empty text for an option that was not given or for one whose value
/// comes next, and "010" for eight.

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace qk7 {

/// The arguments behind the tool's name as the parser takes them, the last one first. A value that
/// it would take for something else has a mark in front.
std::vector<std::string> ForParser(int nArguments, const char* const* aArguments);

/// The parser's words about such arguments.
std::string WithoutMarks(std::string Text);

/// For every option with a value: gives it back as the user wrote it. Refuses an empty one: it
/// would count as none, and comes of a variable that is not set.
CLI::Validator AsWritten();

/// For numbers: whole ones with decimal digits, leading zeros or not, that 64 bits hold.
CLI::Validator Whole();
CLI::Validator WholeOrNegative();

} // namespace qk7
