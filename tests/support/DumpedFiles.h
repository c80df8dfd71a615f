#pragma once

/// Files that a test lets write into a directory of its own, and the times that they tell.

#include "support/TestFolder.h"

#include <cstdio>
#include <ctime>
#include <string>

namespace TestSupport {

/// A directory of its own for a writer of dumps.
class ClDumpDirectory {
public:
    const char* Path() const { return m_Folder.Path().c_str(); }
    std::string Text(const std::string& Name) const { return m_Folder.Get(Name); }

private:
    ClTestFolder m_Folder;
};

/// The local time behind a text "dd.mm.yyyy, hh:mm:ss"; -1 for another text.
inline std::time_t TimeOf(const std::string& Text) {
    std::tm time{};
    int nEnd = 0;
    const int nFields =
        std::sscanf(Text.c_str(), "%2d.%2d.%4d, %2d:%2d:%2d%n", &time.tm_mday, &time.tm_mon,
                    &time.tm_year, &time.tm_hour, &time.tm_min, &time.tm_sec, &nEnd);
    if (nFields != 6 || nEnd != 20)
        return -1;
    time.tm_mon -= 1;
    time.tm_year -= 1900;
    time.tm_isdst = -1;
    return std::mktime(&time);
}

} // namespace TestSupport
