/// `qk7 info`: tells what stands in calibration blocks, precalculated blocks and pictures.

#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/FileRun.h"
#include "apps/qk7/InfoReport.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qk7 {

namespace {

StTold InfoOf(const std::string& Path) {
    const Bytes content = ReadFile(Path);
    const std::string name = ShownName(Path, EStream::eIn);
    try {
        const FileInfo info = ReadInfo(content);
        return {TextOf(name, content.size(), info), JsonOf(Path, content.size(), info)};
    } catch (const ClFailure& failure) {
        throw ClFailure(name, failure.what());
    }
}

void RunInfo(const StFileOptions& Call) {
    const StInputs inputs = ExpandInputs(Call.m_aArguments, {Call.m_bRecursive, true, true, ""});
    ClaimStreams(PathsOf(inputs), {}, Call.m_bJson);
    StFileRun run;
    run.m_Command = "info";
    run.m_eForm = Call.m_bJson ? EForm::eJson : EForm::eText;
    DoFiles(run, Call, inputs.m_aFiles,
            [&](std::size_t nFile) { return InfoOf(inputs.m_aFiles[nFile].m_Path); });
}

} // namespace

void AddInfo(CLI::App& rApp) {
    CLI::App* pCommand =
        rApp.add_subcommand("info", "Tells what stands in calibration blocks and pictures");
    const auto pCall = std::make_shared<StFileOptions>();
    AddFileOptions(*pCommand, *pCall, "FILE", "Blocks and pictures");
    pCommand->callback([pCall] { RunInfo(*pCall); });
}

} // namespace qk7
