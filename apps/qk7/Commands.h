#pragma once

/// The commands. Each registers itself as a subcommand with its options and a callback that runs
/// it. A command that fails throws: `ClFailure` or another exception with a complete message,
/// `ClWrongUsage`, or `CLI::RuntimeError` when everything is printed already.

namespace CLI {
class App;
}

namespace qk7 {

void AddCalibrate(CLI::App& rApp);
void AddCheck(CLI::App& rApp);
void AddContamination(CLI::App& rApp);
void AddErrors(CLI::App& rApp);
void AddGenerate(CLI::App& rApp);
void AddInfo(CLI::App& rApp);
void AddPrecalculate(CLI::App& rApp);
void AddReport(CLI::App& rApp);
void AddSimulate(CLI::App& rApp);
void AddVerify(CLI::App& rApp);

} // namespace qk7
