// What the measurement of regions refuses, and the records that it gives.

#include "ImageProcessing/IpConnectedComponent2.h"

#include "RegionShapes.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <limits>

namespace {

using namespace TestSupport;

using ClComponent = ClIpConnectedComponent2::ClComponent;
using ComponentsArray_t = ClIpConnectedComponent2::ComponentsArray_t;

// Components

TEST(Component, BeginsWithZeroEverywhere) {
    const ClComponent c;
    for (const ClVector& v : {c.m_vCentre, c.m_vMin, c.m_vMax}) {
        EXPECT_EQ(v.x, 0.0);
        EXPECT_EQ(v.y, 0.0);
    }
    for (double d : {c.m_dArea, c.m_dEccentricity, c.m_dMeanGrey, c.m_dOrientation, c.m_dMomentXY,
                     c.m_dMomentYY, c.m_dMomentXX})
        EXPECT_EQ(d, 0.0);
}

TEST(Component, EqualsACopyAndNothingThatDiffers) {
    const ClComponent c;
    EXPECT_TRUE(ClComponent(c) == c);
    double ClComponent::*const apNumbers[] = {
        &ClComponent::m_dArea,        &ClComponent::m_dEccentricity, &ClComponent::m_dMeanGrey,
        &ClComponent::m_dOrientation, &ClComponent::m_dMomentXY,     &ClComponent::m_dMomentYY,
        &ClComponent::m_dMomentXX};
    for (auto pNumber : apNumbers)
        for (double d : {-1.0, 1.0}) {
            ClComponent other;
            other.*pNumber = d;
            EXPECT_FALSE(c == other);
            EXPECT_TRUE(ClComponent(other) == other);
        }
    ClVector ClComponent::*const apVectors[] = {&ClComponent::m_vCentre, &ClComponent::m_vMin,
                                                &ClComponent::m_vMax};
    for (auto pVector : apVectors)
        for (const ClVector& v : {ClVector(1.0, 0.0), ClVector(0.0, -1.0)}) {
            ClComponent other;
            other.*pVector = v;
            EXPECT_FALSE(c == other);
        }
}

TEST(Component, EqualsACopyWithoutAnOrientation) {
    ClComponent c;
    c.m_dOrientation = std::numeric_limits<double>::quiet_NaN();
    ClComponent copy;
    copy = c;
    EXPECT_TRUE(copy == c);
}

// Checks

struct StSetup {
    ClTestImage m_In = Drawn({"#.", ".#"});
    ClTestImage m_Grey = Img({{1, 2}, {3, 4}});
    ClTestImage m_Labels = Img({{7}});
    ComponentsArray_t m_aComponents;
    ClIpConnectedComponent2 m_Components;

