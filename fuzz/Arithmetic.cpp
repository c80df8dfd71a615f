// Arithmetic with one image and with two, of every pixel type, beside its definition: any shape and
// content, at every instruction level.

#include "OperatorCase.h"

#include "ImageProcessing/IpAbs.h"
#include "ImageProcessing/IpEuclidLength.h"
#include "ImageProcessing/IpInvert.h"
#include "ImageProcessing/IpMax.h"
#include "ImageProcessing/IpOffset.h"
#include "ImageProcessing/IpScale.h"
#include "ImageProcessing/NaiveLength.h"
#include "ImageProcessing/NaiveOperators.h"

namespace {

using namespace TestSupport;

Fuzz::ClMilestone s_One("one image is compared");
Fuzz::ClMilestone s_Two("two images are compared");
Fuzz::ClMilestone s_Lengths("lengths are compared");

constexpr int cnMostSide = 40;

struct StShape {
    explicit StShape(Fuzz::ClBytes& rBytes)
        : m_nWidth(1 + rBytes.Below(cnMostSide)), m_nHeight(1 + rBytes.Below(cnMostSide)),
          m_nPlanes(1 + rBytes.Below(4)) {}
    int m_nWidth;
    int m_nHeight;
    int m_nPlanes;
};

/// The bytes behind the settings, over and over.
class ClSamples {
public:
    explicit ClSamples(const std::string& Bytes) : m_Bytes(Bytes.empty() ? "\x7F" : Bytes) {}
    /// The same from another place on, for a second image.
    ClSamples FromTheMiddle() const {
        const std::size_t nHalf = m_Bytes.size() / 2;
        return ClSamples(m_Bytes.substr(nHalf) + m_Bytes.substr(0, nHalf));
    }
    unsigned char Next() { return static_cast<unsigned char>(m_Bytes[m_nNext++ % m_Bytes.size()]); }

private:
    std::string m_Bytes;
    std::size_t m_nNext = 0;
};

/// Any bits as a rule; most floating-point samples are small numbers, since few bits are.
void FillSample(ClSamples& rSamples, ClImage& rImage, int x, int y, int nPlane) {
    if (ClImage::IsFloat(rImage.DataType()) && rSamples.Next() % 4 != 0)
        return SetSample(rImage, x, y, nPlane, (rSamples.Next() - 128) / 32.0);
    unsigned char* pSample = SampleAddress(rImage, x, y, nPlane);
    for (int i = 0; i < rImage.BytesPerSample(); ++i)
        pSample[i] = rSamples.Next();
}

ClTestImage ImageOf(unsigned char nType, const StShape& Shape, ClSamples Samples) {
    ClTestImage Image = BlankImage(nType, Shape.m_nWidth, Shape.m_nHeight, Shape.m_nPlanes);
    for (int y = 0; y < Shape.m_nHeight; ++y)
        for (int x = 0; x < Shape.m_nWidth; ++x)
            for (int p = 0; p < Shape.m_nPlanes; ++p)
                FillSample(Samples, Image, x, y, p);
    return Image;
}

unsigned char TypeFrom(Fuzz::ClBytes& rBytes) {
    const int nChoice = rBytes.Below(16); // bytes have kernels of their own
    return static_cast<unsigned char>(nChoice < 8 ? caPixelTypes[nChoice] : ClImage::eUInt8);
}

/// Numbers near 1, and some that are not.
double NumberFrom(Fuzz::ClBytes& rBytes) {
    static constexpr double cadExponents[] = {1.0 / 64.0, 1.0, 300.0, 1e10};
    const double dFactor = cadExponents[rBytes.Below(4)];
    return rBytes.NextSigned() * dFactor;
}

/// NaN is the same as NaN here.
bool AreSame(const RealRows& a, const RealRows& b) {
    const auto same = [](double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); };
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(), [&](const auto& aRow, const auto& bRow) {
            return std::equal(aRow.begin(), aRow.end(), bRow.begin(), bRow.end(), same);
        });
}

