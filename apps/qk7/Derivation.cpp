#include "apps/qk7/Derivation.h"

#include "apps/qk7/Advice.h"
#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/Picture.h"

#include "TessarinCalibrateSDK.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace qk7 {

namespace {

using diagnosis::EReason;

std::string RefusalAdvice(const StDerivation& Derivation) {
    return g_szRecapture + (Derivation.m_Hint.empty() ? "" : "; " + Derivation.m_Hint) + ".";
}

[[noreturn]] void Refuse(const StDerivation& Derivation, const ClLibraryError& Error) {
    const StTargetDiagnosis diagnosis = Diagnose(Derivation);
    std::string message = Derivation.m_Target.Name() + ": " + Error.what();
    if (!diagnosis.m_Words.empty())
        message += " " + diagnosis.m_Words;
    throw ClRefusedTarget(message, diagnosis, RefusalAdvice(Derivation));
}

[[noreturn]] void Fail(const StDerivation& Derivation, const ClLibraryError& Error) {
    if (Error.Number() == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE)
        Refuse(Derivation, Error);
    // Of all that is handed over only the points of a reference can be corrupt here.
    if (Error.Number() == QMT_ERROR_CURRUPT_DATA && Derivation.m_Reference.IsThere())
        throw ClFailure(Derivation.m_Reference.m_Path,
                        std::string(Error.what()) + " Its target points are not those of a plate.");
    throw ClFailure(Derivation.m_Target.Name(),
                    Error.what() + BitmapAdvice(Error.Number(), Derivation.m_Target.m_Bytes));
}

Bytes Generated(const StDerivation& Derivation) {
    ClHandle handle;
    if (Derivation.m_Reference.IsThere())
        Handing(EHanded::eCalibration, Derivation.m_Reference.m_Path,
                [&] { handle.SetReferenceData(Derivation.m_Reference.m_Bytes); });
    try {
        handle.GenerateData(Derivation.m_Target.m_Bytes);
    } catch (const ClLibraryError& error) {
        Fail(Derivation, error);
    }
    return handle.Data();
}

/// Names the file whose fault it is, and the dot.
[[noreturn]] void FailToLoad(const StDerivation& Derivation, const Bytes& Calibration,
                             const ClLibraryError& Error) {
    const std::string words =
        std::string(": ") + Error.what() + " The calibration block derived from it does not load.";
    const auto fault = FindRecordFault(Calibration);
    if (!fault)
        throw ClFailure(Derivation.m_Target.Name() + words);
    const StTargetDiagnosis diagnosis = Diagnose(Derivation);
    if (fault->m_eList == StRecordFault::EList::eTarget && Derivation.m_Reference.IsThere())
        throw ClUnloadableRecord(Derivation.m_Reference.m_Path + words, *fault, diagnosis,
                                 "Measure the plate again, or leave --reference away; its block "
                                 "has to tell the resolution of its target points.");
    throw ClUnloadableRecord(Derivation.m_Target.Name() + words, *fault, diagnosis,
                             RefusalAdvice(Derivation));
}

/// Whatever their headers say: the first capture, saved once more, may tell another resolution.
bool IsSameImage(const Bytes& One, const Bytes& Other) {
    const diagnosis::StGrey one = diagnosis::ReadGrey(One);
    const diagnosis::StGrey other = diagnosis::ReadGrey(Other);
    return one.m_nWidth == other.m_nWidth && one.m_aSamples == other.m_aSamples;
}

/// No two captures have the same noise.
void CheckSecondIsAnother(const StDerivation& Derivation) {
    if (IsSameImage(Derivation.m_Second.m_Bytes, Derivation.m_Target.m_Bytes))
        throw ClFailure(Derivation.m_Second.Name(), "is the first capture again, which confirms "
                                                    "nothing. Lay the target anew and capture it.");
}

/// The calibration by its dots and, where there is one, the second capture.
StJudged JudgedByDots(const StDerivation& Derivation, const Bytes& Calibration) {
    StJudged judged;
    judged.m_First = diagnosis::Diagnose(Calibration, Derivation.m_Target.m_Bytes);
    if (Derivation.m_Second.IsThere()) {
        judged.m_Second =
            diagnosis::CheckSecond(Calibration, Corrected(Derivation.m_Second, Calibration));
        CheckSecondIsAnother(Derivation);
    }
    return judged;
}

/// A block that cannot be judged does not tell its name, or that of the capture it was made of.
template <class Work>
StJudged Naming(const std::string& Name, Work work) {
    try {
        return work();
    } catch (const std::invalid_argument& error) {
        throw ClFailure(Name, error.what());
    }
}

bool IsAboutPlate(const diagnosis::StReason& Reason) {
    return Reason.m_eReason == EReason::eScale || Reason.m_eReason == EReason::eShear;
}

} // namespace

