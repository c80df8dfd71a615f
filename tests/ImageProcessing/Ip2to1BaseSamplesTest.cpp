// The walk over pairs of samples of every pixel type, and the table that replaces it.

#include "ImageProcessing/Ip2to1Base.h"

#include "ImageProcessing/NaiveArithmetic.h"

namespace {

using TestSupport::caPixelTypes;
using TestSupport::ceDefault;
using TestSupport::ClIpPairProbe;
using TestSupport::ClTestImage;
using TestSupport::EdgeImage;
using TestSupport::Img;
using TestSupport::NaivePairs;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::Rows;
using TestSupport::Stored;

/// Distinguishes its arguments, and leaves every type.
double Mix(double a, double b) {
    return a * 1.5 - b * 0.25 + 3.5;
}

TEST(Ip2to1BaseSamples, AreConvertedFromAndToEveryType) {
    ClIpPairProbe ip;
    ip.m_Value = Mix;
    unsigned nSeed = 0;
    for (unsigned char nType1 : caPixelTypes)
        for (unsigned char nType2 : caPixelTypes)
            for (unsigned char nOut : caPixelTypes) {
                ClTestImage in1 = RandomImage(nType1, 7, 3, 1, ++nSeed);
                ClTestImage in2 = RandomImage(nType2, 7, 3, 1, ++nSeed);
                ClImage out;
                EXPECT_EQ(ip.ApplyParam(in1, in2, out, nOut), 0);
                EXPECT_EQ(out.DataType(), nOut);
                EXPECT_EQ(RealPixels(out), NaivePairs(in1, in2, nOut, Mix))
                    << int{nType1} << " " << int{nType2} << " " << int{nOut};
            }
}

TEST(Ip2to1BaseSamples, ArePairedOnEverySizeAndPlaneCount) {
    const struct {
        int m_nWidth, m_nHeight, m_nPlanes1, m_nPlanes2;
    } aCases[] = {{1, 1, 1, 1},   {1, 9, 3, 1},   {9, 1, 3, 3},   {385, 2, 1, 1},
                  {384, 2, 1, 1}, {769, 1, 1, 1}, {128, 2, 3, 1}, {129, 2, 3, 1},
                  {400, 2, 3, 1}, {97, 2, 4, 4},  {7, 5, 2, 2},   {13, 4, 5, 5}};
    for (const auto& c : aCases)
        for (bool bUseLUT : {false, true}) {
            ClIpPairProbe ip;
            ip.m_Value = Mix;
            ip.m_bUseLUT = bUseLUT;
            ClTestImage in1 =
                RandomImage(ClImage::eUInt8, c.m_nWidth, c.m_nHeight, c.m_nPlanes1, 1);
            ClTestImage in2 =
                RandomImage(ClImage::eUInt8, c.m_nWidth, c.m_nHeight, c.m_nPlanes2, 2);
            ClImage out;
            EXPECT_EQ(ip.ApplyParam(in1, in2, out, ClImage::eInt16), 0);
            EXPECT_EQ(RealPixels(out), NaivePairs(in1, in2, ClImage::eInt16, Mix))
                << c.m_nWidth << " " << c.m_nPlanes1 << " " << bUseLUT;
        }
}

TEST(Ip2to1BaseSamples, OfAGreyImageAreAppliedToEachOfThreePlanes) {
    ClIpPairProbe ip;
    ip.m_Value = [](double a, double b) { return a + b; };
    ClTestImage in1 = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}}, 3);
    ClTestImage in2 = Img({{10, 20}});
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{11, 12, 13, 24, 25, 26}}));
}