// One image

template <class Apply>
void CompareOne(const ClTestImage& Image, const std::function<double(double)>& value, Apply apply) {
    RealRows aExpected = RealPixels(Image);
    for (std::vector<double>& rRow : aExpected)
        for (double& d : rRow)
            d = Stored(Image.DataType(), value(d));
    Fuzz::AtEveryLevel([&] {
        ClTestImage In = Image;
        ClImage Out;
        Fuzz::Require(apply(In, Out) == 0 && AreSame(RealPixels(Out), aExpected),
                      "a sample has the value of the definition");
    });
    s_One.Reach();
}

void CompareOne(Fuzz::ClBytes& rBytes) {
    const int nOperator = rBytes.Below(4);
    const unsigned char nType = TypeFrom(rBytes);
    const double dNumber = NumberFrom(rBytes);
    const StShape Shape(rBytes);
    const ClTestImage Image = ImageOf(nType, Shape, ClSamples(rBytes.Rest()));
    if (nOperator == 0)
        CompareOne(
            Image, [](double d) { return std::fabs(d); },
            [](ClImage& In, ClImage& Out) { return ClIpAbs().ApplyParam(In, Out); });
    else if (nOperator == 1)
        CompareOne(
            Image, [&](double d) { return NaiveInverted(Image, d); },
            [](ClImage& In, ClImage& Out) { return ClIpInvert().ApplyParam(In, Out); });
    else if (nOperator == 2)
        CompareOne(
            Image, [&](double d) { return NaiveScaled(Image, d, dNumber); },
            [&](ClImage& In, ClImage& Out) { return ClIpScale().ApplyParam(In, Out, dNumber); });
    else
        CompareOne(
            Image, [&](double d) { return NaiveOffset(Image, d, dNumber); },
            [&](ClImage& In, ClImage& Out) { return ClIpOffset().ApplyParam(In, Out, dNumber); });
}

// Two images

struct StPair {
    ClTestImage m_In1;
    ClTestImage m_In2;
    unsigned char m_nOut;
};

/// `configure(ip)` sets the operator up for a run.
template <class Operator, class Configure>
void CompareTwo(const StPair& Pair, Configure configure, const PairFunction& value) {
    const RealRows aExpected = NaivePairs(Pair.m_In1, Pair.m_In2, Pair.m_nOut, value);
    Fuzz::AtEveryLevel([&] {
        ClTestImage In1 = Pair.m_In1;
        ClTestImage In2 = Pair.m_In2;
        ClImage Out;
        Operator ip;
        configure(ip);
        Fuzz::Require(ip.ApplyParam(In1, In2, Out, Pair.m_nOut) == 0 &&
                          AreSame(RealPixels(Out), aExpected),
                      "a pair of samples gives the value of the definition");
    });
    s_Two.Reach();
}

void CompareSums(const StPair& Pair, ClIpAdd::EProcessingMode eMode) {
    const StRange Range(Pair.m_nOut);
    CompareTwo<ClIpAdd>(
        Pair, [&](ClIpAdd& rAdd) { rAdd.m_eMode = eMode; },
        [&](double a, double b) {
            return NaiveAdded(
                eMode, SumInLanguage(Pair.m_In1.DataType(), a, Pair.m_In2.DataType(), b), Range);
        });
}

void CompareDifferences(const StPair& Pair, ClIpSubtract::EDataRangeType eRange, double dLower,
                        double dUpper) {
    const auto configure = [&](ClIpSubtract& rSubtract) {
        rSubtract.m_eDataRange = eRange;
        rSubtract.m_dLowerBound = dLower;
        rSubtract.m_dUpperBound = dUpper;
    };
    ClIpSubtract Subtract;
    configure(Subtract);
    const StBounds Bounds = NaiveBounds(Subtract, Pair.m_In1, Pair.m_In2, Pair.m_nOut);
    CompareTwo<ClIpSubtract>(Pair, configure,
                             [&](double a, double b) { return Bounds.Clip(a - b); });
}

