#pragma once

/// Short texts of the C kind: names and words.

#include <memory>

namespace Vek {

inline const char* TextOrEmpty(const char* pText) {
    return pText != nullptr ? pText : "";
}

/// A copy with an owner, null for null. Throws `ClExBadAlloc` (-102).
std::unique_ptr<char[]> CopyOf(const char* pText);

// Letters are those of ASCII, whatever locale the application has chosen: "title" names the same
// parameter as "TITLE" in a Turkish program, too.

constexpr char LowerLetter(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char UpperLetter(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Whether two texts are equal in upper or lower case.
bool IsSameName(const char* pOne, const char* pOther);
/// Whether a text begins with a name, in upper or lower case.
bool BeginsWithName(const char* pText, const char* pName);

} // namespace Vek
