// The samples of linear filters: by hand, and against the definition on random images.

#include "ImageProcessing/IpLinFilterBase.h"

#include "ImageProcessing/NaiveLinearFilter.h"
#include "ImageProcessing/TestKernel.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <vector>

namespace {

using TestSupport::caOddSizes;
using TestSupport::ClIpTestKernel;
using TestSupport::ClTestImage;
using TestSupport::Img;
using TestSupport::NaiveDirected;
using TestSupport::NaiveFiltered;
using TestSupport::NaiveTaps;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

using Kernel = std::vector<double>;

Rows LinearlyFiltered(const Kernel& aKernel, long nMode, const ClTestImage& In) {
    ClTestImage in = In;
    ClImage out;
    ClIpTestKernel filter(aKernel);
    filter.m_nMode = nMode;
    EXPECT_EQ(filter.ApplyTo(in, out), 0);
    TestSupport::ExpectSameImage(in, In);
    return Pixels(out);
}

// By hand

TEST(LinFilterSamples, RepeatTheBorderAlongALine) {
    // Taps 1023, 2047, 1023: (1023 * 100 + 2047 * 100 + 1023 * 0) / 4096 = 74.9 and so on.
    EXPECT_EQ(LinearlyFiltered({1.0, 2.0, 1.0}, 1, Img({{100, 0, 0, 200}})),
              Rows({{74, 24, 49, 149}}));
}

TEST(LinFilterSamples, RepeatTheBorderAlongAColumn) {
    EXPECT_EQ(LinearlyFiltered({1.0, 2.0, 1.0}, 2, Img({{100, 8}, {0, 8}, {0, 8}, {200, 8}})),
              Rows({{74, 7}, {24, 7}, {49, 7}, {149, 7}}));
}

TEST(LinFilterSamples, AreDividedOnceAlongBoth) {
    // A single 255 in the middle: 2047 * 2047 * 255 / 2^24 = 63.7, 1023 * 2047 * 255 / 2^24 = 31.8,
    // 1023 * 1023 * 255 / 2^24 = 15.9.
    EXPECT_EQ(LinearlyFiltered({1.0, 2.0, 1.0}, 3,
                               Img({{0, 0, 0, 0, 0},
                                    {0, 0, 0, 0, 0},
                                    {0, 0, 255, 0, 0},
                                    {0, 0, 0, 0, 0},
                                    {0, 0, 0, 0, 0}})),
              Rows({{0, 0, 0, 0, 0},
                    {0, 15, 31, 15, 0},
                    {0, 31, 63, 31, 0},
                    {0, 15, 31, 15, 0},
                    {0, 0, 0, 0, 0}}));
}

TEST(LinFilterSamples, PutTheMiddleOfAnEvenKernelBehindItsHalf) {
    // Width 2: taps at -1 and 0. The tap 4095 at -1 moves the line to the right.
    EXPECT_EQ(LinearlyFiltered({1.0, 0.0}, 1, Img({{8, 16, 32, 64}})), Rows({{7, 7, 15, 31}}));
    EXPECT_EQ(LinearlyFiltered({0.0, 1.0}, 1, Img({{8, 16, 32, 64}})), Rows({{7, 15, 31, 63}}));
}

TEST(LinFilterSamples, OfADerivativeAreSignedAndTruncatedTowardZero) {
    // Taps -2047, 0, 2047: (2047 * 3 - 2047 * 0) / 4096 = 1.49, its negative -1.49.
    EXPECT_EQ(LinearlyFiltered({-1.0, 0.0, 1.0}, 1, Img({{0, 0, 3, 0, 0, 255, 255, 0, 0}})),
              Rows({{0, 1, 0, -1, 127, 127, -127, -127, 0}}));
}

TEST(LinFilterSamples, OfSignedImagesAreTruncatedTowardZero) {
    const ClTestImage in = Img(ClImage::eInt8, {{-100, 0, 0, 0, 127}, {-128, -128, -128, -1, 1}});
    EXPECT_EQ(LinearlyFiltered({1.0, 2.0, 1.0}, 1, in),
              Rows({{-74, -24, 0, 31, 95}, {-127, -127, -96, -32, 0}}));
    EXPECT_EQ(LinearlyFiltered({1.0}, 3, in),
              Rows({{-99, 0, 0, 0, 126}, {-127, -127, -127, 0, 0}}));
}

TEST(LinFilterSamples, FollowTheDirectionOfEachPixel) {
    // dx 64 and dy 0 step by half a pixel; the outer taps of five lie one pixel away.
    ClTestImage in = Img({{1, 2, 4, 8, 16, 32, 64}});
    ClTestImage dx = Img(ClImage::eInt8, {{64, 64, 64, 64, 0, -64, 127}});
    ClTestImage dy = Img(ClImage::eInt8, {{0, 0, 0, 0, 0, 0, 0}});
    ClImage out;
    ClIpTestKernel filter({0.0, 0.0, 0.0, 0.0, 1.0});
    filter.m_nMode = 8;
    filter.m_pInDxImage = &dx;
    filter.m_pInDyImage = &dy;
    EXPECT_EQ(filter.ApplyTo(in, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 3, 7, 15, 15, 15, 63}}));
}

