// Handle and options as an application sees them.

#include "api/Api.h"

using TestSupport::ClApiHandle;

namespace {

/// A record with a handle's guards and whatever behind the pointer.
struct StForeign {
    char m_acHead[4] = {'C', 'A', 'L', 0};
    void* m_pProcessor = nullptr;
    char m_acTail[4] = {'L', 'A', 'C', 0};
};

std::string Option(void* pHandle, const char* szKey) {
    char szValue[64] = {};
    unsigned long nSize = sizeof szValue;
    EXPECT_EQ(CalibrateGetOption(pHandle, szKey, szValue, &nSize), 0) << szKey;
    EXPECT_EQ(nSize, std::strlen(szValue) + 1);
    return szValue;
}

constexpr const char* caszBoolKeys[] = {"DynamicFingerMask", "SensitiveMode", "MaskIsOutput",
                                        "PrecalculatedData"};

/// All five options in a row.
std::string Options(void* pHandle) {
    std::string All;
    for (const char* szKey : caszBoolKeys)
        All += Option(pHandle, szKey) + " ";
    return All + Option(pHandle, "GeometricCalibrate");
}

constexpr const char* cszDefaults = "Enabled Disabled Disabled Disabled ThinPlateSpline";

} // namespace

// Handles

TEST(HandleCalls, DeleteTwiceFindsNoHandle) {
    void* pHandle = CalibrateCreate();
    ASSERT_NE(pHandle, nullptr);
    EXPECT_EQ(CalibrateDelete(&pHandle), QMT_SUCCESS);
    EXPECT_EQ(pHandle, nullptr);
    EXPECT_EQ(CalibrateDelete(&pHandle), QMT_ERROR_NO_HANDLE);
}

TEST(HandleCalls, DeleteWantsAVariable) {
    EXPECT_EQ(CalibrateDelete(nullptr), QMT_ERROR_TEMPLATE_PTRPTR);
}

TEST(HandleCalls, EveryCallRefusesNullAndForeignHandles) {
    StForeign NoProcessor;
    StForeign OtherTail;
    void* pSomething = &OtherTail;
    OtherTail.m_pProcessor = pSomething;
    OtherTail.m_acTail[3] = 1;
    StForeign OtherHead;
    OtherHead.m_pProcessor = pSomething;
    OtherHead.m_acHead[3] = ' ';
    unsigned char acBlock[4] = {};
    unsigned long nSize = sizeof acBlock;
    double dResult = 0;
    char szValue[8];
    for (void* pHandle : {static_cast<void*>(nullptr), static_cast<void*>(&NoProcessor),
                          static_cast<void*>(&OtherTail), static_cast<void*>(&OtherHead)}) {
        const long nCode = pHandle == nullptr ? QMT_ERROR_NO_HANDLE : QMT_ERROR_INVALID_HANDLE;
        void* pVariable = pHandle;
        EXPECT_EQ(CalibrateDelete(&pVariable), nCode);
        EXPECT_EQ(pVariable, pHandle);
        EXPECT_EQ(CalibrateSetOption(pHandle, "SensitiveMode=true"), nCode);
        EXPECT_EQ(CalibrateGetOption(pHandle, "SensitiveMode", szValue, &nSize), nCode);
        EXPECT_EQ(GetCalibrationWarningLevels(pHandle, &dResult, &dResult), nCode);
        EXPECT_EQ(Calibrate(pHandle, acBlock, 4, nullptr, &nSize), nCode);
        EXPECT_EQ(ContaminationDetection(pHandle, acBlock, 4, &dResult), nCode);
        EXPECT_EQ(dResult, 101.0);
        EXPECT_EQ(CalibrateCheckEfts(pHandle, acBlock, 4, &dResult), nCode);
        EXPECT_EQ(CalibrateSetData(pHandle, acBlock, 4), nCode);
        EXPECT_EQ(CalibrateGetData(pHandle, acBlock, &nSize), nCode);
        EXPECT_EQ(CalibrateSetPrecalculatedData(pHandle, acBlock, 4), nCode);
        EXPECT_EQ(CalibrateGetPrecalculatedData(pHandle, acBlock, &nSize), nCode);
        EXPECT_EQ(CalibrateSetReferenceData(pHandle, acBlock, 4), nCode);
        EXPECT_EQ(CalibrateGenerateData(pHandle, acBlock, 4), nCode);
        EXPECT_EQ(nSize, 4u);
    }
}

