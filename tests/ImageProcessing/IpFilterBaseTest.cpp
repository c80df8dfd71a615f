#include "ImageProcessing/IpFilterBase.h"

#include "Tools/Allocate.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/PublishedParameters.h"
#include "support/Throws.h"

#include <functional>
#include <string>
#include <vector>

namespace {

using TestSupport::ClTestImage;
using TestSupport::ExpectEmptyImage;
using TestSupport::ExpectSameImage;
using TestSupport::ExpectTree;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;
using TestSupport::TreeEnum;
using TestSupport::TreeNumber;
using TestSupport::TreePointer;

/// Writes down which operation the frame chose and on which images; answers as told.
class ClIpFilterProbe : public ClIpFilterBase {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpFilterProbe>(); }
    const char* Name() const override { return "ClIpFilterProbe"; }

    long ProcessX() override { return Note("X"); }
    long ProcessY() override { return Note("Y"); }
    long ProcessSignedX() override { return Note("SignedX"); }
    long ProcessSignedY() override { return Note("SignedY"); }
    long ProcessDirected(bool bOrtho) override { return Note(bOrtho ? "Ortho" : "Directed"); }
    long ProcessSignedDirected(bool bOrtho) override {
        return Note(bOrtho ? "SignedOrtho" : "SignedDirected");
    }
    long CheckDirections() const { return CheckDirectionImages("Here", 7); }

    /// The work, given the input and output of the moment.
    std::function<long(const ClImage&, ClImage&)> m_Work = [](const ClImage&, ClImage&) {
        return 0L;
    };
    std::vector<std::string> m_aCalls;

private:
    long Note(const char* szCall) {
        m_aCalls.emplace_back(szCall);
        return m_Work(*m_pInImage, *m_pOutImage);
    }
};

/// The square, whose form is that of the base, beside.
class ClIpSquareProbe : public ClIpFilterProbe {
public:
    long ProcessXY() override {
        m_aCalls.emplace_back("XY");
        return 0;
    }
    long ProcessSignedXY() override {
        m_aCalls.emplace_back("SignedXY");
        return 0;
    }
};

/// A filter that overrides nothing.
class ClIpIdle : public ClIpFilterBase {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpIdle>(); }
    const char* Name() const override { return "ClIpIdle"; }
};

/// Adds `nStep` to every sample.
std::function<long(const ClImage&, ClImage&)> Adding(int nStep) {
    return [nStep](const ClImage& In, ClImage& Out) {
        Out.New(In);
        for (int y = 0; y < In.Height(); ++y)
            for (int x = 0; x < In.Width(); ++x)
                TestSupport::SetSample(Out, x, y, 0, TestSupport::Sample(In, x, y) + nStep);
        return 0L;
    };
}

void SetImages(ClIpFilterBase& rFilter, ClImage& rIn, ClImage& rOut) {
    rFilter.m_pInImage = &rIn;
    rFilter.m_pOutImage = &rOut;
}

using Calls = std::vector<std::string>;

// Settings

TEST(IpFilterBase, BeginsWithItsDefaults) {
    ClIpIdle filter;
    EXPECT_EQ(filter.m_pInImage, nullptr);
    EXPECT_EQ(filter.m_pOutImage, nullptr);
    EXPECT_EQ(filter.m_nFilterWidth, 3);
    EXPECT_EQ(filter.m_nMode, 3);
    EXPECT_EQ(filter.m_pInDxImage, nullptr);
    EXPECT_EQ(filter.m_pInDyImage, nullptr);
    EXPECT_FALSE(filter.CanApply());
}

TEST(IpFilterBase, PublishesItsSettings) {
    ClIpIdle filter;
    ExpectTree(filter, {TreePointer("pInImage", filter.m_pInImage, ePfIn),
                        TreePointer("pOutImage", filter.m_pOutImage, ePfOut),
                        TreeNumber("nFilterWidth", filter.m_nFilterWidth, 3),
                        TreeEnum("nMode", filter.m_nMode, 3, TestSupport::caFilterModeNames),
                        TreePointer("pInDxImage", filter.m_pInDxImage, ePfIn),
                        TreePointer("pInDyImage", filter.m_pInDyImage, ePfIn)});
}

