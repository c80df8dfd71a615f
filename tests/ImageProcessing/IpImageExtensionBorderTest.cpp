// Borders that continue the image, and what the extension refuses.

#include "ImageProcessing/IpImageExtension.h"

#include "ImageProcessing/MissingMemory.h"

#include "support/Images.h"
#include "support/Throws.h"

#include <algorithm>
#include <climits>

namespace {

using TestSupport::BlankImage;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;
using Extension = ClIpImageExtension;

/// The position in the image that a position outside stands for, without any limit.
int Source(Extension::EExtensionMode eMode, int i, int nSize) {
    if (eMode == Extension::ExtendBorderContinue)
        return std::clamp(i, 0, nSize - 1);
    if (eMode == Extension::ExtendBorderPeriodic)
        return (i % nSize + nSize) % nSize;
    const int nPhase = (i % (2 * nSize) + 2 * nSize) % (2 * nSize); // forth and back
    return nPhase < nSize ? nPhase : 2 * nSize - 1 - nPhase;
}

RealRows Extended(const ClImage& In, Extension::EExtensionMode eMode, int nLeft, int nBelow,
                  int nWidth, int nHeight) {
    RealRows aRows;
    for (int y = 0; y < nHeight; ++y) {
        aRows.emplace_back();
        for (int x = 0; x < nWidth; ++x)
            for (int p = 0; p < In.Planes(); ++p)
                aRows.back().push_back(TestSupport::Sample(In, Source(eMode, x - nLeft, In.Width()),
                                                           Source(eMode, y - nBelow, In.Height()),
                                                           p));
    }
    return aRows;
}

/// Extends by `nX` and `nY`, of which `nLeft` and `nBelow` lie before the image, and compares.
void ExpectBorder(ClImage& In, Extension::EExtensionMode eMode, int nX, int nY, int nLeft,
                  int nBelow) {
    SCOPED_TRACE(testing::Message() << "mode " << eMode << " type " << int{In.DataType()} << " by "
                                    << nX << "," << nY << " at " << nLeft << "," << nBelow);
    Extension extension;
    extension.m_eMode = eMode;
    extension.m_eAlignmentX = Extension::EAlignmentX::Manual;
    extension.m_eAlignmentY = Extension::EAlignmentY::Manual;
    extension.m_nManualOffsetX = nLeft;
    extension.m_nManualOffsetY = nBelow;
    ClImage out;
    ASSERT_EQ(extension.ApplyParam(In, out, nX, nY, 0, false), 0);
    EXPECT_EQ(RealPixels(out),
              Extended(In, eMode, nLeft, nBelow, In.Width() + nX, In.Height() + nY));
}

constexpr Extension::EExtensionMode caBorders[] = {Extension::ExtendBorderContinue,
                                                   Extension::ExtendBorderReflection,
                                                   Extension::ExtendBorderPeriodic};

TEST(IpImageExtensionBorder, RepeatsMirrorsOrContinuesLines) {
    ClTestImage in = Img({{1, 2, 3}});
    const Rows aExpected[] = {{{1, 1, 1, 2, 3, 3}}, {{2, 1, 1, 2, 3, 3}}, {{2, 3, 1, 2, 3, 1}}};
    for (int i = 0; i < 3; ++i) {
        Extension extension;
        extension.m_eMode = caBorders[i];
        extension.m_eAlignmentX = Extension::EAlignmentX::Manual;
        extension.m_nManualOffsetX = 2;
        ClImage out;
        EXPECT_EQ(extension.ApplyParam(in, out, 3, 0, 0, false), 0);
        EXPECT_EQ(Pixels(out), aExpected[i]);
    }
}

TEST(IpImageExtensionBorder, FollowsItsDefinitionForEveryType) {
    for (unsigned char nType : TestSupport::caPixelTypes)
        for (int nPlanes : {1, 3}) {
            ClTestImage in = RandomImage(nType, 5, 3, nPlanes, 9);
            for (auto eMode : caBorders)
                ExpectBorder(in, eMode, 4, 3, 3, 1);
        }
}

TEST(IpImageExtensionBorder, FollowsItsDefinitionForEveryMargin) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 3, 4, 3, 9);
    for (auto eMode : caBorders)
        for (int nX = 0; nX <= 3; ++nX)
            for (int nLeft = 0; nLeft <= nX; ++nLeft)
                for (int nY = 0; nY <= 4; ++nY)
                    for (int nBelow = 0; nBelow <= nY; ++nBelow)
                        ExpectBorder(in, eMode, nX, nY, nLeft, nBelow);
}

