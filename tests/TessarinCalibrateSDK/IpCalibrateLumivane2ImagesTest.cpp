// The engine's image helpers, and the entrances that take a capture of the target.

#include "TessarinCalibrateSDK/IpCalibrateLumivane2.h"

#include "TessarinCalibrateSDK/EngineWords.h"
#include "TessarinCalibrateSDK/Trace.h"
#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/Records.h"
#include "support/Throws.h"

#include <limits>

using TestSupport::ClLogCapture;
using TestSupport::cszMissing;
using TestSupport::cszPlanes;
using TestSupport::Lines;
using TestSupport::PlausibleRecord;
using TestSupport::Trace;

namespace {

/// Pixel (x, y) is x * 3 + y * 7 modulo 251, the line ends are 250.
void FillPattern(ClImage& rImage) {
    rImage = static_cast<unsigned char>(250);
    for (int y = 0; y < rImage.Height(); ++y)
        for (int x = 0; x < rImage.Width(); ++x)
            rImage.LineData(y)[x] = static_cast<unsigned char>((x * 3 + y * 7) % 251);
}

int Pattern(int x, int y) {
    return (x * 3 + y * 7) % 251;
}

/// The frame shows the pattern from (nLeft, nTop) of the image on at (nX, nY), and white around.
void ExpectFrame(ClImage& rFrame, int nLeft, int nTop, int nX, int nY, int nWidth, int nHeight) {
    ASSERT_EQ(rFrame.Width(), 320);
    ASSERT_EQ(rFrame.Height(), 480);
    int nWrong = 0;
    for (int y = 0; y < 480; ++y)
        for (int x = 0; x < 320; ++x) {
            const bool bInside = x >= nX && x < nX + nWidth && y >= nY && y < nY + nHeight;
            nWrong +=
                rFrame.LineData(y)[x] != (bInside ? Pattern(x - nX + nLeft, y - nY + nTop) : 255);
        }
    EXPECT_EQ(nWrong, 0);
}

} // namespace

// Every second line

TEST(IpCalibrateLumivane2Images, OddLinesAreTheFirstThirdAndSoOn) {
    ClIpCalibrateLumivane2 Engine;
    ClImage Source(5, 9, 1, 101, 203);
    FillPattern(Source);
    ClImage Destination;
    Engine.CopyOddLineImage(Source, Destination);

    ASSERT_EQ(Destination.Height(), 4); // the last line of an odd height is lost
    ASSERT_EQ(Destination.Width(), 5);
    EXPECT_EQ(Destination.Planes(), 1);
    EXPECT_EQ(Destination.DataType(), ClImage::eUInt8);
    EXPECT_EQ(Destination.PelsX(), 101);
    EXPECT_EQ(Destination.PelsY(), 101);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(Destination.LineData(y)[x], x < 5 ? Pattern(x, 2 * y) : 0);
}

TEST(IpCalibrateLumivane2Images, OddLinesOfTwoLinesIsOne) {
    ClIpCalibrateLumivane2 Engine;
    ClImage Source(4, 2, 1, 0, 1);
    FillPattern(Source);
    ClImage Destination;
    Engine.CopyOddLineImage(Source, Destination);
    EXPECT_EQ(Destination.Height(), 1);
    EXPECT_EQ(Destination.PelsY(), 0);
}

TEST(IpCalibrateLumivane2Images, OddLinesOfLessThanTwoLinesIsRefused) {
    ClIpCalibrateLumivane2 Engine;
    ClImage Single(4, 1, 1, 0, 0);
    ClImage Empty;
    ClImage Destination;
    EXPECT_THROWS(Engine.CopyOddLineImage(Single, Destination), ClException, -101,
                  "Image area must be positive");
    EXPECT_THROWS(Engine.CopyOddLineImage(Empty, Destination), ClException, -101,
                  "Image area must be positive");
    EXPECT_EQ(Destination.Width(), 0);
}

