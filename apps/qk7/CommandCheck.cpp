/// `qk7 check`: the geometric accuracy of corrected images of the target.

#include "apps/qk7/Advice.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/FileReport.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/Picture.h"
#include "apps/qk7/TargetReport.h"

#include "TessarinCalibrateSDK.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qk7 {

namespace {

struct StCheckCall {
    std::string m_Data;
    std::vector<std::string> m_aInputs;
    bool m_bJson = false;
};

[[noreturn]] void Refuse(const std::string& Path, const Bytes& Corrected, const Bytes& Calibration,
                         const ClLibraryError& Error) {
    const StTargetDiagnosis diagnosis =
        DiagnoseTarget(ETargetImage::eCorrected, Corrected, Calibration);
    std::string message = Path + ": " + Error.what();
    if (!diagnosis.m_Words.empty())
        message += " " + diagnosis.m_Words;
    throw ClRefusedTarget(message, diagnosis,
                          "It has to be a capture of the target, corrected with "
                          "-O DynamicFingerMask=false.");
}

double Measure(const ClHandle& Handle, const std::string& Path, const Bytes& Calibration) {
    const Bytes corrected = ReadBlock(Path);
    return HandingBitmap(Path, corrected, [&] {
        try {
            return Handle.CheckEfts(corrected);
        } catch (const ClLibraryError& error) {
            if (error.Number() == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE)
                Refuse(Path, corrected, Calibration, error);
            throw;
        }
    });
}

void RunCheck(const StCheckCall& Call) {
    const Bytes calibration = ReadFile(Call.m_Data);
    ClHandle handle;
    handle.SetOption("PrecalculatedData=true"); // no warp table is needed
    Handing(EHanded::eCalibration, Call.m_Data, [&] { handle.SetData(calibration); });
    ClFileReport report("check", Call.m_bJson ? EForm::eJson : EForm::eText);
    for (const std::string& path : Call.m_aInputs) {
        try {
            const double dPercent = Measure(handle, path, calibration);
            report.Add(path + ": " + Hundredths(dPercent) +
                           " % of the dot distances within the EFTS limits\n",
                       {{"file", path}, {"efts_percent", dPercent}});
        } catch (const std::exception& error) {
            report.AddFailure(path, error);
        }
    }
    report.End();
}

} // namespace

void AddCheck(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand(
        "check", "Measures the geometric accuracy of corrected images of the target");
    const auto pCall = std::make_shared<StCheckCall>();
    pCommand->add_option("-d,--data", pCall->m_Data, "Calibration block of the scanner")
        ->required()
        ->type_name("scanner.cal");
    pCommand
        ->add_option("CORRECTED.bmp", pCall->m_aInputs,
                     "Captures of the target, corrected with -O DynamicFingerMask=false")
        ->required()
        ->type_name("");
    pCommand->add_flag("--json", pCall->m_bJson, "Print an array with an object for each image");
    pCommand->callback([pCall] { RunCheck(*pCall); });
}

} // namespace qk7
