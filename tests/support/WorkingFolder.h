#pragma once

/// A working directory for code that writes files of fixed names.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

namespace TestSupport {

/// While it lives, a new and empty folder is the working directory; then the former one is again,
/// and the folder is removed with all that is in it.
class ClWorkingFolder {
public:
    ClWorkingFolder() : m_Former(std::filesystem::current_path()) {
        std::string Name = (std::filesystem::temp_directory_path() / "stagesXXXXXX").string();
        if (mkdtemp(Name.data()) == nullptr) {
            ADD_FAILURE() << "no folder could be made for the files of a test";
            return;
        }
        m_Folder = Name;
        std::filesystem::current_path(m_Folder);
    }
    ClWorkingFolder(const ClWorkingFolder&) = delete;
    ClWorkingFolder& operator=(const ClWorkingFolder&) = delete;
    ~ClWorkingFolder() {
        std::error_code Ignored; // a destructor does not throw
        std::filesystem::current_path(m_Former, Ignored);
        if (!m_Folder.empty())
            std::filesystem::remove_all(m_Folder, Ignored);
    }

    /// The names of all entries.
    std::set<std::string> Names() const {
        std::set<std::string> Names;
        for (const auto& Entry : std::filesystem::directory_iterator(m_Folder))
            Names.insert(Entry.path().filename().string());
        return Names;
    }
    /// Makes a folder of the name, so that no file of it can be written.
    void Block(const std::string& Name) const {
        std::filesystem::create_directory(m_Folder / Name);
    }

private:
    std::filesystem::path m_Former;
    std::filesystem::path m_Folder;
};

} // namespace TestSupport
