#pragma once

/// What the tool prints with --json.

#include <nlohmann/json.hpp>

#include <string>

namespace TestSupport {

/// The results of a document, whose schema has to be the command's.
nlohmann::json ResultsOf(const std::string& Document, const std::string& Command);

} // namespace TestSupport
