// Sizes, failures and the fill of the margin. The borders that continue the image are tested in
// IpImageExtensionBorderTest.cpp.

#include "ImageProcessing/IpImageExtension.h"

#include "Tools/ProfileTimer.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace {

using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;
using EAlignmentX = ClIpImageExtension::EAlignmentX;
using EAlignmentY = ClIpImageExtension::EAlignmentY;

TEST(IpImageExtension, NumbersAlignmentsAsTheyAreStored) {
    EXPECT_EQ(EAlignmentX{0}, EAlignmentX::Center);
    EXPECT_EQ(EAlignmentX{1}, EAlignmentX::Left);
    EXPECT_EQ(EAlignmentX{2}, EAlignmentX::Right);
    EXPECT_EQ(EAlignmentX{3}, EAlignmentX::Manual);
    EXPECT_EQ(EAlignmentY{0}, EAlignmentY::Center);
    EXPECT_EQ(EAlignmentY{1}, EAlignmentY::Down);
    EXPECT_EQ(EAlignmentY{2}, EAlignmentY::Up);
    EXPECT_EQ(EAlignmentY{3}, EAlignmentY::Manual);
}

// Place

TEST(IpImageExtension, PutsTheImageWhereTheAlignmentInXSays) {
    ClTestImage in = Img({{1, 2}});
    const std::pair<EAlignmentX, Rows> aCases[] = {
        {EAlignmentX::Center, {{9, 9, 1, 2, 9, 9}}},
        {EAlignmentX::Left, {{1, 2, 9, 9, 9, 9}}},
        {EAlignmentX::Right, {{9, 9, 9, 9, 1, 2}}},
        {EAlignmentX::Manual, {{9, 9, 9, 1, 2, 9}}},
        {static_cast<EAlignmentX>(77), {{9, 9, 1, 2, 9, 9}}},
    };
    for (const auto& Case : aCases) {
        ClIpImageExtension extension;
        extension.m_eAlignmentX = Case.first;
        extension.m_nManualOffsetX = 3;
        ClImage out;
        EXPECT_EQ(extension.ApplyParam(in, out, 4, 0, 9, false), 0);
        EXPECT_EQ(Pixels(out), Case.second);
    }
}

TEST(IpImageExtension, PutsTheImageWhereTheAlignmentInYSays) {
    ClTestImage in = Img({{1}, {2}});
    const std::pair<EAlignmentY, Rows> aCases[] = {
        {EAlignmentY::Center, {{9}, {1}, {2}, {9}, {9}}}, // 3 / 2 below
        {EAlignmentY::Down, {{1}, {2}, {9}, {9}, {9}}},
        {EAlignmentY::Up, {{9}, {9}, {9}, {1}, {2}}},
        {EAlignmentY::Manual, {{9}, {9}, {1}, {2}, {9}}},
        {static_cast<EAlignmentY>(-1), {{9}, {1}, {2}, {9}, {9}}},
    };
    for (const auto& Case : aCases) {
        ClIpImageExtension extension;
        extension.m_eAlignmentY = Case.first;
        extension.m_nManualOffsetY = 2;
        ClImage out;
        EXPECT_EQ(extension.ApplyParam(in, out, 0, 3, 9, false), 0);
        EXPECT_EQ(Pixels(out), Case.second);
    }
}

TEST(IpImageExtension, RefusesManualOffsetsOutsideTheExtension) {
    ClTestImage in = Img({{1, 2}});
    ClIpImageExtension extension;
    extension.m_eAlignmentX = EAlignmentX::Manual;
    extension.m_eAlignmentY = EAlignmentY::Manual;
    for (int nOffset : {5, INT_MAX, -1, INT_MIN}) {
        ClImage out;
        extension.m_nManualOffsetX = extension.m_nManualOffsetY = nOffset;
        EXPECT_THROWS(extension.ApplyParam(in, out, 4, 4, 9, false), ClException, -44,
                      "The manually set x offset must be at most the x extension");
        extension.m_nManualOffsetX = 4;
        EXPECT_THROWS(extension.ApplyParam(in, out, 4, 4, 9, false), ClException, -44,
                      "The manually set y offset must be at most the y extension");
        extension.m_nManualOffsetY = 0;
        EXPECT_EQ(extension.ApplyParam(in, out, 4, 4, 9, false), 0);
    }
}

