/// `qk7 check`: the geometric accuracy of corrected images of the target.

#include "apps/qk7/Advice.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/FileRun.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/Picture.h"
#include "apps/qk7/TargetReport.h"

#include "TessarinCalibrateSDK.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qk7 {

namespace {

struct StCheckCall {
    StFileOptions m_Files;
    std::string m_Data;
};

[[noreturn]] void Refuse(const std::string& Name, const Bytes& Corrected, const Bytes& Calibration,
                         const ClLibraryError& Error) {
    const StTargetDiagnosis diagnosis =
        DiagnoseTarget(ETargetImage::eCorrected, Corrected, Calibration);
    std::string message = Name + ": " + Error.what();
    if (!diagnosis.m_Words.empty())
        message += " " + diagnosis.m_Words;
    throw ClRefusedTarget(message, diagnosis,
                          "It has to be a capture of the target, corrected with "
                          "-O DynamicFingerMask=false.");
}

double Measure(const ClHandle& Handle, const std::string& Path, const Bytes& Calibration) {
    const Bytes corrected = ReadBlock(Path);
    const std::string name = ShownName(Path, EStream::eIn);
    return HandingBitmap(name, corrected, [&] {
        try {
            return Handle.CheckEfts(corrected);
        } catch (const ClLibraryError& error) {
            if (error.Number() == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE)
                Refuse(name, corrected, Calibration, error);
            throw;
        }
    });
}

StTold ToldOf(const std::string& Path, double dPercent) {
    return {ShownName(Path, EStream::eIn) + ": " + Hundredths(dPercent) +
                " % of the dot distances within the EFTS limits\n",
            {{"file", Path}, {"efts_percent", dPercent}}};
}

FileWork MakeWork(const StCheckCall& Call, const Bytes& Calibration,
                  const std::vector<StInput>& aFiles) {
    const auto pHandle = std::make_shared<ClHandle>();
    pHandle->SetOption("PrecalculatedData=true"); // no warp table is needed
    Handing(EHanded::eCalibration, ShownName(Call.m_Data, EStream::eIn),
            [&] { pHandle->SetData(Calibration); });
    return [&aFiles, &Calibration, pHandle](std::size_t nFile) {
        const std::string& path = aFiles[nFile].m_Path;
        return ToldOf(path, Measure(*pHandle, path, Calibration));
    };
}

void RunCheck(const StCheckCall& Call) {
    const StInputs inputs =
        ExpandInputs(Call.m_Files.m_aArguments, {Call.m_Files.m_bRecursive, true, false, ""});
    std::vector<std::string> read = PathsOf(inputs);
    read.push_back(Call.m_Data);
    ClaimStreams(read, {}, Call.m_Files.m_bJson);
    const Bytes calibration = ReadFile(Call.m_Data);
    StFileRun run;
    run.m_Command = "check";
    run.m_eForm = Call.m_Files.m_bJson ? EForm::eJson : EForm::eText;
    run.m_Done = "measured";
    const auto makeWork = [&] { return MakeWork(Call, calibration, inputs.m_aFiles); };
    DoFiles(run, Call.m_Files, inputs.m_aFiles, makeWork(), makeWork);
}

} // namespace

void AddCheck(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand(
        "check", "Measures the geometric accuracy of corrected images of the target");
    const auto pCall = std::make_shared<StCheckCall>();
    pCommand->add_option("-d,--data", pCall->m_Data, "Calibration block of the scanner")
        ->required()
        ->type_name("scanner.cal");
    AddJobsOption(*pCommand, pCall->m_Files);
    AddFileOptions(*pCommand, pCall->m_Files, "CORRECTED",
                   "Captures of the target, corrected with -O DynamicFingerMask=false");
    pCommand->callback([pCall] { RunCheck(*pCall); });
}

} // namespace qk7
