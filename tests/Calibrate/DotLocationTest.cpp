// From a painted capture to dots, and on to a record.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7Half.h"

#include <gtest/gtest.h>

#include "Calibrate/OpenDotBuilder.h"
#include "Calibrate/PaintedTarget.h"
#include "Tools/MemStream.h"
#include "support/AllocationFailures.h"
#include "support/TestData.h"
#include "support/Throws.h"

#include <cmath>
#include <limits>
#include <set>

using TestSupport::Bytes;
using TestSupport::ClOpenDotBuilder;
using TestSupport::ClTestGrid;
using TestSupport::ClTestImage;
using TestSupport::ExpectPoints;
using TestSupport::Img;
using TestSupport::PaintedPlate;
using TestSupport::PlatePlaces;
using TestSupport::Points;
using TestSupport::Sample;
using TestSupport::StPaint;

namespace {

using QK7 = ClIpCalibrateGeometricBuildRefPointsQK7;
using QK7Half = ClIpCalibrateGeometricBuildRefPointsQK7Half;
using Marks = std::vector<std::vector<bool>>;

const StPaint cDarkDots = {8, 16, 200, 90};

/// Which pixels the step takes for dots.
Marks Located(ClOpenDotBuilder& rBuilder, ClImage& rImage) {
    ClImage Labels;
    rBuilder.m_pOutLabelImage = &Labels;
    ClTestGrid Grid;
    rBuilder.LocatePoints(rImage, Grid);
    Marks aMarks(static_cast<std::size_t>(Labels.Height()));
    for (int y = 0; y < Labels.Height(); ++y)
        for (int x = 0; x < Labels.Width(); ++x)
            aMarks[static_cast<std::size_t>(y)].push_back(Sample(Labels, x, y) > 0);
    return aMarks;
}

/// The threshold by its definition, with windows of odd sizes.
Marks Thresholded(const ClImage& Image, int nSizeX, int nSizeY, bool bBright, int nOffset) {
    Marks aMarks(static_cast<std::size_t>(Image.Height()));
    for (int y = 0; y < Image.Height(); ++y)
        for (int x = 0; x < Image.Width(); ++x) {
            double dSum = 0.0;
            int nArea = 0;
            for (int v = std::max(0, y - nSizeY / 2);
                 v <= std::min(Image.Height() - 1, y + nSizeY / 2); ++v)
                for (int u = std::max(0, x - nSizeX / 2);
                     u <= std::min(Image.Width() - 1, x + nSizeX / 2); ++u, ++nArea)
                    dSum += Sample(Image, u, v);
            const double dPixel = Sample(Image, x, y) * nArea;
            aMarks[static_cast<std::size_t>(y)].push_back(
                bBright ? dPixel > dSum + nOffset * nArea : dPixel <= dSum - nOffset * nArea);
        }
    return aMarks;
}

/// Settings for painted plates.
template <class Builder>
Builder Prepared(ClImage& rImage, ClCalibrateGeometricData& rData) {
    Builder b;
    b.m_dSourceDpiX = 508.0;
    b.m_dSourceDpiY = 1016.0;
    b.m_pInImage = &rImage;
    b.m_pOutData = &rData;
    return b;
}

Bytes Block(ClCalibrateGeometricData& rData) {
    ClMemStream Stream;
    static_cast<ClCalibrateDataBase&>(rData).Write(Stream);
    return Bytes(Stream.GetData(), Stream.GetData() + Stream.Size());
}

/// The target points of a plate that lies straight, its first dot at (x, y) of a capture of the
/// painted size: the middle of the capture comes to lie in the middle of the corrected image.
Points Centred(int x, int y) {
    return TestSupport::PatternPlaces(160.0 + (x - 345 / 2.0) * 500.0 / 508.0,
                                      240.0 + (y - 951 / 2.0) * 500.0 / 1016.0, 1000.0 / 25.4,
                                      1000.0 / 25.4);
}

} // namespace

// The threshold

TEST(DotLocation, TakesPixelsThatStandOutOfTheirWindow) {
    ClTestImage Image = TestSupport::RandomImage(ClImage::eUInt8, 31, 24, 1, 7);
    for (const bool bBright : {true, false}) {
        ClOpenDotBuilder Builder;
        Builder.m_dSourceDpiX = 60.0; // windows of 5.197 by 7.362 pixels
        Builder.m_dSourceDpiY = 85.0;
        Builder.m_dBinarizeOffset = 10.9;
        Builder.m_bBrightDots = bBright;
        EXPECT_EQ(Located(Builder, Image), Thresholded(Image, 5, 7, bBright, 10)) << bBright;
    }
}

