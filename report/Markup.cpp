#include "report/Markup.h"

#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>

namespace report {

namespace {

constexpr std::string_view cszReplacement = "\xEF\xBF\xBD";
constexpr std::string_view cszEllipsis = "\xE2\x80\xA6";

bool IsContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/// How many bytes a character has by its first one; 0 for one that begins none.
std::size_t LengthBy(unsigned char nFirst) {
    if (nFirst < 0x80U)
        return 1;
    if (nFirst >= 0xC2U && nFirst < 0xE0U)
        return 2;
    if (nFirst >= 0xE0U && nFirst < 0xF0U)
        return 3;
    return nFirst >= 0xF0U && nFirst < 0xF5U ? 4 : 0;
}

unsigned CodePoint(std::string_view szCharacter) {
    constexpr std::array<unsigned, 5> aMasks{0, 0x7F, 0x1F, 0x0F, 0x07};
    unsigned nCode = static_cast<unsigned char>(szCharacter[0]) & aMasks.at(szCharacter.size());
    for (const char c : szCharacter.substr(1))
        nCode = nCode << 6U | (static_cast<unsigned char>(c) & 0x3FU);
    return nCode;
}

/// Whether XML 1.0 has it, and in no shorter way.
bool IsCharacter(unsigned nCode, std::size_t nBytes) {
    constexpr std::array<unsigned, 5> aLeast{0, 0, 0x80, 0x800, 0x10000};
    if (nCode < 0x20U)
        return nCode == '\t' || nCode == '\n' || nCode == '\r';
    const bool bSurrogate = nCode >= 0xD800U && nCode < 0xE000U;
    const bool bForbidden = nCode == 0xFFFEU || nCode == 0xFFFFU || nCode == 0x7FU;
    return nCode >= aLeast.at(nBytes) && nCode < 0x110000U && !bSurrogate && !bForbidden;
}

/// The bytes of the character that a text begins with; 0 where it begins with none.
std::size_t FirstLength(std::string_view szText) {
    const std::size_t nLength = LengthBy(static_cast<unsigned char>(szText[0]));
    if (nLength == 0 || nLength > szText.size())
        return 0;
    for (std::size_t i = 1; i < nLength; ++i)
        if (!IsContinuation(szText[i]))
            return 0;
    return IsCharacter(CodePoint(szText.substr(0, nLength)), nLength) ? nLength : 0;
}

std::string_view EscapedCharacter(std::string_view szCharacter) {
    switch (szCharacter[0]) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&#39;";
    default:
        return szCharacter;
    }
}

bool IsZero(std::string_view szNumber) {
    return szNumber.find_first_of("123456789") == std::string_view::npos;
}

} // namespace

std::string Readable(std::string_view szText) {
    std::string sReadable;
    while (!szText.empty()) {
        const std::size_t nLength = FirstLength(szText);
        sReadable += nLength == 0 ? cszReplacement : szText.substr(0, nLength);
        szText.remove_prefix(nLength == 0 ? 1 : nLength);
    }
    return sReadable;
}

std::string Escaped(std::string_view szText) {
    const std::string sReadable = Readable(szText);
    std::string sEscaped;
    for (const char& rCharacter : sReadable)
        sEscaped += EscapedCharacter({&rCharacter, 1});
    return sEscaped;
}

std::string Shortened(std::string_view szText, std::size_t nMost) {
    std::string sText = Readable(szText);
    std::size_t nCharacters = 0;
    std::size_t nKept = 0; // bytes of all characters but the last that is allowed
    for (std::size_t i = 0; i < sText.size(); ++i)
        if (!IsContinuation(sText[i]) && ++nCharacters == nMost)
            nKept = i;
    if (nCharacters > nMost)
        sText.replace(nKept, std::string::npos, cszEllipsis);
    return sText;
}

std::string Decimal(double dValue, int nDecimals) {
    if (nDecimals < 0 || nDecimals > 9)
        throw std::invalid_argument("a number has 0 to 9 decimals");
    if (std::isnan(dValue))
        return "not a number";
    if (std::isinf(dValue))
        return dValue < 0.0 ? "minus infinite" : "infinite";
    std::array<char, 336> aText{}; // the largest double has 309 digits
    const auto end = std::to_chars(aText.data(), aText.data() + aText.size(), dValue,
                                   std::chars_format::fixed, nDecimals);
    const std::string_view szNumber(aText.data(), static_cast<std::size_t>(end.ptr - aText.data()));
    return std::string(szNumber[0] == '-' && IsZero(szNumber) ? szNumber.substr(1) : szNumber);
}

std::string Count(std::size_t n, std::string_view szOne, std::string_view szMany) {
    std::string sCount = n == 0 ? "no" : n == 1 ? "one" : std::to_string(n);
    sCount += ' ';
    sCount += n == 1 ? szOne : szMany;
    return sCount;
}

} // namespace report
