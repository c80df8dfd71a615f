#pragma once

/// A working directory for code that writes files of fixed names.

#include "support/TestFolder.h"

namespace TestSupport {

/// While it lives, a new and empty folder is the working directory; then the former one is again.
class ClWorkingFolder {
public:
    ClWorkingFolder() : m_Former(std::filesystem::current_path()) {
        std::filesystem::current_path(m_Folder.Path());
    }
    ClWorkingFolder(const ClWorkingFolder&) = delete;
    ClWorkingFolder& operator=(const ClWorkingFolder&) = delete;
    ~ClWorkingFolder() {
        std::error_code Ignored; // a destructor does not throw
        std::filesystem::current_path(m_Former, Ignored);
    }

    /// The names of all entries.
    std::set<std::string> Names() const { return m_Folder.Names(); }
    /// Makes a folder of the name, so that no file of it can be written.
    void Block(const std::string& Name) const {
        std::filesystem::create_directory(m_Folder / Name);
    }

private:
    std::filesystem::path m_Former;
    ClTestFolder m_Folder;
};

} // namespace TestSupport