TEST(DotLocation, ABrightDotExceedsAndADarkOneReachesTheOffset) {
    // The window of the middle pixel is the whole image. Bright: 90 against a mean of 10 is no more
    // than the offset, 99 against 11 is. Dark: 9 against 81 is just the offset of 72.
    for (const int nMore : {0, 9}) {
        ClTestImage Bright = Img({{0, 0, 0}, {0, 90 + nMore, 0}, {0, 0, 0}});
        ClTestImage Dark = Img({{90, 90, 90}, {90, 9 - nMore, 90}, {90, 90, 90}});
        ClOpenDotBuilder Builder;
        Builder.m_dSourceDpiX = Builder.m_dSourceDpiY = 40.0; // 3.46 pixels
        Builder.m_dBinarizeOffset = 80.0;
        EXPECT_EQ(Located(Builder, Bright)[1][1], nMore == 9) << nMore;
        Builder.m_bBrightDots = false;
        Builder.m_dBinarizeOffset = 72.0;
        EXPECT_EQ(Located(Builder, Dark)[1][1], true) << nMore;
        Builder.m_dBinarizeOffset = 73.0;
        EXPECT_EQ(Located(Builder, Dark)[1][1], nMore == 9) << nMore;
    }
}

TEST(DotLocation, ItsWindowIsElevenTenthsOfAPitch) {
    // An image that is smaller is taken as it is: what is 0 in it is a dot, although it is dark.
    struct StSize {
        double m_dDpiY;
        int m_nWidth;
        int m_nHeight;
        bool m_bCopied;
    };
    for (const StSize& Size : {StSize{1009.287, 42, 87, false}, StSize{1009.287, 41, 87, true},
                               StSize{1009.287, 42, 86, true}, StSize{504.743, 42, 43, false},
                               StSize{504.743, 42, 42, true}}) {
        ClTestImage Image =
            TestSupport::FlatImage(ClImage::eUInt8, Size.m_nWidth, Size.m_nHeight, 1, 255);
        TestSupport::SetSample(Image, 20, 20, 0, 0);
        ClOpenDotBuilder Builder;
        Builder.m_dSourceDpiY = Size.m_dDpiY;
        EXPECT_EQ(Located(Builder, Image)[20][20], Size.m_bCopied)
            << Size.m_nWidth << " by " << Size.m_nHeight;
    }
}

TEST(DotLocation, RefusesAWindowWithoutPixels) {
    ClTestImage Image = PaintedPlate({});
    ClTestGrid Grid;
    for (const double dDpi : {0.0, -500.0, 11.0, std::numeric_limits<double>::quiet_NaN(), 1e300}) {
        ClOpenDotBuilder Builder;
        Builder.m_dSourceDpiX = dDpi;
        EXPECT_THROWS(Builder.LocatePoints(Image, Grid), ClExTessarin, -35,
                      "One of the parameters is out of range.");
        Builder.m_dSourceDpiX = 508.0;
        Builder.m_dSourceDpiY = dDpi;
        EXPECT_THROWS(Builder.LocatePoints(Image, Grid), ClExTessarin, -35,
                      "One of the parameters is out of range.");
    }
}

TEST(DotLocation, RefusesWhatIsNoPlaneOfBytes) {
    ClOpenDotBuilder Builder;
    ClTestGrid Grid;
    ClImage Empty;
    EXPECT_THROWS(Builder.LocatePoints(Empty, Grid), ClExTessarin, -10,
                  "The input image is not valid.");
    ClTestImage Planes = TestSupport::BlankImage(ClImage::eUInt8, 90, 90, 2);
    EXPECT_THROWS(Builder.LocatePoints(Planes, Grid), ClExTessarin, -11,
                  "Only grey-scale images with 8-bit color-depth are supported.");
    ClTestImage Wide = TestSupport::BlankImage(ClImage::eUInt16, 90, 90);
    EXPECT_THROWS(Builder.LocatePoints(Wide, Grid), ClException, -101,
                  "Image Type is not the assigned type");
}

