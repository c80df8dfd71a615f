/// qk7_documents: writes the manual and the completion of the shells into a folder, when the tool
/// is built.

#include "apps/qk7/File.h"
#include "apps/qk7/Tool.h"
#include "apps/qk7/documents/Completion.h"
#include "apps/qk7/documents/Described.h"
#include "apps/qk7/documents/Manual.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace {

void WriteText(const std::string& Path, const std::string& Text) {
    const qk7::Bytes bytes(Text.begin(), Text.end());
    qk7::WriteFile(Path, {&bytes});
}

void WriteDocuments(const std::string& Folder) {
    CLI::App app(qk7::g_szSummary, "qk7");
    qk7::BuildTool(app);
    const std::vector<qk7::StDescribedCommand> commands = qk7::Describe(app);
    qk7::MakeDirectory(Folder + "/man1");
    for (const qk7::StDescribedCommand& command : commands)
        WriteText(Folder + "/man1/" + qk7::PageName(command) + ".1",
                  qk7::PageOf(command, commands, {QK7_VERSION, QK7_MANUAL_DATE}));
    WriteText(Folder + "/qk7.bash", qk7::BashCompletion(commands));
    WriteText(Folder + "/_qk7", qk7::ZshCompletion(commands));
    WriteText(Folder + "/qk7.fish", qk7::FishCompletion(commands));
}

} // namespace

int main(int nArguments, char** aArguments) {
    if (nArguments != 2) {
        std::fputs("usage: qk7_documents FOLDER\n", stderr);
        return 2;
    }
    try {
        WriteDocuments(aArguments[1]);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qk7_documents: %s\n", error.what());
        return 1;
    }
}
