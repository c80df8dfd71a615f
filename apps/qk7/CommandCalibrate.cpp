/// `qk7 calibrate`: corrects captures.

#include "apps/qk7/Advice.h"
#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/FileReport.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/Picture.h"
#include "apps/qk7/Progress.h"

#include "TessarinCalibrateSDK.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>

namespace qk7 {

namespace {

namespace fs = std::filesystem;

struct StCalibrateCall {
    std::string m_Data;
    std::string m_Precalculated; ///< empty when none is given
    std::vector<std::string> m_aOptions;
    std::vector<std::string> m_aInputs;
    std::string m_Output;
    bool m_bVerbose = false;
    bool m_bJson = false;
};

/// What is known about the scanner without asking the library; empty frames when nothing is.
struct StScanner {
    StFrame m_Source;
    StFrame m_Target;
    std::uint32_t m_nPlanes = 1;
};

bool IsFolder(const StCalibrateCall& Call) {
    std::error_code ignored;
    return Call.m_aInputs.size() > 1 || (!Call.m_Output.empty() && Call.m_Output.back() == '/') ||
           fs::is_directory(Call.m_Output, ignored);
}

/// Two results under one name, or a result in the place of its capture, are found before anything
/// is written.
void CheckOutputs(const StCalibrateCall& Call, const std::vector<std::string>& aOutputs) {
    std::set<std::string> seen;
    for (std::size_t i = 0; i < aOutputs.size(); ++i) {
        std::error_code ignored;
        if (!seen.insert(aOutputs[i]).second)
            throw ClWrongUsage(aOutputs[i] + " would be written twice; rename one of the inputs");
        if (fs::equivalent(Call.m_aInputs[i], aOutputs[i], ignored))
            throw ClWrongUsage(aOutputs[i] + " is its own input; give another output");
    }
}

std::vector<std::string> PlanOutputs(const StCalibrateCall& Call) {
    std::vector<std::string> outputs;
    for (const std::string& input : Call.m_aInputs)
        outputs.push_back(IsFolder(Call)
                              ? (fs::path(Call.m_Output) / fs::path(input).filename()).string()
                              : Call.m_Output);
    CheckOutputs(Call, outputs);
    return outputs;
}

StScanner ScannerOf(const Bytes& Calibration) {
    try {
        const StCalibrationInfo info = ReadCalibrationInfo(Calibration);
        return {info.m_Source, info.m_Target, info.m_nPlanes};
    } catch (const ClFailure&) {
        return {}; // the library judges the block; this is for sizes and messages
    }
}

/// A block large enough for the result in every mode, so that no calibration is spent on asking.
/// Absurd claims are left to the library.
std::size_t ExpectedBytes(const StScanner& Scanner, std::size_t nCaptureBytes) {
    constexpr std::uint64_t nMost = std::uint64_t{64} << 20;
    const StFrame& target = Scanner.m_Target;
    if (target.m_nWidth > nMost || target.m_nHeight > nMost)
        return nCaptureBytes;
    const std::uint64_t nWarped = BitmapBytes(target.m_nWidth, target.m_nHeight, Scanner.m_nPlanes);
    return std::max<std::size_t>(nCaptureBytes, std::min(nWarped, nMost));
}

StScanner Prepare(const StCalibrateCall& Call, ClHandle& rHandle) {
    for (const std::string& option : Call.m_aOptions)
        Handing(EHanded::eOption, "-O " + option, [&] { rHandle.SetOption(option); });
    if (!Call.m_Precalculated.empty())
        rHandle.SetOption("PrecalculatedData=true");
    const Bytes calibration = ReadFile(Call.m_Data);
    Handing(EHanded::eCalibration, Call.m_Data, [&] { rHandle.SetData(calibration); });
    if (!Call.m_Precalculated.empty()) {
        const Bytes table = ReadFile(Call.m_Precalculated);
        Handing(EHanded::ePrecalculated, Call.m_Precalculated,
                [&] { rHandle.SetPrecalculatedData(table); });
    }
    return ScannerOf(calibration);
}

std::string Pixels(std::int64_t nWidth, std::int64_t nHeight) {
    return std::to_string(nWidth) + " x " + std::to_string(nHeight);
}

std::string CaptureAdvice(long nNumber, const Bytes& Capture, const StScanner& Scanner) {
    if (nNumber != QMT_ERROR_BITMAP_DIMENSION)
        return BitmapAdvice(nNumber, Capture);
    const StBitmapInfo info = ReadBitmapInfo(Capture);
    return " It has " + Pixels(info.m_nWidth, info.m_nHeight) +
           " pixels; this calibration is for captures of " +
           Pixels(Scanner.m_Source.m_nWidth, Scanner.m_Source.m_nHeight) + ".";
}

void CalibrateFile(const ClHandle& Handle, const StScanner& Scanner, const std::string& Input,
                   const std::string& Output) {
    const Bytes capture = ReadBlock(Input);
    try {
        WriteBlock(Output, Handle.Calibrate(capture, ExpectedBytes(Scanner, capture.size())));
    } catch (const ClLibraryError& error) {
        throw ClFailure(Input, error.what() + CaptureAdvice(error.Number(), capture, Scanner));
    } catch (const std::bad_alloc& error) {
        throw ClFailure(Input, WordsOf(error));
    }
}

/// A dynamic calibration leaves levels, other work leaves those of an earlier capture.
void AddLevels(const ClHandle& Handle, const std::string& Input, const std::string& Output,
               ClFileReport& rReport) {
    Json json = {{"file", Input}, {"output", Output}};
    if (!Handle.IsEnabled("DynamicFingerMask")) {
        json["dirt_level"] = nullptr;
        json["dry_finger_level"] = nullptr;
        rReport.Add(Input + ": no levels, as DynamicFingerMask is off\n", json);
        return;
    }
    const StLevels levels = Handle.Levels();
    json["dirt_level"] = levels.m_dDirt;
    json["dry_finger_level"] = levels.m_dDryFinger;
    rReport.Add(Input + ": dirt level " + Hundredths(levels.m_dDirt) + ", dry finger level " +
                    Hundredths(levels.m_dDryFinger) + "\n",
                json);
}

EForm FormOf(const StCalibrateCall& Call) {
    if (Call.m_bJson)
        return EForm::eJson;
    return Call.m_bVerbose ? EForm::eText : EForm::eSilent;
}

void RunCalibrate(const StCalibrateCall& Call) {
    const std::vector<std::string> outputs = PlanOutputs(Call);
    ClHandle handle;
    const StScanner scanner = Prepare(Call, handle);
    if (IsFolder(Call))
        MakeDirectory(Call.m_Output);
    ClFileReport report("calibrate", FormOf(Call));
    ClProgress progress(outputs.size());
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const std::string& input = Call.m_aInputs[i];
        progress.Begin(input);
        try {
            CalibrateFile(handle, scanner, input, outputs[i]);
            AddLevels(handle, input, outputs[i], report);
        } catch (const std::exception& error) {
            report.AddFailure(input, error, &progress);
        }
        progress.Done();
    }
    progress.Clear();
    report.End();
}

} // namespace

