// The developers' tools of the dot location.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

#include <gmock/gmock.h>

#include "Calibrate/OpenDotBuilder.h"
#include "Tools/Bitmap.h"
#include "support/Images.h"
#include "support/Throws.h"
#include "support/WorkingFolder.h"

#include <climits>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <string>

using TestSupport::ClOpenDotBuilder;
using TestSupport::ExpectPoints;
using TestSupport::Img;
using TestSupport::ListOf;
using TestSupport::PointList;
using TestSupport::Points;

namespace {

/// A pixel is a millimetre.
ClOpenDotBuilder BuilderInMillimetres(double dDotDiameter) {
    ClOpenDotBuilder Builder;
    Builder.m_dDotDiameter = dDotDiameter;
    Builder.m_dSourceDpiX = Builder.m_dSourceDpiY = 25.4;
    return Builder;
}

ClVector Centre(const ClOpenDotBuilder& Builder, const ClImage& Image, long nX, long nY,
                long nRef = 100) {
    ClVector vCentre(5.0, 5.0);
    Builder.CheckDot(Image, nX, nY, nRef, vCentre);
    return vCentre;
}

void ExpectCentre(const ClVector& vCentre, double dX, double dY) {
    EXPECT_DOUBLE_EQ(vCentre.x, dX);
    EXPECT_DOUBLE_EQ(vCentre.y, dY);
}

void ExpectNoCentre(const ClVector& vCentre) {
    EXPECT_TRUE(std::isnan(vCentre.x));
    EXPECT_TRUE(std::isnan(vCentre.y));
}

/// A folder of its own, in which the program works while this lives.
class ClWorkFolder : public TestSupport::ClWorkingFolder {
public:
    /// The name of the only file.
    std::string File() const {
        const std::set<std::string> aNames = Names();
        EXPECT_THAT(aNames, testing::SizeIs(1));
        return aNames.empty() ? std::string() : *aNames.begin();
    }
};

// Dates such as "Nov  3 2025" and "Mon Nov  3 12.00.00 2025".
const std::string cClock = "[0-9]{2}\\.[0-9]{2}\\.[0-9]{2}";
const std::string cBuild = "\\[[A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4} " + cClock + "\\]";
const std::string cTime = "[A-Z][a-z]{2} [A-Z][a-z]{2} [ 1-3][0-9] " + cClock + " [0-9]{4}";

} // namespace

// CheckDot()

TEST(DotInspection, WeighsPixelsByHowMuchDarkerTheyAre) {
    const auto Image = Img({{0, 0, 0, 0, 0},     //
                            {0, 90, 100, 70, 0}, //
                            {0, 200, 60, 99, 0}, //
                            {0, 100, 255, 100, 0},
                            {0, 0, 0, 0, 0}});
    // Around (2, 2): 10 at (1, 1), 30 at (3, 1), 40 at (2, 2), 1 at (3, 2).
    const ClVector vCentre = Centre(BuilderInMillimetres(1.9), Image, 2, 2);
    ExpectCentre(vCentre, (10.0 + 90.0 + 80.0 + 3.0) / 81.0, (10.0 + 30.0 + 80.0 + 2.0) / 81.0);
}

TEST(DotInspection, ReachesAsFarAsTheDiameterInEitherDirection) {
    ClOpenDotBuilder Builder = BuilderInMillimetres(1.0);
    Builder.m_dSourceDpiX = 2 * 25.4; // two columns, one line
    TestSupport::ClTestImage Image = TestSupport::FlatImage(ClImage::eUInt8, 9, 9, 1, 255);
    for (const int nFar : {-3, 3}) {
        TestSupport::SetSample(Image, 4 + nFar, 4, 0, 0);
        TestSupport::SetSample(Image, 4, 4 + nFar + (nFar < 0 ? 1 : -1), 0, 0);
    }
    ExpectNoCentre(Centre(Builder, Image, 4, 4));
    TestSupport::SetSample(Image, 6, 5, 0, 0);
    ExpectCentre(Centre(Builder, Image, 4, 4), 6.0, 5.0);
    TestSupport::SetSample(Image, 2, 3, 0, 0);
    ExpectCentre(Centre(Builder, Image, 4, 4), 4.0, 4.0);
}

TEST(DotInspection, ClipsItsWindowToTheImage) {
    const auto Image = Img({{99, 255}, {255, 255}});
    const ClOpenDotBuilder Builder = BuilderInMillimetres(1.0);
    ExpectCentre(Centre(Builder, Image, 0, 0), 0.0, 0.0);
    ExpectCentre(Centre(Builder, Image, -1, 1), 0.0, 0.0);
    ExpectCentre(Centre(BuilderInMillimetres(1e300), Image, 7, 7), 0.0, 0.0);
}

