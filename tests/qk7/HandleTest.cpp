#include "apps/qk7/Handle.h"

#include "qk7/Direct.h"
#include "qk7/TestFiles.h"

#include "TessarinCalibrateSDK.h"

#include <gtest/gtest.h>

#include <functional>

using namespace qk7;
using namespace TestSupport;

namespace {

long NumberOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const ClLibraryError& error) {
        return error.Number();
    }
    return 0;
}

} // namespace

TEST(Qk7LibraryError, CarriesNumberAndWords) {
    const ClLibraryError error(-14);

    EXPECT_EQ(error.Number(), -14);
    EXPECT_STREQ(error.what(), "-14 The image is too small or too big.");
}

TEST(Qk7Handle, TurnsStatusesIntoExceptions) {
    ClHandle handle;

    EXPECT_EQ(NumberOf([&] { handle.SetOption("NoSuchKey=1"); }), QMT_ERROR_PARAM_IS_MISSING);
    EXPECT_EQ(NumberOf([&] { handle.SetData({}); }), QMT_ERROR_UNEXPECTED_EOF);
    EXPECT_EQ(NumberOf([&] { handle.Calibrate(Capture(), 0); }), QMT_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(NumberOf([&] { handle.PrecalculatedData(0); }), QMT_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(NumberOf([&] { handle.SetPrecalculatedData(ToBytes("CAL")); }),
              QMT_ERROR_PARAM_IS_MISSING);
    EXPECT_EQ(NumberOf([&] { handle.IsEnabled("NoSuchKey"); }), QMT_ERROR_PARAM_IS_MISSING);
    EXPECT_EQ(NumberOf([&] { handle.SetReferenceData({}); }), QMT_ERROR_UNEXPECTED_EOF);
    EXPECT_EQ(NumberOf([&] { handle.GenerateData({}); }), QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(NumberOf([&] { handle.Data(); }), QMT_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(NumberOf([&] { handle.CheckEfts(Capture()); }), QMT_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(NumberOf([&] { handle.Contamination({}); }), QMT_ERROR_TEMPLATE_SIZE);
}

TEST(Qk7Handle, TellsWhichOptionsAreOn) {
    ClHandle handle;
    EXPECT_TRUE(handle.IsEnabled("DynamicFingerMask"));
    EXPECT_FALSE(handle.IsEnabled("SensitiveMode"));

    handle.SetOption("DynamicFingerMask=false");
    handle.SetOption("SensitiveMode=true");

    EXPECT_FALSE(handle.IsEnabled("DynamicFingerMask"));
    EXPECT_TRUE(handle.IsEnabled("SensitiveMode"));
}

TEST(Qk7Handle, GivesBackTheBlockThatWasSet) {
    ClHandle handle;
    handle.SetData(Record());

    EXPECT_EQ(handle.Data(), Record());
}

TEST(Qk7Handle, HasNoLevelsBeforeTheFirstCapture) {
    const StLevels levels = ClHandle().Levels();

    EXPECT_EQ(levels.m_dDirt, 0.0);
    EXPECT_EQ(levels.m_dDryFinger, 0.0);
}

TEST(Qk7Handle, GivesTheSameResultWhateverSizeWasExpected) {
    ClHandle handle;
    handle.SetOption("DynamicFingerMask=false");
    handle.SetOption("GeometricCalibrate=oddLines");
    handle.SetData(Record());
    const Bytes expected = DirectlyCalibrated(
        Record(), Capture(), {"DynamicFingerMask=false", "GeometricCalibrate=oddLines"});

    for (const std::size_t nExpected :
         {std::size_t{0}, expected.size() - 1, expected.size(), expected.size() + 1000})
        EXPECT_EQ(handle.Calibrate(Capture(), nExpected), expected) << nExpected;
}

TEST(Qk7Handle, AsksOnceMoreOnlyWhenTheLibraryNamesALargerSize) {
    ClHandle handle;
    handle.SetData(Record());
    Bytes tooLong = Capture();
    tooLong.push_back(0);

    // The same status as a small buffer's, for another reason.
    EXPECT_EQ(NumberOf([&] { handle.Calibrate(tooLong, 0); }), QMT_ERROR_TEMPLATE_SIZE);
}