TEST(Ip2to1BaseSamples, OfOtherPlaneCountsAreNotWalked) {
    const struct {
        int m_nPlanes1, m_nPlanes2;
    } aCases[] = {{1, 3}, {2, 1}, {4, 1}, {3, 2}, {1, 2}, {4, 3}};
    for (const auto& c : aCases)
        for (bool bUseLUT : {false, true}) {
            ClIpPairProbe ip;
            ip.m_bUseLUT = bUseLUT;
            ip.m_Value = [](double, double) { return 9.0; };
            ClTestImage in1 = RandomImage(ClImage::eUInt8, 3, 2, c.m_nPlanes1, 1);
            ClTestImage in2 = RandomImage(ClImage::eUInt8, 3, 2, c.m_nPlanes2, 2);
            ClTestImage out = RandomImage(ClImage::eUInt8, 3, 2, c.m_nPlanes1, 3);
            const ClTestImage before = out;
            EXPECT_EQ(ip.ApplyParam(in1, in2, out, ceDefault), 0);
            EXPECT_EQ(Pixels(out), Pixels(before));
            EXPECT_EQ(ip.m_nValues, bUseLUT ? 65536 : 0);
        }
}

// The table

TEST(Ip2to1BaseTable, ReplacesTheCallsOnlyForAnEightBitImage2) {
    for (unsigned char nType2 : caPixelTypes) {
        ClIpPairProbe ip;
        ip.m_bUseLUT = true;
        ClTestImage in1 = RandomImage(ClImage::eUInt8, 5, 3, 1, 1);
        ClTestImage in2 = RandomImage(nType2, 5, 3, 1, 2);
        ClImage out;
        EXPECT_EQ(ip.ApplyParam(in1, in2, out, ceDefault), 0);
        EXPECT_EQ(ip.m_nValues, nType2 == ClImage::eUInt8 ? 65536 : 15) << int{nType2};
    }
}

TEST(Ip2to1BaseTable, IsOffByDefault) {
    ClIpPairProbe ip;
    EXPECT_FALSE(ip.m_bUseLUT);
}

TEST(Ip2to1BaseTable, GivesTheResultsOfTheWalkForEightBits) {
    ClTestImage in1 = TestSupport::BlankImage(ClImage::eUInt8, 256, 256);
    ClTestImage in2 = TestSupport::BlankImage(ClImage::eUInt8, 256, 256);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            in1.LineData(y)[x] = static_cast<unsigned char>(x);
            in2.LineData(y)[x] = static_cast<unsigned char>(y);
        }
    for (unsigned char nOut : caPixelTypes) {
        ClIpPairProbe ip;
        ip.m_Value = Mix;
        ip.m_bUseLUT = true;
        ClImage out;
        EXPECT_EQ(ip.ApplyParam(in1, in2, out, nOut), 0);
        EXPECT_EQ(RealPixels(out), NaivePairs(in1, in2, nOut, Mix)) << int{nOut};
    }
}

/// Entry [row][column] as its rules say, by the search for what was stored there last.
double NaiveEntry(const ClImage& In1, const ClImage& In2, unsigned char nOut, int nRow,
                  int nColumn) {
    double dEntry = 0.0;
    double a = In1.Black();
    for (int i = 0; i < 256 && a <= In1.White(); ++i, a += 1.0) {
        double b = In2.Black();
        for (int k = 0; k < 256 && b <= In2.White(); ++k, b += 1.0)
            if (std::trunc(a - In1.Black()) == nRow && std::trunc(b - In2.Black()) == nColumn)
                dEntry = Stored(nOut, Mix(a, b));
    }
    return dEntry;
}

int NaiveRow(const ClImage& In1, double a) {
    const double dFirst = In1.DataType() == ClImage::eUInt8 ? std::trunc(In1.Black()) : 0.0;
    const double dSample = std::trunc(a) - dFirst;
    return static_cast<int>(Stored(ClImage::eUInt8, dSample));
}

void ExpectTable(ClImage& In1, ClImage& In2, unsigned char nOut) {
    ClIpPairProbe ip;
    ip.m_Value = Mix;
    ip.m_bUseLUT = true;
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(In1, In2, out, nOut), 0);
    for (int x = 0; x < In1.Width(); ++x) {
        const double a = TestSupport::Sample(In1, x, 0);
        const double b = TestSupport::Sample(In2, x, 0);
        EXPECT_EQ(TestSupport::Sample(out, x, 0),
                  NaiveEntry(In1, In2, nOut, NaiveRow(In1, a), static_cast<int>(b)))
            << a << " " << b << ", type " << int{In1.DataType()} << " to " << int{nOut};
    }
}