TEST(LinFilterSamples, GoUpwardForAPositiveDyAndDownwardAcross) {
    ClTestImage in = Img({{10}, {20}, {30}, {40}, {50}});
    ClTestImage zero = Img(ClImage::eInt8, {{0}, {0}, {0}, {0}, {0}});
    ClTestImage full = Img(ClImage::eInt8, {{127}, {127}, {127}, {127}, {127}});
    ClImage out;
    ClIpTestKernel filter({0.0, 0.0, 1.0}); // one step ahead
    filter.m_nMode = 8;
    filter.m_pInDxImage = &zero;
    filter.m_pInDyImage = &full;
    EXPECT_EQ(filter.ApplyTo(in, out), 0); // 0.5 - 127/128 lies in the line before
    EXPECT_EQ(Pixels(out), Rows({{9}, {9}, {19}, {29}, {39}}));
    filter.m_nMode = 16;
    filter.m_pInDxImage = &full;
    filter.m_pInDyImage = &zero;
    EXPECT_EQ(filter.ApplyTo(in, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{19}, {29}, {39}, {49}, {49}}));
}

// Against the definition

const Kernel caKernels[] = {{1.0},
                            {1.0, 2.0, 1.0},
                            {0.3, 0.1, 0.7, 0.2, 0.4},
                            {2.0, 1.0},
                            {1.0, 5.0, 2.0, 0.5},
                            {-1.0, 0.0, 1.0},
                            {-1.0, -2.0, 6.0, 0.25, -1.5},
                            {1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0}};

/// The kernel that is left where the width is limited.
Kernel Limited(const Kernel& aKernel, long nMode, const TestSupport::StSize& Size) {
    long nLimit = 1000;
    if ((nMode & 1) != 0)
        nLimit = std::min<long>(nLimit, Size.m_nWidth - 1);
    if ((nMode & 2) != 0)
        nLimit = std::min<long>(nLimit, Size.m_nHeight - 1);
    if (static_cast<long>(aKernel.size()) <= nLimit)
        return aKernel;
    nLimit = std::max(1L, nLimit - (nLimit % 2 == 0 ? 1 : 0));
    return Kernel(aKernel.begin(), aKernel.begin() + nLimit);
}

bool HasNegative(const Kernel& aKernel) {
    return std::any_of(aKernel.begin(), aKernel.end(), [](double d) { return d < 0.0; });
}

TEST(LinFilterSamples, EqualTheDefinitionInEveryMode) {
    unsigned nSeed = 0;
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (const auto& size : caOddSizes)
            for (const Kernel& aWhole : caKernels)
                for (long nMode : {1L, 2L, 3L}) {
                    const Kernel aKernel = Limited(aWhole, nMode, size);
                    const bool bSigned = nType == ClImage::eInt8 || HasNegative(aKernel);
                    const ClTestImage in =
                        RandomImage(nType, size.m_nWidth, size.m_nHeight, 1, ++nSeed);
                    EXPECT_EQ(LinearlyFiltered(aWhole, nMode, in),
                              NaiveFiltered(nMode, Pixels(in), NaiveTaps(aKernel), bSigned))
                        << size.m_nWidth << " x " << size.m_nHeight << ", mode " << nMode
                        << ", taps " << aKernel.size();
                }
}

TEST(LinFilterSamples, EqualTheDefinitionAlongAndAcrossDirections) {
    unsigned nSeed = 100;
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (unsigned char nDirectionType : {ClImage::eUInt8, ClImage::eInt8})
            for (const auto& size : caOddSizes)
                for (const Kernel& aKernel : caKernels)
                    for (bool bOrtho : {false, true}) {
                        const int w = size.m_nWidth;
                        const int h = size.m_nHeight;
                        ClTestImage in = RandomImage(nType, w, h, 1, ++nSeed);
                        ClTestImage dx = RandomImage(ClImage::eInt8, w, h, 1, ++nSeed);
                        ClTestImage dy = RandomImage(ClImage::eInt8, w, h, 1, ++nSeed);
                        const bool bSigned = nType == ClImage::eInt8 || HasNegative(aKernel);
                        const Rows aExpected = NaiveDirected(Pixels(in), Pixels(dx), Pixels(dy),
                                                             NaiveTaps(aKernel), bOrtho, bSigned);
                        dx.SetDataType(nDirectionType); // read as signed in either case
                        ClImage out;
                        ClIpTestKernel filter(aKernel);
                        filter.m_nMode = bOrtho ? 16 : 8;
                        filter.m_pInDxImage = &dx;
                        filter.m_pInDyImage = &dy;
                        EXPECT_EQ(filter.ApplyTo(in, out), 0);
                        EXPECT_EQ(Pixels(out), aExpected);
                    }
}

