#include "apps/qk7/Console.h"

#include "apps/qk7/File.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include <unistd.h>

namespace qk7 {

namespace {

EColours g_eColours = EColours::eAuto;
bool g_bOutputIsTaken = false;

bool AreColoursWelcome() {
    const char* szNo = std::getenv("NO_COLOR");
    const char* szTerminal = std::getenv("TERM");
    return (szNo == nullptr || *szNo == '\0') && szTerminal != nullptr &&
           std::strcmp(szTerminal, "dumb") != 0;
}

std::string Coloured(EColour eColour, const std::string& Text, int nFile) {
    const bool bColoured =
        g_eColours == EColours::eAlways ||
        (g_eColours == EColours::eAuto && isatty(nFile) != 0 && AreColoursWelcome());
    if (!bColoured)
        return Text;
    const char* szColour = eColour == EColour::eBad        ? "\033[31m"
                           : eColour == EColour::eDoubtful ? "\033[33m"
                                                           : "\033[32m";
    return szColour + Text + "\033[0m";
}

std::size_t Streams(const std::vector<std::string>& aPaths) {
    return static_cast<std::size_t>(std::count_if(aPaths.begin(), aPaths.end(), IsStream));
}

void PrintLine(const std::string& Front, const std::string& Message) {
    const std::string shown = isatty(STDERR_FILENO) != 0 ? Harmless(Message) : Message;
    const std::string line = Front + shown + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

} // namespace

void ChooseColours(EColours eColours) {
    g_eColours = eColours;
}

std::string OutColoured(EColour eColour, const std::string& Text) {
    return Coloured(eColour, Text, g_bOutputIsTaken ? STDERR_FILENO : STDOUT_FILENO);
}

std::string ErrColoured(EColour eColour, const std::string& Text) {
    return Coloured(eColour, Text, STDERR_FILENO);
}

void ClaimStreams(const std::vector<std::string>& aInputs, const std::vector<std::string>& aOutputs,
                  bool bJson) {
    if (Streams(aInputs) > 1)
        throw ClWrongUsage("standard input, \"-\", is named twice; it can be read once");
    if (Streams(aOutputs) > 1)
        throw ClWrongUsage("standard output, \"-\", is named twice; it can take one output");
    g_bOutputIsTaken = Streams(aOutputs) > 0;
    if (g_bOutputIsTaken && bJson)
        throw ClWrongUsage("standard output cannot take both JSON and an output; name a file");
}

void Print(const std::string& Text) {
    std::FILE* pFile = g_bOutputIsTaken ? stderr : stdout;
    const bool bWritten = std::fwrite(Text.data(), 1, Text.size(), pFile) == Text.size();
    if (!bWritten || std::fflush(pFile) != 0)
        throw ClFailure(g_bOutputIsTaken ? "standard error" : "standard output",
                        SystemWords(errno));
}

void PrintError(const std::string& Command, const std::string& Message) {
    PrintLine(ErrColoured(EColour::eBad, Command + ":") + " ", Message);
}

void PrintNote(const std::string& Command, const std::string& Message) {
    PrintLine(Command + ": ", Message);
}

std::string Hundredths(double dValue) {
    char szText[352]; // the largest double has 309 digits in front of the point
    std::snprintf(szText, sizeof szText, "%.2f", dValue);
    return szText;
}

std::string WordsOf(const std::exception& Error) {
    if (dynamic_cast<const std::bad_alloc*>(&Error) != nullptr)
        return "out of memory";
    return Error.what() != nullptr ? Error.what() : "failed without words";
}

std::string Harmless(std::string Text) {
    for (char& c : Text)
        if ((static_cast<unsigned char>(c) < 0x20 && c != '\n') || c == 0x7F)
            c = '?';
    return Text;
}

} // namespace qk7
