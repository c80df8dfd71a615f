/// `qk7 report`: pages that tell about scanners, and show why.

#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/Derivation.h"
#include "apps/qk7/ReportBatch.h"
#include "apps/qk7/TargetReport.h"
#include "report/Page.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qk7 {

namespace {

struct StReportCall {
    StScannerFiles m_Scanner;
    StReportBatch m_Batch;
    std::string m_Output;
};

bool HasScannerOptions(const StScannerFiles& Files) {
    for (const std::string& path : PathsOf(Files))
        if (!path.empty())
            return true;
    return !Files.m_Title.empty();
}

void CheckCall(const StReportCall& Call) {
    const StScannerFiles& scanner = Call.m_Scanner;
    if (!Call.m_Batch.m_Folder.empty() && HasScannerOptions(scanner))
        throw ClWrongUsage("--batch takes all files from its folders; name no others");
    if (Call.m_Batch.m_Folder.empty() && scanner.m_Target.empty())
        throw ClWrongUsage(scanner.m_aFingers.empty()
                               ? "name a capture of the target, or a folder by --batch"
                               : "name a capture of the target in front of --finger, which takes "
                                 "all names behind it");
    if (!scanner.m_Calibration.empty() && !scanner.m_Reference.empty())
        throw ClWrongUsage("--reference is for a calibration that is derived; leave it away with "
                           "--calibration");
}

/// Patterns and folders stand for their files, as in other commands.
std::vector<std::string> FingersOf(const std::vector<std::string>& aArguments) {
    std::vector<std::string> paths;
    for (const StInput& finger : ExpandInputs(aArguments, {}).m_aFiles) {
        if (!finger.m_Fault.empty())
            throw ClFailure(finger.m_Path, finger.m_Fault);
        paths.push_back(finger.m_Path);
    }
    return paths;
}

int StatusOfVerdict(report::EVerdict eVerdict) {
    return eVerdict == report::EVerdict::eGood       ? eDone
           : eVerdict == report::EVerdict::eDoubtful ? eDoubtful
                                                     : eFailed;
}

/// The page is made whole before a byte of it is written.
report::StScanner WriteReport(const StReportCall& Call) {
    StScannerFiles files = Call.m_Scanner;
    files.m_aFingers = FingersOf(files.m_aFingers);
    CheckInputsStay(PathsOf(files), {Call.m_Output});
    report::StScanner scanner = GatherScanner(files);
    WriteText(Call.m_Output, report::PageOf(scanner));
    return scanner;
}

void TellReport(const StReportCall& Call, const report::StScanner& Scanner) {
    if (!Call.m_Batch.m_Files.m_bJson) {
        Print(ScannerText(ShownName(Call.m_Output, EStream::eOut), Scanner));
        return;
    }
    Json json = {{"file", Call.m_Scanner.m_Target}, {"report", Call.m_Output}};
    json.update(ScannerJson(Scanner));
    PrintDocument("report", json);
}

void ReportOne(const StReportCall& Call) {
    ClaimStreams(PathsOf(Call.m_Scanner), {Call.m_Output}, Call.m_Batch.m_Files.m_bJson);
    report::StScanner scanner;
    try {
        scanner = WriteReport(Call);
    } catch (const ClWrongUsage&) {
        throw;
    } catch (const std::exception& error) {
        if (Call.m_Batch.m_Files.m_bJson)
            PrintDocument("report", FailureJson(Call.m_Scanner.m_Target, error));
        throw;
    }
    TellReport(Call, scanner);
    if (scanner.m_eVerdict != report::EVerdict::eGood)
        throw CLI::RuntimeError(StatusOfVerdict(scanner.m_eVerdict));
}

void RunReport(StReportCall call) {
    CheckCall(call);
    if (call.m_Batch.m_Folder.empty())
        return ReportOne(call);
    if (IsStream(call.m_Output))
        throw ClWrongUsage("standard output cannot take several pages; name a folder by -o");
    call.m_Batch.m_Output = call.m_Output;
    ReportBatch(call.m_Batch);
}

void AddScannerFiles(CLI::App& rCommand, StScannerFiles& rFiles) {
    rCommand.add_option("TARGET.bmp", rFiles.m_Target, "Raw capture of the target")->type_name("");
    rCommand
        .add_option("--second", rFiles.m_Second,
                    "Second capture of the target, laid anew: finds what one cannot show")
        ->type_name("second.bmp");
    rCommand
        .add_option("--reference", rFiles.m_Reference,
                    "Calibration block whose target points are the measured places of the dots on "
                    "this plate")
        ->type_name("plate.cal");
    rCommand
        .add_option("--calibration", rFiles.m_Calibration,
                    "Stored block of the scanner, judged with the target in place of one derived "
                    "from it")
        ->type_name("scanner.cal");
    rCommand
        .add_option("--empty", rFiles.m_Empty,
                    "Raw capture of the empty platen: light, dirt, noise")
        ->type_name("empty.bmp");
    rCommand
        .add_option("--finger", rFiles.m_aFingers,
                    "Raw captures of fingers, shown before and after, and measured; a folder or a "
                    "quoted pattern stands for the pictures in it")
        ->type_name("finger.bmp");
    rCommand
        .add_option("--title", rFiles.m_Title,
                    "Name of the scanner; without it the page is named after the target's file")
        ->type_name("NAME");
}

void AddBatchOptions(CLI::App& rCommand, StReportBatch& rBatch) {
    rCommand
        .add_option("--batch", rBatch.m_Folder,
                    "Report on many scanners, one in each folder of this one, and make an index: "
                    "pictures that begin with \"target\", \"second\" and \"empty\" are these, "
                    "plate.cal is the reference, \"ruled\" is left out, all others are fingers")
        ->type_name("DIR");
    AddJobsOption(rCommand, rBatch.m_Files);
    rCommand.add_flag("-q,--quiet", rBatch.m_Files.m_bQuiet,
                      "Show no progress and no summary of a batch; failures are told");
    rCommand.add_flag("--json", rBatch.m_Files.m_bJson,
                      "Print one JSON document with verdict, reasons and figures of each scanner");
}

} // namespace

void AddReport(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand(
        "report", "Writes a page that tells whether a scanner's calibration can be believed, and "
                  "shows why. A target that is refused has a page, too. The exit status is that of "
                  "the verdict: 0 good, 3 doubtful, 1 refused");
    const auto pCall = std::make_shared<StReportCall>();
    AddScannerFiles(*pCommand, pCall->m_Scanner);
    AddBatchOptions(*pCommand, pCall->m_Batch);
    pCommand
        ->add_option("-o,--output", pCall->m_Output,
                     "Page to write, - for standard output; with --batch a folder, made when "
                     "missing, for index.html and a page of each scanner")
        ->required()
        ->type_name("OUT");
    pCommand->callback([pCall] { RunReport(*pCall); });
}

} // namespace qk7