TEST(IpImageExtensionBorder, RepeatsBordersOverAnyWidth) {
    ClTestImage in = RandomImage(ClImage::eInt16, 2, 1, 3, 9);
    ExpectBorder(in, Extension::ExtendBorderContinue, 17, 9, 8, 3);
}

TEST(IpImageExtensionBorder, ReachesTheNextPowerOfTwo) {
    ClTestImage in = Img({{1, 2, 3}});
    Extension extension;
    extension.m_eMode = Extension::ExtendBorderPeriodic;
    extension.m_eAlignmentX = Extension::EAlignmentX::Left;
    ClImage out;
    EXPECT_EQ(extension.ApplyParam(in, out, 1, 0, 0, true), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 2, 3, 1}}));
}

// Failures

TEST(IpImageExtensionBorder, RefusesMirrorsAndPeriodsWiderThanTheImage) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 3, 4, 1, 9);
    for (auto eMode : {Extension::ExtendBorderReflection, Extension::ExtendBorderPeriodic}) {
        ClImage out;
        Extension extension;
        extension.m_eMode = eMode;
        EXPECT_EQ(extension.ApplyParam(in, out, 4, 0, 0, false), -35);
        EXPECT_EQ(extension.ApplyParam(in, out, 0, 5, 0, false), -35);
        EXPECT_EQ(extension.ApplyParam(in, out, 3, 4, 0, false), 0);
    }
}

TEST(IpImageExtensionBorder, JudgesTheMarginsThatAPowerOfTwoMakes) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 5, 4, 1, 9);
    ClImage out;
    Extension extension;
    extension.m_eMode = Extension::ExtendBorderReflection;
    EXPECT_EQ(extension.ApplyParam(in, out, 4, 0, 0, true), -35); // 9, so 16: a margin of 11
    EXPECT_EQ(extension.ApplyParam(in, out, 3, 1, 0, true), 0);   // 8 x 8
    EXPECT_EQ(out.Width(), 8);
    EXPECT_EQ(out.Height(), 8);
}

TEST(IpImageExtensionBorder, RefusesANegativeExtension) {
    ClTestImage in = Img({{1}});
    ClImage out;
    Extension extension;
    EXPECT_EQ(extension.ApplyParam(in, out, -1, 0, 0, false), -35);
    EXPECT_EQ(extension.ApplyParam(in, out, 0, INT_MIN, 0, true), -35);
}

TEST(IpImageExtensionBorder, RefusesOtherNumbersOfPlanes) {
    for (int nPlanes : {2, 4, 5}) {
        ClTestImage in = BlankImage(ClImage::eUInt8, 3, 2, nPlanes);
        ClImage out;
        Extension extension;
        EXPECT_EQ(extension.ApplyParam(in, out, 1, 0, false), -11);
        extension.m_eMode = Extension::ExtendAverageColor;
        EXPECT_EQ(extension.ApplyParam(in, out, 1, 0, false), -11);
    }
}

