#pragma once

/// A block at the very end of a mapped page: the page behind it cannot be read, nor can the block
/// be written, so that a step too far or a write ends the test program on the spot.

#include <cstring>
#include <stdexcept>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace TestSupport {

class ClGuardedBlock {
public:
    explicit ClGuardedBlock(const std::vector<unsigned char>& aBytes)
        : ClGuardedBlock(aBytes, aBytes.size()) {}

    /// The first `nSize` bytes only.
    ClGuardedBlock(const std::vector<unsigned char>& aBytes, std::size_t nSize) : m_nSize(nSize) {
        const std::size_t nPage = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t nBody = (nSize + nPage - 1) / nPage * nPage;
        m_nMapped = nBody + nPage;
        void* pMapped =
            mmap(nullptr, m_nMapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (pMapped == MAP_FAILED)
            throw std::runtime_error("no memory to guard");
        m_pMapped = static_cast<unsigned char*>(pMapped);
        m_pData = m_pMapped + nBody - nSize;
        if (nSize > 0)
            std::memcpy(m_pData, aBytes.data(), nSize);
        if (nBody > 0)
            mprotect(m_pMapped, nBody, PROT_READ);
        mprotect(m_pMapped + nBody, nPage, PROT_NONE);
    }
    ClGuardedBlock(const ClGuardedBlock&) = delete;
    ClGuardedBlock& operator=(const ClGuardedBlock&) = delete;
    ~ClGuardedBlock() { munmap(m_pMapped, m_nMapped); }

    unsigned char* Data() const { return m_pData; }
    unsigned long Size() const { return m_nSize; }

private:
    unsigned char* m_pMapped = nullptr;
    unsigned char* m_pData = nullptr;
    std::size_t m_nMapped = 0;
    std::size_t m_nSize;
};

} // namespace TestSupport
