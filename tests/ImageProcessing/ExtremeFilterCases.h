#pragma once

/// What the maximum and the minimum filter have in common, told once for both: each test is given
/// the filter, the extreme by definition, and the source position of its own.

#include "ImageProcessing/NaiveRankFilter.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <cmath>
#include <limits>
#include <random>

namespace TestSupport {

/// The filter has not changed its input; values that are no numbers compare, too.
inline void ExpectSameBytes(const ClImage& Actual, const ClImage& Before) {
    ASSERT_EQ(Actual.SizeBytes(), Before.SizeBytes());
    EXPECT_EQ(std::memcmp(Actual.Data(), Before.Data(), Before.SizeBytes()), 0);
}

/// `Traits` has `Filter`, `Naive`, `Takes`, `cszFile`, `cnEvenWidthLine`, `cnNoInImageLine`,
/// `cnNoOutImageLine`.
template <class Traits>
class ExtremeFilter : public testing::Test {
public:
    using Filter = typename Traits::Filter;

    static ClTestImage Filtered(const ClTestImage& In, long nWidth, long nMode) {
        ClTestImage in = In;
        ClTestImage out;
        Filter filter;
        EXPECT_EQ(filter.ApplyParam(in, out, nWidth, nMode), 0);
        ExpectSameBytes(in, In);
        return out;
    }

    static void ExpectPosition(const ClException& e, long nLine) {
        EXPECT_STREQ(e.File(), Traits::cszFile);
        EXPECT_EQ(e.Line(), nLine);
    }
};

/// Equal, or both no number.
inline bool SameReal(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

/// Gives a test the checks that the frame does not let through to DoProcess().
template <class Filter>
class TpOpenFilter : public Filter {
public:
    using Filter::CheckImages;
};

TYPED_TEST_SUITE_P(ExtremeFilter);

TYPED_TEST_P(ExtremeFilter, EqualsItsDefinitionOnEveryPixelType) {
    for (unsigned char nType : caPixelTypes)
        for (const auto& Size : caRankSizes)
            for (long nMode : {1L, 2L, 3L})
                for (long nWidth : {3L, 5L, 9L, 31L}) {
                    const ClTestImage in = RandomImage(nType, Size.m_nWidth, Size.m_nHeight, 1, 7);
                    EXPECT_EQ(RealPixels(this->Filtered(in, nWidth, nMode)),
                              TypeParam::Naive(RealPixels(in), nMode, nWidth))
                        << ClImage::TypeText(nType) << ", " << Size.m_nWidth << " by "
                        << Size.m_nHeight << ", mode " << nMode << ", width " << nWidth;
                }
}

TYPED_TEST_P(ExtremeFilter, EqualsItsDefinitionAtEveryWidth) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt16})
        for (long nWidth = 3; nWidth <= 51; nWidth += 2)
            for (long nMode : {1L, 2L, 3L}) {
                const ClTestImage in = RandomImage(nType, 23, 17, 1, 8);
                EXPECT_EQ(RealPixels(this->Filtered(in, nWidth, nMode)),
                          TypeParam::Naive(RealPixels(in), nMode, nWidth))
                    << ClImage::TypeText(nType) << ", mode " << nMode << ", width " << nWidth;
            }
}

TYPED_TEST_P(ExtremeFilter, TakesTheNextExtremeWhenOneHasLeftTheWindow) {
    // Rising and falling steps, each of which is the extreme in its turn, in every type.
    RealRows aLine(1);
    for (int i = 0; i < 40; ++i)
        aLine[0].push_back(i < 20 ? 3 * i : 120 - 3 * i);
    for (unsigned char nType : caPixelTypes) {
        const ClTestImage in = Img(nType, aLine);
        for (long nWidth : {3L, 5L, 11L})
            EXPECT_EQ(RealPixels(this->Filtered(in, nWidth, 1)), TypeParam::Naive(aLine, 1, nWidth))
                << ClImage::TypeText(nType) << ", width " << nWidth;
    }
}

TYPED_TEST_P(ExtremeFilter, TakesTheWidestWindow) {
    const ClTestImage in = RandomImage(ClImage::eUInt8, 9, 6, 1, 9);
    const ClTestImage shorts = RandomImage(ClImage::eUInt16, 9, 6, 1, 9);
    for (long nMode : {1L, 2L, 3L})
        for (const ClTestImage* p : {&in, &shorts})
            EXPECT_EQ(RealPixels(this->Filtered(*p, std::numeric_limits<long>::max(), nMode)),
                      TypeParam::Naive(RealPixels(*p), nMode, 101));
}