TEST(IpImageExtension, TellsWhereItRefusesAnOffset) {
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    ClIpImageExtension extension;
    extension.m_eAlignmentX = EAlignmentX::Manual;
    extension.m_nManualOffsetX = 1;
    try {
        extension.ApplyParam(in, out, 0, 0, 0, false);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "ImageProcessing/IpImageExtension");
        EXPECT_GT(e.Line(), 0);
    }
}

// Sizes

TEST(IpImageExtension, FindsTheNextPowerOfTwo) {
    EXPECT_EQ(ClIpImageExtension::CalculateNextTwoPower(500, 0), 512);
    EXPECT_EQ(ClIpImageExtension::CalculateNextTwoPower(512, 0), 512);
    EXPECT_EQ(ClIpImageExtension::CalculateNextTwoPower(512, 1), 1024);
    EXPECT_EQ(ClIpImageExtension::CalculateNextTwoPower(1, 0), 1);
    EXPECT_EQ(ClIpImageExtension::CalculateNextTwoPower(1, 1), 2);
    EXPECT_EQ(ClIpImageExtension::CalculateNextTwoPower(2, 1), 4);
    for (int nBit = 2; nBit <= 30; ++nBit) { // exact where logarithms are not
        const long nPower = 1L << nBit;
        EXPECT_EQ(ClIpImageExtension::CalculateNextTwoPower(static_cast<int>(nPower) - 1, 0),
                  nPower);
        EXPECT_EQ(ClIpImageExtension::CalculateNextTwoPower(static_cast<int>(nPower), 0), nPower);
        EXPECT_EQ(ClIpImageExtension::CalculateNextTwoPower(static_cast<int>(nPower), 1),
                  2 * nPower);
    }
    EXPECT_EQ(ClIpImageExtension::CalculateNextTwoPower(INT_MAX, INT_MAX), 1L << 32);
}

TEST(IpImageExtension, GrowsToTheNextPowersOfTwo) {
    ClTestImage in = Img({{1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}, {11, 12, 13, 14, 15}});
    ClImage out;
    ClIpImageExtension extension;
    EXPECT_EQ(extension.ApplyParam(in, out, 0, 0, true), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 1, 2, 3, 4, 5, 0, 0},
                                 {0, 6, 7, 8, 9, 10, 0, 0},
                                 {0, 11, 12, 13, 14, 15, 0, 0},
                                 {0, 0, 0, 0, 0, 0, 0, 0}}));
    EXPECT_EQ(extension.ApplyParam(in, out, 4, 1, 0, true), 0);
    EXPECT_EQ(out.Width(), 16);
    EXPECT_EQ(out.Height(), 4);
}

TEST(IpImageExtension, ExtendsByNothing) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 5, 3, 1, 1);
    ClImage out;
    ClIpImageExtension extension;
    EXPECT_EQ(extension.ApplyParam(in, out, 0, 99, false), 0);
    ExpectSameImage(out, in);
}

TEST(IpImageExtension, HasFourFormsOfACall) {
    const ClTestImage in = Img({{5}});
    const Rows aSquare = {{7, 7, 7}, {7, 5, 7}, {7, 7, 7}};
    const Rows aWide = {{7, 5, 7, 7}, {7, 7, 7, 7}};
    ClIpImageExtension extension;
    ClTestImage image = in;
    ClImage out;
    EXPECT_EQ(extension.ApplyParam(image, out, 2, 7, false), 0);
    EXPECT_EQ(Pixels(out), aSquare);
    EXPECT_EQ(extension.ApplyParam(image, out, 2, 1, 7, true), 0);
    EXPECT_EQ(Pixels(out), aWide);
    EXPECT_EQ(Pixels(image), Rows({{5}}));
    EXPECT_EQ(extension.ApplyParam(image, 2, 7, false), 0);
    EXPECT_EQ(Pixels(image), aSquare);
    image = in;
    EXPECT_EQ(extension.ApplyParam(image, 2, 1, 7, true), 0);
    EXPECT_EQ(Pixels(image), aWide);
}

