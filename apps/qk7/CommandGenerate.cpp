/// `qk7 generate`: derives the calibration block of a scanner from a capture of the dot target, and
/// tells whether it can be believed.

#include "apps/qk7/Advice.h"
#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/Document.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/Picture.h"
#include "apps/qk7/RecordFault.h"
#include "apps/qk7/TargetReport.h"
#include "apps/qk7/VerdictReport.h"

#include "TessarinCalibrateSDK.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <memory>
#include <stdexcept>

namespace qk7 {

namespace {

namespace fs = std::filesystem;

struct StGenerateCall {
    std::string m_Target;
    std::string m_Output;
    std::string m_Precalculated; ///< this and the next three: empty when none is asked for
    std::string m_Reference;
    std::string m_Second;
    std::string m_DebugImage;
    bool m_bAcceptDoubtful = false;
    bool m_bJson = false;
};

bool AreSame(const std::string& a, const std::string& b) {
    std::error_code ignored;
    return fs::path(a).lexically_normal() == fs::path(b).lexically_normal() ||
           fs::equivalent(a, b, ignored);
}

/// No output replaces an input or another output.
void CheckOutputs(const StGenerateCall& Call) {
    std::vector<std::string> taken = {Call.m_Target};
    for (const std::string& input : {Call.m_Reference, Call.m_Second})
        if (!input.empty())
            taken.push_back(input);
    for (const std::string& output : {Call.m_Output, Call.m_Precalculated, Call.m_DebugImage}) {
        for (const std::string& other : taken)
            if (!output.empty() && !IsStream(output) && AreSame(output, other))
                throw ClWrongUsage(output + " is named twice; give another output");
        taken.push_back(output);
    }
}

/// The files of a call, and what has become of them.
struct StRun {
    Bytes m_Target;
    Bytes m_Reference;
    Bytes m_Second;
    ClHandle m_Handle;
};

void ReadFiles(const StGenerateCall& Call, StRun& rRun) {
    rRun.m_Target = ReadBlock(Call.m_Target);
    if (!Call.m_Second.empty())
        rRun.m_Second = ReadBlock(Call.m_Second);
    if (Call.m_Reference.empty())
        return;
    rRun.m_Reference = ReadFile(Call.m_Reference);
    Handing(EHanded::eCalibration, Call.m_Reference,
            [&] { rRun.m_Handle.SetReferenceData(rRun.m_Reference); });
}

StTargetDiagnosis Diagnose(const StRun& Run) {
    return DiagnoseTarget(ETargetImage::eRaw, Run.m_Target, Run.m_Reference);
}

/// The picture of a target that was refused must not hide why it was.
void DrawRefused(const StGenerateCall& Call, const StTargetDiagnosis& Diagnosis) {
    try {
        if (!Call.m_DebugImage.empty())
            WriteBlock(Call.m_DebugImage, Diagnosis.m_Picture);
    } catch (const std::exception& error) {
        PrintError("qk7 generate", WordsOf(error));
    }
}

std::string RecaptureAdvice(const StGenerateCall& Call) {
    return "Clean platen and target, lay the target flat and straight, and capture it again" +
           std::string(Call.m_DebugImage.empty() ? "; --debug-image FILE shows what was found."
                                                 : ".");
}

[[noreturn]] void Refuse(const StGenerateCall& Call, const StRun& Run,
                         const ClLibraryError& Error) {
    const StTargetDiagnosis diagnosis = Diagnose(Run);
    DrawRefused(Call, diagnosis);
    std::string message = ShownName(Call.m_Target, EStream::eIn) + ": " + Error.what();
    if (!diagnosis.m_Words.empty())
        message += " " + diagnosis.m_Words;
    throw ClRefusedTarget(message, diagnosis, RecaptureAdvice(Call));
}

[[noreturn]] void Fail(const StGenerateCall& Call, const StRun& Run, const ClLibraryError& Error) {
    if (Error.Number() == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE)
        Refuse(Call, Run, Error);
    // Of all that is handed over only the points of a reference can be corrupt here.
    if (Error.Number() == QMT_ERROR_CURRUPT_DATA && !Call.m_Reference.empty())
        throw ClFailure(Call.m_Reference,
                        std::string(Error.what()) + " Its target points are not those of a plate.");
    throw ClFailure(ShownName(Call.m_Target, EStream::eIn),
                    Error.what() + BitmapAdvice(Error.Number(), Run.m_Target));
}

/// The blocks that are written; without bytes those that are not.
struct StBlocks {
    Bytes m_Calibration;
    Bytes m_Precalculated;
};

/// Names the file whose fault it is, and the dot.
[[noreturn]] void FailToLoad(const StGenerateCall& Call, const StRun& Run, const Bytes& Calibration,
                             const ClLibraryError& Error) {
    const std::string words =
        std::string(": ") + Error.what() + " The calibration block derived from it does not load.";
    const auto fault = FindRecordFault(Calibration);
    if (!fault)
        throw ClFailure(ShownName(Call.m_Target, EStream::eIn) + words);
    if (fault->m_eList == StRecordFault::EList::eTarget && !Call.m_Reference.empty())
        throw ClUnloadableRecord(Call.m_Reference + words, *fault,
                                 "Measure the plate again, or leave --reference away; its block "
                                 "has to tell the resolution of its target points.");
    DrawRefused(Call, Diagnose(Run));
    throw ClUnloadableRecord(ShownName(Call.m_Target, EStream::eIn) + words, *fault,
                             RecaptureAdvice(Call));
}

/// A block that was generated need not load, and one that is written has to: it is read back on a
/// handle of its own. The table comes from there too, since a block holds coordinates rounded to
/// 32-bit floats: results are then the same with the precalculated block and without it.
StBlocks LoadableBlocks(const StGenerateCall& Call, const StRun& Run) {
    StBlocks blocks;
    blocks.m_Calibration = Run.m_Handle.Data();
    try {
        ClHandle handle;
        handle.SetData(blocks.m_Calibration);
        if (!Call.m_Precalculated.empty())
            blocks.m_Precalculated =
                handle.PrecalculatedData(ExpectedPrecalculatedBytes(blocks.m_Calibration));
    } catch (const ClLibraryError& error) {
        FailToLoad(Call, Run, blocks.m_Calibration, error);
    }
    return blocks;
}

/// The second capture, corrected with the calibration.
Bytes CorrectedSecond(const StGenerateCall& Call, const StRun& Run, const Bytes& Calibration) {
    ClHandle handle;
    handle.SetOption("DynamicFingerMask=false");
    handle.SetData(Calibration);
    const StFrame frame = ReadCalibrationInfo(Calibration).m_Target;
    return HandingBitmap(ShownName(Call.m_Second, EStream::eIn), Run.m_Second, [&] {
        return handle.Calibrate(Run.m_Second, BitmapBytes(frame.m_nWidth, frame.m_nHeight, 1));
    });
}

StJudged Judge(const StGenerateCall& Call, const StRun& Run, const Bytes& Calibration) {
    try {
        StJudged judged;
        judged.m_First = diagnosis::Diagnose(Calibration, Run.m_Target);
        if (!Call.m_Second.empty())
            judged.m_Second =
                diagnosis::CheckSecond(Calibration, CorrectedSecond(Call, Run, Calibration));
        return judged;
    } catch (const std::invalid_argument& error) {
        throw ClFailure(ShownName(Call.m_Target, EStream::eIn), error.what());
    }
}

/// What a call came to.
struct StGenerated {
    StJudged m_Judged;
    StTargetDiagnosis m_Target; ///< nothing where nobody asked
    bool m_bWritten = false;
};

void WriteOutputs(const StGenerateCall& Call, const StBlocks& Blocks, StGenerated& rGenerated) {
    if (!Call.m_DebugImage.empty())
        WriteBlock(Call.m_DebugImage, rGenerated.m_Target.m_Picture);
    if (!rGenerated.m_Judged.IsGood() && !Call.m_bAcceptDoubtful)
        return;
    if (!Call.m_Precalculated.empty())
        WriteFile(Call.m_Precalculated, {&Blocks.m_Precalculated});
    WriteFile(Call.m_Output, {&Blocks.m_Calibration});
    rGenerated.m_bWritten = true;
}

StGenerated Generate(const StGenerateCall& Call) {
    CheckOutputs(Call);
    ClaimStreams({Call.m_Target, Call.m_Reference, Call.m_Second},
                 {Call.m_Output, Call.m_Precalculated, Call.m_DebugImage}, Call.m_bJson);
    StRun run;
    ReadFiles(Call, run);
    try {
        run.m_Handle.GenerateData(run.m_Target);
    } catch (const ClLibraryError& error) {
        Fail(Call, run, error);
    }
    const StBlocks blocks = LoadableBlocks(Call, run);
    StGenerated generated;
    generated.m_Judged = Judge(Call, run, blocks.m_Calibration);
    if (Call.m_bJson || !Call.m_DebugImage.empty())
        generated.m_Target = Diagnose(run);
    WriteOutputs(Call, blocks, generated);
    return generated;
}

/// What to do about a doubtful calibration; nothing about a good one.
std::string DoubtWords(const StGenerateCall& Call, const StGenerated& Generated) {
    if (Generated.m_Judged.IsGood())
        return "";
    return "  " + RecaptureAdvice(Call) +
           (Generated.m_bWritten ? "\n  It is written all the same, as --accept-doubtful asks.\n"
                                 : "\n  No block is written; --accept-doubtful writes it all the "
                                   "same.\n");
}

std::string TextOf(const StGenerateCall& Call, const StGenerated& Generated,
                   const std::string& Verdict) {
    return TextOf(ShownName(Call.m_Output, EStream::eOut), Generated.m_Judged, Verdict) +
           DoubtWords(Call, Generated);
}

void TellInWords(const StGenerateCall& Call, const StGenerated& Generated) {
    const EColour eColour = Generated.m_Judged.IsGood() ? EColour::eGood : EColour::eDoubtful;
    Print(TextOf(Call, Generated, OutColoured(eColour, VerdictOf(Generated.m_Judged))));
}

void TellAsJson(const StGenerateCall& Call, const StGenerated& Generated) {
    Json json = {{"file", Call.m_Target},
                 {"calibration", Call.m_Output},
                 {"written", Generated.m_bWritten},
                 {"target", JsonOf(Generated.m_Target)}};
    json.update(JsonOf(Generated.m_Judged));
    PrintDocument("generate", json);
    if (Generated.m_Judged.IsGood())
        return;
    const std::string text = TextOf(Call, Generated, VerdictOf(Generated.m_Judged));
    PrintError("qk7 generate", text.substr(0, text.size() - 1));
}

bool IsRefusal(const std::exception& Error) {
    return dynamic_cast<const ClRefusedTarget*>(&Error) != nullptr ||
           dynamic_cast<const ClUnloadableRecord*>(&Error) != nullptr;
}

void TellFailure(const StGenerateCall& Call, const std::exception& Error) {
    if (!Call.m_bJson)
        return;
    Json json = FailureJson(Call.m_Target, Error);
    if (IsRefusal(Error))
        json["verdict"] = "refused";
    PrintDocument("generate", json);
}

void RunGenerate(const StGenerateCall& Call) {
    StGenerated generated;
    try {
        generated = Generate(Call);
    } catch (const ClWrongUsage&) {
        throw;
    } catch (const std::exception& error) {
        TellFailure(Call, error);
        throw;
    }
    if (Call.m_bJson)
        TellAsJson(Call, generated);
    else
        TellInWords(Call, generated);
    if (!generated.m_Judged.IsGood())
        throw CLI::RuntimeError(eDoubtful);
}

void AddOutputOptions(CLI::App& rCommand, StGenerateCall& rCall) {
    rCommand.add_option("-o,--output", rCall.m_Output, "Calibration block to write")
        ->required()
        ->type_name("scanner.cal");
    rCommand
        .add_option("--precalculated", rCall.m_Precalculated,
                    "Precalculated block to write, too: the prepared warp table")
        ->type_name("scanner.pre");
    rCommand.add_flag("--accept-doubtful", rCall.m_bAcceptDoubtful,
                      "Write a doubtful calibration, too; the exit status stays 3");
    rCommand
        .add_option("--debug-image", rCall.m_DebugImage,
                    "Bitmap to write, too, also when nothing else is written: spokes from the dots "
                    "to their neighbours, crosses on what was refused, boxes where dots are "
                    "missing")
        ->type_name("grid.bmp");
}

} // namespace

void AddGenerate(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand(
        "generate",
        "Derives a calibration block from a capture of the dot target and tells whether it can be "
        "believed. The exit status is 0 for a good one, 3 for a doubtful one, which is written "
        "with "
        "--accept-doubtful only, and 1 where the target is refused.");
    const auto pCall = std::make_shared<StGenerateCall>();
    pCommand->add_option("TARGET.bmp", pCall->m_Target, "Raw capture of the target")
        ->required()
        ->type_name("");
    AddOutputOptions(*pCommand, *pCall);
    pCommand
        ->add_option("--reference", pCall->m_Reference,
                     "Calibration block whose target points are the measured places of the dots on "
                     "this plate, in place of the ideal pattern")
        ->type_name("plate.cal");
    pCommand
        ->add_option("--second", pCall->m_Second,
                     "Second capture of the target, laid anew: it is corrected, and its dots have "
                     "to come out where they belong. This finds what one capture cannot show")
        ->type_name("second.bmp");
    pCommand->add_flag(
        "--json", pCall->m_bJson,
        "Print an object: the verdict with its reasons and figures for each dot, the "
        "plate and the corrected image; the dots found, missing and refused");
    pCommand->callback([pCall] { RunGenerate(*pCall); });
}

} // namespace qk7
