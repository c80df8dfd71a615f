#include "ImageProcessing/IpEuclidLength.h"

#include "ImageProcessing/NaiveLength.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <array>
#include <atomic>
#include <cmath>
#include <memory>
#include <thread>

namespace {

using TestSupport::NaiveLength;

using namespace TestSupport;

/// Every pair of bytes: dx by line, dy by column.
struct StAllPairs {
    explicit StAllPairs(unsigned char nType)
        : m_Dx(BlankImage(nType, 256, 256)), m_Dy(BlankImage(nType, 256, 256)) {
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x) {
                m_Dx.LineData(y)[x] = static_cast<unsigned char>(y);
                m_Dy.LineData(y)[x] = static_cast<unsigned char>(x);
            }
    }

    ClTestImage m_Dx;
    ClTestImage m_Dy;
};

void ExpectLengths(unsigned char nType, ClImage& rOut) {
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            const bool bSigned = ClImage::IsSigned(nType);
            const int dx = bSigned ? static_cast<signed char>(y) : y;
            const int dy = bSigned ? static_cast<signed char>(x) : x;
            ASSERT_EQ(rOut.LineData(y)[x], NaiveLength(dx, dy, bSigned ? 1414 : 707))
                << dx << ' ' << dy;
        }
}

// First in its file: where each test is a process of its own, these are the first objects.
TEST(IpEuclidLength, BuildsItsTablesOnceForThreadsThatBeginTogether) {
    constexpr int nThreads = 8;
    const StAllPairs pairs(ClImage::eInt8);
    std::array<ClImage, nThreads> aOut;
    std::atomic<int> nReady{0};
    std::vector<std::thread> aThreads;
    for (int i = 0; i < nThreads; ++i)
        aThreads.emplace_back([&, i] {
            ClImage Dx;
            ClImage Dy;
            Dx.Attach(pairs.m_Dx);
            Dy.Attach(pairs.m_Dy);
            ++nReady;
            while (nReady < nThreads)
                std::this_thread::yield();
            ClIpEuclidLength length;
            EXPECT_EQ(length.ApplyParam(Dx, Dy, aOut[static_cast<std::size_t>(i)]), 0);
        });
    for (std::thread& rThread : aThreads)
        rThread.join();
    for (ClImage& rOut : aOut)
        ExpectLengths(ClImage::eInt8, rOut);
}

TEST(IpEuclidLength, GivesEveryLengthOfTwoBytes) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8}) {
        StAllPairs pairs(nType);
        ClImage out;
        EXPECT_EQ(ClIpEuclidLength().ApplyParam(pairs.m_Dx, pairs.m_Dy, out), 0);
        ExpectLengths(nType, out);
    }
}

TEST(IpEuclidLength, UsesTheFullByte) {
    ClTestImage zero = Img({{0}});
    ClTestImage most = Img({{255}});
    ClImage out;
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(most, most, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{254}}));
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(zero, zero, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{0}}));
    ClTestImage least = Img(ClImage::eInt8, {{-128}});
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(least, least, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{255}}));
    ClTestImage one = Img(ClImage::eInt8, {{-1}});
    ClTestImage none = Img(ClImage::eInt8, {{0}});
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(one, none, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{1}})); // 1.414
}

TEST(IpEuclidLength, LetsTheFirstInputChooseTheTable) {
    ClTestImage positive = Img({{200}});
    ClTestImage negative = Img(ClImage::eInt8, {{-56}}); // the same byte
    ClImage out;
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(positive, negative, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{NaiveLength(200, 200, 707)}}));
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(negative, positive, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{NaiveLength(56, 56, 1414)}}));
}

TEST(IpEuclidLength, LeavesAnUnsignedImage) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8}) {
        ClTestImage dx = RandomImage(nType, 5, 3, 1, 1);
        ClTestImage dy = RandomImage(nType, 5, 3, 1, 2);
        ClImage out;
        EXPECT_EQ(ClIpEuclidLength().ApplyParam(dx, dy, out), 0);
        EXPECT_EQ(out.DataType(), ClImage::eUInt8);
        EXPECT_EQ(out.Black(), 0.0);
        EXPECT_EQ(out.White(), 255.0);
        EXPECT_TRUE(out.IsValid());
    }
}