TEST(HandleCalls, HandlesShareNothing) {
    const ClApiHandle One;
    const ClApiHandle Other;
    EXPECT_EQ(CalibrateSetOption(One, "SensitiveMode=true"), 0);
    EXPECT_EQ(Option(One, "SensitiveMode"), "Enabled");
    EXPECT_EQ(Option(Other, "SensitiveMode"), "Disabled");
}

TEST(HandleCalls, WarningLevelsReadZeroAtFirst) {
    const ClApiHandle Handle;
    double dDirt = 5;
    double dDry = 6;
    EXPECT_EQ(GetCalibrationWarningLevels(Handle, &dDirt, &dDry), 0);
    EXPECT_EQ(dDirt, 0.0);
    EXPECT_EQ(dDry, 0.0);
    dDry = 6;
    EXPECT_EQ(GetCalibrationWarningLevels(Handle, nullptr, &dDry), 0);
    EXPECT_EQ(dDry, 0.0);
    EXPECT_EQ(GetCalibrationWarningLevels(Handle, &dDirt, nullptr), 0);
}

// Setting options

TEST(CalibrateOptions, HaveTheirDefaults) {
    void* pHandle = CalibrateCreate();
    EXPECT_EQ(Options(pHandle), cszDefaults);
    CalibrateDelete(&pHandle);
}

TEST(CalibrateOptions, BoolsAreSetByEveryWord) {
    void* pHandle = CalibrateCreate();
    for (const std::string Key : caszBoolKeys)
        for (const auto& [szWord, szText] : {std::pair("true", "Enabled"),
                                             {"false", "Disabled"},
                                             {"enable", "Enabled"},
                                             {"disable", "Disabled"},
                                             {" ENABLED", "Enabled"},
                                             {"   FalseHood", "Disabled"}}) {
            EXPECT_EQ(CalibrateSetOption(pHandle, (Key + "=" + szWord).c_str()), 0);
            EXPECT_EQ(Option(pHandle, Key.c_str()), szText) << Key << "=" << szWord;
        }
    EXPECT_EQ(Options(pHandle), "Disabled Disabled Disabled Disabled ThinPlateSpline");
    CalibrateDelete(&pHandle);
}

TEST(CalibrateOptions, GeometryIsSetByEveryWord) {
    void* pHandle = CalibrateCreate();
    for (const auto& [szOption, szText] :
         {std::pair("GeometricCalibrate=disable", "oddLines"),
          {"GeometricCalibrate=off", "off"},
          {"GeometricCalibrate = TRUE", "ThinPlateSpline"},
          {"GeometricCalibrate=false", "oddLines"},
          {"GeometricCalibrate=enable", "ThinPlateSpline"},
          {"GeometricCalibrate=oddLines", "oddLines"},
          {"geometriccalibrate=thinplatespline", "ThinPlateSpline"}}) {
        EXPECT_EQ(CalibrateSetOption(pHandle, szOption), 0);
        EXPECT_EQ(Option(pHandle, "GeometricCalibrate"), szText) << szOption;
    }
    CalibrateDelete(&pHandle);
}

TEST(CalibrateOptions, TolerateTextBehindKeysAndValues) {
    void* pHandle = CalibrateCreate();
    EXPECT_EQ(CalibrateSetOption(pHandle, "sensitivemodeXYZ=true"), 0);
    EXPECT_EQ(CalibrateSetOption(pHandle, "MaskIsOutput of this scanner=Truely"), 0);
    EXPECT_EQ(Options(pHandle), "Enabled Enabled Enabled Disabled ThinPlateSpline");
    CalibrateDelete(&pHandle);
}

TEST(CalibrateOptions, ThatAreNotUnderstoodChangeNothing) {
    void* pHandle = CalibrateCreate();
    for (const char* szOption :
         {"MaskIsOutput", "NoSuchKey=1", "", "=true", "MaskIsOutput=", "MaskIsOutput=yes",
          "MaskIsOutput true", "DynamicFingerMask=of", "GeometricCalibrate=on",
          "GeometricCalibrate=", "SensitiveMode==true", " SensitiveMode=true"}) {
        EXPECT_EQ(CalibrateSetOption(pHandle, szOption), QMT_ERROR_PARAM_IS_MISSING) << szOption;
        EXPECT_EQ(Options(pHandle), cszDefaults);
    }
    EXPECT_EQ(CalibrateSetOption(pHandle, nullptr), QMT_ERROR_PARAM_IS_MISSING);
    CalibrateDelete(&pHandle);
}

