#include "ImageProcessing/IpConnectedComponent2.h"

#include "RegionShapes.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <cmath>
#include <memory>

namespace {

using namespace TestSupport;

using ClComponent = ClIpConnectedComponent2::ClComponent;
using ComponentsArray_t = ClIpConnectedComponent2::ComponentsArray_t;

ComponentsArray_t Measure(ClImage& In, ClImage* pGrey = nullptr, ClImage* pLabels = nullptr) {
    ComponentsArray_t aComponents;
    ClIpConnectedComponent2 components;
    components.m_pInImage = &In;
    components.m_pInImageGrey = pGrey;
    components.m_pOutImage = pLabels;
    components.m_pComponents = &aComponents;
    EXPECT_EQ(components.Apply(), 0);
    return aComponents;
}

/// Walks all pixels with a label, in the order of a scan.
template <class Visit>
void ForEachLabelled(const Rows& aLabels, Visit visit) {
    for (std::size_t y = 0; y < aLabels.size(); ++y)
        for (std::size_t x = 0; x < aLabels[y].size(); ++x)
            if (aLabels[y][x] > 0)
                visit(static_cast<std::size_t>(aLabels[y][x]) - 1, static_cast<double>(x),
                      static_cast<double>(y));
}

double NaiveOrientation(double dXY, double dYY, double dXX) {
    const auto moment = [&](double a) {
        return std::cos(a) * std::cos(a) * dYY - std::cos(a) * std::sin(a) * dXY +
               std::sin(a) * std::sin(a) * dXX;
    };
    const double t = std::atan(2.0 * dXY / (dXX - dYY)) / 2.0;
    const double t2 = t + std::acos(-1.0) / 2.0;
    return moment(t2) < moment(t) ? t2 : t;
}

/// Every field by its definition, pixel by pixel.
std::vector<ClComponent> NaiveComponents(const ClImage& Image, const ClImage* pGrey) {
    const ClNaiveLabels naive(Image);
    std::vector<ClComponent> aAll(static_cast<std::size_t>(naive.Regions()));
    ForEachLabelled(naive.Labels(), [&](std::size_t i, double x, double y) {
        ClComponent& c = aAll[i];
        const bool bFirst = c.m_dArea == 0.0;
        c.m_vMin =
            bFirst ? ClVector(x, y) : ClVector(std::min(c.m_vMin.x, x), std::min(c.m_vMin.y, y));
        c.m_vMax =
            bFirst ? ClVector(x, y) : ClVector(std::max(c.m_vMax.x, x), std::max(c.m_vMax.y, y));
        c.m_vCentre = c.m_vCentre + ClVector(x, y);
        c.m_dArea += 1.0;
        if (pGrey != nullptr)
            c.m_dMeanGrey += Sample(*pGrey, static_cast<int>(x), static_cast<int>(y));
    });
    for (ClComponent& c : aAll) {
        c.m_vCentre = ClVector(c.m_vCentre.x / c.m_dArea, c.m_vCentre.y / c.m_dArea);
        c.m_dMeanGrey /= c.m_dArea;
    }
    ForEachLabelled(naive.Labels(), [&](std::size_t i, double x, double y) {
        ClComponent& c = aAll[i];
        const ClVector d = ClVector(x, y) - c.m_vCentre;
        c.m_dMomentXY += d.x * d.y;
        c.m_dMomentYY += d.y * d.y;
        c.m_dMomentXX += d.x * d.x;
    });
    for (ClComponent& c : aAll) {
        const double dDifference = c.m_dMomentXX - c.m_dMomentYY;
        const double dSum = c.m_dMomentXX + c.m_dMomentYY;
        if (c.m_dArea > 1.0)
            c.m_dEccentricity =
                (dDifference * dDifference + 4.0 * c.m_dMomentXY * c.m_dMomentXY) / (dSum * dSum);
        c.m_dOrientation = NaiveOrientation(c.m_dMomentXY, c.m_dMomentYY, c.m_dMomentXX);
    }
    return aAll;
}

/// Equal to the last bit; what is not a number has to be none.
void ExpectSameDouble(double dActual, double dExpected) {
    if (std::isnan(dExpected))
        EXPECT_TRUE(std::isnan(dActual)) << dActual;
    else
        EXPECT_EQ(dActual, dExpected);
}

void ExpectSameComponent(const ClComponent& Actual, const ClComponent& Expected) {
    ExpectSameDouble(Actual.m_vCentre.x, Expected.m_vCentre.x);
    ExpectSameDouble(Actual.m_vCentre.y, Expected.m_vCentre.y);
    ExpectSameDouble(Actual.m_vMin.x, Expected.m_vMin.x);
    ExpectSameDouble(Actual.m_vMin.y, Expected.m_vMin.y);
    ExpectSameDouble(Actual.m_vMax.x, Expected.m_vMax.x);
    ExpectSameDouble(Actual.m_vMax.y, Expected.m_vMax.y);
    ExpectSameDouble(Actual.m_dArea, Expected.m_dArea);
    ExpectSameDouble(Actual.m_dEccentricity, Expected.m_dEccentricity);
    ExpectSameDouble(Actual.m_dMeanGrey, Expected.m_dMeanGrey);
    ExpectSameDouble(Actual.m_dOrientation, Expected.m_dOrientation);
    ExpectSameDouble(Actual.m_dMomentXY, Expected.m_dMomentXY);
    ExpectSameDouble(Actual.m_dMomentYY, Expected.m_dMomentYY);
    ExpectSameDouble(Actual.m_dMomentXX, Expected.m_dMomentXX);
}

void ExpectComponents(const ClTestImage& Image, bool bGrey) {
    ClTestImage in = Image;
    ClTestImage grey = RandomImage(ClImage::eUInt8, Image.Width(), Image.Height(), 1, 11);
    const ComponentsArray_t aActual = Measure(in, bGrey ? &grey : nullptr);
    const std::vector<ClComponent> aExpected = NaiveComponents(in, bGrey ? &grey : nullptr);
    ASSERT_EQ(aActual.Entries(), aExpected.size());
    for (unsigned long i = 0; i < aActual.Entries(); ++i)
        ExpectSameComponent(aActual[i], aExpected[i]);
}

// What is measured

TEST(IpConnectedComponent2, MeasuresAnUprightRectangle) {
    ClTestImage in = Drawn({"....", ".##.", ".##.", ".##.", ".##."});
    ClTestImage grey = Img({{9, 9, 9, 9}, {9, 1, 2, 9}, {9, 3, 4, 9}, {9, 5, 6, 9}, {9, 7, 10, 9}});
    const ComponentsArray_t aComponents = Measure(in, &grey);
    ASSERT_EQ(aComponents.Entries(), 1u);
    const ClComponent& c = aComponents[0];
    EXPECT_EQ(c.m_vCentre.x, 1.5);
    EXPECT_EQ(c.m_vCentre.y, 2.5);
    EXPECT_EQ(c.m_vMin.x, 1.0);
    EXPECT_EQ(c.m_vMin.y, 1.0);
    EXPECT_EQ(c.m_vMax.x, 2.0);
    EXPECT_EQ(c.m_vMax.y, 4.0);
    EXPECT_EQ(c.m_dArea, 8.0);
    EXPECT_EQ(c.m_dMomentXX, 2.0);  // 8 x 0.25
    EXPECT_EQ(c.m_dMomentYY, 10.0); // 4 x (2.25 + 0.25)
    EXPECT_EQ(c.m_dMomentXY, 0.0);
    EXPECT_EQ(c.m_dEccentricity, 64.0 / 144.0);
    EXPECT_EQ(c.m_dMeanGrey, 38.0 / 8.0);
    EXPECT_DOUBLE_EQ(c.m_dOrientation, std::acos(0.0)); // t is 0 with the moment 10, t2 gives 2
}

TEST(IpConnectedComponent2, CallsALineALineAndASquareRound) {
    ClTestImage line = Drawn({"#####"});
    const ComponentsArray_t aLine = Measure(line);
    EXPECT_EQ(aLine[0].m_dEccentricity, 1.0);
    EXPECT_EQ(aLine[0].m_dOrientation, 0.0);
    ClTestImage square = Drawn({"###", "###", "###"});
    EXPECT_EQ(Measure(square)[0].m_dEccentricity, 0.0);
}

TEST(IpConnectedComponent2, TellsWhichWayAStairPoints) {
    ClTestImage flat = Drawn({"##..", ".##.", "..##"}); // about (1.5, 1)
    const ComponentsArray_t aFlat = Measure(flat);
    ASSERT_EQ(aFlat.Entries(), 1u);
    EXPECT_EQ(aFlat[0].m_dMomentXX, 5.5);
    EXPECT_EQ(aFlat[0].m_dMomentYY, 4.0);
    EXPECT_EQ(aFlat[0].m_dMomentXY, 4.0);
    EXPECT_DOUBLE_EQ(aFlat[0].m_dEccentricity, (2.25 + 64.0) / 90.25);
    EXPECT_DOUBLE_EQ(aFlat[0].m_dOrientation, std::atan(8.0 / 1.5) / 2.0);
    ClTestImage steep = Drawn({"#..", "##.", ".##", "..#"}); // XX and YY change places
    const ComponentsArray_t aSteep = Measure(steep);
    EXPECT_DOUBLE_EQ(aSteep[0].m_dOrientation, std::acos(0.0) - std::atan(8.0 / 1.5) / 2.0);
}

TEST(IpConnectedComponent2, MeasuresASinglePixel) {
    ClTestImage in = Drawn({"...", "..#"});
    ClTestImage grey = Img({{1, 2, 3}, {4, 5, 77}});
    const ComponentsArray_t aComponents = Measure(in, &grey);
    ASSERT_EQ(aComponents.Entries(), 1u);
    const ClComponent& c = aComponents[0];
    EXPECT_EQ(c.m_dArea, 1.0);
    EXPECT_EQ(c.m_vCentre.x, 2.0);
    EXPECT_EQ(c.m_vCentre.y, 1.0);
    EXPECT_EQ(c.m_dMeanGrey, 77.0);
    EXPECT_EQ(c.m_dEccentricity, 0.0);
    EXPECT_EQ(c.m_dMomentXY, 0.0);
    EXPECT_EQ(c.m_dMomentYY, 0.0);
    EXPECT_EQ(c.m_dMomentXX, 0.0);
    EXPECT_TRUE(std::isnan(c.m_dOrientation)); // 0 / 0
}

TEST(IpConnectedComponent2, EqualsNaiveSumsToTheLastBit) {
    for (int w : {1, 3, 8, 17, 65})
        for (int h : {1, 2, 9, 33})
            for (double dShare : {0.3, 0.6, 0.8, 1.0})
                for (bool bGrey : {false, true})
                    ExpectComponents(RandomShape(w, h, dShare, 3), bGrey);
}

TEST(IpConnectedComponent2, EqualsNaiveSumsOnDots) {
    // ovals of changing size on a lattice, as in a capture of a target
    ExpectComponents(Shape(211, 301,
                           [](int x, int y) {
                               const int u = x % 30 - 15;
                               const int v = y % 60 - 30;
                               return 4 * u * u + v * v < 200 + x + y;
                           }),
                     true);
}

TEST(IpConnectedComponent2, EqualsNaiveSumsOnPathsAndCombs) {
    for (const ClTestImage& image :
         {Spiral(43), Comb(41, 17, true), Comb(40, 17, false), Lattice(33)})
        ExpectComponents(image, true);
}

TEST(IpConnectedComponent2, FindsNothingInAGroundAndOneRegionInAnObject) {
    ClTestImage ground = FlatImage(ClImage::eUInt8, 6, 5, 1, 255.0);
    EXPECT_EQ(Measure(ground).Entries(), 0u);
    ClTestImage object = FlatImage(ClImage::eUInt8, 6, 5, 1, 0.0);
    const ComponentsArray_t aComponents = Measure(object);
    ASSERT_EQ(aComponents.Entries(), 1u);
    EXPECT_EQ(aComponents[0].m_dArea, 30.0);
}

// Images and the array

TEST(IpConnectedComponent2, GivesTheLabelsAway) {
    ClTestImage in = RandomShape(23, 17, 0.6, 9);
    ClImage labels;
    const ComponentsArray_t aComponents = Measure(in, nullptr, &labels);
    const ClNaiveLabels naive(in);
    EXPECT_EQ(Pixels(labels), naive.Labels());
    EXPECT_EQ(aComponents.Entries(), static_cast<unsigned long>(naive.Regions()));
}

TEST(IpConnectedComponent2, MayPutTheLabelsIntoAnyOfItsInputs) {
    const ClTestImage object = RandomShape(23, 17, 0.6, 9);
    const ClTestImage brightness = RandomImage(ClImage::eUInt8, 23, 17, 1, 5);
    const std::vector<ClComponent> aExpected = NaiveComponents(object, &brightness);
    for (bool bIntoGrey : {false, true}) {
        ClTestImage in = object;
        ClTestImage grey = brightness;
        ClTestImage& rLabels = bIntoGrey ? grey : in;
        const ComponentsArray_t aActual = Measure(in, &grey, &rLabels);
        ASSERT_EQ(aActual.Entries(), aExpected.size());
        for (unsigned long i = 0; i < aActual.Entries(); ++i)
            ExpectSameComponent(aActual[i], aExpected[i]);
        EXPECT_EQ(Pixels(rLabels), ClNaiveLabels(object).Labels());
    }
}

TEST(IpConnectedComponent2, MayMeasureAnImageByItself) {
    ClTestImage image = RandomShape(9, 9, 0.5, 2);
    const ComponentsArray_t aComponents = Measure(image, &image);
    const std::vector<ClComponent> aExpected = NaiveComponents(image, nullptr); // objects are 0
    ASSERT_EQ(aComponents.Entries(), aExpected.size());
    for (unsigned long i = 0; i < aComponents.Entries(); ++i)
        ExpectSameComponent(aComponents[i], aExpected[i]);
}

TEST(IpConnectedComponent2, ForgetsWhatTheArrayHeld) {
    ComponentsArray_t aComponents;
    ClIpConnectedComponent2 components;
    components.m_pComponents = &aComponents;
    ClTestImage grey = RandomImage(ClImage::eUInt8, 12, 12, 1, 5);
    for (unsigned nSeed : {1U, 2U, 3U}) {
        ClTestImage in = RandomShape(12, 12, 0.6, nSeed);
        components.m_pInImage = &in;
        components.m_pInImageGrey = nSeed == 2 ? nullptr : &grey;
        EXPECT_EQ(components.Apply(), 0);
        const std::vector<ClComponent> aExpected = NaiveComponents(in, components.m_pInImageGrey);
        ASSERT_EQ(aComponents.Entries(), aExpected.size());
        for (unsigned long i = 0; i < aComponents.Entries(); ++i)
            ExpectSameComponent(aComponents[i], aExpected[i]);
    }
}

} // namespace
