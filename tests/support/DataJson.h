#pragma once

#include "support/TestData.h"

#include <nlohmann/json.hpp>

#include <string>

namespace TestSupport {

/// What a JSON file below tests/data holds.
inline nlohmann::json DataJson(const std::string& Name) {
    const Bytes aText = DataFile(Name);
    return nlohmann::json::parse(aText.begin(), aText.end());
}

} // namespace TestSupport
