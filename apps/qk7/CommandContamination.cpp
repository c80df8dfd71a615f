/// `qk7 contamination`: how contaminated the sensor is.

#include "apps/qk7/Advice.h"
#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/FileRun.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/Picture.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qk7 {

namespace {

/// The library finds nothing in a compressed block, and answers that as a clean one.
void CheckNotCompressed(const std::string& Name, const Bytes& Capture) {
    if (ReadBitmapInfo(Capture).m_nCompression != 0)
        throw ClFailure(Name, "is compressed. Save it without compression.");
}

StTold Measured(const ClHandle& Handle, const std::string& Path) {
    const Bytes capture = ReadBlock(Path);
    const std::string name = ShownName(Path, EStream::eIn);
    const double dLevel =
        HandingBitmap(name, capture, [&] { return Handle.Contamination(capture); });
    CheckNotCompressed(name, capture);
    return {name + ": contamination level " + Hundredths(dLevel) + "\n",
            {{"file", Path}, {"contamination_level", dLevel}}};
}

FileWork MakeWork(const std::vector<StInput>& aFiles) {
    const auto pHandle = std::make_shared<ClHandle>();
    return
        [&aFiles, pHandle](std::size_t nFile) { return Measured(*pHandle, aFiles[nFile].m_Path); };
}

void RunContamination(const StFileOptions& Call) {
    const StInputs inputs = ExpandInputs(Call.m_aArguments, {Call.m_bRecursive, true, false, ""});
    ClaimStreams(PathsOf(inputs), {}, Call.m_bJson);
    StFileRun run;
    run.m_Command = "contamination";
    run.m_eForm = Call.m_bJson ? EForm::eJson : EForm::eText;
    run.m_Done = "measured";
    const auto makeWork = [&] { return MakeWork(inputs.m_aFiles); };
    DoFiles(run, Call, inputs.m_aFiles, makeWork(), makeWork);
}

} // namespace

void AddContamination(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand(
        "contamination", "Measures on captures of the empty platen how dirty the sensor is");
    const auto pCall = std::make_shared<StFileOptions>();
    AddJobsOption(*pCommand, *pCall);
    AddFileOptions(*pCommand, *pCall, "CAPTURE", "Raw captures of the empty platen");
    pCommand->callback([pCall] { RunContamination(*pCall); });
}

} // namespace qk7