TEST(DotLocation, AnOffsetBeyondWholeNumbersIsNone) {
    ClTestImage Image = TestSupport::RandomImage(ClImage::eUInt8, 31, 24, 1, 8);
    const double dNaN = std::numeric_limits<double>::quiet_NaN();
    for (const double dOffset : {1e300, -1e300, 9.3e18, -9.3e18, dNaN})
        for (const bool bBright : {true, false}) {
            ClOpenDotBuilder Builder;
            Builder.m_dSourceDpiX = 60.0; // windows of 5.197 by 7.362 pixels
            Builder.m_dSourceDpiY = 85.0;
            Builder.m_dBinarizeOffset = dOffset;
            Builder.m_bBrightDots = bBright;
            EXPECT_EQ(Located(Builder, Image), Thresholded(Image, 5, 7, bBright, 0)) << dOffset;
        }
}

TEST(DotLocation, AnOffsetBeyondAllGreyValuesMarksAllOrNothing) {
    ClTestImage Image = TestSupport::RandomImage(ClImage::eUInt8, 31, 24, 1, 8);
    const Marks aAll(24, std::vector<bool>(31, true));
    const Marks aNone(24, std::vector<bool>(31, false));
    for (const double dBeyond : {256.0, 1e6, 9.2e18})
        for (const bool bBright : {true, false}) {
            ClOpenDotBuilder Builder;
            Builder.m_dSourceDpiX = 60.0;
            Builder.m_dSourceDpiY = 85.0;
            Builder.m_bBrightDots = bBright;
            Builder.m_dBinarizeOffset = dBeyond;
            EXPECT_EQ(Located(Builder, Image), aNone) << dBeyond << bBright;
            Builder.m_dBinarizeOffset = -dBeyond;
            EXPECT_EQ(Located(Builder, Image), aAll) << dBeyond << bBright;
        }
}

// The dots

TEST(DotLocation, MeasuresItsDots) {
    const Points aPlaces = {{60, 70}, {140, 70}, {60, 230}};
    for (const bool bBright : {true, false}) {
        ClTestImage Image = PaintedPlate(aPlaces, bBright ? StPaint{} : cDarkDots);
        ClOpenDotBuilder Builder;
        Builder.m_bBrightDots = bBright;
        ClTestGrid Grid({{1, 1}, {2, 2}});
        Builder.LocatePoints(Image, Grid);
        ASSERT_EQ(Grid.Entries(), 3u);
        EXPECT_EQ(Indices(Grid), (std::vector<int>{0, 2, 1}));
        for (unsigned long i = 0; i < 3; ++i) {
            const ClVector& vPlace = aPlaces[static_cast<std::size_t>(Grid(i).m_nIndex)];
            EXPECT_EQ(Grid(i).m_vPos.x, vPlace.x);
            EXPECT_EQ(Grid(i).m_vPos.y, vPlace.y);
            EXPECT_EQ(Grid(i).m_dGrey, bBright ? 255 - 180 : 90);
            EXPECT_NEAR(Grid(i).m_dArea, 3.14159 * 8 * 16, 10.0);
            EXPECT_TRUE(Grid(i).m_bValid);
        }
    }
}

TEST(DotLocation, PaintsTheLabels) {
    const Points aPlaces = PlatePlaces();
    ClTestImage Image = PaintedPlate(aPlaces);
    ClCalibrateGeometricData Data;
    ClImage Labels;
    QK7 Builder = Prepared<QK7>(Image, Data);
    Builder.m_pOutLabelImage = &Labels;
    EXPECT_EQ(Builder.Apply(), 0);
    ASSERT_EQ(Labels.Width(), Image.Width());
    ASSERT_EQ(Labels.Height(), Image.Height());
    std::set<double> aLabels;
    for (int y = 0; y < Image.Height(); ++y)
        for (int x = 0; x < Image.Width(); ++x) {
            ASSERT_EQ(Sample(Labels, x, y) > 0, Sample(Image, x, y) == 180) << x << ", " << y;
            aLabels.insert(Sample(Labels, x, y));
        }
    EXPECT_EQ(aLabels.size(), 76u);
    for (const ClVector& v : aPlaces) // a dot has one label, from its left end to its right one
        EXPECT_EQ(Sample(Labels, static_cast<int>(v.x) - 8, static_cast<int>(v.y)),
                  Sample(Labels, static_cast<int>(v.x) + 8, static_cast<int>(v.y)));
}

