// Two images of every size and position, against a painter that decides each pixel by itself.

#include "ImageProcessing/Overlay.h"

#include "ImageProcessing/IpArithmetic2to1Base.h"
#include "ImageProcessing/NaiveArithmetic.h"
#include "support/Throws.h"

namespace {

using TestSupport::caPixelTypes;
using TestSupport::ClIpPairProbe;
using TestSupport::ClTestImage;
using TestSupport::PairFunction;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Sample;
using TestSupport::Stored;

/// One axis of the placement, in the words of its rules.
struct StAxis {
    StAxis(int nSize1, int nSize2, int nOffset) {
        const int nAway = std::abs(nOffset);
        m_nOut = nOffset < 0 ? std::max(nSize2, nAway + nSize1) : std::max(nSize1, nAway + nSize2);
        m_nAt1 = nOffset < 0 ? nAway : 0;
        m_nAt2 = nOffset > 0 ? nAway : 0;
        m_nOverlap = std::min(nSize1, nSize2) - nAway;
        m_nOverlapAt = nAway;
    }
    bool InOverlap(int n) const { return n >= m_nOverlapAt && n < m_nOverlapAt + m_nOverlap; }

    int m_nOut, m_nAt1, m_nAt2, m_nOverlap, m_nOverlapAt;
};

bool IsInside(const ClImage& Image, int x, int y) {
    return x >= 0 && y >= 0 && x < Image.Width() && y < Image.Height();
}

/// What a frame paints, with its fill colours and the operator's function.
struct StPainter {
    const ClImage& m_rIn1;
    const ClImage& m_rIn2;
    StAxis m_X;
    StAxis m_Y;
    unsigned char m_nOutType;
    std::vector<double> m_aColors; ///< per plane
    PairFunction m_Value;          ///< or none: the overlap is not painted

    StPainter(const ClImage& In1, const ClImage& In2, int nOffsetX, int nOffsetY,
              unsigned char nOutType)
        : m_rIn1(In1), m_rIn2(In2), m_X(In1.Width(), In2.Width(), nOffsetX),
          m_Y(In1.Height(), In2.Height(), nOffsetY), m_nOutType(nOutType),
          m_aColors(static_cast<std::size_t>(In1.Planes())) {}

    double At(int x, int y, int p) const {
        const int x1 = x - m_X.m_nAt1;
        const int y1 = y - m_Y.m_nAt1;
        const int x2 = x - m_X.m_nAt2;
        const int y2 = y - m_Y.m_nAt2;
        const bool bSame = m_rIn1.Planes() == m_rIn2.Planes();
        const bool bGrey = m_rIn1.Planes() == 3 && m_rIn2.Planes() == 1;
        const int p2 = bGrey ? 0 : p;
        if (m_Value && m_X.InOverlap(x) && m_Y.InOverlap(y) && (bSame || bGrey))
            return m_Value(Sample(m_rIn1, x1, y1, p), Sample(m_rIn2, x2, y2, p2));
        if ((bSame || bGrey) && IsInside(m_rIn2, x2, y2))
            return Sample(m_rIn2, x2, y2, p2);
        if (IsInside(m_rIn1, x1, y1))
            return Sample(m_rIn1, x1, y1, p);
        return m_aColors[static_cast<std::size_t>(p)];
    }

    RealRows Paint() const {
        RealRows aRows(static_cast<std::size_t>(m_Y.m_nOut));
        for (int y = 0; y < m_Y.m_nOut; ++y)
            for (int x = 0; x < m_X.m_nOut; ++x)
                for (int p = 0; p < m_rIn1.Planes(); ++p)
                    aRows[static_cast<std::size_t>(y)].push_back(Stored(m_nOutType, At(x, y, p)));
        return aRows;
    }