TEST(DotInspection, LooksAtOnePixelWhereTheDiameterIsNone) {
    const auto Image = Img({{0, 60}, {0, 100}});
    ExpectCentre(Centre(BuilderInMillimetres(0.0), Image, 1, 0), 1.0, 0.0);
    ExpectNoCentre(Centre(BuilderInMillimetres(0.0), Image, 1, 1));
}

TEST(DotInspection, HasNoCentreWhereTheWindowIsEmpty) {
    const auto Image = Img({{0, 0}, {0, 0}});
    const ClOpenDotBuilder Builder = BuilderInMillimetres(1.0);
    ExpectNoCentre(Centre(Builder, Image, -2, 0));
    ExpectNoCentre(Centre(Builder, Image, 0, 3));
    ExpectNoCentre(Centre(Builder, Image, LONG_MAX, LONG_MIN));
    ExpectNoCentre(Centre(BuilderInMillimetres(-1.0), Image, 0, 0));
    ExpectNoCentre(
        Centre(BuilderInMillimetres(std::numeric_limits<double>::quiet_NaN()), Image, 0, 0));
    ExpectNoCentre(Centre(Builder, ClImage(), 0, 0));
}

TEST(DotInspection, HasNoCentreWhereNothingIsDarker) {
    const auto Image = Img({{100, 101}, {255, 100}});
    ExpectNoCentre(Centre(BuilderInMillimetres(1.0), Image, 0, 0));
    ExpectNoCentre(Centre(BuilderInMillimetres(1.0), Image, 0, 0, LONG_MIN));
}

TEST(DotInspection, LooksAtTheFirstPlaneOfBytes) {
    const auto Planes = Img(ClImage::eUInt8, {{255, 255, 0, 50, 9, 9}}, 3);
    ExpectCentre(Centre(BuilderInMillimetres(1.0), Planes, 0, 0), 1.0, 0.0);
    const auto Wide = Img(ClImage::eUInt16, {{1, 2}});
    EXPECT_THROWS(Centre(BuilderInMillimetres(1.0), Wide, 0, 0), ClException, -101,
                  "Image Type is not the assigned type");
}

// RemoveSmallPoints(): with a diameter of 2 pixels only clusters of 3 have a dot's size, since
// 1.8 * 1.8 * pi / 4 = 2.54 is below the count and 2 * 2 * pi / 4 * 2 - 2.54 = 3.74 above it.

TEST(DotInspection, KeepsClustersOfADotsSize) {
    PointList aIn;
    PointList aOut;
    aIn =
        ListOf({{10, 10}, {50, 50}, {11, 10}, {50, 51}, {90, 90}}); // one, a pair, and a single one
    for (const ClVector& v : Points{{10, 11}, {70, 20}, {71, 20}, {71, 21}, {70, 21}})
        aIn.Append(v); // the third of the first, and four of another
    BuilderInMillimetres(2.0).RemoveSmallPoints(aIn, aOut);
    ExpectPoints(aOut, {{31.0 / 3.0, 31.0 / 3.0}});
}

TEST(DotInspection, AppendsToWhatTheListHolds) {
    PointList aIn;
    PointList aOut;
    aOut = ListOf({{1, 2}});
    aIn = ListOf({{4, 4}, {5, 4}, {3, 4}, {20, 4}, {20, 5}, {20, 6}, {20, 4}});
    BuilderInMillimetres(2.0).RemoveSmallPoints(aIn, aOut);
    ExpectPoints(aOut, {{1, 2}, {4, 4}, {20, 13.0 / 3.0}});
}

TEST(DotInspection, TakesInWhatIsNearToAClustersFirstPoint) {
    PointList aIn;
    PointList aOut;
    // A chain: the third point is near to the second, not to the first.
    aIn = ListOf({{10, 10}, {11, 10}, {12, 10}, {13, 10}});
    BuilderInMillimetres(2.0).RemoveSmallPoints(aIn, aOut);
    ExpectPoints(aOut, {});
    ExpectPoints(aIn, {{10, 10}, {-1, 10}, {12, 10}, {-1, 10}});
    aIn = ListOf({{10, 10}, {11, 10}, {10, 11.5}}); // not nearer than 1.5
    BuilderInMillimetres(2.0).RemoveSmallPoints(aIn, aOut);
    ExpectPoints(aOut, {});
    aIn = ListOf({{10, 10}, {11, 10}, {10, 11.49}});
    BuilderInMillimetres(2.0).RemoveSmallPoints(aIn, aOut);
    EXPECT_EQ(aOut.Entries(), 1u);
}

