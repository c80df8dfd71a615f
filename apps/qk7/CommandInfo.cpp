/// `qk7 info`: tells what stands in calibration blocks, precalculated blocks and bitmaps.

#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/InfoReport.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <memory>

namespace qk7 {

namespace {

using Json = nlohmann::ordered_json;

struct StCall {
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

/// The text or the JSON of each file, in order. A file that fails has no text, but an object.
void RunInfo(const StCall& Call) {
    ClFailures failures("info");
    std::string text;
    Json json = Json::array();
    for (const std::string& path : Call.m_aFiles) {
        try {
            const Bytes content = ReadFile(path);
            const FileInfo info = ReadInfoOf(path, content);
            text += TextOf(path, content.size(), info);
            json.push_back(JsonOf(path, content.size(), info));
        } catch (const std::exception& error) {
            failures.Add(error);
            json.push_back({{"file", path}, {"error", WordsOf(error)}});
        }
    }
    // A file name may be any bytes; JSON is UTF-8.
    Print(Call.m_bJson ? json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n" : text);
    failures.End();
}

} // namespace

void AddInfo(CLI::App& rApp) {
    CLI::App* pCommand =
        rApp.add_subcommand("info", "Tells what stands in calibration blocks and bitmaps");
    const auto pCall = std::make_shared<StCall>();
    pCommand->add_option("FILE", pCall->m_aFiles, "Files")->required()->type_name("");
    pCommand->add_flag("--json", pCall->m_bJson, "Print an array with an object for each file");
    pCommand->callback([pCall] { RunInfo(*pCall); });
}

} // namespace qk7
