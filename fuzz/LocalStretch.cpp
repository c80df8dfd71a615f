// The local stretch against its definition, at every instruction level.

#include "OperatorCase.h"

#include "ImageProcessing/IpStretchRangeLocal.h"
#include "ImageProcessing/NaiveLocalStretch.h"

namespace {

using namespace TestSupport;

Fuzz::ClMilestone s_Compared("a stretch is compared");

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    StLocalStretch Settings;
    Settings.m_nWidth = Settings.m_nSmoothWidth = 3 + 2 * Bytes.Below(12);
    Settings.m_nMinContrast = Bytes.NextSigned();
    const int nSmoothing = Bytes.Next();
    Settings.m_bMinSmoothing = (nSmoothing & 1) != 0;
    Settings.m_bMaxSmoothing = (nSmoothing & 2) != 0;
    const ClTestImage Image = Fuzz::ImageFrom(Bytes, 60, false);
    const Rows aIn = Pixels(Image);
    const Rows aExpected = NaiveStretched(aIn, NaiveLimits(aIn, Settings), Settings.m_nMinContrast);
    Fuzz::AtEveryLevel([&] {
        ClTestImage In = Image;
        ClImage Out;
        ClIpStretchRangeLocal ip;
        ip.m_nFilterWidth = Settings.m_nWidth;
        ip.m_nMinContrast = Settings.m_nMinContrast;
        ip.m_bUseMinSmoothing = Settings.m_bMinSmoothing;
        ip.m_bUseMaxSmoothing = Settings.m_bMaxSmoothing;
        ip.m_nSubSampleRate = 1;
        Fuzz::Require(ip.ApplyParam(In, Out) == 0 && Pixels(Out) == aExpected,
                      "a pixel is stretched between its limits");
        s_Compared.Reach();
    });
    return 0;
}
