/// `qk7 contamination`: how contaminated the sensor is.

#include "apps/qk7/Advice.h"
#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/FileRun.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/Measures.h"
#include "apps/qk7/Picture.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qk7 {

namespace {

struct StContaminationCall {
    StFileOptions m_Files;
    bool m_bMeasures = false;
};

/// The library finds nothing in a compressed block, and answers that as a clean one.
void CheckNotCompressed(const std::string& Name, const Bytes& Capture) {
    if (ReadBitmapInfo(Capture).m_nCompression != 0)
        throw ClFailure(Name, "is compressed. Save it without compression.");
}

void AddPlaten(const Bytes& Capture, StTold& rTold) {
    const auto measures = MeasurePlaten(Capture);
    rTold.m_Json["platen"] = PlatenJson(measures);
    rTold.m_Text += PlatenText(measures);
}

StTold Measured(const StContaminationCall& Call, const ClHandle& Handle, const std::string& Path) {
    const Bytes capture = ReadBlock(Path);
    const std::string name = ShownName(Path, EStream::eIn);
    const double dLevel =
        HandingBitmap(name, capture, [&] { return Handle.Contamination(capture); });
    CheckNotCompressed(name, capture);
    StTold told;
    told.m_Text = name + ": contamination level " + Hundredths(dLevel) + "\n";
    told.m_Json = {{"file", Path}, {"contamination_level", dLevel}};
    if (Call.m_bMeasures)
        AddPlaten(capture, told);
    return told;
}

FileWork MakeWork(const StContaminationCall& Call, const std::vector<StInput>& aFiles) {
    const auto pHandle = std::make_shared<ClHandle>();
    return [&Call, &aFiles, pHandle](std::size_t nFile) {
        return Measured(Call, *pHandle, aFiles[nFile].m_Path);
    };
}

void RunContamination(const StContaminationCall& Call) {
    const StFileOptions& files = Call.m_Files;
    const StInputs inputs = ExpandInputs(files.m_aArguments, {files.m_bRecursive, true, false, ""});
    ClaimStreams(PathsOf(inputs), {}, files.m_bJson);
    StFileRun run;
    run.m_Command = "contamination";
    run.m_eForm = files.m_bJson ? EForm::eJson : EForm::eText;
    run.m_Done = "measured";
    const auto makeWork = [&] { return MakeWork(Call, inputs.m_aFiles); };
    DoFiles(run, files, inputs.m_aFiles, makeWork(), makeWork);
}

} // namespace

void AddContamination(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand(
        "contamination", "Measures on captures of the empty platen how dirty the sensor is");
    const auto pCall = std::make_shared<StContaminationCall>();
    pCommand->add_flag("--measures", pCall->m_bMeasures,
                       "Print the platen's brightness, how uniform its light is, which share of it "
                       "is soiled, and the noise");
    AddJobsOption(*pCommand, pCall->m_Files);
    AddFileOptions(*pCommand, pCall->m_Files, "CAPTURE", "Raw captures of the empty platen");
    pCommand->callback([pCall] { RunContamination(*pCall); });
}

} // namespace qk7