TYPED_TEST_P(ExtremeFilter, KeepsRangeContentAttributeAndResolution) {
    ClTestImage in = RandomImage(ClImage::eInt16, 5, 4, 1, 1);
    in.SetBlack(-7.0);
    in.SetWhite(99.0);
    in.SetContent(ClImage::eHSV);
    in.SetAttribute(4);
    in.SetPelsX(100);
    for (long nMode : {1L, 2L, 3L}) {
        ClTestImage expected = in;
        const RealRows aSamples = TypeParam::Naive(RealPixels(in), nMode, 3);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 5; ++x)
                SetSample(expected, x, y, 0, At(aSamples, x, y));
        ExpectSameImage(this->Filtered(in, 3, nMode), expected);
    }
}

TYPED_TEST_P(ExtremeFilter, FiltersPlanesOneByOne) {
    const ClTestImage in = RandomImage(ClImage::eUInt8, 7, 5, 3, 2);
    const ClTestImage out = this->Filtered(in, 3, 3);
    for (int p = 0; p < 3; ++p) {
        ClImage plane;
        ClImage filtered;
        in.GetPlane(p, plane);
        out.GetPlane(p, filtered);
        EXPECT_EQ(RealPixels(filtered), TypeParam::Naive(RealPixels(plane), 3, 3));
    }
}

TYPED_TEST_P(ExtremeFilter, SpreadsOverSeveralRounds) {
    const ClTestImage in = RandomImage(ClImage::eUInt8, 25, 19, 1, 3);
    for (long nMode : {1L, 2L, 3L})
        EXPECT_EQ(RealPixels(this->Filtered(this->Filtered(in, 5, nMode), 7, nMode)),
                  RealPixels(this->Filtered(in, 11, nMode)));
}

TYPED_TEST_P(ExtremeFilter, FollowsItsWalkWhereValuesAreNoNumbers) {
    const auto takes = [](double a, double b) { return TypeParam::Takes(a, b); };
    std::mt19937 random(11);
    for (unsigned char nType : {ClImage::eFloat32, ClImage::eDouble64})
        for (int nCount : {1, 2, 5, 12, 40})
            for (long nWidth : {3L, 5L, 9L, 41L}) {
                ClTestImage in = RandomImage(nType, nCount, 1, 1, static_cast<unsigned>(random()));
                for (int x = 0; x < nCount; ++x)
                    if (random() % 4 == 0)
                        SetSample(in, x, 0, 0, std::nan(""));
                const Values aLine = RealPixels(in)[0];
                const Values aExpected = WalkedExtremes(aLine, nWidth / 2, takes);
                ClTestImage column = BlankImage(nType, 1, nCount);
                for (int y = 0; y < nCount; ++y)
                    SetSample(column, 0, y, 0, aLine[static_cast<std::size_t>(y)]);
                const ClTestImage alongX = this->Filtered(in, nWidth, 1);
                const ClTestImage alongY = this->Filtered(column, nWidth, 2);
                for (int i = 0; i < nCount; ++i) {
                    EXPECT_TRUE(
                        SameReal(Sample(alongX, i, 0), aExpected[static_cast<std::size_t>(i)]))
                        << nCount << ", width " << nWidth << " at " << i;
                    EXPECT_TRUE(
                        SameReal(Sample(alongY, 0, i), aExpected[static_cast<std::size_t>(i)]))
                        << nCount << ", width " << nWidth << " at " << i;
                }
            }
}

TYPED_TEST_P(ExtremeFilter, LetsTheLastOfEqualOnesWin) {
    // In the third window the zero that enters equals the others, and has the place; in the fourth
    // one a negative zero has it again.
    const ClTestImage in = Img(ClImage::eFloat32, {{-0.0, -0.0, -0.0, 0.0, -0.0, -0.0}});
    const ClTestImage out = this->Filtered(in, 3, 1);
    EXPECT_FALSE(std::signbit(Sample(out, 2, 0)));
    EXPECT_TRUE(std::signbit(Sample(out, 3, 0)));
}

// Failures

TYPED_TEST_P(ExtremeFilter, RefusesEvenWidths) {
    ClTestImage in = Img({{1, 2, 3}});
    ClImage out;
    typename TypeParam::Filter filter;
    for (long nWidth : {2L, 4L, 100L}) {
        EXPECT_THROWS(filter.ApplyParam(in, out, nWidth, 3), ClException, -44,
                      "Filter width has to be odd.");
        ExpectEmptyImage(out);
    }
    try {
        filter.ApplyParam(in, out, 2, 3);
    } catch (const ClException& e) {
        this->ExpectPosition(e, TypeParam::cnEvenWidthLine);
    }
}