const char* const g_szRecapture =
    "Clean platen and target, lay the target flat and straight, and capture it again";

std::string FileNameOf(const std::string& Path) {
    return IsStream(Path) ? "standard input" : std::filesystem::path(Path).filename().string();
}

StSource PictureSource(const std::string& Path) {
    return {Path, Path.empty() ? Bytes() : ReadBlock(Path)};
}

StSource FileSource(const std::string& Path) {
    return {Path, Path.empty() ? Bytes() : ReadFile(Path)};
}

StBlocks Derive(const StDerivation& Derivation, bool bPrecalculated) {
    StBlocks blocks;
    blocks.m_Calibration = Generated(Derivation);
    try {
        ClHandle handle;
        handle.SetData(blocks.m_Calibration);
        if (bPrecalculated)
            blocks.m_Precalculated =
                handle.PrecalculatedData(ExpectedPrecalculatedBytes(blocks.m_Calibration));
    } catch (const ClLibraryError& error) {
        FailToLoad(Derivation, blocks.m_Calibration, error);
    }
    return blocks;
}

StJudged Judge(const StDerivation& Derivation, const Bytes& Calibration) {
    return Naming(Derivation.m_Target.Name(),
                  [&] { return JudgedByDots(Derivation, Calibration); });
}

StJudged JudgeStored(const StDerivation& Derivation, const StSource& Stored) {
    return Naming(Stored.Name(), [&] {
        StJudged judged = JudgedByDots(Derivation, Stored.m_Bytes);
        judged.m_Target = diagnosis::CheckSecond(
            Stored.m_Bytes, Corrected(Derivation.m_Target, Stored.m_Bytes), "the capture");
        return judged;
    });
}

Bytes Corrected(const StSource& Capture, const Bytes& Calibration) {
    ClHandle handle;
    handle.SetOption("DynamicFingerMask=false");
    handle.SetData(Calibration);
    const StFrame frame = ReadCalibrationInfo(Calibration).m_Target;
    return HandingBitmap(Capture.Name(), Capture.m_Bytes, [&] {
        return handle.Calibrate(Capture.m_Bytes, BitmapBytes(frame.m_nWidth, frame.m_nHeight, 1));
    });
}

StTargetDiagnosis Diagnose(const StDerivation& Derivation) {
    return DiagnoseTarget(ETargetImage::eRaw, Derivation.m_Target.m_Bytes,
                          Derivation.m_Reference.m_Bytes);
}

/// Cleaning makes no plate smaller.
std::string DoubtAdvice(const diagnosis::Reasons& aReasons) {
    const bool bPlate = std::any_of(aReasons.begin(), aReasons.end(), IsAboutPlate);
    if (!bPlate)
        return g_szRecapture;
    const std::string advice = "Check the pitch of the plate, which has to be 2 mm or that of "
                               "--reference, and the resolution of the scanner";
    const bool bDots = !std::all_of(aReasons.begin(), aReasons.end(), IsAboutPlate);
    return bDots ? advice + ". " + g_szRecapture : advice;
}

} // namespace qk7
