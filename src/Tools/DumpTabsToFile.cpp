#include "Tools/DumpTabsToFile.h"

#include "Tools/DumpTarget.h"
#include "Tools/Exception.h"

namespace {

constexpr unsigned long cnEntriesPerLine = 8;

void CheckFile(const std::FILE* pFile) {
    if (pFile == nullptr)
        throw ClExTessarin(QMT_ERROR_INVALID_PARAMETER, VEK_HERE);
}

} // namespace

ClDumpTabsToFile::~ClDumpTabsToFile() = default;

std::FILE* ClDumpTabsToFile::DumpHeader(const char* pFile, const char* pPath, bool bPrecompiled) {
    std::FILE* pOpened = Vek::OpenDump(pFile, pPath);
    const std::tm now = Vek::LocalNow();
    std::fprintf(pOpened, "// %s\n", pFile);
    std::fprintf(
        pOpened, "// %02d.%02d.%04d, %02d:%02d:%02d Automatically created by ClDumpTabsToFile\n",
        now.tm_mday, now.tm_mon + 1, now.tm_year + 1900, now.tm_hour, now.tm_min, now.tm_sec);
    if (bPrecompiled)
        std::fputs("#include \"StdAfx.h\"\n", pOpened);
    return pOpened;
}

void ClDumpTabsToFile::DumpClose(std::FILE* pFile) {
    CheckFile(pFile);
    std::fputc('\n', pFile);
    const bool bFailed = std::ferror(pFile) != 0;
    if (std::fclose(pFile) != 0 || bFailed)
        throw ClExFilesystem("ClDumpTabsToFile::DumpClose", QMT_ERROR_FILE_OPEN_FAIL, VEK_HERE);
}

void ClDumpTabsToFile::CheckTab(const std::FILE* pFile, const void* pTab, unsigned long nSize) {
    CheckFile(pFile);
    if (pTab == nullptr && nSize > 0)
        throw ClExTessarin(QMT_ERROR_INVALID_PARAMETER, VEK_HERE);
}

void ClDumpTabsToFile::DumpSeparator(std::FILE* pFile, unsigned long nIndex) {
    if (nIndex == 0)
        return;
    std::fputs(", ", pFile);
    if (nIndex % cnEntriesPerLine == 0)
        std::fputs("\n\t\t", pFile);
}