TEST(DotInspection, PassesOverTakenPoints) {
    PointList aIn;
    PointList aOut;
    // The points taken by the first cluster stand at x = -1 then, near to the last point.
    aIn = ListOf({{0.2, 5}, {1, 5}, {0.2, 6}, {0, 6.6}, {-0.5, 5}});
    BuilderInMillimetres(2.0).RemoveSmallPoints(aIn, aOut);
    ExpectPoints(aOut, {{1.4 / 3.0, 16.0 / 3.0}});
}

TEST(DotInspection, TakesInPointsOfTheFirstColumn) {
    for (const auto& aPoints :
         {ListOf({{1, 5}, {0, 5}, {0, 6}}), ListOf({{0, 5}, {0, 6}, {1, 5}})}) {
        PointList aIn(aPoints);
        PointList aOut;
        BuilderInMillimetres(2.0).RemoveSmallPoints(aIn, aOut);
        ExpectPoints(aOut, {{1.0 / 3.0, 16.0 / 3.0}});
    }
}

TEST(DotInspection, KeepsNothingOfAnEmptyList) {
    PointList aIn;
    PointList aOut;
    BuilderInMillimetres(2.0).RemoveSmallPoints(aIn, aOut);
    EXPECT_EQ(aOut.Entries(), 0u);
}

// StoreDebug()

TEST(DotInspection, NamesTheFileByBuildImageAndTime) {
    const ClWorkFolder Folder;
    auto Image = Img({{1, 2, 3}, {4, 5, 6}});
    ClOpenDotBuilder().StoreDebug(&Image, "grid", "");
    const std::string Name = Folder.File();
    EXPECT_THAT(Name, testing::MatchesRegex("Calibrate" + cBuild + " grid " + cTime + "\\.bmp"));
}

TEST(DotInspection, StoresThePixels) {
    const ClWorkFolder Folder;
    auto Image = Img({{1, 2, 3}, {4, 5, 6}});
    ClOpenDotBuilder().StoreDebug(&Image, nullptr, nullptr);
    ClBitmap Bitmap;
    Bitmap.Load(Folder.File().c_str());
    ClImage Loaded;
    Bitmap.GetImage(Loaded);
    EXPECT_EQ(TestSupport::Pixels(Loaded), TestSupport::Pixels(Image));
}

TEST(DotInspection, ReplacesColonsFromTheFifthCharacterOn) {
    const ClWorkFolder Folder;
    auto Image = Img({{1}});
    ClOpenDotBuilder().StoreDebug(&Image, "a:b", ":b::c:");
    const std::string Name = Folder.File();
    EXPECT_THAT(Name, testing::MatchesRegex(":b::c\\.Calibrate" + cBuild + " a\\.b .*\\.bmp"));
    EXPECT_EQ(Name.find(':', 4), std::string::npos);
}

TEST(DotInspection, EndsANameThatDoesNotFitAllTheSame) {
    const ClWorkFolder Folder;
    std::string Path; // leads to the folder itself, and leaves 47 characters for the name
    while (Path.size() < 2000)
        Path += "./";
    auto Image = Img({{1}});
    ClOpenDotBuilder().StoreDebug(&Image, "grid", Path.c_str());
    const std::string Name = Folder.File();
    EXPECT_EQ(Name.size(), 47u);
    EXPECT_THAT(Name, testing::MatchesRegex("Calibrate" + cBuild + " grid .*\\.bmp"));
}

TEST(DotInspection, AnswersForAFileThatCannotBe) {
    const ClWorkFolder Folder;
    auto Image = Img({{1}});
    auto Wide = Img(ClImage::eUInt16, {{1}});
    const ClOpenDotBuilder Builder;
    EXPECT_THROWS(Builder.StoreDebug(nullptr, "grid", ""), ClExTessarin, -37,
                  "One of the required parameter is missing.");
    try { // the words are the name, which has the time in it
        Builder.StoreDebug(&Image, "grid", "missing/");
        ADD_FAILURE() << "a file came to be in a folder that is not there";
    } catch (const ClExFilesystem& e) {
        EXPECT_EQ(e.Number(), -200);
        EXPECT_THAT(TestSupport::Words(e), testing::StartsWith("missing/Calibrate["));
    }
    EXPECT_THROWS(Builder.StoreDebug(&Wide, "grid", ""), ClException, -33,
                  "Only unsigned 8 bit images supported");
}