// Whole runs

TEST(DotLocation, FindsThePatternInEitherPolarity) {
    for (const bool bBright : {true, false}) {
        ClTestImage Image = PaintedPlate(PlatePlaces(), bBright ? StPaint{} : cDarkDots);
        ClCalibrateGeometricData Data;
        QK7 Builder = Prepared<QK7>(Image, Data);
        Builder.m_bBrightDots = bBright;
        EXPECT_EQ(Builder.Apply(), 0);
        ExpectPoints(Data.m_aActual[0], PlatePlaces(), 0.0);
        ExpectPoints(Data.m_aTarget, Centred(50, 70), 0.01);
        EXPECT_EQ(Data.m_nPlanes, 1u);
        EXPECT_EQ(Data.m_nSourceWidth, 345u);
        EXPECT_EQ(Data.m_nSourceHeight, 951u);
        EXPECT_EQ(Data.m_nBackground, bBright ? 0 : 255);
        Builder.m_bBrightDots = !bBright;
        EXPECT_THROWS(Builder.Apply(), ClException, -600, "Not the expected dot count found.");
    }
}

TEST(DotLocation, FindsRoundDotsAtEqualResolutions) {
    const Points aPlaces = TestSupport::PatternPlaces(50, 40, 40, 40);
    ClTestImage Image = TestSupport::BlankImage(ClImage::eUInt8, 345, 500);
    TestSupport::PaintPlane(Image, 0, aPlaces, {8, 8, 60, 180});
    ClCalibrateGeometricData Data;
    QK7Half Builder = Prepared<QK7Half>(Image, Data);
    Builder.m_dSourceDpiY = 508.0;
    EXPECT_EQ(Builder.Apply(), 0);
    ExpectPoints(Data.m_aActual[0], aPlaces, 0.0);
}

TEST(DotLocation, LocatesEachPlaneOfItsOwn) {
    ClTestImage Image = TestSupport::BlankImage(ClImage::eUInt8, 345, 951, 2);
    TestSupport::PaintPlane(Image, 0, PlatePlaces(50, 70));
    TestSupport::PaintPlane(Image, 1, PlatePlaces(53, 65));
    ClCalibrateGeometricData Data;
    EXPECT_EQ(Prepared<QK7>(Image, Data).Apply(), 0);
    EXPECT_EQ(Data.m_nPlanes, 2u);
    ExpectPoints(Data.m_aActual[0], PlatePlaces(50, 70), 0.0);
    ExpectPoints(Data.m_aActual[1], PlatePlaces(53, 65), 0.0);
    ExpectPoints(Data.m_aTarget, Centred(50, 70), 0.01);
}

TEST(DotLocation, DoesNotLookAtAFourthPlane) {
    ClTestImage Image = TestSupport::BlankImage(ClImage::eUInt8, 345, 951, 4); // the last stays 0
    for (int p = 0; p < 3; ++p)
        TestSupport::PaintPlane(Image, p, PlatePlaces(50 + p, 70));
    ClCalibrateGeometricData Data;
    EXPECT_EQ(Prepared<QK7>(Image, Data).Apply(), 0);
    EXPECT_EQ(Data.m_nPlanes, 3u);
    ExpectPoints(Data.m_aActual[2], PlatePlaces(52, 70), 0.0);
}

TEST(DotLocation, AReferenceReplacesThePattern) {
    // The plate's columns are 2.1 mm apart in truth, as a measured reference tells.
    const Points aPlaces = TestSupport::PatternPlaces(50, 70, 42.0, 80.0);
    ClTestImage Image = PaintedPlate(aPlaces);
    ClCalibrateGeometricData Reference;
    Reference.m_aTarget =
        TestSupport::ListOf(TestSupport::PatternPlaces(11.0, 12.0, 2100 / 25.4, 2000 / 25.4));
    Reference.m_nTargetPelsX = Reference.m_nTargetPelsY = 39370; // 1000 dots per inch
    ClCalibrateGeometricData Data;
    QK7 Builder = Prepared<QK7>(Image, Data);
    Builder.m_pRefData = &Reference;
    EXPECT_EQ(Builder.Apply(), 0);
    ExpectPoints(Data.m_aActual[0], aPlaces, 0.0);
    ASSERT_EQ(Data.m_aTarget.Entries(), 75u);
    EXPECT_NEAR(Data.m_aTarget[10].x - Data.m_aTarget[0].x, 1050 / 25.4, 1e-6);
    EXPECT_NEAR(Data.m_aTarget[1].y - Data.m_aTarget[0].y, 1000 / 25.4, 1e-6);
    // As without: the capture's middle comes to the middle, whatever the reference's offset.
    EXPECT_NEAR(Data.m_aTarget[0].x, 160.0 + (50 - 345 / 2.0) * 500 / 508, 0.01);

    Reference.m_aTarget.SetEntries(74);
    EXPECT_THROWS(Builder.Apply(), ClException, -39, "Target data is corrupt");
}