    bool IsPlain() const {
        return m_rIn1.Width() == m_rIn2.Width() && m_rIn1.Height() == m_rIn2.Height() &&
               m_X.m_nOverlapAt == 0 && m_Y.m_nOverlapAt == 0;
    }
};

double Blend(double a, double b) {
    return a * 0.5 - b * 3.0;
}

constexpr int caOffsets[] = {-9, -4, -1, 0, 1, 2, 5, 8};

constexpr struct {
    int m_nWidth1, m_nHeight1, m_nWidth2, m_nHeight2;
} caPairSizes[] = {{4, 4, 4, 4}, {4, 4, 2, 2}, {2, 2, 5, 4},
                   {7, 3, 3, 6}, {1, 1, 6, 1}, {10, 1, 5, 1}};

/// Runs `expect` for all sizes and offsets.
template <class Expect>
void ForEachPlacement(Expect expect) {
    for (const auto& Size : caPairSizes)
        for (int nOffsetX : caOffsets)
            for (int nOffsetY : caOffsets) {
                SCOPED_TRACE(testing::Message()
                             << Size.m_nWidth1 << " x " << Size.m_nHeight1 << " and "
                             << Size.m_nWidth2 << " x " << Size.m_nHeight2 << " at " << nOffsetX
                             << ", " << nOffsetY);
                expect(Size, nOffsetX, nOffsetY);
            }
}

void ExpectPainted(ClImage& In1, ClImage& In2, int nOffsetX, int nOffsetY, unsigned char nOut) {
    ClIpPairProbe ip;
    ip.m_bSizeMustBeEqual = false;
    ip.m_nOffsetX = nOffsetX;
    ip.m_nOffsetY = nOffsetY;
    ip.m_Value = Blend;
    ip.m_dFillColor = 77.5;
    for (int p = 0; p < 4; ++p)
        ip.m_adPlaneFillColor[p] = 10.0 * p - 5.0;
    StPainter Painter(In1, In2, nOffsetX, nOffsetY, nOut);
    ClTestImage out = RandomImage(nOut, Painter.m_X.m_nOut, Painter.m_Y.m_nOut, In1.Planes(), 99);
    const unsigned char* pBuffer = out.Data();
    EXPECT_EQ(ip.ApplyParam(In1, In2, out, nOut), 0);
    if (Painter.m_X.m_nOut == In1.Width() && Painter.m_Y.m_nOut == In1.Height()) {
        EXPECT_EQ(out.Data(), pBuffer); // used again, with what it held
    }

    Painter.m_Value = Blend;
    for (std::size_t p = 0; p < Painter.m_aColors.size(); ++p)
        Painter.m_aColors[p] = In1.Planes() == 1  ? 77.5
                               : In1.Planes() > 4 ? 0.0
                                                  : ip.m_adPlaneFillColor[p];
    const bool bPaired = In1.Planes() == In2.Planes() || (In1.Planes() == 3 && In2.Planes() == 1);
    if (bPaired || !Painter.IsPlain()) { // else nothing is painted at all
        EXPECT_EQ(RealPixels(out), Painter.Paint());
    }
    EXPECT_EQ(out.Width(), Painter.m_X.m_nOut);
    EXPECT_EQ(out.Height(), Painter.m_Y.m_nOut);
    EXPECT_EQ(out.Planes(), In1.Planes());
}

TEST(Overlay, IsPaintedAtEveryPositionForEveryPlaneCount) {
    const struct {
        int m_nPlanes1, m_nPlanes2;
    } aPlanes[] = {{1, 1}, {3, 3}, {3, 1}, {1, 3}, {2, 2}, {4, 4}, {5, 5}, {2, 1}};
    ForEachPlacement([&](const auto& Size, int nOffsetX, int nOffsetY) {
        for (const auto& Planes : aPlanes) {
            ClTestImage in1 =
                RandomImage(ClImage::eUInt8, Size.m_nWidth1, Size.m_nHeight1, Planes.m_nPlanes1, 1);
            ClTestImage in2 =
                RandomImage(ClImage::eUInt8, Size.m_nWidth2, Size.m_nHeight2, Planes.m_nPlanes2, 2);
            ExpectPainted(in1, in2, nOffsetX, nOffsetY, ClImage::eInt16);
        }
    });
}

TEST(Overlay, IsPaintedForEveryCombinationOfTypes) {
    unsigned nSeed = 0;
    for (unsigned char nType1 : caPixelTypes)
        for (unsigned char nType2 : caPixelTypes)
            for (unsigned char nOut : caPixelTypes)
                for (int nOffset : {-2, 1}) {
                    SCOPED_TRACE(testing::Message()
                                 << int{nType1} << ' ' << int{nType2} << ' ' << int{nOut});
                    ClTestImage in1 = RandomImage(nType1, 3, 2, 1, ++nSeed);
                    ClTestImage in2 = RandomImage(nType2, 4, 5, 1, ++nSeed);
                    ExpectPainted(in1, in2, nOffset, -nOffset, nOut);
                }
}

TEST(Overlay, IsPaintedForLinesOfManyBlocks) {
    for (int nPlanes2 : {1, 3}) {
        ClTestImage in1 = RandomImage(ClImage::eUInt8, 400, 2, 3, 1);
        ClTestImage in2 = RandomImage(ClImage::eInt16, 391, 2, nPlanes2, 2);
        ExpectPainted(in1, in2, 3, 0, ClImage::eInt32);
        ExpectPainted(in1, in2, -3, 1, ClImage::eInt32);
    }
}

TEST(Overlay, FillsWhateverTheOutputHeld) {
    const double aColors[] = {1.0, 20.0, 3.0, 40.0};
    for (unsigned char nType : caPixelTypes)
        for (int nPlanes = 1; nPlanes <= 7; ++nPlanes)
            for (int nWidth : {1, 3, 200}) { // of blocks, too
                ClTestImage out = RandomImage(nType, nWidth, 2, nPlanes, 1);
                FillPlanes(out, aColors);
                for (int y = 0; y < 2; ++y)
                    for (int x = 0; x < nWidth; ++x)
                        for (int p = 0; p < nPlanes; ++p)
                            ASSERT_EQ(Sample(out, x, y, p), nPlanes > 4 ? 0.0 : aColors[p])
                                << int{nType} << ", " << nPlanes << " planes, " << x << ", " << y;
            }
}

// The plain rule of the overlap

TEST(Overlay, IsSmallerThanTheIntersectionInsideALargeImage) {
    const StOverlayAxis Axis(10, 5, 2);
    EXPECT_EQ(Axis.m_nOutput, 10);
    EXPECT_EQ(Axis.m_nOverlap, 3); // columns 2 to 6 are common
    EXPECT_EQ(Axis.m_nStart1, 0);
    EXPECT_EQ(Axis.m_nStart2, 2);
}

TEST(Overlay, HasSidesBeyondThirtyTwoBits) {
    const StOverlayAxis Right(10, 2147483647, 2147483647);
    EXPECT_EQ(Right.m_nOutput, 4294967294);
    EXPECT_EQ(Right.m_nOverlap, 10 - 2147483647L);
    const StOverlayAxis Left(10, 5, -2147483647 - 1);
    EXPECT_EQ(Left.m_nOutput, 2147483658);
    EXPECT_EQ(Left.m_nStart1, 2147483648);
}

TEST(Overlay, RefusesSidesThatNoImageHas) {
    ClTestImage in1 = TestSupport::BlankImage(ClImage::eUInt8, 2, 1);
    ClTestImage in2 = TestSupport::BlankImage(ClImage::eUInt8, 1, 1);
    ClImage out;
    EXPECT_THROWS(StOverlay(in1, in2, 2147483647, 0).NewOutput(out, ClImage::eUInt8, in1),
                  ClException, -101, "Image area must be positive");
    TestSupport::ExpectEmptyImage(out);
}

// The frame of bytes

/// Takes the pairs of an overlap into its output by a function.
class ClIpByteProbe : public ClIpArithmetic2to1Base {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpByteProbe>(); }
    const char* Name() const override { return "ClIpByteProbe"; }