TEST(IpImageExtension, WorksInPlaceWhereAllowedTo) {
    ClTestImage image = Img({{5}});
    ClIpImageExtension extension;
    extension.m_bInPlace = true;
    EXPECT_EQ(extension.ApplyParam(image, 2, 7, false), 0);
    EXPECT_EQ(Pixels(image), Rows({{7, 7, 7}, {7, 5, 7}, {7, 7, 7}}));
}

// Fill

TEST(IpImageExtension, SetsAColourIn8BitImages) {
    for (int nPlanes : {1, 3}) {
        ClTestImage in = FlatImage(ClImage::eUInt8, 1, 1, nPlanes, 1);
        ClTestImage expected = FlatImage(ClImage::eUInt8, 2, 1, nPlanes, 200);
        ClImage out;
        ClIpImageExtension extension;
        EXPECT_EQ(extension.ApplyParam(in, out, 1, 0, 200, false), 0);
        for (int p = 0; p < nPlanes; ++p)
            TestSupport::SetSample(expected, 0, 0, p, 1);
        ExpectSameImage(out, expected);
    }
    ClTestImage in = Img(ClImage::eInt8, {{1}});
    ClImage out;
    ClIpImageExtension extension;
    EXPECT_EQ(extension.ApplyParam(in, out, 1, 0, 200, false), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, -56}})); // 200 - 256
}

TEST(IpImageExtension, SetsZeroInImagesOfEveryTypeAndNothingElseInWiderOnes) {
    using Extension = ClIpImageExtension;
    for (unsigned char nType : TestSupport::caPixelTypes) {
        ClTestImage in = FlatImage(nType, 2, 1, 1, 1);
        ClTestImage expected = FlatImage(nType, 5, 1, 1, 0);
        TestSupport::SetSample(expected, 1, 0, 0, 1);
        TestSupport::SetSample(expected, 2, 0, 0, 1);
        ClImage out;
        Extension extension;
        EXPECT_EQ(extension.ApplyParam(in, out, 3, 0, 0, false), 0);
        ExpectSameImage(out, expected);
        if (in.BytesPerSample() == 1)
            continue;
        for (auto eMode : {Extension::ExtendSetColor, Extension::ExtendBorderContinue,
                           Extension::ExtendBorderReflection, Extension::ExtendBorderPeriodic}) {
            extension.m_eMode = eMode;
            EXPECT_THROWS(extension.ApplyParam(in, out, 1, 0, 1, false), ClException, -101,
                          "Image Type is not the assigned type");
        }
    }
}

TEST(IpImageExtension, TakesAModeThatIsNotThereForAColour) {
    ClTestImage in = Img({{5}});
    ClImage out;
    ClIpImageExtension extension;
    extension.m_eMode = static_cast<ClIpImageExtension::EExtensionMode>(5);
    EXPECT_EQ(extension.ApplyParam(in, out, 2, 0, 7, false), 0);
    EXPECT_EQ(Pixels(out), Rows({{7, 5, 7}}));
}

TEST(IpImageExtension, FillsWithTheMeanOfAPlane) {
    ClTestImage in = Img({{10, 20, 30, 43}}); // 25.75
    ClImage out;
    ClIpImageExtension extension;
    extension.m_eMode = ClIpImageExtension::ExtendAverageColor;
    EXPECT_EQ(extension.ApplyParam(in, out, 2, 1, 99, false), 0);
    EXPECT_EQ(Pixels(out), Rows({{25, 10, 20, 30, 43, 25}, {25, 25, 25, 25, 25, 25}}));
}

TEST(IpImageExtension, FillsEachPlaneWithItsOwnMean) {
    ClTestImage in = Img(ClImage::eUInt8, {{10, 100, 255, 21, 101, 254}}, 3); // 15.5 100.5 254.5
    in.SetContent(ClImage::eHSV);
    in.SetAttribute(8);
    ClImage out;
    ClIpImageExtension extension;
    extension.m_eMode = ClIpImageExtension::ExtendAverageColor;
    EXPECT_EQ(extension.ApplyParam(in, out, 1, 1, 99, false), 0);
    EXPECT_EQ(Pixels(out), Rows({{10, 100, 255, 21, 101, 254, 15, 100, 254},
                                 {15, 100, 254, 15, 100, 254, 15, 100, 254}}));
    EXPECT_EQ(out.Content(), ClImage::eHSV);
    EXPECT_EQ(out.Attribute(), 8);
}