TEST(IpCalibrateLumivane2Images, OddLinesOfAnImageMayTakeItsPlace) {
    ClIpCalibrateLumivane2 Engine;
    ClImage Image(5, 9, 1, 101, 203);
    FillPattern(Image);
    Image.SetAttribute(7);
    Engine.CopyOddLineImage(Image, Image);

    ASSERT_EQ(Image.Height(), 4);
    ASSERT_EQ(Image.Width(), 5);
    EXPECT_EQ(Image.PelsX(), 101);
    EXPECT_EQ(Image.PelsY(), 101);
    EXPECT_EQ(Image.Attribute(), 7); // that of the destination
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(Image.LineData(y)[x], x < 5 ? Pattern(x, 2 * y) : 0);
}

TEST(IpCalibrateLumivane2Images, OddLinesInPlaceChangeNothingWhereTheyFail) {
    ClIpCalibrateLumivane2 Engine;
    ClImage Single(4, 1, 1, 0, 0);
    FillPattern(Single);
    EXPECT_THROWS(Engine.CopyOddLineImage(Single, Single), ClException, -101,
                  "Image area must be positive");
    ASSERT_EQ(Single.Height(), 1);
    EXPECT_EQ(Single.LineData(0)[3], Pattern(3, 0));
}

TEST(IpCalibrateLumivane2Images, OddLinesInPlaceChangeNothingWithoutMemory) {
    ClIpCalibrateLumivane2 Engine;
    int nThrown = 0;
    for (long nAfter = 0; nAfter < 3; ++nAfter) {
        ClImage Image(5, 9, 1, 101, 203);
        FillPattern(Image);
        try {
            const TestSupport::ClFailAllocation Fail(nAfter);
            Engine.CopyOddLineImage(Image, Image);
        } catch (const ClExBadAlloc&) {
            ++nThrown;
            ASSERT_EQ(Image.Height(), 9);
            EXPECT_EQ(Image.LineData(8)[4], Pattern(4, 8));
        }
    }
    EXPECT_GE(nThrown, 1);
}

// The frame

TEST(IpCalibrateLumivane2Images, FrameCutsALargerImageAboutItsCentre) {
    ClIpCalibrateLumivane2 Engine;
    ClImage Image(400, 500, 1, 5, 6);
    FillPattern(Image);
    EXPECT_EQ(Engine.CutRescaleImage(Image), 0);
    ExpectFrame(Image, 40, 10, 0, 0, 320, 480);
    EXPECT_EQ(Image.PelsX(), 19685);
    EXPECT_EQ(Image.PelsY(), 19685);
    EXPECT_EQ(Image.Planes(), 1);
}

TEST(IpCalibrateLumivane2Images, FrameSurroundsASmallerImageWithWhite) {
    ClIpCalibrateLumivane2 Engine;
    ClImage Image(100, 100, 1, 0, 0);
    FillPattern(Image);
    EXPECT_EQ(Engine.CutRescaleImage(Image), 0);
    ExpectFrame(Image, 0, 0, 110, 190, 100, 100);
}

TEST(IpCalibrateLumivane2Images, FrameTruncatesHalfPixelsTowardZero) {
    ClIpCalibrateLumivane2 Engine;
    ClImage Larger(323, 485, 1, 0, 0);
    FillPattern(Larger);
    Engine.CutRescaleImage(Larger);
    ExpectFrame(Larger, 1, 2, 0, 0, 320, 480); // (320 - 323) / 2 is -1
    ClImage Smaller(317, 475, 1, 0, 0);
    FillPattern(Smaller);
    Engine.CutRescaleImage(Smaller);
    ExpectFrame(Smaller, 0, 0, 1, 2, 317, 475);
}

TEST(IpCalibrateLumivane2Images, FrameTreatsEachAxisByItself) {
    ClIpCalibrateLumivane2 Engine;
    ClImage Image(400, 100, 1, 0, 0);
    FillPattern(Image);
    Engine.CutRescaleImage(Image);
    ExpectFrame(Image, 40, 0, 0, 190, 320, 100);
    ClImage Same(320, 480, 1, 0, 0);
    FillPattern(Same);
    Engine.CutRescaleImage(Same);
    ExpectFrame(Same, 0, 0, 0, 0, 320, 480);
}

