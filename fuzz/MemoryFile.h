#pragma once

/// A file without a disk, for readers that take a name.

#include "Harness.h"

#include <sys/mman.h>
#include <unistd.h>

namespace Fuzz {

class ClMemoryFile {
public:
    explicit ClMemoryFile(const std::string& Content)
        : m_nFile(memfd_create("input", MFD_CLOEXEC)) {
        Require(m_nFile >= 0 && write(m_nFile, Content.data(), Content.size()) ==
                                    static_cast<ssize_t>(Content.size()),
                "a file in memory");
    }
    ClMemoryFile(const ClMemoryFile&) = delete;
    ClMemoryFile& operator=(const ClMemoryFile&) = delete;
    ~ClMemoryFile() { close(m_nFile); }

    std::string Path() const { return "/proc/self/fd/" + std::to_string(m_nFile); }

private:
    int m_nFile;
};

} // namespace Fuzz