TEST(IpEuclidLength, TakesTheSignOfAnyIntegerImage) {
    const struct {
        unsigned char m_nType;
        unsigned char m_nUnsigned;
        double m_dMove;
    } aRows[] = {{ClImage::eInt8, ClImage::eUInt8, 128.0},
                 {ClImage::eInt16, ClImage::eUInt16, 32768.0},
                 {ClImage::eInt32, ClImage::eUInt32, 2147483648.0},
                 {ClImage::eUInt8, ClImage::eUInt8, 0.0},
                 {ClImage::eUInt16, ClImage::eUInt16, 0.0},
                 {ClImage::eFloat32, ClImage::eFloat32, 0.0},
                 {ClImage::eDouble64, ClImage::eDouble64, 0.0}};
    for (const auto& Row : aRows) {
        ClTestImage image = RandomImage(Row.m_nType, 3, 2, 1, 1);
        const ClTestImage before = image;
        ClIpEuclidLength length;
        length.m_pOutImage = &image;
        length.SetOutImageSign();
        EXPECT_EQ(image.DataType(), Row.m_nUnsigned);
        EXPECT_EQ(image.Black(), before.Black() + Row.m_dMove);
        EXPECT_EQ(image.White(), before.White() + Row.m_dMove);
        EXPECT_TRUE(std::equal(image.Data(), image.Data() + image.SizeBytes(), before.Data()));
    }
}

TEST(IpEuclidLength, MeasuresEachPlaneAndLeavesThePadding) {
    ClTestImage dx = RandomImage(ClImage::eInt8, 3, 5, 3, 1);
    ClTestImage dy = RandomImage(ClImage::eInt8, 3, 5, 3, 2);
    ClImage out;
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(dx, dy, out), 0);
    ASSERT_EQ(out.Planes(), 3);
    for (int y = 0; y < 5; ++y) {
        for (int i = 0; i < 9; ++i)
            EXPECT_EQ(out.LineData(y)[i],
                      NaiveLength(dx.Line<signed char>(y)[i], dy.Line<signed char>(y)[i], 1414));
        for (int i = 9; i < 12; ++i)
            EXPECT_EQ(out.LineData(y)[i], 0);
    }
}

TEST(IpEuclidLength, MeasuresWhereTwoImagesOverlap) {
    ClTestImage dx = Img({{3, 3, 3}, {3, 3, 3}});
    ClTestImage dy = Img({{40, 40, 40}, {40, 40, 40}});
    ClImage out;
    ClIpEuclidLength length;
    length.m_bSizeMustBeEqual = false;
    length.m_nOffsetX = 1;
    EXPECT_EQ(length.ApplyParam(dx, dy, out), 0);
    const int n = NaiveLength(3, 40, 707);
    EXPECT_EQ(Pixels(out), Rows({{3, n, n, 40}, {3, n, n, 40}}));
}

TEST(IpEuclidLength, MeasuresNothingWherePlanesDiffer) {
    ClTestImage grey = RandomImage(ClImage::eUInt8, 3, 2, 1, 1);
    ClTestImage color = RandomImage(ClImage::eUInt8, 3, 2, 3, 2);
    ClImage out;
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(grey, color, out), 0);
    EXPECT_EQ(Pixels(out), Pixels(grey));
}

TEST(IpEuclidLength, MayReplaceEitherInput) {
    const ClTestImage dx = RandomImage(ClImage::eInt8, 7, 5, 1, 1);
    const ClTestImage dy = RandomImage(ClImage::eInt8, 7, 5, 1, 2);
    ClTestImage first = dx;
    ClTestImage second = dy;
    ClImage out;
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(first, second, out), 0);
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(first, second, first), 0);
    EXPECT_EQ(Pixels(first), Pixels(out));
    first = dx;
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(first, second, second), 0);
    EXPECT_EQ(Pixels(second), Pixels(out));
}

TEST(IpEuclidLength, RefusesWhatTheFrameRefuses) {
    ClTestImage bytes = Img({{1, 2}, {3, 4}});
    ClTestImage wide = FlatImage(ClImage::eInt16, 2, 2, 1, 0.0);
    ClTestImage high = Img({{1, 2}, {3, 4}, {5, 6}});
    ClTestImage out = Img({{9}});
    EXPECT_EQ(ClIpEuclidLength().Apply(), -37);
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(wide, bytes, out), -33);
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(bytes, wide, out), -33);
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(bytes, high, out), -14);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpEuclidLength, AnswersEveryMissingAllocationAndKeepsItsInputs) {
    ClTestImage dx = RandomImage(ClImage::eInt8, 7, 5, 1, 1);
    ClTestImage dy = RandomImage(ClImage::eInt8, 7, 5, 1, 2);
    const ClTestImage before = dx;
    FailEachAllocation([&] {
        ClImage image;
        image.Attach(dx);
        EXPECT_EQ(ClIpEuclidLength().ApplyParam(image, dy, image), 0);
    });
    ExpectSameImage(dx, before);
}

} // namespace