TEST(DotLocation, ThePictureOfTheGridChangesNothingElse) {
    ClTestImage Image = PaintedPlate(PlatePlaces());
    const ClTestImage Before(Image);
    ClCalibrateGeometricData Without;
    EXPECT_EQ(Prepared<QK7>(Image, Without).Apply(), 0);
    ClCalibrateGeometricData With;
    ClImage Picture;
    QK7 Builder = Prepared<QK7>(Image, With);
    Builder.m_pOutDebugImage = &Picture;
    EXPECT_EQ(Builder.Apply(), 0);
    EXPECT_EQ(Block(With), Block(Without));
    ExpectSameImage(Image, Before);
    EXPECT_NE(Sample(Picture, 50, 70), 0.0);
    EXPECT_EQ(Sample(Picture, 70, 110), 0.0);
}

TEST(DotLocation, ACaptureSmallerThanTheWindowHasTooFewDots) {
    ClTestImage Image = TestSupport::BlankImage(ClImage::eUInt8, 40, 951); // of 44 columns
    TestSupport::PaintPlane(Image, 0, PlatePlaces(20, 70));
    ClCalibrateGeometricData Data;
    EXPECT_THROWS(Prepared<QK7>(Image, Data).Apply(), ClException, -600,
                  "Not the expected dot count found.");
}

TEST(DotLocation, ACaptureWithoutDotsIsRefused) {
    for (const int nGrey : {0, 128, 255}) {
        ClTestImage Image = TestSupport::FlatImage(ClImage::eUInt8, 345, 951, 1, nGrey);
        ClCalibrateGeometricData Data;
        QK7 Builder = Prepared<QK7>(Image, Data);
        Builder.m_bBrightDots = false;
        EXPECT_THROWS(Builder.Apply(), ClException, -600, "Not the expected dot count found.");
        EXPECT_FALSE(Data.IsValid());
    }
}

TEST(DotLocation, WorksAgainAfterAFailure) {
    ClTestImage Image = PaintedPlate(PlatePlaces());
    ClImage Empty;
    ClCalibrateGeometricData Data;
    QK7 Builder = Prepared<QK7>(Image, Data);
    Builder.m_pInImage = &Empty;
    EXPECT_THROWS(Builder.Apply(), ClExTessarin, -10, "The input image is not valid.");
    Builder.m_pInImage = &Image;
    EXPECT_EQ(Builder.Apply(), 0);
    ExpectPoints(Data.m_aActual[0], PlatePlaces(), 0.0);
}

TEST(DotLocation, EveryAllocationMayFail) {
    const Points aPlaces = TestSupport::PatternPlaces(12, 17, 10, 20);
    ClTestImage Image = TestSupport::BlankImage(ClImage::eUInt8, 85, 238, 2);
    for (const int nPlane : {0, 1})
        TestSupport::PaintPlane(Image, nPlane, aPlaces, {2, 4, 60, 180});
    TestSupport::FailEachAllocation([&] {
        ClCalibrateGeometricData Data;
        ClImage Picture;
        QK7 Builder = Prepared<QK7>(Image, Data);
        Builder.m_dSourceDpiX = 127.0;
        Builder.m_dSourceDpiY = 254.0;
        Builder.m_dMinArea = 10.0;
        Builder.m_dMaxArea = 50.0;
        Builder.m_nTargetWidth = 20;
        Builder.m_nTargetHeight = 30;
        Builder.m_pOutDebugImage = &Picture;
        EXPECT_EQ(Builder.Apply(), 0);
        EXPECT_EQ(Data.m_nPlanes, 2u);
    });
}