void AddCalibrate(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand("calibrate", "Corrects captures of a scanner");
    const auto pCall = std::make_shared<StCalibrateCall>();
    pCommand->add_option("-d,--data", pCall->m_Data, "Calibration block of the scanner")
        ->required()
        ->type_name("scanner.cal");
    pCommand
        ->add_option("--precalculated", pCall->m_Precalculated,
                     "Precalculated block made from it; saves preparing the warp table")
        ->type_name("scanner.pre");
    pCommand
        ->add_option("-O,--option", pCall->m_aOptions,
                     "Option of the library, such as SensitiveMode=true; may be repeated. "
                     "Keys: DynamicFingerMask, SensitiveMode, GeometricCalibrate, MaskIsOutput, "
                     "PrecalculatedData")
        ->allow_extra_args(false)
        ->type_name("KEY=VALUE");
    pCommand->add_option("IN.bmp", pCall->m_aInputs, "Captures, with or without a file header")
        ->required()
        ->type_name("");
    pCommand
        ->add_option("-o,--output", pCall->m_Output,
                     "Bitmap file for one capture; a directory for several, made when missing, "
                     "whose files are named after the captures")
        ->required()
        ->type_name("OUT");
    pCommand->add_flag("-v,--verbose", pCall->m_bVerbose,
                       "Print the dirt level and the dry finger level of each capture");
    pCommand->add_flag("--json", pCall->m_bJson,
                       "Print the levels as an array with an object for each capture");
    pCommand->callback([pCall] { RunCalibrate(*pCall); });
}

} // namespace qk7