TEST(IpImageExtension, CopiesOtherTypesWhereItWouldFillWithAMean) {
    for (unsigned char nType : TestSupport::caPixelTypes) {
        if (nType == ClImage::eUInt8)
            continue;
        ClTestImage in = RandomImage(nType, 5, 3, 3, 1);
        in.SetContent(ClImage::eHSV);
        in.SetAttribute(8);
        ClImage out;
        ClIpImageExtension extension;
        extension.m_eMode = ClIpImageExtension::ExtendAverageColor;
        EXPECT_EQ(extension.ApplyParam(in, out, 2, 99, true), 0);
        ExpectSameImage(out, in);
    }
}

TEST(IpImageExtension, KeepsWhatTheInputSaysOfItsPixels) {
    ClTestImage in = RandomImage(ClImage::eUInt16, 5, 4, 3, 3);
    in.SetPelsX(100);
    in.SetPelsY(200);
    in.SetBlack(10.0);
    in.SetWhite(1000.0);
    in.SetContent(ClImage::eCIELab);
    in.SetAttribute(8);
    ClImage out;
    ClIpImageExtension extension;
    EXPECT_EQ(extension.ApplyParam(in, out, 2, 0, false), 0);
    EXPECT_EQ(out.PelsX(), 100);
    EXPECT_EQ(out.PelsY(), 200);
    EXPECT_EQ(out.Black(), 10.0);
    EXPECT_EQ(out.White(), 1000.0);
    EXPECT_EQ(out.Content(), ClImage::eCIELab);
    EXPECT_EQ(out.Attribute(), 8);
}

// Timing

using Marks = std::vector<std::string>;

/// A timer that writes down its marks, and is that of the process while it lives.
class ClRecordingTimer : public ClProfileTimer {
public:
    ClRecordingTimer() { g_pProfileTimer = this; }
    ~ClRecordingTimer() override { g_pProfileTimer = nullptr; }

    void TimerStart(const char* pFormat, ...) override {
        m_aMarks.push_back(std::string("start ") + (pFormat != nullptr ? pFormat : "a run"));
    }
    void TimerStop(const char* pFormat, ...) override {
        char szText[600];
        va_list arguments;
        va_start(arguments, pFormat);
        std::vsnprintf(szText, sizeof szText, pFormat, arguments);
        va_end(arguments);
        m_aMarks.push_back(std::string("stop ") + szText);
    }

    Marks m_aMarks;
};

TEST(IpImageExtension, MarksTheLoopOverTheMargins) {
    ClTestImage in = Img({{5}});
    for (int nMode = 0; nMode <= 4; ++nMode) {
        ClRecordingTimer timer;
        ClIpImageExtension extension;
        extension.m_eMode = static_cast<ClIpImageExtension::EExtensionMode>(nMode);
        ClImage out;
        EXPECT_EQ(extension.ApplyParam(in, out, 1, 0, false), 0);
        const Marks aFilled = {"start a run", "stop ClIpImageExtension "};
        const Marks aContinued = {"start a run", "start CalculateExtensionLoop",
                                  "stop CalculateExtensionLoop", "stop ClIpImageExtension "};
        EXPECT_EQ(timer.m_aMarks, nMode < 2 ? aFilled : aContinued) << nMode;
    }
}

TEST(IpImageExtension, TimesTheWorkOnPlanesAsItsOwn) {
    ClTestImage in = Img(ClImage::eUInt8, {{10, 20, 30}}, 3);
    ClRecordingTimer timer;
    ClIpImageExtension extension;
    extension.m_eMode = ClIpImageExtension::ExtendAverageColor;
    ClImage out;
    EXPECT_EQ(extension.ApplyParam(in, out, 1, 0, false), 0);
    EXPECT_EQ(timer.m_aMarks,
              Marks({"start a run", "start a run", "stop ClIpSplitPlanes ", "start a run",
                     "stop ClIpJoinPlanes ", "stop ClIpImageExtension "}));
    timer.m_aMarks.clear();
    extension.Timer(false);
    EXPECT_EQ(extension.ApplyParam(in, out, 1, 0, false), 0);
    EXPECT_EQ(timer.m_aMarks, Marks());
}

} // namespace
