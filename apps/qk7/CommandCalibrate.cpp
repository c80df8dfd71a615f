/// `qk7 calibrate`: corrects captures.

#include "apps/qk7/Advice.h"
#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/Choices.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/FileRun.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/Measures.h"
#include "apps/qk7/Picture.h"

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
    StFileOptions m_Files;
    std::string m_Data;
    std::string m_Precalculated; ///< empty when none is given
    std::vector<std::string> m_aOptions;
    std::string m_Output;
    std::string m_Format; ///< empty for the one that the name of an output tells
    bool m_bSkipExisting = false;
    bool m_bVerbose = false;
    bool m_bMeasures = false;
};

/// The blocks, read once for all handles.
struct StScannerBlocks {
    Bytes m_Calibration;
    Bytes m_Precalculated;
};

/// What is known about the scanner without asking the library; empty frames when nothing is.
struct StScanner {
    StFrame m_Source;
    StFrame m_Target;
    std::uint32_t m_nPlanes = 1;
};

bool IsFolder(const StCalibrateCall& Call, const StInputs& Inputs) {
    std::error_code ignored;
    return Inputs.m_bSeveral || (!Call.m_Output.empty() && Call.m_Output.back() == '/') ||
           fs::is_directory(Call.m_Output, ignored);
}

/// In the folder, under the name of the capture and the ending of the format.
std::string OutputIn(const StCalibrateCall& Call, const StInput& Input) {
    if (IsStream(Input.m_Path))
        throw ClWrongUsage("standard input has no name for a file in " + Call.m_Output +
                           "; correct it by a call of its own, with -o FILE");
    fs::path output = fs::path(Call.m_Output) / Input.m_Name;
    if (!Call.m_Format.empty())
        output.replace_extension(Call.m_Format);
    return output.string();
}

/// Two results under one name are found before anything is written.
void CheckNamesOnce(const std::vector<std::string>& aOutputs) {
    std::set<std::string> seen;
    for (const std::string& output : aOutputs)
        if (!output.empty() && !IsStream(output) && !seen.insert(output).second)
            throw ClWrongUsage(output + " would be written twice; rename one of the inputs");
}

/// An output for each input, empty for one that is none.
std::vector<std::string> PlanOutputs(const StCalibrateCall& Call, const StInputs& Inputs) {
    const bool bFolder = IsFolder(Call, Inputs);
    if (bFolder && IsStream(Call.m_Output))
        throw ClWrongUsage("standard output cannot take several results; name a folder by -o");
    std::vector<std::string> outputs;
    for (const StInput& input : Inputs.m_aFiles)
        outputs.push_back(!input.m_Fault.empty() ? ""
                          : bFolder              ? OutputIn(Call, input)
                                                 : Call.m_Output);
    CheckNamesOnce(outputs);
    return outputs;
}

