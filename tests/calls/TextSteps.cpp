// Steps with text and with the entries of a logging facility.

#include "calls/CallSequence.h"

#include <TessarinCalibrateSDK.h>

#include <cstring>

namespace Calls {

namespace {

/// The ends of each length of a character, and what lies between.
const std::uint32_t canCharacters[] = {0,     1,      0x41,   0x7F,   0x80,   0xE4,    0x7FF,
                                       0x800, 0x20AC, 0xD7FF, 0xE000, 0xFFFD, 0x10000, 0x10FFFF};

constexpr wchar_t cSurrogate = 0xD800;

using Characters = std::vector<std::uint32_t>;

Characters AnyText(ClChoices& rChoices) {
    Characters anText(rChoices.OneIn(8) ? 200 : rChoices.Below(6)); // more than a round at once
    for (std::uint32_t& rnCharacter : anText)
        rnCharacter = rChoices.Of(canCharacters);
    return anText;
}

std::vector<wchar_t> WideOf(const Characters& anText) {
    return std::vector<wchar_t>(anText.begin(), anText.end());
}

void AppendNarrow(std::string& rTo, std::uint32_t n) {
    const auto Append = [&](std::uint32_t nByte) { rTo.push_back(static_cast<char>(nByte)); };
    const int nMore = n < 0x80 ? 0 : n < 0x800 ? 1 : n < 0x10000 ? 2 : 3;
    static const std::uint32_t canHeads[] = {0x00, 0xC0, 0xE0, 0xF0};
    Append(canHeads[nMore] | n >> (6 * nMore));
    for (int i = nMore - 1; i >= 0; --i)
        Append(0x80 | ((n >> (6 * i)) & 0x3F));
}

std::string NarrowOf(const Characters& anText) {
    std::string Narrow;
    for (const std::uint32_t nCharacter : anText)
        AppendNarrow(Narrow, nCharacter);
    return Narrow;
}

/// What does not convert to wide text.
const std::string caBroken[] = {"\x80", "a\xFF", "\xC3", "\xE2\x82", "\xC3(", "\xED\xA0\x80"};

unsigned long AnyRoom(ClChoices& rChoices, unsigned long nNeeded, unsigned long nUnit) {
    const unsigned long anRooms[] = {0, nNeeded, nNeeded, nNeeded + 3 * nUnit,
                                     nNeeded > nUnit ? nNeeded - nUnit : nUnit};
    return rChoices.Of(anRooms);
}

/// A conversion that may throw. Returns whether it did.
template <class Call>
bool Throws(Call call, long& rnResult) {
    try {
        rnResult = call();
        return false;
    } catch (const std::exception&) {
        return true;
    }
}

Bytes AsBytes(const void* pFrom, std::size_t nSize) {
    const auto* pFirst = static_cast<const unsigned char*>(pFrom);
    return nSize == 0 ? Bytes() : Bytes(pFirst, pFirst + nSize);
}

} // namespace

void ClCallSequence::ConvertText(StSlot& /*rSlot*/) {
    const Characters anText = AnyText(m_rChoices);
    if (m_rChoices.OneIn(2))
        ConvertToNarrow(WideOf(anText), NarrowOf(anText));
    else
        ConvertToWide(NarrowOf(anText), WideOf(anText));
}

void ClCallSequence::ConvertToNarrow(const std::vector<wchar_t>& aWide, const std::string& Narrow) {
    Note("ConvertWideCharToSBCS", aWide.size() * sizeof(wchar_t));
    std::vector<wchar_t> aText = aWide;
    const bool bBroken = m_rChoices.OneIn(8);
    if (bBroken)
        aText.push_back(cSurrogate);
    const Bytes aIn = AsBytes(aText.data(), aText.size() * sizeof(wchar_t));
    const unsigned long nRoom = AnyRoom(m_rChoices, Narrow.size(), 1);
    const auto* pIn = reinterpret_cast<const wchar_t*>(m_In.Hold(aIn));
    auto* pOut = reinterpret_cast<char*>(m_Out.Offer(nRoom));
    long nResult = 0;
    const bool bThrown = Throws(
        [&] { return ConvertWideCharToSBCS(pIn, aIn.size(), nRoom > 0 ? pOut : nullptr, nRoom); },
        nResult);
    CheckConverted(AsBytes(Narrow.data(), Narrow.size()), Narrow.size(), bBroken, nRoom, bThrown,
                   nResult);
    ExpectInput(aIn);
    Expect(ConvertWideCharToSBCS(nullptr, 4, pOut, nRoom) == 0, "takes null for no text");
}

void ClCallSequence::ConvertToWide(const std::string& Narrow, const std::vector<wchar_t>& aWide) {
    Note("ConvertSBCSToWidechar", Narrow.size());
    const bool bBroken = m_rChoices.OneIn(8);
    const std::string Text = bBroken ? Narrow + m_rChoices.Of(caBroken) : Narrow;
    const Bytes aIn = AsBytes(Text.data(), Text.size());
    const Bytes aExpected = AsBytes(aWide.data(), aWide.size() * sizeof(wchar_t));
    const unsigned long nRoom = AnyRoom(m_rChoices, aExpected.size(), sizeof(wchar_t));
    const auto* pIn = reinterpret_cast<const char*>(m_In.Hold(aIn));
    auto* pOut = reinterpret_cast<wchar_t*>(m_Out.Offer(nRoom));
    long nResult = 0;
    const bool bThrown = Throws(
        [&] { return ConvertSBCSToWidechar(pIn, aIn.size(), nRoom > 0 ? pOut : nullptr, nRoom); },
        nResult);
    CheckConverted(aExpected, aWide.size(), bBroken, nRoom, bThrown, nResult);
    ExpectInput(aIn);
    Expect(ConvertSBCSToWidechar(nullptr, 4, pOut, nRoom) == 0, "takes null for no text");
}

/// `nCount` is the result of a text that converts and fits.
void ClCallSequence::CheckConverted(const Bytes& aExpected, std::size_t nCount, bool bBroken,
                                    unsigned long nRoom, bool bThrown, long nResult) {
    Expect(bThrown == (bBroken && nRoom == 0), "throws where a broken text is measured, only");
    if (bThrown)
        return;
    const bool bFits = nRoom == 0 || nRoom >= aExpected.size();
    const bool bConverts = !bBroken && bFits;
    Expect(nResult == (bConverts ? static_cast<long>(nCount) : -1), "tells what it converted");
    if (!bConverts || nRoom == 0)
        return;
    Expect(m_Out.IsUntouchedBehind(aExpected.size()), "writes the text and no more");
    Expect(m_Out.First(aExpected.size()) == aExpected, "gives the text");
}

void ClCallSequence::CallFacility(StSlot& /*rSlot*/) {
    Note("VekLFLog");
    VekLFLog(7, "%s", "a line of an application");
    Expect(VekLFCreate() == 0, "has no facility");
    LoadLoggingFacility();
    ReleaseLoggingFacility();
    Expect(g_VekLFCreate == nullptr && g_VekLFLog == nullptr, "leaves its pointers");
}

} // namespace Calls
