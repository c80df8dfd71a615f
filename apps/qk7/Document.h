#pragma once

/// What the tool prints with --json: one document of one shape for every command.
///
///     {"schema": "qk7/check/1", "version": "1.0.0", "results": [{"file": ...}, ...]}
///
/// The number behind the command's name grows when a field changes its meaning or goes; fields may
/// be added without. A command that fails as a whole has an "error" beside empty results.

#include <nlohmann/json.hpp>

#include <string>

namespace qk7 {

using Json = nlohmann::ordered_json;

/// JSON as the tool prints it. A file name may be any bytes; JSON is UTF-8.
std::string Dump(const Json& Value);

/// Prints the document of a command with an array of results, or with one result.
void PrintDocument(const std::string& Command, const Json& Results);

/// Prints the document of a command that failed, unless it has printed one.
void PrintFailedDocument(const std::string& Command, const std::string& Words);

} // namespace qk7