TEST(LinFilterSamples, OfSeveralPlanesAreFilteredPlaneByPlane) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (int nPlanes : {2, 3, 4})
            for (long nMode : {1L, 2L, 3L})
                for (const Kernel& aKernel :
                     {Kernel{1.0}, Kernel{1.0, 5.0, 2.0}, Kernel{-1.0, 0.0, 1.0}}) {
                    ClTestImage image = RandomImage(nType, 19, 7, nPlanes, 9);
                    const bool bSigned = nType == ClImage::eInt8 || HasNegative(aKernel);
                    std::vector<Rows> aExpected;
                    for (int p = 0; p < nPlanes; ++p) {
                        ClImage plane;
                        image.GetPlane(p, plane);
                        aExpected.push_back(
                            NaiveFiltered(nMode, Pixels(plane), NaiveTaps(aKernel), bSigned));
                    }
                    ClIpTestKernel filter(aKernel);
                    filter.m_nMode = nMode;
                    EXPECT_EQ(filter.ApplyTo(image, image), 0); // planes may be in place
                    for (int p = 0; p < nPlanes; ++p) {
                        ClImage plane;
                        image.GetPlane(p, plane);
                        EXPECT_EQ(Pixels(plane), aExpected[static_cast<std::size_t>(p)]);
                    }
                }
}

TEST(LinFilterSamples, DoNotDependOnThePadding) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 17, 9, 1, 4);
    for (long nMode : {1L, 2L, 3L}) {
        const Rows aFirst = LinearlyFiltered({1.0, 5.0, 2.0}, nMode, in);
        in.FillAligment(0);
        EXPECT_EQ(LinearlyFiltered({1.0, 5.0, 2.0}, nMode, in), aFirst);
        in.FillAligment(255);
    }
}

TEST(LinFilterSamples, OfDirectedModesNeedDirectionImages) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 5, 4, 1, 4);
    ClTestImage good = RandomImage(ClImage::eInt8, 5, 4, 1, 5);
    ClTestImage bad = RandomImage(ClImage::eInt8, 4, 4, 1, 5);
    ClTestImage out = Img({{9}});
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (long nMode : {8L, 16L}) {
            in.SetDataType(nType);
            ClIpTestKernel filter({1.0, 1.0, 1.0});
            filter.m_nMode = nMode;
            EXPECT_THROWS(filter.ApplyTo(in, out), ClException, -701, "m_pInDxImage is not set");
            filter.m_pInDxImage = &good;
            EXPECT_THROWS(filter.ApplyTo(in, out), ClException, -701, "m_pInDyImage is not set");
            filter.m_pInDyImage = &bad;
            EXPECT_EQ(filter.ApplyTo(in, out), -35);
            EXPECT_EQ(Pixels(out), Rows({{9}}));
            EXPECT_EQ(out.DataType(), ClImage::eUInt8);
        }
}

/// Fixed taps of any size, past the normalisation.
class ClIpFixedKernel : public ClIpTestKernel {
public:
    explicit ClIpFixedKernel(std::vector<long> aTaps)
        : ClIpTestKernel(Kernel(aTaps.size(), 1.0)), m_aTaps(std::move(aTaps)) {}
    void TransferArray(TpArrayStatic<double>&, TpArrayStatic<long>& rFilter) override {
        rFilter.New(m_aTaps.size());
        std::copy(m_aTaps.begin(), m_aTaps.end(), rFilter.Data());
    }

private:
    std::vector<long> m_aTaps;
};

TEST(LinFilterSamples, EqualTheDefinitionForTapsOfAnySize) {
    const std::vector<std::vector<long>> aAllTaps = {
        {32767}, {20000, -20000, 30000}, {4095L << 10, 5, -(4095L << 10)}};
    unsigned nSeed = 200;
    for (const auto& aTaps : aAllTaps)
        for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
            for (long nMode : {1L, 2L, 3L, 8L}) {
                ClTestImage in = RandomImage(nType, 21, 6, 1, ++nSeed);
                ClTestImage zero = TestSupport::FlatImage(ClImage::eInt8, 21, 6, 1, 0);
                const bool bSigned = nType == ClImage::eInt8;
                ClIpFixedKernel filter(aTaps);
                filter.m_nMode = nMode;
                filter.m_pInDxImage = filter.m_pInDyImage = &zero;
                ClImage out;
                EXPECT_EQ(filter.ApplyTo(in, out), 0);
                const Rows aExpected = nMode == 8
                                           ? NaiveDirected(Pixels(in), Pixels(zero), Pixels(zero),
                                                           aTaps, false, bSigned)
                                           : NaiveFiltered(nMode, Pixels(in), aTaps, bSigned);
                EXPECT_EQ(Pixels(out), aExpected);
            }
}

} // namespace