TEST(IpCalibrateLumivane2Images, FrameOfAnEmptyImageIsWhite) {
    ClIpCalibrateLumivane2 Engine;
    ClImage Image;
    EXPECT_EQ(Engine.CutRescaleImage(Image), 0);
    ExpectFrame(Image, 0, 0, 0, 0, 0, 0);
    unsigned char acPixel[4] = {};
    ClImage Upside;
    Upside.Attach(acPixel, ClImage::eUInt8, -4, 1, 1, 0, 0); // as of a damaged bitmap
    Engine.CutRescaleImage(Upside);
    ExpectFrame(Upside, 0, 0, 0, 0, 0, 0);
}

TEST(IpCalibrateLumivane2Images, FrameSurvivesMissingMemory) {
    ClIpCalibrateLumivane2 Engine;
    TestSupport::FailEachAllocation([&] {
        ClImage Image(10, 10, 1, 0, 0);
        Engine.CutRescaleImage(Image);
    });
}

// Captures of the target

TEST(IpCalibrateLumivane2Images, SetupAndCompareWantAnInput) {
    ClIpCalibrateLumivane2 Engine;
    EXPECT_THROWS(Engine.Setup(), ClExTessarin, -37, cszMissing);
    EXPECT_THROWS(Engine.Compare(), ClExTessarin, -37, cszMissing);
}

TEST(IpCalibrateLumivane2Images, SetupAndCompareWantOneGreyPlane) {
    ClIpCalibrateLumivane2 Engine;
    ClImage Colour(8, 8, 3, 0, 0);
    ClImage Empty;
    ClImage Unknown(8, 8, 1, 0, 0);
    Unknown.SetContent(ClImage::eUnknown);
    for (ClImage* pImage : {&Colour, &Empty, &Unknown}) {
        Engine.m_pInImage = pImage;
        EXPECT_THROWS(Engine.Setup(), ClExTessarin, -11, cszPlanes);
        EXPECT_THROWS(Engine.Compare(), ClExTessarin, -11, cszPlanes);
    }
}

TEST(IpCalibrateLumivane2Images, SetupAndCompareEnterTheTraceFirst) {
    ClIpCalibrateLumivane2 Engine;
    const ClLogCapture Log;
    EXPECT_THROWS(Engine.Setup(), ClExTessarin, -37, cszMissing);
    EXPECT_THROWS(Engine.Compare(), ClExTessarin, -37, cszMissing);
    EXPECT_EQ(Log.Lines(), (Lines{Trace("ClIpCalibrateQK7::Setup() Enter"),
                                  Trace("ClIpCalibrateQK7::Compare() Enter")}));
}

// Records

TEST(IpCalibrateLumivane2Images, RecordsAreChecked) {
    ClIpCalibrateLumivane2 Engine;
    ClCalibrateGeometricData Data;
    Fill(PlausibleRecord(), Data);
    EXPECT_NO_THROW(Engine.CheckGeometricDataTarget(Data));
    Data.m_aTarget[5].x = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROWS(Engine.CheckGeometricDataTarget(Data), ClException, -39,
                  "Target data is corrupt");
    Fill(PlausibleRecord(), Data);
    Data.m_aActual[0].Remove(3);
    EXPECT_THROWS(Engine.CheckGeometricDataTarget(Data), ClException, -39,
                  "Target and Source arrays must have same size!");
    Fill(PlausibleRecord(), Data);
    Data.m_aActual[0][3].y = std::numeric_limits<double>::infinity();
    EXPECT_THROWS(Engine.CheckGeometricDataTarget(Data), ClException, -39,
                  "Source data is corrupt");
    Fill(PlausibleRecord(), Data);
    Data.m_aTarget[3].y += 11.0; // pixels
    EXPECT_THROWS(Engine.CheckGeometricDataTarget(Data), ClException, -39,
                  "Target data is corrupt");
    Fill(PlausibleRecord(), Data);
    Data.m_aActual[0][3].y += 4.0; // of a step of 10.8
    EXPECT_THROWS(Engine.CheckGeometricDataTarget(Data), ClException, -39,
                  "Source data is corrupt");
}
