// ConvertSBCSToWidechar() and ConvertWideCharToSBCS() with any bytes: what converts comes back.

#include "Harness.h"

#include <exception>

namespace {

Fuzz::ClMilestone s_Converted("a text converts and comes back");
Fuzz::ClMilestone s_Refused("a text does not convert");

std::string Narrow(const std::wstring& Text) {
    const Fuzz::ClBlock room(std::string(6 * Text.size() + 1, '?'));
    const long nBytes = ConvertWideCharToSBCS(Text.data(), Text.size() * sizeof(wchar_t),
                                              reinterpret_cast<char*>(room.Data()), room.Size());
    Fuzz::Require(nBytes >= 0, "what was converted converts back");
    return {reinterpret_cast<const char*>(room.Data()), static_cast<std::size_t>(nBytes)};
}

/// Converts into a room of just as many characters as there are bytes, and into a smaller one.
void There(const Fuzz::ClBlock& text, unsigned long nRoom) {
    if (nRoom == 0) // asks for the size, see Measure()
        return;
    const auto pWide = std::make_unique<wchar_t[]>(nRoom);
    const long nCount = ConvertSBCSToWidechar(reinterpret_cast<const char*>(text.Data()),
                                              text.Size(), pWide.get(), nRoom * sizeof(wchar_t));
    Fuzz::Require(nCount >= -1 && nCount <= static_cast<long>(nRoom), "characters, or -1");
    if (nCount < 0)
        return s_Refused.Reach();
    const std::string Bytes(reinterpret_cast<const char*>(text.Data()), text.Size());
    Fuzz::Require(Narrow(std::wstring(pWide.get(), static_cast<std::size_t>(nCount))) == Bytes,
                  "a text comes back");
    s_Converted.Reach();
}

void Measure(const Fuzz::ClBlock& text) {
    try {
        const long nCount = ConvertSBCSToWidechar(reinterpret_cast<const char*>(text.Data()),
                                                  text.Size(), nullptr, 0);
        Fuzz::Require(nCount >= 0 && nCount <= static_cast<long>(text.Size()),
                      "a text has no more characters than bytes");
    } catch (const std::exception&) { // as is told of a text that does not convert
    }
}

/// The bytes as wide characters.
void Back(const Fuzz::ClBlock& text) {
    const std::size_t nCount = text.Size() / sizeof(wchar_t);
    const auto pWide = std::make_unique<wchar_t[]>(nCount);
    if (nCount > 0)
        std::memcpy(pWide.get(), text.Data(), nCount * sizeof(wchar_t));
    const Fuzz::ClBlock room(std::string(4 * nCount + 1, '?'));
    const long nBytes = ConvertWideCharToSBCS(pWide.get(), nCount * sizeof(wchar_t),
                                              reinterpret_cast<char*>(room.Data()), room.Size());
    Fuzz::Require(nBytes >= -1 && nBytes <= static_cast<long>(room.Size()), "bytes, or -1");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const Fuzz::ClBlock text(pData, nSize);
    There(text, nSize);
    There(text, nSize / 2);
    Measure(text);
    Back(text);
    return 0;
}
