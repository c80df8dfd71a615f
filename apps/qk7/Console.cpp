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

constexpr const char* cszRed = "\033[31m";
constexpr const char* cszYellow = "\033[33m";
constexpr const char* cszGreen = "\033[32m";
constexpr const char* cszPlain = "\033[0m";

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
    const char* szColour = eColour == EColour::eBad        ? cszRed
                           : eColour == EColour::eDoubtful ? cszYellow
                                                           : cszGreen;
    return szColour + Text + cszPlain;
}

/// The length of a colour's sequence; 0 where none begins.
std::size_t ColourLength(const std::string& Text, std::size_t nAt) {
    for (const std::string sequence : {cszRed, cszYellow, cszGreen, cszPlain})
        if (Text.compare(nAt, sequence.size(), sequence) == 0)
            return sequence.size();
    return 0;
}

/// A text that has its colours already.
std::string HarmlessInColours(const std::string& Text) {
    std::string shown;
    std::size_t nTold = 0;
    for (std::size_t i = 0; i < Text.size(); ++i)
        if (const std::size_t nColour = ColourLength(Text, i)) {
            shown += Harmless(Text.substr(nTold, i - nTold)) + Text.substr(i, nColour);
            nTold = i + nColour;
        }
    return shown + Harmless(Text.substr(nTold));
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
    const std::string shown = isatty(fileno(pFile)) != 0 ? HarmlessInColours(Text) : Text;
    const bool bWritten = std::fwrite(shown.data(), 1, shown.size(), pFile) == shown.size();
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

std::string Harmless(const std::string& Text) {
    std::string harmless;
    for (std::size_t i = 0; i < Text.size(); ++i) {
        const auto n = static_cast<unsigned char>(Text[i]);
        const auto nNext = static_cast<unsigned char>(i + 1 < Text.size() ? Text[i + 1] : 0);
        const bool bLong = n == 0xC2 && nNext >= 0x80 && nNext < 0xA0; // U+0080 to U+009F
        harmless += (n < 0x20 && n != '\n') || n == 0x7F || bLong ? '?' : Text[i];
        i += bLong ? 1 : 0;
    }
    return harmless;
}

} // namespace qk7
