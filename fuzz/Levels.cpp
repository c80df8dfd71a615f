// Operators without a definition in one loop: whatever they make of an image, they make the same at
// every instruction level, and the same again. Where the compiler makes one level only, what is
// left is that nothing breaks.

#include "OperatorCase.h"

#include "FingerPicture.h"

#include "ImageProcessing/IpBinarizeLocal2.h"
#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/IpRescale.h"
#include "ImageProcessing/IpUnsharpMasking.h"
#include "Tools/Exception.h"

#include <optional>

namespace {

using TestSupport::ClTestImage;

Fuzz::ClMilestone s_Compared("an operator is compared");
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

/// `work(in, out)` gives the same status and bytes at every level.
template <class Work>
void Compare(const ClTestImage& Image, Work work) {
    std::optional<std::string> First;
    const auto Run = [&] {
        ClTestImage In = Image;
        ClImage Out;
        const long nStatus = Status([&] { return work(In, Out); });
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
        Compare(Image, [&](ClImage& In, ClImage& Out) {
            return ClIpUnsharpMasking().ApplyParam(In, Out, 1 + nFirst % 40);
        });
    else if (nOperator == 2)
        Compare(Image, [&](ClImage& In, ClImage& Out) {
            return ClIpBinarizeLocal2().ApplyParam(In, Out, 1 + nFirst % 60, 1 + nSecond % 60,
                                                   nThird - 128);
        });
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
