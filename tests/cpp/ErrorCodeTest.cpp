// Statuses as error codes and as exceptions.

#include "cpp/Scanner.h"

#include <functional>

using tessarin::Calibrator;
using tessarin::category;
using tessarin::statusCode;
using TestSupport::Bytes;

TEST(StatusCode, HasTheWordsOfTheCatalogue) {
    for (const long nStatus : {QMT_ERROR_BITMAP_DIMENSION, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE,
                               QMT_ERROR_OUT_OF_MEMORY, -9999L}) {
        EXPECT_EQ(statusCode(nStatus).value(), nStatus);
        EXPECT_EQ(statusCode(nStatus).message(), CalibrateGetErrorDescription(nStatus));
    }
    EXPECT_EQ(statusCode(-14).message(), "The image is too small or too big.");
}

TEST(StatusCode, OfSuccessIsNoError) {
    EXPECT_EQ(statusCode(QMT_SUCCESS), std::error_code());
    EXPECT_TRUE(statusCode(QMT_ERROR_NO_HANDLE));
    EXPECT_STREQ(category().name(), "TessarinCalibrateSDK");
}

TEST(StatusCode, OfMissingMemoryIsThatOfTheStandardLibraryToo) {
    EXPECT_EQ(statusCode(QMT_ERROR_OUT_OF_MEMORY), std::errc::not_enough_memory);
    EXPECT_NE(statusCode(QMT_ERROR_INTERNAL), std::errc::not_enough_memory);
    EXPECT_NE(statusCode(-2), std::error_code(-2, std::generic_category()));
}

TEST(Failure, IsAnErrorCodeAndIsClearedBySuccess) {
    std::error_code Error;
    Calibrator Scanner(Error);
    EXPECT_FALSE(Error);
    Scanner.setData(Bytes(12), Error);
    EXPECT_EQ(Error, statusCode(QMT_ERROR_UNEXPECTED_SIGNATURE));
    Scanner.setData(TestSupport::ScannerData(), Error);
    EXPECT_EQ(Error, std::error_code());
}

TEST(Failure, IsAnExceptionThatTellsCallNumberAndWords) {
    Calibrator Scanner;
    try {
        Scanner.setData(Bytes(12));
        FAIL() << "nothing was thrown";
    } catch (const std::system_error& Thrown) {
        EXPECT_EQ(Thrown.code(), statusCode(QMT_ERROR_UNEXPECTED_SIGNATURE));
        EXPECT_STREQ(Thrown.what(),
                     "CalibrateSetData (-40): The input signature is not expected here.");
    }
}

namespace {

struct StCall {
    const char* m_szFunction;
    std::function<void(Calibrator&)> m_Throwing;
    std::function<void(Calibrator&, std::error_code&)> m_Telling;
};

const Bytes g_aBlock(8);
Bytes g_aOut(8);

/// Every call, in both forms.
const StCall g_aCalls[] = {
    {"CalibrateSetOption", [](auto& r) { r.setOption("MaskIsOutput=true"); },
     [](auto& r, auto& rError) { r.setOption("MaskIsOutput=true", rError); }},
    {"CalibrateSetOption", [](auto& r) { r.setOption(tessarin::Switch::sensitiveMode, true); },
     [](auto& r, auto& rError) { r.setOption(tessarin::Switch::sensitiveMode, true, rError); }},
    {"CalibrateSetOption", [](auto& r) { r.setOption(tessarin::Geometry::oddLines); },
     [](auto& r, auto& rError) { r.setOption(tessarin::Geometry::oddLines, rError); }},
    {"CalibrateGetOption", [](auto& r) { r.getOption("MaskIsOutput"); },
     [](auto& r, auto& rError) {
         char szValue[16];
         EXPECT_EQ(r.getOption("MaskIsOutput", szValue, rError), 0u);
     }},
    {"CalibrateGetOption", [](auto& r) { r.isEnabled(tessarin::Switch::maskIsOutput); },
     [](auto& r, auto& rError) {
         EXPECT_FALSE(r.isEnabled(tessarin::Switch::dynamicFingerMask, rError));
     }},
    {"CalibrateGetOption", [](auto& r) { r.geometry(); },
     [](auto& r, auto& rError) { EXPECT_EQ(r.geometry(rError), tessarin::Geometry::off); }},
    {"CalibrateSetData", [](auto& r) { r.setData(g_aBlock); },
     [](auto& r, auto& rError) { r.setData(g_aBlock, rError); }},
    {"CalibrateSetPrecalculatedData", [](auto& r) { r.setPrecalculatedData(g_aBlock); },
     [](auto& r, auto& rError) { r.setPrecalculatedData(g_aBlock, rError); }},
    {"CalibrateSetReferenceData", [](auto& r) { r.setReferenceData(g_aBlock); },
     [](auto& r, auto& rError) { r.setReferenceData(g_aBlock, rError); }},
    {"CalibrateGenerateData", [](auto& r) { r.generateData(g_aBlock); },
     [](auto& r, auto& rError) { r.generateData(g_aBlock, rError); }},
    {"CalibrateGetData", [](auto& r) { r.getData(); },
     [](auto& r, auto& rError) {
         EXPECT_EQ(r.getData(g_aOut, rError), 0u);
         EXPECT_TRUE(r.getData(rError).empty());
     }},
    {"CalibrateGetPrecalculatedData", [](auto& r) { r.getPrecalculatedData(); },
     [](auto& r, auto& rError) {
         EXPECT_EQ(r.getPrecalculatedData(g_aOut, rError), 0u);
         EXPECT_TRUE(r.getPrecalculatedData(rError).empty());
     }},
    {"Calibrate", [](auto& r) { r.correct(g_aBlock, tessarin::Bytes(g_aOut)); },
     [](auto& r, auto& rError) {
         EXPECT_EQ(r.correct(g_aBlock, tessarin::Bytes(g_aOut), rError), 0u);
     }},
    {"Calibrate", [](auto& r) { r.correct(g_aBlock, g_aOut); },
     [](auto& r, auto& rError) { r.correct(g_aBlock, g_aOut, rError); }},
    {"GetCalibrationWarningLevels", [](auto& r) { r.levels(); },
     [](auto& r, auto& rError) { EXPECT_EQ(r.levels(rError).dirt, 0.0); }},
    {"ContaminationDetection", [](auto& r) { r.contamination(g_aBlock); },
     [](auto& r, auto& rError) { EXPECT_EQ(r.contamination(g_aBlock, rError), 101.0); }},
    {"CalibrateCheckEfts", [](auto& r) { r.checkEfts(g_aBlock); },
     [](auto& r, auto& rError) { EXPECT_EQ(r.checkEfts(g_aBlock, rError), 0.0); }},
};

} // namespace

TEST(Calibrator, ThatWasMovedFromAnswersThatThereIsNoHandle) {
    Calibrator Gone;
    const Calibrator Kept(std::move(Gone));
    EXPECT_FALSE(Gone); // NOLINT(bugprone-use-after-move): what is left is told
    EXPECT_TRUE(Kept);
    for (const StCall& Call : g_aCalls) {
        std::error_code Error;
        Call.m_Telling(Gone, Error);
        EXPECT_EQ(Error, statusCode(QMT_ERROR_NO_HANDLE)) << Call.m_szFunction;
        try {
            Call.m_Throwing(Gone);
            ADD_FAILURE() << Call.m_szFunction << ": nothing was thrown";
        } catch (const std::system_error& Thrown) {
            EXPECT_EQ(Thrown.what(), std::string(Call.m_szFunction) +
                                         " (-42): The handle parameter is set to NULL.");
        }
    }
}
