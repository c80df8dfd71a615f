#pragma once

/// A folder for the files of one test, so that tests and whole runs do not meet.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>

namespace TestSupport {

/// A new and empty folder, which is removed at the end with all that is in it.
class ClTestFolder {
public:
    ClTestFolder() {
        std::string Name = (std::filesystem::temp_directory_path() / "testXXXXXX").string();
        if (mkdtemp(Name.data()) == nullptr) // never go on with a path from the root
            throw std::runtime_error("no folder could be made for the files of a test");
        m_Path = Name;
    }
    ClTestFolder(const ClTestFolder&) = delete;
    ClTestFolder& operator=(const ClTestFolder&) = delete;
    ~ClTestFolder() {
        std::error_code Ignored; // a destructor does not throw
        std::filesystem::remove_all(m_Path, Ignored);
    }

    const std::string& Path() const { return m_Path; }
    /// The path of an entry.
    std::string operator/(const std::string& Name) const { return m_Path + "/" + Name; }

    /// The names of all entries, hidden ones included.
    std::set<std::string> Names() const {
        std::set<std::string> Names;
        for (const auto& Entry : std::filesystem::directory_iterator(m_Path))
            Names.insert(Entry.path().filename().string());
        return Names;
    }

    /// Writes and reads a file, of letters or of bytes.
    template <class Content>
    void Put(const std::string& Name, const Content& aContent) const {
        std::ofstream File(*this / Name, std::ios::binary);
        std::copy(aContent.begin(), aContent.end(), std::ostreambuf_iterator<char>(File));
        File.close();
        EXPECT_TRUE(File.good()) << Name;
    }
    template <class Content = std::string>
    Content Get(const std::string& Name) const {
        std::ifstream File(*this / Name, std::ios::binary);
        EXPECT_TRUE(File.good()) << Name;
        return Content(std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>());
    }

private:
    std::string m_Path;
};

} // namespace TestSupport