void MakeFolders(const std::string& Folder, const std::vector<std::string>& aOutputs) {
    MakeDirectory(Folder);
    std::set<std::string> folders;
    for (const std::string& output : aOutputs)
        if (!output.empty())
            folders.insert(fs::path(output).parent_path().string());
    for (const std::string& folder : folders)
        MakeDirectory(folder);
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

StScannerBlocks ReadBlocks(const StCalibrateCall& Call) {
    StScannerBlocks blocks;
    blocks.m_Calibration = ReadFile(Call.m_Data);
    if (!Call.m_Precalculated.empty())
        blocks.m_Precalculated = ReadFile(Call.m_Precalculated);
    return blocks;
}

void SetOptions(const StCalibrateCall& Call, ClHandle& rHandle) {
    for (const std::string& option : Call.m_aOptions)
        Handing(EHanded::eOption, "-O " + option, [&] { rHandle.SetOption(option); });
    if (!Call.m_Precalculated.empty())
        rHandle.SetOption("PrecalculatedData=true");
}

void SetBlocks(const StCalibrateCall& Call, const StScannerBlocks& Blocks, ClHandle& rHandle) {
    Handing(EHanded::eCalibration, ShownName(Call.m_Data, EStream::eIn),
            [&] { rHandle.SetData(Blocks.m_Calibration); });
    if (!Call.m_Precalculated.empty())
        Handing(EHanded::ePrecalculated, ShownName(Call.m_Precalculated, EStream::eIn),
                [&] { rHandle.SetPrecalculatedData(Blocks.m_Precalculated); });
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

Bytes Corrected(const ClHandle& Handle, const StScanner& Scanner, const std::string& Input,
                const Bytes& Capture) {
    const std::string name = ShownName(Input, EStream::eIn);
    try {
        return Handle.Calibrate(Capture, ExpectedBytes(Scanner, Capture.size()));
    } catch (const ClLibraryError& error) {
        throw ClFailure(name, error.what() + CaptureAdvice(error.Number(), Capture, Scanner));
    } catch (const std::bad_alloc& error) {
        throw ClFailure(name, WordsOf(error));
    }
}

/// The levels are those of the capture before and after.
void AddMeasures(ClHandle& rHandle, const StScanner& Scanner, const Bytes& Capture, StTold& rTold) {
    rTold.m_Json["measures"] = nullptr;
    if (!rHandle.IsEnabled("DynamicFingerMask"))
        return;
    const StFingerMeasures measures =
        MeasureCapture(rHandle, Capture, ExpectedBytes(Scanner, Capture.size()));
    rTold.m_Json["measures"] = FingerJson(measures);
    rTold.m_Text += FingerText(measures);
}

/// A dynamic calibration leaves levels, other work leaves those of an earlier capture.
StTold ToldOf(const ClHandle& Handle, const std::string& Input, const std::string& Output,
              bool bVerbose) {
    StTold told;
    told.m_Json = {{"file", Input}, {"output", Output}, {"skipped", false}};
    std::string words = "no levels, as DynamicFingerMask is off";
    told.m_Json["dirt_level"] = nullptr;
    told.m_Json["dry_finger_level"] = nullptr;
    if (Handle.IsEnabled("DynamicFingerMask")) {
        const StLevels levels = Handle.Levels();
        told.m_Json["dirt_level"] = levels.m_dDirt;
        told.m_Json["dry_finger_level"] = levels.m_dDryFinger;
        words = "dirt level " + Hundredths(levels.m_dDirt) + ", dry finger level " +
                Hundredths(levels.m_dDryFinger);
    }
    if (bVerbose)
        told.m_Text = ShownName(Input, EStream::eIn) + ": " + words + "\n";
    return told;
}

StTold Skipped(const std::string& Input, const std::string& Output, bool bVerbose) {
    StTold told;
    told.m_bLeftOut = true;
    told.m_Json = {{"file", Input}, {"output", Output}, {"skipped", true}};
    if (bVerbose)
        told.m_Text = Input + ": skipped, " + Output + " is there\n";
    return told;
}

bool IsThere(const std::string& Output) {
    std::error_code ignored;
    return !IsStream(Output) && fs::is_regular_file(Output, ignored);
}

EPictureFormat OutputFormat(const StCalibrateCall& Call, const std::string& Output) {
    return FormatOf(Call.m_Format.empty() ? Output : "x." + Call.m_Format);
}

/// A handle for one thread.
FileWork MakeWork(const StCalibrateCall& Call, const StScannerBlocks& Blocks,
                  const std::vector<StInput>& aInputs, const std::vector<std::string>& aOutputs) {
    const auto pHandle = std::make_shared<ClHandle>();
    SetOptions(Call, *pHandle);
    SetBlocks(Call, Blocks, *pHandle);
    const StScanner scanner = ScannerOf(Blocks.m_Calibration);
    return [&Call, &aInputs, &aOutputs, pHandle, scanner](std::size_t nFile) {
        const std::string& input = aInputs[nFile].m_Path;
        const std::string& output = aOutputs[nFile];
        if (Call.m_bSkipExisting && IsThere(output))
            return Skipped(input, output, Call.m_bVerbose);
        const Bytes capture = ReadBlock(input);
        WriteBlock(output, Corrected(*pHandle, scanner, input, capture),
                   OutputFormat(Call, output));
        StTold told = ToldOf(*pHandle, input, output, Call.m_bVerbose || Call.m_bMeasures);
        if (Call.m_bMeasures)
            AddMeasures(*pHandle, scanner, capture, told);
        return told;
    };
}

void Claim(const StCalibrateCall& Call, const StInputs& Inputs,
           const std::vector<std::string>& aOutputs) {
    std::vector<std::string> read = PathsOf(Inputs);
    read.insert(read.end(), {Call.m_Data, Call.m_Precalculated});
    ClaimStreams(read, {Call.m_Output}, Call.m_Files.m_bJson);
    CheckInputsStay(read, aOutputs);
}

void RunCalibrate(const StCalibrateCall& Call) {
    const StInputs inputs = ExpandInputs(Call.m_Files.m_aArguments,
                                         {Call.m_Files.m_bRecursive, true, false, Call.m_Output});
    const std::vector<std::string> outputs = PlanOutputs(Call, inputs);
    Claim(Call, inputs, outputs);
    const StScannerBlocks blocks = ReadBlocks(Call);
    const auto makeWork = [&] { return MakeWork(Call, blocks, inputs.m_aFiles, outputs); };
    // The blocks are judged before a folder is made.
    const FileWork first = makeWork();
    if (IsFolder(Call, inputs))
        MakeFolders(Call.m_Output, outputs);
    StFileRun run;
    run.m_Command = "calibrate";
    run.m_eForm = Call.m_Files.m_bJson ? EForm::eJson : EForm::eText;
    run.m_Done = "made";
    if (inputs.m_aFiles.size() > 1)
        run.m_LastWords = "interrupted; what is there is whole, --skip-existing goes on from it";
    DoFiles(run, Call.m_Files, inputs.m_aFiles, first, makeWork);
}

void AddScannerOptions(CLI::App& rCommand, StCalibrateCall& rCall) {
    rCommand.add_option("-d,--data", rCall.m_Data, "Calibration block of the scanner")
        ->required()
        ->type_name("scanner.cal");
    rCommand
        .add_option("--precalculated", rCall.m_Precalculated,
                    "Precalculated block made from it; saves preparing the warp table")
        ->type_name("scanner.pre");
    rCommand
        .add_option("-O,--option", rCall.m_aOptions,
                    "Option of the library, such as SensitiveMode=true; may be repeated. "
                    "Keys: DynamicFingerMask, SensitiveMode, GeometricCalibrate, MaskIsOutput, "
                    "PrecalculatedData")
        ->allow_extra_args(false)
        ->check(Suggested({"DynamicFingerMask=false", "SensitiveMode=true", "MaskIsOutput=true",
                           "GeometricCalibrate=oddLines", "GeometricCalibrate=off",
                           "PrecalculatedData=true"}))
        ->type_name("KEY=VALUE");
}

void AddOutputOptions(CLI::App& rCommand, StCalibrateCall& rCall) {
    rCommand
        .add_option("-o,--output", rCall.m_Output,
                    "Picture for one capture, PNG where the name ends in .png, - for standard "
                    "output; a folder for several, made when missing, whose files are named after "
                    "the captures")
        ->required()
        ->type_name("OUT");
    rCommand
        .add_option("--format", rCall.m_Format,
                    "Write bmp or png, whatever the names; files in a folder get this ending")
        ->check(OneOf({"bmp", "png"}))
        ->type_name("FORMAT");
    rCommand.add_flag("--skip-existing", rCall.m_bSkipExisting,
                      "Leave out captures whose result is there, to go on where a run stopped");
    rCommand.add_flag("-v,--verbose", rCall.m_bVerbose,
                      "Print the dirt level and the dry finger level of each capture");
    rCommand.add_flag("--measures", rCall.m_bMeasures,
                      "Print measures of each print as well: ridges, area, place; each capture is "
                      "corrected three times more for them");
}

} // namespace

void AddCalibrate(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand("calibrate", "Corrects captures of a scanner");
    const auto pCall = std::make_shared<StCalibrateCall>();
    AddScannerOptions(*pCommand, *pCall);
    AddOutputOptions(*pCommand, *pCall);
    AddJobsOption(*pCommand, pCall->m_Files);
    AddFileOptions(*pCommand, pCall->m_Files, "CAPTURE", "Captures, bitmaps or PNG");
    pCommand->callback([pCall] { RunCalibrate(*pCall); });
}

} // namespace qk7