TEST(IpFilterBase, KeepsItsSettingsWhilePublishing) {
    ClIpIdle filter;
    filter.m_nFilterWidth = 9;
    filter.m_nMode = 1;
    ClParameterContainer container;
    filter.QueryParameters(container);
    EXPECT_EQ(filter.m_nFilterWidth, 9);
    EXPECT_EQ(filter.m_nMode, 1);
}

TEST(IpFilterBase, PrintsItsSettings) {
    ClTestImage bytes = Img({{1}});
    ClTestImage shorts = FlatImage(ClImage::eInt16, 1, 1, 1, 0);
    const struct {
        long m_nWidth, m_nMode;
        ClImage* m_pIn;
        const char* m_szText;
    } aCases[] = {{3, 3, nullptr, "W[3] M[XY] S[Unknown]"},
                  {-17, 1, &bytes, "W[-17] M[X] S[Unsigned]"},
                  {0, 2, &shorts, "W[0] M[Y] S[Signed]"},
                  {5, 8, &bytes, "W[5] M[Directed] S[Unsigned]"},
                  {5, 16, &bytes, "W[5] M[DirectedOrtho] S[Unsigned]"},
                  {5, 27, &bytes, "W[5] M[XYDirectedDirectedOrtho] S[Unsigned]"},
                  {5, 4, &bytes, "W[5] M[] S[Unsigned]"}};
    for (const auto& c : aCases) {
        ClIpIdle filter;
        filter.m_nFilterWidth = c.m_nWidth;
        filter.m_nMode = c.m_nMode;
        filter.m_pInImage = c.m_pIn;
        char szText[64];
        EXPECT_EQ(filter.ParameterString(szText, sizeof szText),
                  static_cast<long>(std::string(c.m_szText).size()));
        EXPECT_STREQ(szText, c.m_szText);
    }
}

TEST(IpFilterBase, RefusesToPrintIntoTooFewBytes) {
    ClIpIdle filter;
    const unsigned long nNeeded = std::string("W[3] M[XY] S[Unknown]").size() + 1;
    std::vector<char> aText(nNeeded);
    for (unsigned long nSize = 0; nSize < nNeeded; ++nSize) {
        std::vector<char> aShort(nSize);
        EXPECT_THROWS(filter.ParameterString(aShort.data(), nSize), ClException, -101,
                      "String-Length exceeded available size");
    }
    EXPECT_THROWS(filter.ParameterString(nullptr, 100), ClException, -101,
                  "String-Length exceeded available size");
    EXPECT_EQ(filter.ParameterString(aText.data(), nNeeded), static_cast<long>(nNeeded) - 1);
}

// Order of tests

TEST(IpFilterBase, AnswersMissingImages) {
    ClIpFilterProbe filter;
    ClTestImage image = Img({{1}});
    for (long nWidth : {-1L, 1L, 3L}) {
        filter.m_nFilterWidth = nWidth;
        filter.m_pInImage = filter.m_pOutImage = nullptr;
        EXPECT_EQ(filter.Apply(), -35);
        filter.m_pInImage = &image;
        EXPECT_EQ(filter.Apply(), -35);
        filter.m_pInImage = nullptr;
        filter.m_pOutImage = &image;
        EXPECT_EQ(filter.Apply(), -35);
    }
    filter.m_pInImage = nullptr;
    EXPECT_EQ(filter.DoProcess(), -35);
    EXPECT_EQ(filter.m_aCalls, Calls());
}

TEST(IpFilterBase, AnswersAnImageThatClaimsPixelsItHasNot) {
    ClIpFilterProbe filter;
    ClImage in;
    ClImage out;
    in.Attach(nullptr, ClImage::eUInt8, 10, 10, 1, 0, 0);
    SetImages(filter, in, out);
    for (long nWidth : {1L, 3L}) {
        filter.m_nFilterWidth = nWidth;
        EXPECT_EQ(filter.Apply(), -35);
    }
    EXPECT_EQ(filter.m_aCalls, Calls());
}

