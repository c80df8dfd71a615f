/// `qk7 info`: tells what stands in calibration blocks, precalculated blocks and bitmaps.

#include "apps/qk7/Commands.h"
#include "apps/qk7/FileReport.h"
#include "apps/qk7/InfoReport.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qk7 {

namespace {

struct StInfoCall {
    std::vector<std::string> m_aFiles;
    bool m_bJson = false;
};

FileInfo ReadInfoOf(const std::string& Path, const Bytes& Content) {
    try {
        return ReadInfo(Content);
    } catch (const ClFailure& failure) {
        throw ClFailure(Path, failure.what());
    }
}

void RunInfo(const StInfoCall& Call) {
    ClFileReport report("info", Call.m_bJson ? EForm::eJson : EForm::eText);
    for (const std::string& path : Call.m_aFiles) {
        try {
            const Bytes content = ReadFile(path);
            const FileInfo info = ReadInfoOf(path, content);
            report.Add(TextOf(path, content.size(), info), JsonOf(path, content.size(), info));
        } catch (const std::exception& error) {
            report.AddFailure(path, error);
        }
    }
    report.End();
}

} // namespace

void AddInfo(CLI::App& rApp) {
    CLI::App* pCommand =
        rApp.add_subcommand("info", "Tells what stands in calibration blocks and bitmaps");
    const auto pCall = std::make_shared<StInfoCall>();
    pCommand->add_option("FILE", pCall->m_aFiles, "Files")->required()->type_name("");
    pCommand->add_flag("--json", pCall->m_bJson, "Print an array with an object for each file");
    pCommand->callback([pCall] { RunInfo(*pCall); });
}

} // namespace qk7