    StSetup() {
        m_Components.m_pInImage = &m_In;
        m_Components.m_pInImageGrey = &m_Grey;
        m_Components.m_pOutImage = &m_Labels;
        m_Components.m_pComponents = &m_aComponents;
        m_aComponents.New(3);
        m_aComponents[2].m_dArea = 5.0;
    }
    void ExpectUntouched() const {
        EXPECT_EQ(Pixels(m_Labels), Rows({{7}}));
        ASSERT_EQ(m_aComponents.Entries(), 3u);
        EXPECT_EQ(m_aComponents[2].m_dArea, 5.0);
    }
};

TEST(IpConnectedComponent2, TestsItsInputsInOrder) {
    StSetup s;
    ClTestImage wide = Img({{1, 2, 3}, {4, 5, 6}});
    s.m_Components.m_pInImage = nullptr;
    s.m_Components.m_pComponents = nullptr;
    s.m_Components.m_pInImageGrey = &wide;
    EXPECT_THROWS(s.m_Components.Apply(), ClException, -37, "Objectimage is missing");
    s.m_Components.m_pInImage = &s.m_In;
    EXPECT_THROWS(s.m_Components.Apply(), ClException, -37, "Output object array is missing");
    s.m_Components.m_pComponents = &s.m_aComponents;
    const char* szSize = "the given grayimage has not the same size as the object image";
    EXPECT_THROWS(s.m_Components.Apply(), ClException, -44, szSize);
    ClTestImage high = Img({{1, 2}, {3, 4}, {5, 6}});
    s.m_Components.m_pInImageGrey = &high;
    EXPECT_THROWS(s.m_Components.Apply(), ClException, -44, szSize);
    s.ExpectUntouched();
}

TEST(IpConnectedComponent2, RefusesAnImageWithoutPixels) {
    StSetup s;
    ClImage empty;
    s.m_Components.m_pInImage = &empty;
    EXPECT_THROWS(s.m_Components.Apply(), ClException, -37, "Objectimage is missing");
    s.ExpectUntouched();
    ClImage nothing;
    nothing.Attach(nullptr, ClImage::eUInt8, 2, 2, 1, 0, 0);
    s.m_Components.m_pInImage = &s.m_In;
    s.m_Components.m_pInImageGrey = &nothing;
    EXPECT_THROWS(s.m_Components.Apply(), ClExTessarin, -37,
                  "One of the required parameter is missing.");
    s.ExpectUntouched();
}

TEST(IpConnectedComponent2, RefusesOtherTypesAndPlanesOfBothInputs) {
    for (unsigned char nType : caPixelTypes) {
        if (nType == ClImage::eUInt8)
            continue;
        ClTestImage other = FlatImage(nType, 2, 2, 1, 0.0);
        for (bool bGrey : {false, true}) {
            StSetup s;
            (bGrey ? s.m_Components.m_pInImageGrey : s.m_Components.m_pInImage) = &other;
            EXPECT_THROWS(s.m_Components.Apply(), ClException, -101,
                          "Image Type is not the assigned type");
            s.ExpectUntouched();
        }
    }
    ClTestImage colour = FlatImage(ClImage::eUInt8, 2, 2, 3, 0.0);
    for (bool bGrey : {false, true}) {
        StSetup s;
        (bGrey ? s.m_Components.m_pInImageGrey : s.m_Components.m_pInImage) = &colour;
        EXPECT_THROWS(s.m_Components.Apply(), ClExTessarin, -11,
                      "Only grey-scale images with 8-bit color-depth are supported.");
        s.ExpectUntouched();
    }
}

TEST(IpConnectedComponent2, SaysWhetherItCanApply) {
    StSetup s;
    EXPECT_TRUE(s.m_Components.CanApply());
    s.m_Components.m_pInImageGrey = nullptr;
    EXPECT_TRUE(s.m_Components.CanApply());
    s.m_Components.m_pOutImage = nullptr;
    EXPECT_TRUE(s.m_Components.CanApply());
    ClTestImage wide = Img({{1, 2, 3}, {4, 5, 6}});
    s.m_Components.m_pInImageGrey = &wide;
    EXPECT_FALSE(s.m_Components.CanApply());
    s.m_Components.m_pInImageGrey = nullptr;
    s.m_Components.m_pComponents = nullptr;
    EXPECT_FALSE(s.m_Components.CanApply());
    s.m_Components.m_pComponents = &s.m_aComponents;
    s.m_Components.m_pInImage = nullptr;
    EXPECT_FALSE(s.m_Components.CanApply());
    s.m_Components.m_pInImageGrey = &wide; // not compared with nothing
    EXPECT_FALSE(s.m_Components.CanApply());
}

TEST(IpConnectedComponent2, AnswersEveryMissingAllocationAndKeepsItsImages) {
    ClTestImage object = RandomShape(21, 13, 0.6, 3);
    const ClNaiveLabels naive(object);
    FailEachAllocation([&] {
        ClImage image;
        image.Attach(object);
        ComponentsArray_t aComponents;
        ClIpConnectedComponent2 components;
        components.m_pInImage = &image;
        components.m_pOutImage = &image;
        components.m_pComponents = &aComponents;
        try {
            EXPECT_EQ(components.Apply(), 0);
        } catch (const ClExBadAlloc& e) {
            EXPECT_EQ(Words(e), "Memory allocation failed");
            EXPECT_EQ(image.Data(), object.Data());
            throw;
        }
        EXPECT_EQ(image.DataType(), ClImage::eInt32);
        EXPECT_EQ(aComponents.Entries(), static_cast<unsigned long>(naive.Regions()));
    });
}

} // namespace