    void ProcessArea(long nWidth, long nHeight, long nPlanes, const unsigned char* pIn1,
                     long nIn1Stride, const unsigned char* pIn2, long nIn2Stride,
                     unsigned char* pOut, long nOutStride) override {
        for (long y = 0; y < nHeight; ++y)
            for (long i = 0; i < nWidth * nPlanes; ++i)
                pOut[y * nOutStride + i] = static_cast<unsigned char>(2 * pIn1[y * nIn1Stride + i] +
                                                                      5 * pIn2[y * nIn2Stride + i]);
    }
};

TEST(Overlay, IsPaintedInBytesToo) {
    const struct {
        int m_nPlanes1, m_nPlanes2;
    } aPlanes[] = {{1, 1}, {3, 3}, {3, 1}, {1, 3}, {2, 2}, {4, 4}};
    ForEachPlacement([&](const auto& Size, int nOffsetX, int nOffsetY) {
        for (const auto& Planes : aPlanes) {
            ClTestImage in1 =
                RandomImage(ClImage::eUInt8, Size.m_nWidth1, Size.m_nHeight1, Planes.m_nPlanes1, 1);
            ClTestImage in2 =
                RandomImage(ClImage::eUInt8, Size.m_nWidth2, Size.m_nHeight2, Planes.m_nPlanes2, 2);
            ClIpByteProbe ip;
            ip.m_bSizeMustBeEqual = false;
            ip.m_nFillColor = Planes.m_nPlanes1 > 3 ? 0x777777 : 0x332211;
            ip.m_nOffsetX = nOffsetX;
            ip.m_nOffsetY = nOffsetY;
            ClTestImage out = RandomImage(ClImage::eUInt8, 9, 3, 1, 99);
            EXPECT_EQ(ip.ApplyParam(in1, in2, out), 0);

            StPainter Painter(in1, in2, nOffsetX, nOffsetY, ClImage::eUInt8);
            if (Planes.m_nPlanes1 == Planes.m_nPlanes2)
                Painter.m_Value = [](double a, double b) { return 2 * a + 5 * b; };
            for (std::size_t p = 0; p < Painter.m_aColors.size(); ++p)
                Painter.m_aColors[p] =
                    Planes.m_nPlanes1 > 3 ? 0x77 : 0x11 * (1.0 + static_cast<double>(p));
            EXPECT_EQ(RealPixels(out), Painter.Paint());
        }
    });
}

} // namespace
