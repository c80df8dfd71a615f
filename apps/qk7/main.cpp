/// qk7: the command line tool of the calibration library, a capture application like any other.
/// It works by the library's public header alone; only why a target or a record was refused it
/// finds out by looking inside.

#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/File.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace {

void AddCommands(CLI::App& rApp) {
    qk7::AddGenerate(rApp);
    qk7::AddCheck(rApp);
    qk7::AddCalibrate(rApp);
    qk7::AddContamination(rApp);
    qk7::AddPrecalculate(rApp);
    qk7::AddInfo(rApp);
    qk7::AddErrors(rApp);
    qk7::AddSimulate(rApp);
    rApp.require_subcommand(1);
}

/// "qk7 calibrate", or "qk7" before a command was recognised.
std::string NameOf(const CLI::App& App) {
    const std::vector<const CLI::App*> commands =
        App.get_subcommands([](const CLI::App* pCommand) { return pCommand->parsed(); });
    return commands.empty() ? App.get_name() : App.get_name() + " " + commands[0]->get_name();
}

/// Help, version and usage errors: the parser's own words, in the tool's own statuses.
int EndOfParsing(const CLI::App& App, const CLI::ParseError& End) {
    std::ostringstream output;
    std::ostringstream errors;
    const bool bAsked = App.exit(End, output, errors) == 0;
    if (bAsked) {
        qk7::Print(output.str());
        return qk7::eDone;
    }
    std::fputs((NameOf(App) + ": " + errors.str()).c_str(), stderr);
    return qk7::eWrongUsage;
}

int Run(CLI::App& rApp, int nArguments, char** aArguments) {
    try {
        rApp.parse(nArguments, aArguments);
        return qk7::eDone;
    } catch (const CLI::RuntimeError& end) {
        return end.get_exit_code();
    } catch (const CLI::ParseError& end) {
        return EndOfParsing(rApp, end);
    } catch (const qk7::ClWrongUsage& wrong) {
        qk7::PrintError(NameOf(rApp), wrong.what());
        return qk7::eWrongUsage;
    }
}

int Tool(int nArguments, char** aArguments) {
    CLI::App app("Calibration of the images of the QK7 fingerprint scanner.", "qk7");
    try {
        app.set_version_flag("--version", "qk7 " QK7_VERSION);
        AddCommands(app);
        return Run(app, nArguments, aArguments);
    } catch (const std::exception& error) {
        qk7::PrintError(NameOf(app), qk7::WordsOf(error));
        return qk7::eFailed;
    }
}

} // namespace

int main(int nArguments, char** aArguments) {
    qk7::GuardAgainstSignals();
    try {
        return Tool(nArguments, aArguments);
    } catch (...) {
        return qk7::eFailed; // not even words for it could be made
    }
}
