#pragma once

/// What the writers of generated source text share: the file that they write and the time that
/// they write down.

#include <cstdio>
#include <ctime>
#include <memory>

namespace Vek {

/// Opens `pPath`/`pFile` for writing; an empty path is the current directory. Throws "szFile is
/// NULL" and "szPath is NULL" (-44), `ClExFilesystem` (-200) with the name of a file that does not
/// open, `ClExBadAlloc` (-102).
std::FILE* OpenDump(const char* pFile, const char* pPath);

/// The date and time of now, local.
std::tm LocalNow();

} // namespace Vek
