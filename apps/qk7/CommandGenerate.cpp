/// `qk7 generate`: derives the calibration block of a scanner from a capture of the dot target, and
/// tells whether it can be believed.

#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/Derivation.h"
#include "apps/qk7/Document.h"
#include "apps/qk7/Picture.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qk7 {

namespace {

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

/// No output replaces an input or another output.
void CheckOutputs(const StGenerateCall& Call) {
    std::vector<std::string> taken = {Call.m_Target};
    for (const std::string& input : {Call.m_Reference, Call.m_Second})
        if (!input.empty())
            taken.push_back(input);
    for (const std::string& output : {Call.m_Output, Call.m_Precalculated, Call.m_DebugImage}) {
        for (const std::string& other : taken)
            if (!output.empty() && !IsStream(output) && IsSameFile(output, other))
                throw ClWrongUsage(output + " is named twice; give another output");
        taken.push_back(output);
    }
}

StDerivation DerivationOf(const StGenerateCall& Call) {
    StDerivation derivation;
    derivation.m_Target = PictureSource(Call.m_Target);
    derivation.m_Second = PictureSource(Call.m_Second);
    derivation.m_Reference = FileSource(Call.m_Reference);
    if (Call.m_DebugImage.empty())
        derivation.m_Hint = "--debug-image FILE shows what was found";
    return derivation;
}

/// The picture of a target that is refused or doubted must not hide why it is.
void DrawAnyway(const StGenerateCall& Call, const StTargetDiagnosis& Diagnosis) {
    try {
        if (!Call.m_DebugImage.empty())
            WriteBlock(Call.m_DebugImage, Diagnosis.m_Picture);
    } catch (const std::exception& error) {
        PrintError("qk7 generate", WordsOf(error));
    }
}

StBlocks DeriveOrDraw(const StGenerateCall& Call, const StDerivation& Derivation) {
    try {
        return Derive(Derivation, !Call.m_Precalculated.empty());
    } catch (const ClRefusedTarget& refused) {
        DrawAnyway(Call, refused.Diagnosis());
        throw;
    } catch (const ClUnloadableRecord& unloadable) {
        DrawAnyway(Call, unloadable.Diagnosis());
        throw;
    }
}

/// What a call came to.
struct StGenerated {
    StJudged m_Judged;
    StTargetDiagnosis m_Target; ///< nothing where nobody asked
    bool m_bWritten = false;
};

void WriteOutputs(const StGenerateCall& Call, const StBlocks& Blocks, StGenerated& rGenerated) {
    if (!rGenerated.m_Judged.IsGood())
        DrawAnyway(Call, rGenerated.m_Target);
    else if (!Call.m_DebugImage.empty())
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
    const StDerivation derivation = DerivationOf(Call);
    const StBlocks blocks = DeriveOrDraw(Call, derivation);
    StGenerated generated;
    generated.m_Judged = Judge(derivation, blocks.m_Calibration);
    if (Call.m_bJson || !Call.m_DebugImage.empty())
        generated.m_Target = Diagnose(derivation);
    WriteOutputs(Call, blocks, generated);
    return generated;
}

/// What to do about a doubtful calibration; nothing about a good one.
std::string DoubtWords(const StGenerateCall& Call, const StGenerated& Generated) {
    if (Generated.m_Judged.IsGood())
        return "";
    return "  " + DoubtAdvice(Generated.m_Judged.Reasons()) +
           (Call.m_DebugImage.empty() ? "; --debug-image FILE shows what was found." : ".") +
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
