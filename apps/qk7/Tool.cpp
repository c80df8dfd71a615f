#include "apps/qk7/Tool.h"

#include "apps/qk7/Arguments.h"
#include "apps/qk7/Choices.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/Examples.h"

#include <CLI/CLI.hpp>

namespace qk7 {

namespace {

void SetColours(const std::string& When) {
    ChooseColours(When == "always"  ? EColours::eAlways
                  : When == "never" ? EColours::eNever
                                    : EColours::eAuto);
}

void AddColours(CLI::App& rCommand) {
    rCommand
        .add_option_function<std::string>(
            "--color", SetColours, "Colour texts: auto for terminals alone, unless NO_COLOR is set")
        ->check(OneOf({"auto", "always", "never"}))
        ->type_name("WHEN");
}

/// What all commands have in common, as the end of the tool's help.
std::string CommonHelp() {
    std::string help = std::string(g_szConventions) + "\n\nExit status:";
    for (const StExitStatus& status : ExitStatuses())
        help += "\n  " + std::to_string(status.m_nStatus) + "  " + status.m_szWords;
    return help;
}

/// The examples as the end of the help.
std::string HelpOf(const std::vector<StExample>& aExamples) {
    std::string help = "Examples:";
    for (const StExample& example : aExamples)
        help += std::string("\n  ") + example.m_szLine + "\n      " + example.m_szWords;
    return help;
}

void TakeValuesAsWritten(CLI::App& rCommand) {
    for (CLI::Option* pOption : rCommand.get_options())
        if (pOption->get_items_expected_min() > 0)
            pOption->transform(AsWritten());
}

} // namespace

const char* const g_szSummary = "Calibration of the images of the QK7 fingerprint scanner.";

const char* const g_szConventions =
    "Pictures are bitmaps or PNG: a file says by its first bytes what it is, a name that ends in "
    ".png becomes PNG. The name - stands for standard input or output. An output takes its name "
    "when it is whole. Messages go to standard error.";

const std::vector<StExitStatus>& ExitStatuses() {
    static const std::vector<StExitStatus> statuses = {
        {eDone, "everything was done, and what was found is good"},
        {eFailed, "something failed, or what was found is bad; the messages tell"},
        {eWrongUsage, "the call was wrong"},
        {eDoubtful, "a calibration is doubtful; the reasons are told"},
    };
    return statuses;
}

void BuildTool(CLI::App& rApp) {
    rApp.set_version_flag("--version", "qk7 " QK7_VERSION);
    AddGenerate(rApp);
    AddReport(rApp);
    AddCheck(rApp);
    AddCalibrate(rApp);
    AddContamination(rApp);
    AddPrecalculate(rApp);
    AddVerify(rApp);
    AddInfo(rApp);
    AddErrors(rApp);
    AddSimulate(rApp);
    rApp.require_subcommand(1);
    rApp.footer(CommonHelp());
    for (CLI::App* pCommand : rApp.get_subcommands({})) {
        AddColours(*pCommand);
        TakeValuesAsWritten(*pCommand);
        pCommand->footer(HelpOf(ExamplesOf(pCommand->get_name())));
    }
}

} // namespace qk7