TEST(IpFilterBase, CopiesForAWidthOfOneOrLess) {
    for (long nWidth : {1L, 0L, -4L})
        for (int nPlanes : {1, 3, 5}) {
            ClTestImage in = RandomImage(ClImage::eInt16, 7, 4, nPlanes, 5);
            in.SetAttribute(3);
            in.SetBlack(-5.0);
            ClIpFilterProbe filter;
            filter.m_nFilterWidth = nWidth;
            filter.m_nMode = 99;
            ClImage out;
            SetImages(filter, in, out);
            EXPECT_EQ(filter.Apply(), 0);
            ExpectSameImage(out, in);
            EXPECT_NE(out.Data(), in.Data());
            EXPECT_EQ(filter.m_aCalls, Calls());
        }
}

TEST(IpFilterBase, LeavesAnImageCopiedToItselfAlone) {
    ClTestImage image = Img({{1, 2}});
    ClIpFilterProbe filter;
    filter.m_nFilterWidth = 1;
    SetImages(filter, image, image);
    EXPECT_EQ(filter.Apply(), 0);
    EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
}

TEST(IpFilterBase, RefusesToFilterOnePlaneInPlace) {
    ClTestImage image = Img({{1, 2}});
    ClIpFilterProbe filter;
    SetImages(filter, image, image);
    EXPECT_EQ(filter.Apply(), -10);
    EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
    EXPECT_EQ(filter.m_aCalls, Calls());
}

TEST(IpFilterBase, TestsTheModeBeforeTheOutput) {
    ClTestImage image = Img({{1}});
    ClIpFilterProbe filter;
    filter.m_pInImage = &image;
    filter.m_nMode = 4;
    EXPECT_THROWS(filter.Apply(), ClExTessarin, -6, "Unknown error code.");
    EXPECT_EQ(filter.m_aCalls, Calls());
}

// Dispatch

TEST(IpFilterBase, ChoosesByModeAndSignedness) {
    const struct {
        long m_nMode;
        const char* m_szUnsigned;
        const char* m_szSigned;
    } aCases[] = {{1, "X", "SignedX"},
                  {2, "Y", "SignedY"},
                  {3, "XY", "SignedXY"},
                  {8, "Directed", "SignedDirected"},
                  {16, "Ortho", "SignedOrtho"}};
    for (const auto& c : aCases)
        for (unsigned char nType : TestSupport::caPixelTypes) {
            ClTestImage in = FlatImage(nType, 2, 2, 1, 0);
            ClImage out;
            ClIpSquareProbe filter;
            filter.m_nMode = c.m_nMode;
            SetImages(filter, in, out);
            EXPECT_EQ(filter.Apply(), 0);
            EXPECT_EQ(filter.m_aCalls, Calls{nType >= 128 ? c.m_szSigned : c.m_szUnsigned});
        }
}

TEST(IpFilterBase, RefusesEveryOtherMode) {
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    for (long nMode : {0L, 4L, 5L, 7L, 9L, 24L, 32L, -1L}) {
        ClIpFilterProbe filter;
        filter.m_nMode = nMode;
        SetImages(filter, in, out);
        try {
            filter.Apply();
            ADD_FAILURE() << "mode " << nMode;
        } catch (const ClExTessarin& e) {
            EXPECT_EQ(e.Number(), -6);
            EXPECT_STREQ(e.File(), "ImageProcessing/IpFilterBase");
            EXPECT_EQ(e.Line(), 178);
        }
        EXPECT_EQ(filter.m_aCalls, Calls());
    }
}

TEST(IpFilterBase, PassesOnTheResultOfOnePlane) {
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    ClIpFilterProbe filter;
    filter.m_nMode = 1;
    filter.m_Work = [](const ClImage&, ClImage&) { return -14L; };
    SetImages(filter, in, out);
    EXPECT_EQ(filter.Apply(), -14);
}

TEST(IpFilterBase, DoesNothingOfItsOwn) {
    ClIpIdle filter;
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = Img({{9}});
    SetImages(filter, in, out);
    for (long nMode : {1L, 2L, 3L, 8L, 16L})
        for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8}) {
            in.SetDataType(nType);
            filter.m_nMode = nMode;
            EXPECT_EQ(filter.Apply(), 0);
        }
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

// Both directions