TYPED_TEST_P(ExtremeFilter, TestsTheWidthBeforeTheImages) {
    ClTestImage image = Img({{1, 2}});
    ClTestImage planes = RandomImage(ClImage::eUInt8, 3, 2, 3, 1);
    for (ClImage* pIn : {static_cast<ClImage*>(nullptr), static_cast<ClImage*>(&image),
                         static_cast<ClImage*>(&planes)}) {
        typename TypeParam::Filter filter;
        filter.m_pInImage = pIn;
        filter.m_nFilterWidth = 4;
        EXPECT_THROWS(filter.DoProcess(), ClException, -44, "Filter width has to be odd.");
        EXPECT_THROWS(filter.Apply(), ClException, -44, "Filter width has to be odd.");
    }
}

TYPED_TEST_P(ExtremeFilter, TestsTypeAndModeBeforeTheOutput) {
    ClTestImage in = Img({{1, 2}});
    typename TypeParam::Filter filter;
    filter.m_pInImage = &in;
    filter.m_nMode = 8;
    EXPECT_EQ(filter.Apply(), -33);
    filter.m_nMode = 5;
    EXPECT_THROWS(filter.Apply(), ClExTessarin, -6, "Unknown error code.");
    in.SetDataType(3);
    EXPECT_EQ(filter.Apply(), -101);
}

TYPED_TEST_P(ExtremeFilter, CopiesForEvenWidthsBelowOne) {
    const ClTestImage in = RandomImage(ClImage::eFloat32, 5, 4, 2, 1);
    for (long nWidth : {1L, 0L, -2L})
        ExpectSameImage(this->Filtered(in, nWidth, 99), in);
}

TYPED_TEST_P(ExtremeFilter, RefusesToWorkInPlace) {
    ClTestImage image = Img({{1, 5, 3}});
    typename TypeParam::Filter filter;
    EXPECT_EQ(filter.ApplyParam(image, image, 3, 3), -10);
    EXPECT_EQ(Pixels(image), Rows({{1, 5, 3}}));
}

TYPED_TEST_P(ExtremeFilter, WorksInPlaceBehindTheFrame) {
    for (long nMode : {1L, 2L, 3L}) {
        ClTestImage image = RandomImage(ClImage::eUInt16, 9, 8, 1, 4);
        const RealRows aExpected = TypeParam::Naive(RealPixels(image), nMode, 5);
        typename TypeParam::Filter filter;
        filter.m_pInImage = filter.m_pOutImage = &image;
        filter.m_nFilterWidth = 5;
        filter.m_nMode = nMode;
        EXPECT_EQ(filter.DoProcess(), 0);
        EXPECT_EQ(RealPixels(image), aExpected);
    }
}

