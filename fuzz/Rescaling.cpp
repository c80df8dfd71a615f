// Rescaling in each mode beside its definition: any size, resolution and content, at every
// instruction level.

#include "OperatorCase.h"

#include "ImageProcessing/NaiveRescale.h"

namespace {

using namespace TestSupport;

Fuzz::ClMilestone s_Size("an image is brought to a size");
Fuzz::ClMilestone s_Pels("an image is brought to a resolution");

constexpr int cnMostIn = 60;
constexpr int cnMostOut = 90;

/// Hands what `work(rescale, in, out)` makes of the image to `compare(run, out)`.
template <class Work, class Compare>
void AtEveryLevel(const ClTestImage& Image, Work work, Compare compare) {
    Fuzz::AtEveryLevel([&] {
        ClTestImage In = Image;
        ClImage Out;
        ClIpRescale Rescale;
        Fuzz::Require(work(Rescale, In, Out) == 0, "an image is rescaled");
        Fuzz::Require(Out.DataType() == Image.DataType() && Out.Width() == Rescale.m_nDestWidth &&
                          Out.Height() == Rescale.m_nDestHeight,
                      "the result has its size and its type");
        Fuzz::Require(compare(Rescale, Pixels(Out)), "a rescaled image is that of the definition");
    });
}

/// A step of the nearest neighbour, by resolutions where both are known.
long long StepOf(int nIn, int nOut, int nPels, int nNewPels) {
    return nPels != 0 && nNewPels != 0 ? 4096LL * nPels / nNewPels : 4096LL * nIn / nOut;
}

/// Whether the output is what the definition makes of the input; `Rescale` has run.
bool IsDefined(const ClIpRescale& Rescale, const ClTestImage& In, const Rows& aIn,
               const Rows& aOut) {
    const int nWidth = Rescale.m_nDestWidth;
    const int nHeight = Rescale.m_nDestHeight;
    if (nWidth == In.Width() && nHeight == In.Height())
        return aOut == aIn;
    const double dParameter = Rescale.m_dConvParameter1;
    switch (Rescale.m_eMode) {
    case ClIpRescale::ModeWholeNumbered:
        return aOut == NaiveWhole(aIn, nWidth, nHeight,
                                  WholeFactor(In.PelsX(), Rescale.m_nDestPelsX),
                                  WholeFactor(In.PelsY(), Rescale.m_nDestPelsY));
    case ClIpRescale::ModeNearestNeighbour:
        return aOut == NaiveNearest(aIn, nWidth, nHeight,
                                    StepOf(In.Width(), nWidth, In.PelsX(), Rescale.m_nDestPelsX),
                                    StepOf(In.Height(), nHeight, In.PelsY(), Rescale.m_nDestPelsY));
    case ClIpRescale::ModeBiLinear:
        return aOut == NaiveBiLinear(aIn, nWidth, nHeight, In.DataType() == ClImage::eInt8);
    case ClIpRescale::ModeBiCubic:
        return dParameter > 0.0
                   ? IsSeparable(aIn, aOut, -dParameter, LimitsOf(In.DataType()))
                   : aOut == NaiveRadial(aIn, nWidth, nHeight, dParameter, LimitsOf(In.DataType()));
    default:
        return aOut == NaiveFant(aIn, nWidth, nHeight);
    }
}

template <class Work>
void Compare(const ClTestImage& Image, Work work) {
    const Rows aIn = Pixels(Image);
    AtEveryLevel(Image, work, [&](const ClIpRescale& Rescale, const Rows& aOut) {
        return IsDefined(Rescale, Image, aIn, aOut);
    });
}

void CompareSize(Fuzz::ClBytes& rBytes) {
    const auto eMode = static_cast<ClIpRescale::eProcessingMode>(1 + rBytes.Below(4));
    const double dParameter = rBytes.NextSigned() / 64.0;
    const int nWidth = 1 + rBytes.Below(cnMostOut);
    const int nHeight = 1 + rBytes.Below(cnMostOut);
    const bool bWithPels = rBytes.Below(2) != 0;
    ClTestImage Image = Fuzz::ImageFrom(rBytes, cnMostIn);
    Image.SetPelsX(bWithPels ? cnTestPels : 0);
    Image.SetPelsY(bWithPels ? cnTestPels : 0);
    Compare(Image, [&](ClIpRescale& rRescale, ClImage& rIn, ClImage& rOut) {
        rRescale.m_dConvParameter1 = dParameter;
        return rRescale.ApplyParamSize(rIn, rOut, nWidth, nHeight, eMode);
    });
    s_Size.Reach();
}

void ComparePels(Fuzz::ClBytes& rBytes) {
    const auto eMode = static_cast<ClIpRescale::eProcessingMode>(rBytes.Below(5));
    const int nPels = 20 + rBytes.Below(200);
    const int nNewPelsX = 20 + rBytes.Below(200);
    const int nNewPelsY = 20 + rBytes.Below(200);
    ClTestImage Image = Fuzz::ImageFrom(rBytes, cnMostIn / 2);
    Image.SetPelsX(nPels);
    Image.SetPelsY(240 - nPels);
    Compare(Image, [&](ClIpRescale& rRescale, ClImage& rIn, ClImage& rOut) {
        return rRescale.ApplyParamPels(rIn, rOut, nNewPelsX, nNewPelsY, eMode);
    });
    s_Pels.Reach();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    if (Bytes.Below(4) == 0)
        ComparePels(Bytes);
    else
        CompareSize(Bytes);
    return 0;
}
