#pragma once

#include <memory>

namespace Vek {

/// A text made by `printf`, of any length, for the words of exceptions; empty where `printf`
/// fails. Throws `ClExBadAlloc` (-102).
std::unique_ptr<char[]> FormatText(const char* pFormat, ...) __attribute__((format(printf, 1, 2)));

} // namespace Vek