TEST(IpImageExtensionBorder, RefusesSidesThatNoImageHas) {
    ClTestImage in = Img({{1, 2, 3}});
    ClImage out;
    Extension extension;
    EXPECT_EQ(extension.ApplyParam(in, out, INT_MAX - 2, 0, 0, false), -14);
    EXPECT_EQ(extension.ApplyParam(in, out, 0, INT_MAX, 0, false), -14);
    EXPECT_EQ(extension.ApplyParam(in, out, (1 << 30) - 2, 0, 0, true), -14);
    EXPECT_EQ(extension.ApplyParam(in, out, 0, 1 << 30, 0, true), -14);
}

TEST(IpImageExtensionBorder, AnswersImagesThatNoMemoryHolds) {
    ClTestImage image = Img({{1, 2, 3}});
    const ClTestImage copy = image;
    Extension extension;
    EXPECT_THROWS(extension.ApplyParam(image, 1 << 30, 1 << 30, 0, false), ClExBadAlloc, -102,
                  "Memory allocation failed");
    ExpectSameImage(image, copy);
}

TEST(IpImageExtensionBorder, TestsInOrder) {
    unsigned char aBytes[64] = {};
    ClImage out;
    Extension extension;
    extension.m_eMode = Extension::ExtendBorderPeriodic;
    extension.m_nExtensionX = -1;
    ClImage in;
    in.Attach(nullptr, ClImage::eUInt8, 0, 0, 2, 0, 0);
    EXPECT_EQ(extension.DoProcess(in, out), -35); // no pixels
    for (auto [nWidth, nHeight] : {std::pair(0, 1), std::pair(1, 0), std::pair(-1, 1)}) {
        in.Attach(aBytes, ClImage::eUInt8, nWidth, nHeight, 2, 0, 0);
        EXPECT_EQ(extension.DoProcess(in, out), -14); // no area
    }
    in.Attach(aBytes, ClImage::eUInt8, 1, 1, 2, 0, 0);
    extension.m_nExtensionY = INT_MAX;
    EXPECT_EQ(extension.DoProcess(in, out), -35); // negative
    extension.m_nExtensionX = 2;
    EXPECT_EQ(extension.DoProcess(in, out), -14); // too large
    extension.m_nExtensionY = 0;
    EXPECT_EQ(extension.DoProcess(in, out), -35); // wider than the image
    extension.m_nExtensionX = 1;
    EXPECT_EQ(extension.DoProcess(in, out), -11); // two planes
    TestSupport::ExpectEmptyImage(out);
}

TEST(IpImageExtensionBorder, LeavesAnImageAsItIsWhereItFailsInPlace) {
    ClTestImage image = Img({{1, 2, 3}});
    const ClTestImage copy = image;
    for (bool bInPlace : {false, true}) {
        Extension extension;
        extension.m_bInPlace = bInPlace;
        EXPECT_EQ(extension.ApplyParam(image, -1, 0, 0, false), -35);
        extension.m_eAlignmentX = Extension::EAlignmentX::Manual;
        extension.m_nManualOffsetX = 5;
        EXPECT_THROWS(extension.ApplyParam(image, 4, 0, 0, false), ClException, -44,
                      "The manually set x offset must be at most the x extension");
        ExpectSameImage(image, copy);
    }
}

TEST(IpImageExtensionBorder, ChecksItsImages) {
    Extension extension;
    EXPECT_THROWS(extension.Apply(), ClException, -701, "Input image not assigned");
    ClImage empty;
    ClImage out;
    EXPECT_THROWS(extension.ApplyParam(empty, out, 1, 0, false), ClException, -33,
                  "Input pixel type \"unknown\" not supported by processor.");
}

TEST(IpImageExtensionBorder, ExtendsOrLeavesItsImagesWhereMemoryIsMissing) {
    for (int nMode = 0; nMode <= 4; ++nMode)
        TestSupport::ExpectImagesOrNothing(
            Img(ClImage::eUInt8, {{1, 2, 3}}, 3), [=](ClImage& In, ClImage& Out) {
                Extension extension;
                extension.m_eMode = static_cast<Extension::EExtensionMode>(nMode);
                return extension.ApplyParam(In, Out, 1, 0, false);
            });
}

} // namespace
