// Whatever operators make of an image larger than those of other harnesses, and a capture in the
// end, they make the same at every instruction level, and the same again. Where the compiler makes
// one level only, what is left is that nothing breaks; but sharpening and the local threshold have
// plain definitions, which their results have to equal.

#include "OperatorCase.h"

#include "FingerPicture.h"

#include "ImageProcessing/IpBinarizeLocal2.h"
#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/IpRescale.h"
#include "ImageProcessing/IpUnsharpMasking.h"
#include "ImageProcessing/NaiveLocalThreshold.h"
#include "ImageProcessing/NaiveSharpening.h"
#include "Tools/Exception.h"

#include <optional>

namespace {

using namespace TestSupport;

Fuzz::ClMilestone s_Compared("an operator is compared");
Fuzz::ClMilestone s_Defined("an operator is compared with its definition");
Fuzz::ClMilestone s_Captured("a capture is compared");

/// What an operator answers, or what it throws: some refuse signed images.
template <class Work>
long Status(Work work) {
    try {
        return work();
    } catch (const ClException& e) {
        Fuzz::RequireStatus(e.Number());
        return e.Number();
    }
}

/// What a run of `work(in, out)` comes to: its status, and the image it gives.
template <class Work>
long RunOn(const ClTestImage& Image, Work work, ClImage& rOut) {
    ClTestImage In = Image;
    return Status([&] { return work(In, rOut); });
}

/// `work(in, out)` gives the same status and bytes at every level.
template <class Work>
void Compare(const ClTestImage& Image, Work work) {
    std::optional<std::string> First;
    const auto Run = [&] {
        ClImage Out;
        const long nStatus = RunOn(Image, work, Out);
        std::string Seen = std::to_string(nStatus) + ':';
        if (nStatus == 0 && Out.Data() != nullptr)
            Seen.append(reinterpret_cast<const char*>(Out.Data()), Out.SizeBytes());
        Fuzz::Require(!First || *First == Seen, "every level gives the same");
        First = Seen;
    };
    Fuzz::AtEveryLevel(Run);
    Run();
    s_Compared.Reach();
}

/// The levels give what they all give; it is to be what the definition says.
void Define(const ClImage& Out, const Rows& aExpected) {
    Fuzz::Require(Pixels(Out) == aExpected, "a result is that of the definition");
    s_Defined.Reach();
}

void CompareSharpening(const ClTestImage& Image, long nWidth, long nMode) {
    const auto sharpen = [&](ClImage& rIn, ClImage& rOut) {
        ClIpUnsharpMasking Sharpening;
        Sharpening.m_nMode = nMode;
        return Sharpening.ApplyParam(rIn, rOut, nWidth);
    };
    Compare(Image, sharpen);
    const auto blur = [&](ClImage& rIn, ClImage& rOut) {
        ClIpFilterGauss Gauss;
        Gauss.m_nMode = nMode;
        return Gauss.ApplyParam(rIn, rOut, ClIpUnsharpMasking().m_dGaussSigma, nWidth);
    };
    ClImage Low;
    ClImage Sharp;
    if (RunOn(Image, sharpen, Sharp) == 0 && RunOn(Image, blur, Low) == 0)
        Define(Sharp, NaiveSharpened(Pixels(Image), Pixels(Low), 1.0, 0));
}

void CompareThreshold(const ClTestImage& Image, const StLocalThreshold& Settings) {
    const auto compare = [&](ClImage& rIn, ClImage& rOut) {
        return ClIpBinarizeLocal2().ApplyParam(rIn, rOut, Settings.m_nSizeX, Settings.m_nSizeY,
                                               Settings.m_nOffset);
    };
    Compare(Image, compare);
    ClImage Out;
    if (Image.DataType() == ClImage::eUInt8 && RunOn(Image, compare, Out) == 0)
        Define(Out, NaiveThresholded(Pixels(Image), Settings));
}

void CompareOperators(Fuzz::ClBytes& rBytes) {
    const int nOperator = rBytes.Below(4);
    const int nFirst = rBytes.Next();
    const int nSecond = rBytes.Next();
    const int nThird = rBytes.Next();
    const ClTestImage Image = Fuzz::ImageFrom(rBytes, 120);
    if (nOperator == 0)
        Compare(Image, [&](ClImage& In, ClImage& Out) {
            return ClIpRescale().ApplyParamSize(
                In, Out, 1 + nFirst, 1 + nSecond,
                static_cast<ClIpRescale::eProcessingMode>(1 + nThird % 4));
        });
    else if (nOperator == 1)
        CompareSharpening(Image, 1 + nFirst % 40, 1 + nSecond % 3);
    else if (nOperator == 2)
        CompareThreshold(Image, {1 + nFirst % 60, 1 + nSecond % 60, nThird - 128});
    else
        Compare(Image, [&](ClImage& In, ClImage& Out) {
            return ClIpFilterGauss().ApplyParam(In, Out, nFirst / 16.0, nSecond % 50);
        });
}

void CompareCaptures(Fuzz::ClBytes& rBytes) {
    static const Fuzz::ClBlock s_Scanner(Fuzz::SmallScanner(128, 96, 128));
    static const Fuzz::ClHandle s_Handle;
    static const long s_nLoaded = CalibrateSetData(s_Handle, s_Scanner.Data(), s_Scanner.Size());
    Fuzz::Require(s_nLoaded == 0, "a scanner loads");
    s_Handle.Set(rBytes.Below(2) == 0 ? "MaskIsOutput=false" : "MaskIsOutput=true");
    const Fuzz::ClBlock capture(Fuzz::GreyBlock(128, 128, Fuzz::FingerPicture(128, rBytes), 19685));
    std::optional<std::string> First;
    Fuzz::AtEveryLevel([&] {
        const std::string Seen = Fuzz::Corrected(s_Handle, capture);
        Fuzz::Require(!First || *First == Seen, "every level corrects alike");
        First = Seen;
    });
    s_Captured.Reach();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    if (Bytes.Below(5) == 0)
        CompareCaptures(Bytes);
    else
        CompareOperators(Bytes);
    return 0;
}
