#include "Tools/XChar.h"

#include "Tools/Exception.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <iconv.h>
#include <random>
#include <string>

namespace {

/// What the C library's calls answer while set: that they have failed.
bool g_bRefuseToOpen = false;
bool g_bRefuseToClose = false;

/// The C library's function behind one of the same name here.
template <class Function>
Function* Behind(const char* szName) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, szName));
}

} // namespace

extern "C" iconv_t iconv_open(const char* szTo, const char* szFrom) {
    static const auto pfnOpen = Behind<iconv_t(const char*, const char*)>("iconv_open");
    return g_bRefuseToOpen ? reinterpret_cast<iconv_t>(-1) : pfnOpen(szTo, szFrom);
}

extern "C" int iconv_close(iconv_t hConversion) {
    static const auto pfnClose = Behind<int(iconv_t)>("iconv_close");
    const int nResult = pfnClose(hConversion);
    return g_bRefuseToClose ? -1 : nResult;
}

namespace {

long ToNarrow(const std::wstring& Text, char* pTarget, unsigned long nTarget) {
    return ConvertWideCharToSBCS(Text.data(), Text.size() * sizeof(wchar_t), pTarget, nTarget);
}

long ToWide(const std::string& Text, wchar_t* pTarget, unsigned long nTarget) {
    return ConvertSBCSToWidechar(Text.data(), Text.size(), pTarget, nTarget);
}

/// UTF-8 by its definition.
std::string NaiveUtf8(const std::wstring& Text) {
    std::string Out;
    for (const wchar_t c : Text) {
        const auto n = static_cast<unsigned int>(c);
        if (n < 0x80) {
            Out += static_cast<char>(n);
        } else if (n < 0x800) {
            Out += static_cast<char>(0xC0 | n >> 6);
            Out += static_cast<char>(0x80 | (n & 63));
        } else if (n < 0x10000) {
            Out += static_cast<char>(0xE0 | n >> 12);
            Out += static_cast<char>(0x80 | (n >> 6 & 63));
            Out += static_cast<char>(0x80 | (n & 63));
        } else {
            Out += static_cast<char>(0xF0 | n >> 18);
            Out += static_cast<char>(0x80 | (n >> 12 & 63));
            Out += static_cast<char>(0x80 | (n >> 6 & 63));
            Out += static_cast<char>(0x80 | (n & 63));
        }
    }
    return Out;
}

std::wstring RandomText(std::mt19937& rRandom, std::size_t nLength) {
    std::wstring Text;
    while (Text.size() < nLength) {
        const auto n = static_cast<wchar_t>(1 + (rRandom() % 0x10FFFF >> (rRandom() % 15)));
        if (n < 0xD800 || n > 0xDFFF)
            Text += n;
    }
    return Text;
}

template <class Work>
void ExpectConversionsError(Work work) {
    try {
        work();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClExSystem& e) {
        EXPECT_EQ(e.Number(), -105);
        EXPECT_EQ(std::string(e.What()),
                  std::string(std::strerror(EILSEQ)) + "\nConversions Error");
        EXPECT_STREQ(e.File(), "Tools/XChar");
        EXPECT_GT(e.Line(), 0);
    }
}

/// Every form of conversion, of a text of one letter, answers `nExpected`.
void ExpectAllForms(long nExpected) {
    char acText[4];
    wchar_t acWide[4];
    EXPECT_EQ(ToNarrow(L"a", acText, sizeof acText), nExpected);
    EXPECT_EQ(ToNarrow(L"a", nullptr, 0), nExpected);
    EXPECT_EQ(ToWide("a", acWide, sizeof acWide), nExpected);
    EXPECT_EQ(ToWide("a", nullptr, 0), nExpected);
}

} // namespace

TEST(XChar, AnEmptySourceGivesZeroAndLeavesTheTarget) {
    char cNarrow = 'x';
    wchar_t cWide = L'x';
    EXPECT_EQ(ConvertWideCharToSBCS(nullptr, 4, &cNarrow, 1), 0);
    EXPECT_EQ(ConvertWideCharToSBCS(L"a", 0, &cNarrow, 1), 0);
    EXPECT_EQ(ConvertSBCSToWidechar(nullptr, 1, &cWide, sizeof cWide), 0);
    EXPECT_EQ(ConvertSBCSToWidechar("a", 0, &cWide, sizeof cWide), 0);
    EXPECT_EQ(cNarrow, 'x');
    EXPECT_EQ(cWide, L'x');
}