TYPED_TEST_P(ExtremeFilter, AnswersMissingImages) {
    ClTestImage in = Img({{1, 2}});
    ClImage claim;
    claim.Attach(nullptr, in);
    typename TypeParam::Filter filter;
    EXPECT_EQ(filter.Apply(), -35);
    EXPECT_EQ(filter.DoProcess(), -35);
    ClTestImage out = Img({{9}});
    filter.m_pOutImage = &out;
    EXPECT_EQ(filter.Apply(), -35);
    EXPECT_EQ(filter.DoProcess(), -35);
    filter.m_pInImage = &claim;
    EXPECT_EQ(filter.Apply(), -35);
    EXPECT_EQ(filter.DoProcess(), -35);
    filter.m_nFilterWidth = 1;
    EXPECT_EQ(filter.Apply(), -35);
    filter.m_pInImage = &in;
    filter.m_pOutImage = nullptr;
    EXPECT_EQ(filter.Apply(), -35);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TYPED_TEST_P(ExtremeFilter, AnswersSeveralPlanesWithoutAnOutputOrPixels) {
    ClTestImage planes = RandomImage(ClImage::eUInt8, 3, 2, 3, 1);
    ClImage claim;
    claim.Attach(nullptr, planes);
    typename TypeParam::Filter filter;
    filter.m_pInImage = &planes;
    EXPECT_EQ(filter.Apply(), -35);
    EXPECT_EQ(filter.m_pOutImage, nullptr);
    filter.m_nMode = 8;
    EXPECT_EQ(filter.Apply(), -33);
    ClTestImage out = Img({{9}});
    EXPECT_EQ(filter.ApplyParam(claim, out, 3, 3), -35);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TYPED_TEST_P(ExtremeFilter, NamesAMissingImage) {
    ClTestImage in = Img({{1, 2}});
    TpOpenFilter<typename TypeParam::Filter> filter;
    EXPECT_THROWS(filter.CheckImages(), ClException, -701, "m_pInImage is not set");
    try {
        filter.CheckImages();
    } catch (const ClException& e) {
        this->ExpectPosition(e, TypeParam::cnNoInImageLine);
    }
    filter.m_pInImage = &in;
    for (long nMode : {1L, 2L, 3L}) {
        filter.m_nMode = nMode;
        EXPECT_THROWS(filter.DoProcess(), ClException, -701, "m_pOutImage is not set");
        EXPECT_THROWS(filter.Apply(), ClException, -701, "m_pOutImage is not set");
        try {
            filter.DoProcess();
        } catch (const ClException& e) {
            this->ExpectPosition(e, TypeParam::cnNoOutImageLine);
        }
    }
}

TYPED_TEST_P(ExtremeFilter, RefusesDirectedAndUnknownModes) {
    for (unsigned char nType : caPixelTypes) {
        ClTestImage in = FlatImage(nType, 3, 2, 1, 1);
        ClTestImage out = Img({{9}});
        typename TypeParam::Filter filter;
        for (long nMode : {8L, 16L})
            EXPECT_EQ(filter.ApplyParam(in, out, 3, nMode), -33);
        for (long nMode : {0L, 4L, 7L, 24L, -1L})
            try {
                filter.ApplyParam(in, out, 3, nMode);
                ADD_FAILURE() << "mode " << nMode;
            } catch (const ClExTessarin& e) {
                EXPECT_EQ(e.Number(), -6);
                EXPECT_STREQ(e.File(), TypeParam::cszFile);
            }
        EXPECT_EQ(Pixels(out), Rows({{9}}));
    }
}

TYPED_TEST_P(ExtremeFilter, RefusesUnknownPixelTypes) {
    ClTestImage in = Img({{1, 2, 3, 4}});
    ClTestImage out = Img({{9}});
    typename TypeParam::Filter filter;
    for (int nType : {0, 3, 8, 65, 193, 255}) {
        unsigned char aPixels[64] = {};
        ClImage odd;
        odd.Attach(aPixels, static_cast<unsigned char>(nType), 1, 1, 1, 0, 0);
        EXPECT_EQ(filter.ApplyParam(odd, out, 3, 3), -101) << nType;
    }
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TYPED_TEST_P(ExtremeFilter, TakesAnImageWithoutSamples) {
    ClImage in;
    in.Attach(nullptr, ClImage::eUInt8, 5, 4, 0, 0, 0); // five columns of no planes
    for (long nMode : {1L, 2L, 3L}) {
        ClImage out;
        typename TypeParam::Filter filter;
        EXPECT_EQ(filter.ApplyParam(in, out, 3, nMode), 0);
        EXPECT_EQ(out.SizeBytes(), 0u);
        ClTestImage full = Img({{1}});
        EXPECT_THROWS(filter.ApplyParam(in, full, 3, nMode), ClException, -101,
                      "Image area must be positive");
    }
}

TYPED_TEST_P(ExtremeFilter, AnswersEveryMissingAllocation) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt32})
        for (bool bInPlace : {false, true})
            for (long nMode : {1L, 2L, 3L}) {
                ClTestImage in = RandomImage(nType, 9, 8, 1, 5);
                const ClTestImage copy = in;
                FailEachAllocation([&] {
                    in = copy; // into the buffer that is there
                    ClImage out;
                    typename TypeParam::Filter filter;
                    filter.m_pInImage = &in;
                    filter.m_pOutImage = bInPlace ? &in : &out;
                    filter.m_nMode = nMode;
                    try {
                        filter.DoProcess();
                    } catch (const ClExBadAlloc&) {
                        EXPECT_EQ(RealPixels(in), RealPixels(copy));
                        throw;
                    }
                });
            }
}

REGISTER_TYPED_TEST_SUITE_P(ExtremeFilter, EqualsItsDefinitionOnEveryPixelType,
                            EqualsItsDefinitionAtEveryWidth,
                            TakesTheNextExtremeWhenOneHasLeftTheWindow, TakesTheWidestWindow,
                            KeepsRangeContentAttributeAndResolution, FiltersPlanesOneByOne,
                            SpreadsOverSeveralRounds, RefusesEvenWidths,
                            TestsTheWidthBeforeTheImages, TestsTypeAndModeBeforeTheOutput,
                            AnswersSeveralPlanesWithoutAnOutputOrPixels,
                            FollowsItsWalkWhereValuesAreNoNumbers, LetsTheLastOfEqualOnesWin,
                            CopiesForEvenWidthsBelowOne, RefusesToWorkInPlace,
                            WorksInPlaceBehindTheFrame, AnswersMissingImages, NamesAMissingImage,
                            RefusesDirectedAndUnknownModes, RefusesUnknownPixelTypes,
                            TakesAnImageWithoutSamples, AnswersEveryMissingAllocation);

} // namespace TestSupport