TEST(Ip2to1BaseTable, IsReadByTheLowBitsOfOtherTypes) {
    for (unsigned char nType1 : caPixelTypes)
        for (int nShift : {0, 5}) {
            ClTestImage in1 = EdgeImage(nType1, nShift);
            ClTestImage in2 = EdgeImage(ClImage::eUInt8, 0);
            ExpectTable(in1, in2, ClImage::eInt16);
            ExpectTable(in1, in2, ClImage::eFloat32);
        }
}

TEST(Ip2to1BaseTable, HasAnEntryForEachStepOfTheRanges) {
    const struct {
        double m_dBlack1, m_dWhite1, m_dBlack2, m_dWhite2;
    } aCases[] = {{0, 255, 0, 255},        {10, 20, 0, 255},   {0, 255, 100, 127},
                  {3.75, 129.25, 0, 3},    {-5, 5, -2, 200},   {100, 100, 100, 100},
                  {0.1, 254.9, 0.3, 99.9}, {0, 70000, 0, 1e9}, {20, 10, 0, 255}};
    for (const auto& c : aCases)
        for (unsigned char nType1 : {ClImage::eUInt8, ClImage::eInt16}) {
            ClTestImage in1 = EdgeImage(nType1, 2);
            ClTestImage in2 = EdgeImage(ClImage::eUInt8, 0);
            in1.SetBlack(c.m_dBlack1);
            in1.SetWhite(c.m_dWhite1);
            in2.SetBlack(c.m_dBlack2);
            in2.SetWhite(c.m_dWhite2);
            ExpectTable(in1, in2, ClImage::eInt32);
        }
}

TEST(Ip2to1BaseTable, CountsTheRangesThatItFills) {
    const double dInfinity = std::numeric_limits<double>::infinity();
    const double dNaN = std::numeric_limits<double>::quiet_NaN();
    const struct {
        double m_dBlack, m_dWhite;
        long m_nRows;
    } aCases[] = {{0, 255, 256},
                  {0, 1e300, 256},
                  {7, 7, 1},
                  {7, 6, 0},
                  {0.5, 3.25, 3},
                  {1e300, 1e300, 256}, // steps of 1 lead nowhere
                  {-dInfinity, 0, 0},
                  {0, dInfinity, 0},
                  {dNaN, 0, 0},
                  {0, dNaN, 0},
                  {-9007199254740994.0, 0, 255}}; // one step of 1 becomes one of 2
    for (const auto& c : aCases) {
        ClIpPairProbe ip;
        ip.m_bUseLUT = true;
        ip.m_Value = [](double, double) { return 7.0; };
        ClTestImage in1 = EdgeImage(ClImage::eInt32, 0);
        in1.SetBlack(c.m_dBlack);
        in1.SetWhite(c.m_dWhite);
        ClTestImage in2 = EdgeImage(ClImage::eUInt8, 0);
        in2.SetWhite(1.0);
        ClImage out;
        EXPECT_EQ(ip.ApplyParam(in1, in2, out, ClImage::eUInt8), 0);
        EXPECT_EQ(ip.m_nValues, 2 * c.m_nRows) << c.m_dBlack << " to " << c.m_dWhite;
    }
}

TEST(Ip2to1BaseTable, TakesABlackThatIsNoNumberForZero) {
    ClIpPairProbe ip;
    ip.m_bUseLUT = true;
    ip.m_Value = [](double, double) { return 7.0; };
    ClTestImage in1 = Img({{0, 100, 255}});
    in1.SetBlack(std::nan(""));
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in1, in1, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 0}}));
    EXPECT_EQ(ip.m_nValues, 0);
}

} // namespace