TEST(XChar, TheEuroSignTakesThreeBytes) {
    EXPECT_EQ(ToNarrow(L"\u20AC", nullptr, 0), 3);
    char acText[4] = "...";
    EXPECT_EQ(ToNarrow(L"\u20AC", acText, 3), 3);
    EXPECT_STREQ(acText, "\xE2\x82\xAC");
}

TEST(XChar, TheWideResultCountsCharacters) {
    EXPECT_EQ(ToWide("a\xE2\x82\xAC", nullptr, 0), 2);
    wchar_t acText[3] = {L'.', L'.', L'.'};
    EXPECT_EQ(ToWide("a\xE2\x82\xAC", acText, sizeof acText), 2);
    EXPECT_EQ(acText[0], L'a');
    EXPECT_EQ(acText[1], L'\u20AC');
    EXPECT_EQ(acText[2], L'.'); // no terminator
}

TEST(XChar, ATargetOrASizeOfNothingMeasures) {
    char acText[4] = "...";
    EXPECT_EQ(ToNarrow(L"ab", nullptr, 10), 2);
    EXPECT_EQ(ToNarrow(L"ab", acText, 0), 2);
    EXPECT_STREQ(acText, "...");
}

TEST(XChar, MeasuringAndConvertingAgreeOnTextsOfEveryLength) {
    std::mt19937 Random(1);
    for (std::size_t nLength = 1; nLength < 200; ++nLength) { // beyond one round of measuring
        const std::wstring Text = RandomText(Random, nLength);
        const std::string Expected = NaiveUtf8(Text);
        const long nNeeded = ToNarrow(Text, nullptr, 0);
        ASSERT_EQ(nNeeded, static_cast<long>(Expected.size()));
        std::string Narrow(Expected.size(), '.');
        ASSERT_EQ(ToNarrow(Text, &Narrow[0], Narrow.size()), nNeeded);
        ASSERT_EQ(Narrow, Expected);

        ASSERT_EQ(ToWide(Narrow, nullptr, 0), static_cast<long>(nLength));
        std::wstring Wide(nLength, L'.');
        ASSERT_EQ(ToWide(Narrow, &Wide[0], nLength * sizeof(wchar_t)), static_cast<long>(nLength));
        ASSERT_EQ(Wide, Text);
    }
}

TEST(XChar, ATargetThatIsTooSmallIsRefused) {
    char acText[8];
    wchar_t acWide[8];
    EXPECT_EQ(ToNarrow(L"a\u20AC", acText, 3), -1);
    EXPECT_EQ(ToNarrow(L"a\u20AC", acText, 4), 4);
    EXPECT_EQ(ToWide("ab", acWide, 7), -1);
    EXPECT_EQ(ToWide("ab", acWide, 8), 2);
}

TEST(XChar, ALoneContinuationByteIsRefusedAndThrowsWhenMeasured) {
    wchar_t acText[4];
    EXPECT_EQ(ToWide("a\x80", acText, sizeof acText), -1);
    ExpectConversionsError([] { ToWide("a\x80", nullptr, 0); });
}

TEST(XChar, HalfASurrogatePairIsRefusedAndThrowsWhenMeasured) {
    const std::wstring Text(1, static_cast<wchar_t>(0xD800));
    char acText[8];
    EXPECT_EQ(ToNarrow(Text, acText, sizeof acText), -1);
    ExpectConversionsError([&Text] { ToNarrow(Text, nullptr, 0); });
}

TEST(XChar, ACharacterThatIsCutOffIsRefusedAndThrowsWhenMeasured) {
    char acText[8];
    wchar_t acWide[4];
    EXPECT_EQ(ConvertWideCharToSBCS(L"a", 3, acText, sizeof acText), -1);
    EXPECT_THROW(ConvertWideCharToSBCS(L"a", 3, nullptr, 0), ClExSystem);
    EXPECT_EQ(ToWide("\xE2\x82", acWide, sizeof acWide), -1);
    EXPECT_THROW(ToWide("\xE2\x82", nullptr, 0), ClExSystem);
}

TEST(XChar, AConversionThatDoesNotOpenIsRefused) {
    g_bRefuseToOpen = true;
    ExpectAllForms(-1);
    g_bRefuseToOpen = false;
    ExpectAllForms(1);
}

TEST(XChar, AConversionThatDoesNotCloseIsRefused) {
    g_bRefuseToClose = true;
    ExpectAllForms(-1);
    g_bRefuseToClose = false;
    ExpectAllForms(1);
}
