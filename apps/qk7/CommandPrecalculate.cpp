/// `qk7 precalculate`: prepares the warp table of a calibration block once, for fast starts.

#include "apps/qk7/Advice.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Handle.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

namespace qk7 {

namespace {

struct StCall {
    std::string m_Data;
    std::string m_Output;
};

/// The size follows from the frame; 1 leaves the question to the library.
std::size_t ExpectedBytes(const Bytes& Calibration) {
    try {
        const StCalibrationInfo info = ReadCalibrationInfo(Calibration);
        return std::min<std::size_t>(PrecalculatedBytes(info.m_Target, info.m_nPlanes),
                                     cnFileLimit);
    } catch (const ClFailure&) {
        return 1;
    }
}

void RunPrecalculate(const StCall& Call) {
    const Bytes calibration = ReadFile(Call.m_Data);
    ClHandle handle;
    const Bytes table = Handing(EHanded::eCalibration, Call.m_Data, [&] {
        handle.SetData(calibration);
        return handle.PrecalculatedData(ExpectedBytes(calibration));
    });
    WriteFile(Call.m_Output, {&table});
}

} // namespace

void AddPrecalculate(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand(
        "precalculate", "Stores the prepared warp table of a calibration block");
    const auto pCall = std::make_shared<StCall>();
    pCommand->add_option("-d,--data", pCall->m_Data, "Calibration block of the scanner")
        ->required()
        ->type_name("scanner.cal");
    pCommand->add_option("-o,--output", pCall->m_Output, "Precalculated block to write")
        ->required()
        ->type_name("scanner.pre");
    pCommand->callback([pCall] { RunPrecalculate(*pCall); });
}

} // namespace qk7
