// Linear filters of any kernel against their definition, at every instruction level.

#include "OperatorCase.h"

#include "ImageProcessing/NaiveLinearFilter.h"
#include "ImageProcessing/TestKernel.h"

namespace {

using namespace TestSupport;

Fuzz::ClMilestone s_Compared("a kernel is compared");

/// Symmetric, skew or of any other form.
std::vector<double> KernelFrom(Fuzz::ClBytes& rBytes) {
    const auto nTaps = static_cast<std::size_t>(2 + rBytes.Below(20));
    const int nForm = rBytes.Below(3);
    std::vector<double> aKernel(nTaps);
    for (std::size_t i = 0; i < nTaps; ++i)
        aKernel[i] = nForm == 0 || 2 * i < nTaps ? rBytes.NextSigned() : aKernel[nTaps - 1 - i];
    for (double& rTap : aKernel)
        rTap = nForm == 1 ? std::fabs(rTap) : rTap;
    aKernel[nTaps / 2] += 1.0;
    return aKernel;
}

/// A kernel that the filtered axes do not exceed is used whole, another as far as the largest odd
/// width below them reaches.
void LimitWidth(std::vector<double>& rKernel, long nMode, const ClImage& Image) {
    long nLimit = 1000;
    if ((nMode & 1) != 0)
        nLimit = std::min(nLimit, Image.Width() - 1L);
    if ((nMode & 2) != 0)
        nLimit = std::min(nLimit, Image.Height() - 1L);
    if (static_cast<long>(rKernel.size()) > nLimit)
        rKernel.resize(static_cast<std::size_t>(std::max(1L, nLimit - (nLimit % 2 == 0))));
}

/// Whether the taps are numbers that an integer holds.
bool IsUsable(const std::vector<double>& aKernel) {
    double dTotal = 0.0;
    double dSize = 0.0;
    for (double d : aKernel) {
        dTotal += d;
        dSize += std::fabs(d);
    }
    return dSize > 0.0 && std::fabs(dTotal) > 0.01;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    const long nMode = 1 + Bytes.Below(3);
    std::vector<double> aKernel = KernelFrom(Bytes);
    const ClTestImage Image = Fuzz::ImageFrom(Bytes, 70);
    LimitWidth(aKernel, nMode, Image);
    if (!IsUsable(aKernel))
        return 0;
    const Taps aTaps = NaiveTaps(aKernel);
    const bool bNegative = *std::min_element(aKernel.begin(), aKernel.end()) < 0.0;
    const bool bSigned = Image.DataType() == ClImage::eInt8 || bNegative;
    const Rows aExpected = NaiveFiltered(nMode, Pixels(Image), aTaps, bSigned);
    Fuzz::AtEveryLevel([&] {
        ClTestImage In = Image;
        ClImage Out;
        ClIpTestKernel filter(aKernel);
        filter.m_nMode = nMode;
        Fuzz::Require(filter.ApplyTo(In, Out) == 0 && Pixels(Out) == aExpected,
                      "a filter is the sum of its taps");
        s_Compared.Reach();
    });
    return 0;
}
