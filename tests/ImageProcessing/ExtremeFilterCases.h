#pragma once

/// What the maximum and the minimum filter have in common, told once for both: each test is given
/// the filter, the extreme by definition, and the source position of its own.

#include "ImageProcessing/NaiveRankFilter.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <limits>

namespace TestSupport {

/// `Traits` has `Filter`, `Naive`, `cszFile`, `cnEvenWidthLine`, `cnNoInImageLine`,
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
        ExpectSameImage(in, In);
        return out;
    }

    static void ExpectPosition(const ClException& e, long nLine) {
        EXPECT_STREQ(e.File(), Traits::cszFile);
        EXPECT_EQ(e.Line(), nLine);
    }
};

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

TYPED_TEST_P(ExtremeFilter, TestsTheWidthBeforeTheInput) {
    typename TypeParam::Filter filter;
    filter.m_nFilterWidth = 4;
    EXPECT_NUMBER(filter.DoProcess(), -44);
    filter.m_nFilterWidth = 3;
    EXPECT_EQ(filter.DoProcess(), -35);
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
    filter.m_pInImage = &in;
    EXPECT_EQ(filter.Apply(), -35);
    filter.m_pInImage = &claim;
    EXPECT_EQ(filter.DoProcess(), -35);
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
        EXPECT_NUMBER(filter.ApplyParam(in, full, 3, nMode), -101);
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
                            TestsTheWidthBeforeTheInput, CopiesForEvenWidthsBelowOne,
                            RefusesToWorkInPlace, WorksInPlaceBehindTheFrame, AnswersMissingImages,
                            NamesAMissingImage, RefusesDirectedAndUnknownModes,
                            RefusesUnknownPixelTypes, TakesAnImageWithoutSamples,
                            AnswersEveryMissingAllocation);

} // namespace TestSupport
