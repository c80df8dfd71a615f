#pragma once

/// Files that a test lets write into a directory of its own, and the times that they tell.

#include <gtest/gtest.h>

#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>
#include <stdlib.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace TestSupport {

/// A directory that is removed at the end, with the files that were named.
class ClDumpDirectory {
public:
    ClDumpDirectory() : m_Path(testing::TempDir() + "dumps.XXXXXX") {
        EXPECT_NE(mkdtemp(m_Path.data()), nullptr);
    }
    ClDumpDirectory(const ClDumpDirectory&) = delete;
    ClDumpDirectory& operator=(const ClDumpDirectory&) = delete;
    ~ClDumpDirectory() {
        for (const std::string& File : m_aFiles)
            std::remove(File.c_str());
        rmdir(m_Path.c_str());
    }

    const char* Path() const { return m_Path.c_str(); }

    /// Content of a file of the directory, which is removed at the end.
    std::string Text(const std::string& Name) {
        m_aFiles.push_back(m_Path + "/" + Name);
        std::ifstream File(m_aFiles.back(), std::ios::binary);
        EXPECT_TRUE(File.good()) << Name;
        return {std::istreambuf_iterator<char>(File), {}};
    }

private:
    std::string m_Path;
    std::vector<std::string> m_aFiles;
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
