/// `qk7 contamination`: how contaminated the sensor is.

#include "apps/qk7/Advice.h"
#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/FileReport.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/Picture.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qk7 {

namespace {

struct StContaminationCall {
    std::vector<std::string> m_aInputs;
    bool m_bJson = false;
};

/// The library finds nothing in a compressed block, and answers that as a clean one.
void CheckNotCompressed(const std::string& Path, const Bytes& Capture) {
    if (ReadBitmapInfo(Capture).m_nCompression != 0)
        throw ClFailure(Path, "is compressed. Save it without compression.");
}

void RunContamination(const StContaminationCall& Call) {
    ClHandle handle;
    ClFileReport report("contamination", Call.m_bJson ? EForm::eJson : EForm::eText);
    for (const std::string& path : Call.m_aInputs) {
        try {
            const Bytes capture = ReadBlock(path);
            const double dLevel =
                HandingBitmap(path, capture, [&] { return handle.Contamination(capture); });
            CheckNotCompressed(path, capture);
            report.Add(path + ": contamination level " + Hundredths(dLevel) + "\n",
                       {{"file", path}, {"contamination_level", dLevel}});
        } catch (const std::exception& error) {
            report.AddFailure(path, error);
        }
    }
    report.End();
}

} // namespace

void AddContamination(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand(
        "contamination", "Measures on captures of the empty platen how dirty the sensor is");
    const auto pCall = std::make_shared<StContaminationCall>();
    pCommand->add_option("RAW.bmp", pCall->m_aInputs, "Raw captures of the empty platen")
        ->required()
        ->type_name("");
    pCommand->add_flag("--json", pCall->m_bJson, "Print an array with an object for each capture");
    pCommand->callback([pCall] { RunContamination(*pCall); });
}

} // namespace qk7
