/// `qk7 precalculate`: prepares the warp table of a calibration block once, for fast starts.

#include "apps/qk7/Advice.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/Document.h"
#include "apps/qk7/Handle.h"
#include "apps/qk7/Inputs.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace qk7 {

namespace {

struct StPrecalculateCall {
    std::string m_Data;
    std::string m_Output;
    bool m_bJson = false;
};

void RunPrecalculate(const StPrecalculateCall& Call) {
    ClaimStreams({Call.m_Data}, {Call.m_Output}, Call.m_bJson);
    CheckInputsStay({Call.m_Data}, {Call.m_Output});
    const Bytes calibration = ReadFile(Call.m_Data);
    ClHandle handle;
    const Bytes table = Handing(EHanded::eCalibration, ShownName(Call.m_Data, EStream::eIn), [&] {
        handle.SetData(calibration);
        return handle.PrecalculatedData(ExpectedPrecalculatedBytes(calibration));
    });
    WriteFile(Call.m_Output, {&table});
    if (Call.m_bJson)
        PrintDocument("precalculate", {{"file", Call.m_Data},
                                       {"output", Call.m_Output},
                                       {"bytes", table.size()},
                                       {"hash", ReadPrecalculatedInfo(table).m_Hash}});
}

} // namespace

void AddPrecalculate(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand(
        "precalculate", "Stores the prepared warp table of a calibration block");
    const auto pCall = std::make_shared<StPrecalculateCall>();
    pCommand->add_option("-d,--data", pCall->m_Data, "Calibration block of the scanner")
        ->required()
        ->type_name("scanner.cal");
    pCommand->add_option("-o,--output", pCall->m_Output, "Precalculated block to write")
        ->required()
        ->type_name("scanner.pre");
    pCommand->add_flag("--json", pCall->m_bJson, "Print a JSON document with what was written");
    pCommand->callback([pCall] { RunPrecalculate(*pCall); });
}

} // namespace qk7
