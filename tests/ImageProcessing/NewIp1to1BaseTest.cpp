// The frame that keeps the pixel type, `NewIpBase::ClIp1to1Base`.

#include "ImageProcessing/Ip1to1Base.h"

#include "ImageProcessing/TestOperator.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/PublishedParameters.h"
#include "support/Throws.h"

#include <memory>
#include <vector>

namespace {

using TestSupport::AddLeftNeighbour;
using TestSupport::caPixelTypes;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::ExpectTree;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::Mapped;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::Rows;
using TestSupport::TpIpProbe;
using TestSupport::TreePointer;

class ClIpNew : public TpIpProbe<NewIpBase::ClIp1to1Base> {
public:
    ClIpNew() { EnableDataType(caPixelTypes, 8); }
};

constexpr struct {
    int m_nWidth, m_nHeight, m_nPlanes;
} caSizes[] = {{1, 1, 1}, {1, 9, 1}, {9, 1, 1}, {7, 5, 2}, {13, 4, 3}, {5, 17, 4}, {18, 3, 5}};

TEST(NewIp1to1Base, RefusesAMissingImageBeforeItRuns) {
    ClIpNew ip;
    EXPECT_THROWS(ip.Apply(), ClException, -701, "Input image not assigned");
    EXPECT_FALSE(ip.CanApply());
}

TEST(NewIp1to1Base, NamesWhatIsMissingInOrder) {
    ClIpNew ip;
    EXPECT_THROWS(ip.Process(), ClException, -701, "m_pInImage is not set");
    ClImage empty;
    ip.m_pInImage = &empty;
    EXPECT_THROWS(ip.Process(), ClException, -701, "m_pOutImage is not set");
    ClImage out;
    ip.m_pOutImage = &out;
    EXPECT_THROWS(ip.Process(), ClException, -701, "m_pInImage->Data() is not set");
    EXPECT_EQ(ip.m_pSeenIn, nullptr);
}

TEST(NewIp1to1Base, TellsTheSourceOfAMissingImage) {
    ClIpNew ip;
    try {
        ip.Process();
        FAIL();
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "ImageProcessing/Ip1to1Base");
        EXPECT_GT(e.Line(), 0);
    }
}

TEST(NewIp1to1Base, RefusesATypeThatIsNotEnabled) {
    TpIpProbe<NewIpBase::ClIp1to1Base> ip;
    ip.EnableDataType(ClImage::eUInt8);
    ClTestImage in = FlatImage(ClImage::eInt16, 2, 2, 1, 7);
    ClTestImage out = Img({{9}});
    EXPECT_THROWS(ip.ApplyParam(in, out), ClException, -33,
                  "Input pixel type \"int16\" not supported by processor.");
    EXPECT_EQ(Pixels(out), Rows({{9}}));
    EXPECT_FALSE(ip.CanApply());
    in = Img({{1}});
    EXPECT_TRUE(ip.CanApply());
}

TEST(NewIp1to1Base, GivesZeroWithoutAValueOfItsOwn) {
    ClIpNew ip;
    ClTestImage in = RandomImage(ClImage::eInt16, 3, 2, 1, 1);
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 0}, {0, 0, 0}}));
}

TEST(NewIp1to1Base, KeepsTypeGeometryRangeAndContent) {
    ClIpNew ip;
    ClTestImage in = RandomImage(ClImage::eFloat32, 5, 3, 3, 2);
    in.SetBlack(-7.0);
    in.SetWhite(9.0);
    in.SetContent(ClImage::eHSV);
    in.SetAttribute(12);
    in.SetPelsY(4711);
    ip.m_Value = [](double d) { return d; };
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    ExpectSameImage(out, in);
}

