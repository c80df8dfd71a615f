/// qk7: the command line tool of the calibration library, a capture application like any other.
/// It works by the library's public header alone; only why a target or a record was refused it
/// finds out by looking inside.

#include "apps/qk7/Arguments.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/Document.h"
#include "apps/qk7/File.h"
#include "apps/qk7/Tool.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace {

/// The command that was recognised; null before one was.
const CLI::App* CommandOf(const CLI::App& App) {
    const std::vector<const CLI::App*> commands =
        App.get_subcommands([](const CLI::App* pCommand) { return pCommand->parsed(); });
    return commands.empty() ? nullptr : commands[0];
}

/// "qk7 calibrate", or "qk7".
std::string NameOf(const CLI::App& App) {
    const CLI::App* pCommand = CommandOf(App);
    return pCommand == nullptr ? App.get_name() : App.get_name() + " " + pCommand->get_name();
}

bool IsJsonWanted(const CLI::App& Command) {
    const CLI::Option* pJson = Command.get_option_no_throw("--json");
    return pJson != nullptr && pJson->count() > 0 && pJson->as<bool>();
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
    std::string words = qk7::WithoutMarks(errors.str());
    words.erase(words.find_last_not_of('\n') + 1);
    qk7::PrintError(NameOf(App), words);
    return qk7::eWrongUsage;
}

int Run(CLI::App& rApp, int nArguments, char** aArguments) {
    try {
        rApp.parse(qk7::ForParser(nArguments, aArguments));
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

/// On standard error, and as JSON where that was asked for.
void TellFailure(const CLI::App& App, const std::string& Words) {
    qk7::PrintError(NameOf(App), Words);
    const CLI::App* pCommand = CommandOf(App);
    if (pCommand == nullptr || !IsJsonWanted(*pCommand))
        return;
    try {
        qk7::PrintFailedDocument(pCommand->get_name(), Words);
    } catch (const qk7::ClFailure&) {
        // standard output may be what failed, and the words are told already
    }
}

int Tool(int nArguments, char** aArguments) {
    CLI::App app(qk7::g_szSummary, "qk7");
    try {
        qk7::BuildTool(app);
        return Run(app, nArguments, aArguments);
    } catch (const std::exception& error) {
        TellFailure(app, qk7::WordsOf(error));
        return qk7::eFailed;
    }
}

} // namespace

int main(int nArguments, char** aArguments) {
    qk7::OccupyStandardStreams();
    qk7::GuardAgainstSignals();
    try {
        return Tool(nArguments, aArguments);
    } catch (...) {
        return qk7::eFailed; // not even words for it could be made
    }
}