// Reading options

TEST(CalibrateOptions, AreReadByTheWholeKeyWithoutCase) {
    const ClApiHandle Handle;
    EXPECT_EQ(Option(Handle, "sensitivemode"), "Disabled");
    EXPECT_EQ(Option(Handle, "GEOMETRICCALIBRATE"), "ThinPlateSpline");
    for (const char* szKey : {"SensitiveModeX", "SensitiveMod", "", "SensitiveMode=", "Dynamic"}) {
        unsigned long nSize = 7;
        char szValue[8] = "before";
        EXPECT_EQ(CalibrateGetOption(Handle, szKey, szValue, &nSize), QMT_ERROR_PARAM_IS_MISSING);
        EXPECT_EQ(nSize, 7u);
        EXPECT_STREQ(szValue, "before");
    }
}

TEST(CalibrateOptions, TellTheNeededSize) {
    const ClApiHandle Handle;
    for (unsigned long nGiven = 0; nGiven < 9; ++nGiven) { // "Disabled" without its zero: 8
        char szValue[16] = "untouched";
        unsigned long nSize = nGiven;
        EXPECT_EQ(CalibrateGetOption(Handle, "SensitiveMode", szValue, &nSize),
                  QMT_ERROR_TEMPLATE_SIZE);
        EXPECT_EQ(nSize, 9u);
        EXPECT_STREQ(szValue, "untouched");
    }
    char szValue[9];
    unsigned long nSize = sizeof szValue;
    EXPECT_EQ(CalibrateGetOption(Handle, "SensitiveMode", szValue, &nSize), 0);
    EXPECT_STREQ(szValue, "Disabled");
}

TEST(CalibrateOptions, AnswerASizeQueryWithoutABuffer) {
    const ClApiHandle Handle;
    unsigned long nSize = 100;
    EXPECT_EQ(CalibrateGetOption(Handle, "GeometricCalibrate", nullptr, &nSize), 0);
    EXPECT_EQ(nSize, 16u);
    nSize = 15;
    EXPECT_EQ(CalibrateGetOption(Handle, "GeometricCalibrate", nullptr, &nSize),
              QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(nSize, 16u);
}

TEST(CalibrateOptions, TestHandleThenKeyThenSizeThenTheKeysName) {
    const ClApiHandle Handle;
    unsigned long nSize = 0;
    EXPECT_EQ(CalibrateGetOption(nullptr, nullptr, nullptr, nullptr), QMT_ERROR_NO_HANDLE);
    EXPECT_EQ(CalibrateGetOption(Handle, nullptr, nullptr, nullptr), QMT_ERROR_PARAM_IS_MISSING);
    EXPECT_EQ(CalibrateGetOption(Handle, "none", nullptr, nullptr), QMT_ERROR_TEMPLATE_SIZE_PTR);
    EXPECT_EQ(CalibrateGetOption(Handle, "none", nullptr, &nSize), QMT_ERROR_PARAM_IS_MISSING);
    EXPECT_EQ(CalibrateGetOption(Handle, "SensitiveMode", nullptr, &nSize),
              QMT_ERROR_TEMPLATE_SIZE);
}

// Words

TEST(ErrorDescriptions, AreTheSameByEveryCall) {
    EXPECT_STREQ(CalibrateGetErrorDescription(0), "No errors occurred.");
    EXPECT_STREQ(CalibrateGetErrorDescription(-6), "Unknown error code.");
    EXPECT_STREQ(CalibrateGetErrorDescription(1), "Unknown error code.");
    for (long nCode = -1000; nCode <= 10; ++nCode) {
        const char* szText = CalibrateGetErrorDescription(nCode);
        EXPECT_EQ(szText, GetErrorDescriptionIntern(nCode));
        const wchar_t* wszText = GetErrorDescriptionInternW(nCode);
        EXPECT_EQ(std::wstring(wszText), std::wstring(szText, szText + std::strlen(szText)));
    }
}

// Logging

TEST(Logging, StubsAnswerZero) {
    EXPECT_EQ(VekLFLog(7, "%d %s", 5, "text"), 0);
    EXPECT_EQ(VekLFCreate(), 0);
    LoadLoggingFacility();
    ReleaseLoggingFacility();
    EXPECT_EQ(g_VekLFCreate, nullptr);
    EXPECT_EQ(g_VekLFLog, nullptr);
}
