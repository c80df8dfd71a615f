// The tool's diagnosis of a target that the bytes spoil: it comes to an end, agrees with the
// library about whether the target is one, and draws a picture of it.

#include "ByteOrder.h"
#include "DotTarget.h"

#include "apps/qk7/TargetDiagnosis.h"

namespace {

Fuzz::ClMilestone s_Accepted("a target is accepted");
Fuzz::ClMilestone s_Refused("a target is refused");
Fuzz::ClMilestone s_Region("a region is refused");
Fuzz::ClMilestone s_Gap("a dot is missing");
Fuzz::ClMilestone s_Corrected("a corrected image is looked at");

bool IsInside(const Fuzz::StTargetFrame& Frame, double dX, double dY) {
    return dX >= 0.0 && dY >= 0.0 && dX < Frame.m_nWidth && dY < Frame.m_nHeight;
}

void CheckRefusals(const Fuzz::StTargetFrame& Frame, const qk7::StTargetDiagnosis& Diagnosis) {
    for (const qk7::StRefusal& Refusal : Diagnosis.m_aRefusals) {
        Fuzz::Require(!Refusal.m_Reason.empty() && !Refusal.m_Words.empty() &&
                          !Refusal.m_aRegions.empty(),
                      "a refusal has words and regions");
        for (const qk7::StRegion& Region : Refusal.m_aRegions)
            Fuzz::Require(IsInside(Frame, Region.m_dX, Region.m_dY) && Region.m_dArea > 0.0,
                          "a region lies in the image");
        s_Region.Reach();
    }
}

/// Without a grid there is no picture.
void CheckPicture(const std::string& Block, const qk7::Bytes& Picture) {
    const std::string Drawn(Picture.begin(), Picture.end());
    Fuzz::Require(
        Drawn.empty() ||
            (Drawn.size() == Block.size() &&
             Fuzz::Little<std::uint32_t>(Drawn, 4) == Fuzz::Little<std::uint32_t>(Block, 4) &&
             Fuzz::Little<std::uint32_t>(Drawn, 8) == Fuzz::Little<std::uint32_t>(Block, 8)),
        "a picture has the size of the image");
}

qk7::StTargetDiagnosis Diagnose(qk7::ETargetImage eImage, const Fuzz::StTargetFrame& Frame,
                                const std::string& Block) {
    const qk7::Bytes Image(Block.begin(), Block.end());
    qk7::StTargetDiagnosis Diagnosis = qk7::DiagnoseTarget(eImage, Image, {});
    Fuzz::Require(Diagnosis.m_nAccepted <= Diagnosis.m_nFound &&
                      Diagnosis.m_aGaps.size() <= Diagnosis.m_nDots,
                  "what was accepted was found, and a gap is one of the pattern's dots");
    CheckRefusals(Frame, Diagnosis);
    CheckPicture(Block, Diagnosis.m_Picture);
    if (!Diagnosis.m_aGaps.empty())
        s_Gap.Reach();
    return Diagnosis;
}

void DiagnoseRaw(const std::string& Block) {
    const qk7::StTargetDiagnosis Diagnosis =
        Diagnose(qk7::ETargetImage::eRaw, Fuzz::cRawTarget, Block);
    const Fuzz::ClBlock capture(Block);
    const Fuzz::ClHandle handle;
    const long nStatus = CalibrateGenerateData(handle, capture.Data(), capture.Size());
    Fuzz::Require((nStatus == 0) == Diagnosis.m_Words.empty(),
                  "the diagnosis accepts what the library does");
    (nStatus == 0 ? s_Accepted : s_Refused).Reach();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const std::uint8_t* const pTarget = pData + std::min<std::size_t>(nSize, 1);
    const std::size_t nTarget = nSize - std::min<std::size_t>(nSize, 1);
    if (nSize == 0 || pData[0] % 4 != 0) {
        DiagnoseRaw(Fuzz::DotTarget(Fuzz::cRawTarget, pTarget, nTarget));
        return 0;
    }
    Diagnose(qk7::ETargetImage::eCorrected, Fuzz::cCorrectedTarget,
             Fuzz::DotTarget(Fuzz::cCorrectedTarget, pTarget, nTarget));
    s_Corrected.Reach();
    return 0;
}
