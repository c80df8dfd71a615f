#include "ImageProcessing/IpLookUpTableBase.h"

#include "Tools/Allocate.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

namespace {

using TestSupport::BlankImage;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

/// out = 7 in + 3, in the low 8 bits.
class ClIpTableProbe : public ClIpLookUpTableBase {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpTableProbe>(); }
    const char* Name() const override { return "ClIpTableProbe"; }
    void CalculateLuT() override {
        ++m_nCalls;
        for (int i = 0; i < 256; ++i)
            m_aLuT[i] = static_cast<unsigned char>(7 * i + 3);
    }
    int m_nCalls = 0;
};

/// An operator that leaves the table alone.
class ClIpNoTable : public ClIpLookUpTableBase {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpNoTable>(); }
    const char* Name() const override { return "ClIpNoTable"; }
};

/// The probe's result, as an image like the input.
ClTestImage ProbedImage(const ClTestImage& In) {
    ClTestImage out(In);
    for (int y = 0; y < In.Height(); ++y)
        for (int x = 0; x < In.Width(); ++x)
            for (int p = 0; p < In.Planes(); ++p)
                TestSupport::SetSample(
                    out, x, y, p, static_cast<int>(7 * TestSupport::Sample(In, x, y, p) + 3) & 255);
    return out;
}

/// An image with a range of its own.
ClTestImage RangedImage(int nPlanes) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 6, 5, nPlanes, 3);
    image.SetBlack(10.0);
    image.SetWhite(90.0);
    image.SetContent(ClImage::eHSV);
    image.SetAttribute(4);
    return image;
}

TEST(IpLookUpTableBase, BeginsWithoutImagesAndWithoutAValidTable) {
    ClIpTableProbe ip;
    EXPECT_EQ(ip.m_pInImage, nullptr);
    EXPECT_EQ(ip.m_pOutImage, nullptr);
    EXPECT_FALSE(ip.m_bLuTValid);
}

TEST(IpLookUpTableBase, CalculatesTheTableOnceAtTheStartOfARun) {
    ClIpTableProbe ip;
    EXPECT_EQ(ip.Initialize(), 0);
    EXPECT_EQ(ip.m_nCalls, 1);
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(ip.m_nCalls, 2);
    EXPECT_TRUE(ip.m_bLuTValid);
    EXPECT_EQ(Pixels(out), Rows({{10, 17}}));
}

TEST(IpLookUpTableBase, ReplacesEverySampleOfEveryPlane) {
    for (int nPlanes = 1; nPlanes <= 4; ++nPlanes)
        for (int nWidth : {1, 2, 5, 16, 33}) {
            ClTestImage in = RandomImage(ClImage::eUInt8, nWidth, 7, nPlanes, 3);
            in.SetAttribute(4);
            const ClTestImage before(in);
            ClIpTableProbe ip;
            ClImage out;
            EXPECT_EQ(ip.ApplyParam(in, out), 0);
            ExpectSameImage(out, ProbedImage(before));
            ExpectSameImage(in, before);
        }
}

TEST(IpLookUpTableBase, GivesSeveralPlanesTheRangeOfTheirType) {
    for (int nPlanes = 1; nPlanes <= 4; ++nPlanes) {
        const ClTestImage in = RangedImage(nPlanes);
        ClTestImage expected = ProbedImage(in);
        if (nPlanes > 1) {
            expected.SetBlack(0.0);
            expected.SetWhite(255.0);
        }
        ClTestImage apart(in);
        ClTestImage out;
        ClIpTableProbe ip;
        EXPECT_EQ(ip.ApplyParam(apart, out), 0);
        ExpectSameImage(out, expected);
        ExpectSameImage(apart, in);
        ClTestImage image(in);
        EXPECT_EQ(ip.ApplyParam(image), 0);
        ExpectSameImage(image, expected);
        image = in;
        ip.m_pOutImage = nullptr;
        EXPECT_EQ(ip.Apply(), 0);
        ExpectSameImage(image, expected);
    }
}

