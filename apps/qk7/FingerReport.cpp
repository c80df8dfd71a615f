#include "apps/qk7/FingerReport.h"

#include "apps/qk7/Advice.h"
#include "apps/qk7/CalibrationReport.h"
#include "apps/qk7/Measures.h"
#include "apps/qk7/PagePicture.h"
#include "apps/qk7/ScannerReport.h"

namespace qk7 {

namespace {

/// A capture with one option changed.
Bytes CorrectedWith(ClHandle& rHandle, const std::string& Changed, const std::string& Back,
                    const Bytes& Capture) {
    rHandle.SetOption(Changed);
    Bytes corrected = rHandle.Calibrate(Capture, Capture.size());
    rHandle.SetOption(Back);
    return corrected;
}

void Correct(ClHandle& rHandle, const Bytes& Capture, report::StFinger& rFinger) {
    const Bytes warped =
        CorrectedWith(rHandle, "DynamicFingerMask=false", "DynamicFingerMask=true", Capture);
    const Bytes mask = CorrectedWith(rHandle, "MaskIsOutput=true", "MaskIsOutput=false", Capture);
    const Bytes corrected = rHandle.Calibrate(Capture, Capture.size());
    const StLevels levels = rHandle.Levels();
    rFinger.m_Values["calibrate/dirt_level"] = levels.m_dDirt;
    rFinger.m_Values["calibrate/dry_finger_level"] = levels.m_dDryFinger;
    AddNumbers("calibrate/measures", FingerJson(MeasureFinger(corrected, mask, warped)),
               rFinger.m_Values);
    rFinger.m_Corrected = PagePicture(corrected);
    rFinger.m_Mask = PagePicture(mask);
}

/// The options are as they were, whatever happens.
void ResetOptions(ClHandle& rHandle) {
    rHandle.SetOption("DynamicFingerMask=true");
    rHandle.SetOption("MaskIsOutput=false");
}

} // namespace

std::unique_ptr<ClHandle> FingerHandle(const StBlocks& Blocks) {
    auto pHandle = std::make_unique<ClHandle>();
    pHandle->SetOption("PrecalculatedData=true");
    pHandle->SetData(Blocks.m_Calibration);
    pHandle->SetPrecalculatedData(Blocks.m_Precalculated);
    return pHandle;
}

report::StFinger GatherFinger(const std::string& Path, ClHandle* pHandle) {
    const StSource source = PictureSource(Path);
    report::StFinger finger;
    finger.m_sName = FileNameOf(Path);
    finger.m_sFile = Path;
    finger.m_Raw = PictureOf(source);
    try {
        finger.m_Values["contamination/contamination_level"] =
            ClHandle().Contamination(source.m_Bytes);
        if (pHandle == nullptr) {
            finger.m_sFault = "It is not corrected: there is no calibration.";
            return finger;
        }
        ResetOptions(*pHandle);
        Correct(*pHandle, source.m_Bytes, finger);
    } catch (const ClLibraryError& error) {
        finger.m_sFault = std::string("The library does not correct it: ") + error.what() +
                          BitmapAdvice(error.Number(), source.m_Bytes);
    }
    return finger;
}

report::StPlaten GatherPlaten(const std::string& Path) {
    const StSource source = PictureSource(Path);
    report::StPlaten platen;
    platen.m_sName = FileNameOf(Path);
    platen.m_sFile = Path;
    platen.m_Picture = PictureOf(source);
    platen.m_Values["contamination/contamination_level"] = HandingBitmap(
        source.Name(), source.m_Bytes, [&] { return ClHandle().Contamination(source.m_Bytes); });
    AddNumbers("contamination/platen", PlatenJson(MeasurePlaten(source.m_Bytes)), platen.m_Values);
    return platen;
}

} // namespace qk7
