#include "Tools/DumpTarget.h"

#include "Tools/Allocate.h"

#include <cstring>

namespace Vek {

namespace {

/// Path and file with one '/' between them.
std::unique_ptr<char[]> Joined(const char* szPath, const char* szFile) {
    const std::size_t nPath = std::strlen(szPath);
    const bool bSlash = nPath > 0 && szPath[nPath - 1] != '/';
    const std::size_t nSize = nPath + (bSlash ? 1 : 0) + std::strlen(szFile) + 1;
    auto pJoined = NewArrayPtr<char>(nSize);
    std::snprintf(pJoined.get(), nSize, "%s%s%s", szPath, bSlash ? "/" : "", szFile);
    return pJoined;
}

} // namespace

std::FILE* OpenDump(const char* pFile, const char* pPath) {
    if (pFile == nullptr)
        throw ClException("szFile is NULL", QMT_ERROR_INVALID_PARAMETER, true, VEK_HERE);
    if (pPath == nullptr)
        throw ClException("szPath is NULL", QMT_ERROR_INVALID_PARAMETER, true, VEK_HERE);
    const auto pName = Joined(pPath, pFile);
    std::FILE* pOpened = std::fopen(pName.get(), "w");
    if (pOpened == nullptr)
        throw ClExFilesystem(pFile, QMT_ERROR_FILE_OPEN_FAIL, VEK_HERE);
    return pOpened;
}

std::tm LocalNow() {
    const std::time_t nNow = std::time(nullptr);
    std::tm now{};
    localtime_r(&nNow, &now);
    return now;
}

} // namespace Vek