TEST(IpFilterBase, FiltersColumnsOfTheFilteredLines) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8}) {
        const bool bSigned = nType == ClImage::eInt8;
        ClTestImage in = FlatImage(nType, 3, 2, 1, 5);
        ClImage out;
        ClIpFilterProbe filter;
        SetImages(filter, in, out);
        filter.m_Work = [&](const ClImage& In, ClImage& Out) {
            EXPECT_NE(&In, &Out);
            return Adding(filter.m_aCalls.size() == 1 ? 1 : 10)(In, Out);
        };
        EXPECT_EQ(filter.Apply(), 0);
        EXPECT_EQ(filter.m_aCalls, (bSigned ? Calls{"SignedX", "SignedY"} : Calls{"X", "Y"}));
        EXPECT_EQ(Pixels(out), Rows({{16, 16, 16}, {16, 16, 16}}));
        EXPECT_EQ(Pixels(in), Rows({{5, 5, 5}, {5, 5, 5}}));
        EXPECT_EQ(filter.m_pInImage, &in);
        EXPECT_EQ(filter.m_pOutImage, &out);
    }
}

TEST(IpFilterBase, StopsWhereTheLinesFail) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = Img({{9}});
    ClIpFilterProbe filter;
    filter.m_Work = [](const ClImage&, ClImage&) { return -14L; };
    SetImages(filter, in, out);
    EXPECT_EQ(filter.Apply(), -14);
    EXPECT_EQ(filter.m_aCalls, Calls{"X"});
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpFilterBase, GetsItsImagesBackFromAnException) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 3, 2, 2, 1);
    ClImage out;
    ClIpFilterProbe filter;
    filter.m_Work = [](const ClImage&, ClImage&) -> long { throw ClExTessarin(-44, VEK_HERE); };
    SetImages(filter, in, out);
    EXPECT_THROWS(filter.Apply(), ClExTessarin, -44, "One(or more) parameter(s) is(are) invalid.");
    EXPECT_EQ(filter.m_pInImage, &in);
    EXPECT_EQ(filter.m_pOutImage, &out);
}

// Direction images

TEST(IpFilterBase, NamesAMissingDirectionImage) {
    ClTestImage in = Img({{1, 2}});
    ClIpFilterProbe filter;
    filter.m_pInImage = &in;
    EXPECT_THROWS(filter.CheckDirections(), ClException, -701, "m_pInDxImage is not set");
    filter.m_pInDxImage = &in;
    EXPECT_THROWS(filter.CheckDirections(), ClException, -701, "m_pInDyImage is not set");
    try {
        filter.CheckDirections();
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Here");
        EXPECT_EQ(e.Line(), 7);
    }
    filter.m_pInDyImage = &in;
    EXPECT_EQ(filter.CheckDirections(), -35); // without an output
    filter.m_pOutImage = &in;
    EXPECT_EQ(filter.CheckDirections(), 0);
    filter.m_pInImage = nullptr;
    EXPECT_EQ(filter.CheckDirections(), -35);
}

TEST(IpFilterBase, RefusesDirectionImagesOfAnotherShape) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 4, 3, 1, 0);
    ClTestImage good = FlatImage(ClImage::eInt8, 4, 3, 1, 0);
    ClImage empty;
    ClImage claim;
    claim.Attach(nullptr, good);
    ClTestImage aBad[] = {
        FlatImage(ClImage::eInt8, 3, 3, 1, 0), FlatImage(ClImage::eInt8, 4, 4, 1, 0),
        FlatImage(ClImage::eInt8, 4, 3, 2, 0), FlatImage(ClImage::eInt16, 4, 3, 1, 0)};
    ClIpFilterProbe filter;
    SetImages(filter, in, in);
    for (ClImage* pBad :
         {&static_cast<ClImage&>(aBad[0]), &static_cast<ClImage&>(aBad[1]),
          &static_cast<ClImage&>(aBad[2]), &static_cast<ClImage&>(aBad[3]), &empty, &claim}) {
        filter.m_pInDxImage = pBad;
        filter.m_pInDyImage = &good;
        EXPECT_EQ(filter.CheckDirections(), -35);
        filter.m_pInDxImage = &good;
        filter.m_pInDyImage = pBad;
        EXPECT_EQ(filter.CheckDirections(), -35);
    }
    filter.m_pInDyImage = &good;
    EXPECT_EQ(filter.CheckDirections(), 0);
}

} // namespace