void CompareLargest(const StPair& Pair) {
    const StRange Range(Pair.m_nOut);
    CompareTwo<ClIpMax>(
        Pair, [](ClIpMax&) {}, [&](double a, double b) { return Range.Clip(b > a ? b : a); });
}

/// By the table of all pairs of bytes, whatever the operator's own loop would do.
template <class Operator>
void CompareByTable(const StPair& Pair, double (*pfnValue)(double, double)) {
    const StRange Range(Pair.m_nOut);
    CompareTwo<Operator>(
        Pair, [](Operator& ip) { ip.m_bUseLUT = true; },
        [&](double a, double b) { return Range.Clip(pfnValue(a, b)); });
}

void CompareTwo(Fuzz::ClBytes& rBytes) {
    const int nOperator = rBytes.Below(9);
    const bool bByTable = nOperator >= 7;
    const unsigned char nTold1 = TypeFrom(rBytes);
    const unsigned char nTold2 = TypeFrom(rBytes);
    const unsigned char nByte = ClImage::eUInt8;
    const unsigned char nType1 = bByTable ? nByte : nTold1;
    const unsigned char nType2 = bByTable ? nByte : nTold2;
    const unsigned char nOut = TypeFrom(rBytes);
    const double dLower = NumberFrom(rBytes);
    const double dUpper = NumberFrom(rBytes);
    const StShape Shape(rBytes);
    const ClSamples Samples(rBytes.Rest());
    const StPair Pair = {ImageOf(nType1, Shape, Samples),
                         ImageOf(nType2, Shape, Samples.FromTheMiddle()), nOut};
    if (nOperator < 3)
        CompareSums(Pair, static_cast<ClIpAdd::EProcessingMode>(nOperator));
    else if (nOperator < 6)
        CompareDifferences(Pair, static_cast<ClIpSubtract::EDataRangeType>(nOperator - 3), dLower,
                           dUpper);
    else if (nOperator == 6)
        CompareLargest(Pair);
    else if (nOperator == 7)
        CompareByTable<ClIpMax>(Pair, [](double a, double b) { return std::max(a, b); });
    else
        CompareByTable<ClIpSubtract>(Pair, [](double a, double b) { return a - b; });
}

// Lengths

Rows NaiveLengths(const ClImage& Dx, const ClImage& Dy) {
    const bool bSigned = Dx.DataType() == ClImage::eInt8;
    const Rows aDx = Pixels(Dx);
    Rows aLengths = Pixels(Dy);
    for (std::size_t y = 0; y < aLengths.size(); ++y)
        for (std::size_t i = 0; i < aLengths[y].size(); ++i)
            aLengths[y][i] = NaiveLength(aDx[y][i], aLengths[y][i], bSigned ? 1414 : 707);
    return aLengths;
}

void CompareLengths(Fuzz::ClBytes& rBytes) {
    const unsigned char nType = rBytes.Below(2) == 0 ? ClImage::eUInt8 : ClImage::eInt8;
    const StShape Shape(rBytes);
    const ClSamples Samples(rBytes.Rest());
    const ClTestImage Dx = ImageOf(nType, Shape, Samples);
    const ClTestImage Dy = ImageOf(nType, Shape, Samples.FromTheMiddle());
    const Rows aExpected = NaiveLengths(Dx, Dy);
    Fuzz::AtEveryLevel([&] {
        ClTestImage In1 = Dx;
        ClTestImage In2 = Dy;
        ClImage Out;
        Fuzz::Require(ClIpEuclidLength().ApplyParam(In1, In2, Out) == 0 && Pixels(Out) == aExpected,
                      "a length is that of its vector");
    });
    s_Lengths.Reach();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    const int nKind = Bytes.Below(8);
    if (nKind == 0)
        CompareLengths(Bytes);
    else if (nKind < 4)
        CompareOne(Bytes);
    else
        CompareTwo(Bytes);
    return 0;
}