TEST(NewIp1to1Base, MapsEverySampleOfEveryType) {
    const auto f = [](double d) { return d * -0.75 + 1000.5; };
    unsigned nSeed = 0;
    for (unsigned char nType : caPixelTypes)
        for (const auto& size : caSizes)
            for (bool bUseLUT : {false, true}) {
                ClTestImage in =
                    RandomImage(nType, size.m_nWidth, size.m_nHeight, size.m_nPlanes, ++nSeed);
                ClIpNew ip;
                ip.m_Value = f;
                ip.m_bUseLUT = bUseLUT;
                ClImage out;
                EXPECT_EQ(ip.ApplyParam(in, out), 0);
                EXPECT_EQ(RealPixels(out), Mapped(in, nType, f)) << int{nType};
            }
}

TEST(NewIp1to1Base, AsksForEachSampleOrForEachTableEntryOnce) {
    const struct {
        unsigned char m_nType;
        bool m_bUseLUT;
        long m_nValues;
    } aCases[] = {{ClImage::eUInt8, true, 256},
                  {ClImage::eUInt8, false, 30},
                  {ClImage::eInt8, true, 30},
                  {ClImage::eUInt16, true, 30}};
    for (const auto& c : aCases) {
        ClIpNew ip;
        ip.m_bUseLUT = c.m_bUseLUT;
        ClTestImage in = RandomImage(c.m_nType, 5, 3, 2, 3);
        ClImage out;
        EXPECT_EQ(ip.ApplyParam(in, out), 0);
        EXPECT_EQ(ip.m_nValues, c.m_nValues) << int{c.m_nType};
    }
}

TEST(NewIp1to1Base, LendsItsTableToLoopsOfOperators) {
    struct ClIpTable : ClIpNew {
        long DoProcess(ClImage& In, ClImage& Out) override {
            return ProcessLUT<unsigned char>(In, Out);
        }
    } ip;
    ip.m_bUseLUT = false;
    ip.m_Value = [](double d) { return 2.0 * d; };
    ClTestImage image = Img({{1, 2, 200}});
    EXPECT_EQ(ip.ApplyParam(image), 0);
    EXPECT_EQ(Pixels(image), Rows({{2, 4, 144}}));
    EXPECT_EQ(ip.m_nValues, 256);
}

TEST(NewIp1to1Base, NeitherRoundsNorClamps) {
    for (bool bUseLUT : {false, true}) {
        ClIpNew ip;
        ip.m_bUseLUT = bUseLUT;
        ClTestImage in = Img({{0, 1, 2, 3}});
        ip.m_Value = [](double d) {
            return d == 0.0 ? 1.999 : d == 1.0 ? 300.0 : d == 2.0 ? -1.0 : std::nan("");
        };
        ClImage out;
        EXPECT_EQ(ip.ApplyParam(in, out), 0);
        EXPECT_EQ(Pixels(out), Rows({{1, 44, 255, 0}}));
    }
}

TEST(NewIp1to1Base, GoesThroughALocalImageWhereInIsOut) {
    ClIpNew ip;
    ip.m_Loop = AddLeftNeighbour;
    ClTestImage image = Img({{1, 2, 3}, {10, 20, 30}});
    EXPECT_EQ(ip.ApplyParam(image), 0);
    EXPECT_EQ(Pixels(image), Rows({{1, 3, 5}, {10, 30, 50}}));
    EXPECT_EQ(ip.m_pSeenIn, &image);
    EXPECT_NE(ip.m_pSeenOut, &image);
}

TEST(NewIp1to1Base, WorksInPlaceWhereTheOperatorMay) {
    ClIpNew ip;
    ip.m_bInPlace = true;
    ip.m_Value = [](double d) { return 255.0 - d; };
    ClTestImage image = Img({{0, 255, 100}});
    const unsigned char* pBuffer = image.Data();
    EXPECT_EQ(ip.ApplyParam(image), 0);
    EXPECT_EQ(Pixels(image), Rows({{255, 0, 155}}));
    EXPECT_EQ(image.Data(), pBuffer);
    EXPECT_EQ(ip.m_pSeenOut, &image);
}

