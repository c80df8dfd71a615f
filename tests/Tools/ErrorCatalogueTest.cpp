#include "Tools/ErrorCatalogue.h"

#include <gtest/gtest.h>

#include <climits>
#include <cwchar>
#include <set>
#include <string>

namespace {

struct StStatus {
    long m_nCode;  ///< written out
    long m_nMacro; ///< of the public header
    const char* m_szName;
    const char* m_szDescription;
};

// The macro and its name come from one word, the number stands beside it.
#define STATUS(code, name, description)                                                            \
    { code, name, #name, description }

const StStatus caExpected[] = {
    STATUS(0, QMT_SUCCESS, "No errors occurred."),
    STATUS(-1, QMT_ERROR_INITIALIZED, "Multiple initialization."),
    STATUS(-2, QMT_ERROR_NOT_INITIALIZED, "Prior initialization is necessary."),
    STATUS(-10, QMT_ERROR_BITMAP_PTR, "The input image is not valid."),
    STATUS(-11, QMT_ERROR_BITMAP_PLANE,
           "Only grey-scale images with 8-bit color-depth are supported."),
    STATUS(-12, QMT_ERROR_BITMAP_BITCOUNT, "BitCount has to be 8."),
    STATUS(-13, QMT_ERROR_BITMAP_PELS, "Pels are not in a valid range (see documentation)."),
    STATUS(-14, QMT_ERROR_BITMAP_DIMENSION, "The image is too small or too big."),
    STATUS(-15, QMT_ERROR_BITMAP_NO_FINGER, "No Finger found in the image."),
    STATUS(-20, QMT_ERROR_TEMPLATE_PTR, "The template is not valid."),
    STATUS(-21, QMT_ERROR_TEMPLATE_SIZE, "The size of the finger template is not valid."),
    STATUS(-22, QMT_ERROR_TEMPLATE_PTRPTR, "The template-pointer is not valid."),
    STATUS(-23, QMT_ERROR_TEMPLATE_PTR_NULL, "The template-pointer is not valid."),
    STATUS(-24, QMT_ERROR_TEMPLATE_SIZE_PTR, "Pointer to template-size is not valid."),
    STATUS(-31, QMT_ERROR_BITMAP_COMPRESSION, "The compression FOCC is not supported."),
    STATUS(-32, QMT_ERROR_BITMAP_HEADERSIZE, "The header size of the Bitmap is unknown."),
    STATUS(-33, QMT_ERROR_FORMAT_NOTSUPPORTED, "The required format is not supported."),
    STATUS(-35, QMT_ERROR_PARAM_OUT_OF_RANGE, "One of the parameters is out of range."),
    STATUS(-36, QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER,
           "Fileheader found but expected bitmapinfoheader."),
    STATUS(-37, QMT_ERROR_PARAM_IS_MISSING, "One of the required parameter is missing."),
    STATUS(-38, QMT_ERROR_CURRUPT_BYTECODE, "The input is corrupt can be a memoryblock or a file."),
    STATUS(-39, QMT_ERROR_CURRUPT_DATA, "The input is corrupt; it can be a memoryblock or a file."),
    STATUS(-40, QMT_ERROR_UNEXPECTED_SIGNATURE, "The input signature is not expected here."),
    STATUS(-42, QMT_ERROR_NO_HANDLE, "The handle parameter is set to NULL."),
    STATUS(-43, QMT_ERROR_INVALID_HANDLE,
           "The handle parameter is not a valid handle for that function."),
    STATUS(-44, QMT_ERROR_INVALID_PARAMETER, "One(or more) parameter(s) is(are) invalid."),
    STATUS(-45, QMT_ERROR_INVALID_OPTIONS_SETTING,
           "The options are set in a combination which will not work."),
    STATUS(-46, QMT_ERROR_PARAM_VALUE_DUPLICATE,
           "The given parameter is a duplicate of a previously given parameter."),
    STATUS(-101, QMT_ERROR_INTERNAL, "Internal error."),
    STATUS(-102, QMT_ERROR_OUT_OF_MEMORY, "Memory allocation failed or given mem-block too small."),
    STATUS(-104, QMT_FATAL_ERROR_TERMINATION_NECESSARY,
           "A fatal error has occurred. Process integrity may be corrupted. "
           "Terminate application."),
    STATUS(-105, QMT_ERROR_FROM_SYSTEM_FUNCTION,
           "A error has occurred in a system function call. "
           "use the system errorfunction to get more info."),
    STATUS(-200, QMT_ERROR_FILE_OPEN_FAIL, "Failed to open the specified file."),
    STATUS(-201, QMT_ERROR_UNEXPECTED_EOF, "Unexpected end of file."),
    STATUS(-202, QMT_ERROR_WRITE_FAIL, "Failed to write the data."),
    STATUS(-204, QMT_ERROR_IO, "Unspecified I/O error."),
    STATUS(-210, QMT_ERROR_BMP_NO_SIGNATURE, "No BMP signature found."),
    STATUS(-600, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE,
           "The calibration failed to generate the calibrations data from the given pattern."),
    STATUS(-701, QMT_ERROR_BAD_POINTER, "The pointer is bad or invalid."),
};

/// ASCII text as wide text.
std::wstring Wide(const char* szText) {
    const std::string text = szText;
    return std::wstring(text.begin(), text.end());
}

std::size_t RowOf(long nCode) {
    for (std::size_t i = 0; i < g_nErrorMapEntries; ++i)
        if (g_aErrorMap[i].m_nCode == nCode)
            return i;
    return g_nErrorMapEntries;
}

void ExpectUnknown(const ST_ErrorMapEntry& entry) {
    EXPECT_EQ(entry.m_nCode, 2147483647);
    EXPECT_STREQ(entry.m_szDescription, "Unknown error code.");
    EXPECT_STREQ(entry.m_wszDescription, L"Unknown error code.");
    EXPECT_STREQ(entry.m_szName, "QMT_ERROR_UNKOWN_ERROR_CODE");
    EXPECT_STREQ(entry.m_wszName, L"QMT_ERROR_UNKOWN_ERROR_CODE");
}

} // namespace

TEST(ErrorCatalogue, HasTheWordsOfEveryStatus) {
    for (const StStatus& status : caExpected) {
        const ST_ErrorMapEntry& entry = GetVekErrorInfo(status.m_nCode);
        EXPECT_EQ(entry.m_nCode, status.m_nCode);
        EXPECT_STREQ(entry.m_szName, status.m_szName);
        EXPECT_STREQ(entry.m_szDescription, status.m_szDescription);
        EXPECT_EQ(entry.m_wszName, Wide(status.m_szName));
        EXPECT_EQ(entry.m_wszDescription, Wide(status.m_szDescription));
    }
}

TEST(ErrorCatalogue, AgreesWithThePublicHeader) {
    for (const StStatus& status : caExpected)
        EXPECT_EQ(status.m_nMacro, status.m_nCode) << status.m_szName;
}

TEST(ErrorCatalogue, HasNoRowBesides) {
    EXPECT_EQ(g_nErrorMapEntries, std::size(caExpected));
}

TEST(ErrorCatalogue, HasNoNumberAndNoNameTwice) {
    std::set<long> codes;
    std::set<std::string> names;
    for (std::size_t i = 0; i < g_nErrorMapEntries; ++i) {
        EXPECT_TRUE(codes.insert(g_aErrorMap[i].m_nCode).second) << g_aErrorMap[i].m_nCode;
        EXPECT_TRUE(names.insert(g_aErrorMap[i].m_szName).second) << g_aErrorMap[i].m_szName;
    }
}

TEST(ErrorCatalogue, BeginsWithSuccessAndIsOrderedByTheme) {
    EXPECT_EQ(RowOf(0), 0u);
    for (long nCode : {-31L, -32L}) { // among the bitmap rows
        EXPECT_GT(RowOf(nCode), RowOf(-10));
        EXPECT_LT(RowOf(nCode), RowOf(-20));
    }
    EXPECT_GT(RowOf(-44), RowOf(-200)); // among the rows of files
    EXPECT_LT(RowOf(-44), RowOf(-210));
}

TEST(ErrorCatalogue, FindsEveryRowByItsName) {
    for (const StStatus& status : caExpected) {
        const ST_ErrorMapEntry& entry = GetVekErrorInfo(status.m_nCode);
        EXPECT_EQ(&GetVekErrorInfo(status.m_szName), &entry);
        EXPECT_EQ(&GetVekErrorInfo(Wide(status.m_szName).c_str()), &entry);
        EXPECT_EQ(&GetErrorInfoT<long>(status.m_nCode), &entry);
        EXPECT_EQ(&GetErrorInfoT<const char*>(status.m_szName), &entry);
        EXPECT_EQ(&GetErrorInfoT<const wchar_t*>(Wide(status.m_szName).c_str()), &entry);
    }
}

TEST(ErrorCatalogue, ComparesNamesExactly) {
    EXPECT_EQ(GetVekErrorInfo("QMT_ERROR_INVALID_HANDLE").m_nCode, -43);
    ExpectUnknown(GetVekErrorInfo("qmt_error_invalid_handle"));
    ExpectUnknown(GetVekErrorInfo(L"qmt_error_invalid_handle"));
    ExpectUnknown(GetVekErrorInfo("QMT_ERROR_INVALID_HANDL"));
    ExpectUnknown(GetVekErrorInfo("QMT_ERROR_INVALID_HANDLE "));
    ExpectUnknown(GetVekErrorInfo(""));
    ExpectUnknown(GetVekErrorInfo(L""));
}

TEST(ErrorCatalogue, KeepsTheNamesAsTheyAreSpelt) {
    EXPECT_EQ(GetVekErrorInfo("QMT_ERROR_CURRUPT_DATA").m_nCode, -39);
    EXPECT_EQ(GetVekErrorInfo("QMT_ERROR_CURRUPT_BYTECODE").m_nCode, -38);
    ExpectUnknown(GetVekErrorInfo("QMT_ERROR_CORRUPT_DATA"));
}

TEST(ErrorCatalogue, KeepsRowsOfTheSameWordsApart) {
    const ST_ErrorMapEntry& first = GetVekErrorInfo(-22L);
    const ST_ErrorMapEntry& second = GetVekErrorInfo(-23L);
    EXPECT_NE(&first, &second);
    EXPECT_STREQ(first.m_szDescription, second.m_szDescription);
    EXPECT_STREQ(first.m_szName, "QMT_ERROR_TEMPLATE_PTRPTR");
    EXPECT_STREQ(second.m_szName, "QMT_ERROR_TEMPLATE_PTR_NULL");
}

TEST(ErrorCatalogue, HasAnUnknownEntryForEachLookup) {
    const ST_ErrorMapEntry& byCode = GetVekErrorInfo(-6L);
    const ST_ErrorMapEntry& byName = GetVekErrorInfo("none");
    const ST_ErrorMapEntry& byWideName = GetVekErrorInfo(L"none");
    ExpectUnknown(byCode);
    ExpectUnknown(byName);
    ExpectUnknown(byWideName);
    EXPECT_NE(&byCode, &byName);
    EXPECT_NE(&byName, &byWideName);
    EXPECT_EQ(&byCode, &GetVekErrorInfo(1L));
}

TEST(ErrorCatalogue, FindsTheUnknownEntryForNumbersWithoutARow) {
    for (long nCode : {1L, -6L, -3L, -999L, 2147483647L, LONG_MAX, LONG_MIN, -4294967296L})
        ExpectUnknown(GetVekErrorInfo(nCode));
}

TEST(ErrorCatalogue, FindsTheUnknownEntryForANullName) {
    ExpectUnknown(GetVekErrorInfo(static_cast<const char*>(nullptr)));
    ExpectUnknown(GetVekErrorInfo(static_cast<const wchar_t*>(nullptr)));
}

TEST(ErrorCatalogue, DescribesNumbers) {
    EXPECT_STREQ(GetErrorDescriptionIntern(0), "No errors occurred.");
    EXPECT_STREQ(GetErrorDescriptionIntern(-6), "Unknown error code.");
    EXPECT_STREQ(GetErrorDescriptionIntern(1), "Unknown error code.");
    EXPECT_STREQ(GetErrorDescriptionInternW(0), L"No errors occurred.");
    EXPECT_STREQ(GetErrorDescriptionInternW(1), L"Unknown error code.");
}

TEST(ErrorCatalogue, GivesTextsThatStay) {
    EXPECT_EQ(GetErrorDescriptionIntern(-35), GetErrorDescriptionIntern(-35));
    EXPECT_EQ(GetErrorDescriptionIntern(-35), GetVekErrorInfo(-35L).m_szDescription);
    EXPECT_EQ(GetErrorDescriptionInternW(-35), GetVekErrorInfo(-35L).m_wszDescription);
}