TEST(IpLookUpTableBase, RefusesMoreThanFourPlanesBeforeTheOutputChanges) {
    ClTestImage in = RangedImage(5);
    const ClTestImage before(in);
    ClTestImage out = Img({{1, 2, 3}});
    ClIpTableProbe ip;
    EXPECT_THROWS(ip.ApplyParam(in, out), ClException, -35, "Image has more than 4 planes.");
    EXPECT_EQ(Pixels(out), Rows({{1, 2, 3}}));
    EXPECT_THROWS(ip.ApplyParam(in), ClException, -35, "Image has more than 4 planes.");
    ExpectSameImage(in, before);
}

TEST(IpLookUpTableBase, WorksInPlace) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 11, 5, 3, 4);
    const ClTestImage before(image);
    ClIpTableProbe ip;
    EXPECT_EQ(ip.ApplyParam(image), 0);
    ExpectSameImage(image, ProbedImage(before));
    EXPECT_EQ(ip.m_pOutImage, &image);
}

TEST(IpLookUpTableBase, WorksInPlaceWithoutAnOutputAndRemembersNone) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 11, 5, 1, 5);
    const ClTestImage before(image);
    ClIpTableProbe ip;
    ip.m_pInImage = &image;
    EXPECT_EQ(ip.Apply(), 0);
    ExpectSameImage(image, ProbedImage(before));
    EXPECT_EQ(ip.m_pOutImage, nullptr);
}

TEST(IpLookUpTableBase, LeavesTheInputAloneWhereTheOutputSharesItsPixels) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 6, 6, 1, 6);
    const ClTestImage before(in);
    ClImage out;
    out.Attach(in);
    ClIpTableProbe ip;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    ExpectSameImage(in, before);
    ExpectSameImage(out, ProbedImage(before));
}

TEST(IpLookUpTableBase, UsesTheTableAsItIsWhereNothingCalculatesIt) {
    ClIpNoTable ip;
    for (int i = 0; i < 256; ++i)
        ip.m_aLuT[i] = static_cast<unsigned char>(255 - i);
    ClTestImage in = Img({{0, 1, 254, 255}});
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{255, 254, 1, 0}}));
    EXPECT_TRUE(ip.m_bLuTValid);
}

TEST(IpLookUpTableBase, DefaultsChangeNothing) {
    ClTestImage in = Img({{1}});
    ClIpTableProbe ip;
    ip.ApplyParam(in);
    ip.SetParametersToDefault();
    EXPECT_EQ(ip.m_pInImage, &in);
    EXPECT_EQ(ip.m_aLuT[1], 10);
}

TEST(IpLookUpTableBase, ReportsAMissingInput) {
    ClIpTableProbe ip;
    EXPECT_EQ(ip.Apply(), -37);
    EXPECT_EQ(ip.Process(), -37);
    ClImage out;
    ip.m_pOutImage = &out;
    EXPECT_EQ(ip.Apply(), -37);
    ClImage empty;
    EXPECT_EQ(ip.ApplyParam(empty, out), -37);
    TestSupport::ExpectEmptyImage(out);
}

TEST(IpLookUpTableBase, RefusesOtherPixelTypesBeforeTheOutputChanges) {
    for (unsigned char nType : TestSupport::caPixelTypes) {
        if (nType == ClImage::eUInt8)
            continue;
        ClTestImage in = BlankImage(nType, 3, 3);
        const ClTestImage before(in);
        ClTestImage out = Img({{1, 2, 3}});
        ClIpTableProbe ip;
        EXPECT_THROWS(ip.ApplyParam(in, out), ClException, -101,
                      "Image Type is not the assigned type");
        EXPECT_EQ(Pixels(out), Rows({{1, 2, 3}}));
        EXPECT_THROWS(ip.ApplyParam(in), ClException, -101, "Image Type is not the assigned type");
        ExpectSameImage(in, before);
    }
}

TEST(IpLookUpTableBase, KeepsTheInputWhenMemoryIsMissing) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 6, 6, 3, 6);
    const ClTestImage before(in);
    TestSupport::FailEachAllocation([&] {
        ClIpTableProbe ip;
        ClImage out;
        ip.ApplyParam(in, out);
    });
    ExpectSameImage(in, before);
}

} // namespace