TEST(NewIp1to1Base, AllocatesAnotherOutputAlsoInPlace) {
    ClIpNew ip;
    ip.m_bInPlace = true;
    ip.m_Value = [](double d) { return d + 1.0; };
    ClTestImage in = RandomImage(ClImage::eInt16, 7, 3, 2, 4);
    const ClTestImage copy = in;
    ClTestImage out = Img({{1}});
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(RealPixels(out), Mapped(in, ClImage::eInt16, [](double d) { return d + 1.0; }));
    ExpectSameImage(in, copy);
}

TEST(NewIp1to1Base, WritesADirectlyNamedOutputWithoutADetour) {
    ClIpNew ip;
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(ip.m_pSeenOut, &out);
}

TEST(NewIp1to1Base, LeavesAnInputThatSharesItsBufferAlone) {
    ClIpNew ip;
    ip.m_Value = [](double) { return 9.0; };
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    out.Attach(in);
    EXPECT_EQ(ip.ApplyParam(in, out), 0);
    EXPECT_EQ(Pixels(in), Rows({{1, 2}}));
    EXPECT_EQ(Pixels(out), Rows({{9, 9}}));
}

TEST(NewIp1to1Base, KeepsTheImageWhereTheLoopFails) {
    ClIpNew ip;
    ClTestImage image = Img({{1, 2}});
    ip.m_Loop = [](ClImage&, ClImage& Out) {
        Out = static_cast<unsigned char>(7);
        return -35L;
    };
    EXPECT_EQ(ip.ApplyParam(image), -35);
    EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
    ip.m_Loop = [](ClImage&, ClImage&) -> long { throw ClExTessarin(-44, VEK_HERE); };
    EXPECT_THROWS(ip.ApplyParam(image), ClExTessarin, -44,
                  "One(or more) parameter(s) is(are) invalid.");
    EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
}

TEST(NewIp1to1Base, LetsTheExceptionOfAValueThrough) {
    for (bool bUseLUT : {false, true}) {
        ClIpNew ip;
        ip.m_bUseLUT = bUseLUT;
        ip.m_Value = [](double) -> double { throw ClExTessarin(-44, VEK_HERE); };
        ClTestImage image = Img({{1, 2}});
        EXPECT_THROWS(ip.ApplyParam(image), ClExTessarin, -44,
                      "One(or more) parameter(s) is(are) invalid.");
        EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
    }
}

TEST(NewIp1to1Base, AnswersAnOutputOfAnotherTypeFromTheGenericLoop) {
    ClIpNew ip;
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = FlatImage(ClImage::eInt16, 2, 1, 1, 5);
    EXPECT_EQ(ip.DoProcess(in, out), -101);
    EXPECT_EQ(Pixels(out), Rows({{5, 5}}));
}

TEST(NewIp1to1Base, AnswersEveryMissingAllocation) {
    ClIpNew ip;
    ClTestImage image = Img({{1, 2, 3}});
    ip.m_Value = [](double d) { return d; };
    TestSupport::FailEachAllocation([&] { EXPECT_EQ(ip.ApplyParam(image), 0); });
    EXPECT_EQ(Pixels(image), Rows({{1, 2, 3}}));
}

TEST(NewIp1to1Base, PublishesItsImages) {
    ClIpNew ip;
    ExpectTree(ip, {TreePointer("pInImage", ip.m_pInImage, ePfIn, "In: Original Image"),
                    TreePointer("pOutImage", ip.m_pOutImage, ePfOut, "Out: Output Image")});
}

TEST(NewIp1to1Base, KeepsItsImagesWhilePublishing) {
    ClIpNew ip;
    ClImage image;
    ip.ApplyParam(*std::make_unique<ClTestImage>(Img({{1}})), image);
    ClParameterContainer container;
    ip.QueryParameters(container);
    EXPECT_EQ(ip.m_pOutImage, &image);
    ip.SetParametersToDefault();
    EXPECT_EQ(ip.m_pInImage, nullptr);
    EXPECT_EQ(ip.m_pOutImage, nullptr);
}

} // namespace
