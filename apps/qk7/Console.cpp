#include "apps/qk7/Console.h"

#include "apps/qk7/File.h"
#include "apps/qk7/Progress.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <new>

namespace qk7 {

void Print(const std::string& Text) {
    const bool bWritten = std::fwrite(Text.data(), 1, Text.size(), stdout) == Text.size();
    if (!bWritten || std::fflush(stdout) != 0)
        throw ClFailure("standard output", SystemWords(errno));
}

void PrintError(const std::string& Command, const std::string& Message) {
    const std::string line = Command + ": " + Message + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
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

void ClFailures::Add(const std::exception& Error, ClProgress* pProgress) {
    ++m_nCount;
    if (pProgress != nullptr)
        pProgress->Clear();
    PrintError("qk7 " + m_Command, WordsOf(Error));
}

void ClFailures::End() const {
    if (m_nCount > 0)
        throw CLI::RuntimeError(eFailed);
}

} // namespace qk7
