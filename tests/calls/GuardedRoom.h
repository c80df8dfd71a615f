#pragma once

/// Room for one block after the other, each at the very end of mapped memory: the page behind it
/// cannot be touched, and the bytes in front of it are watched. Mapped once, because a sequence
/// gives hundreds of thousands of blocks.

#include "support/Records.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include <sys/mman.h>
#include <unistd.h>

namespace Calls {

using TestSupport::Bytes;

class ClGuardedRoom {
public:
    static constexpr unsigned char cnFill = 0xEE; ///< what an output buffer holds before the call

    explicit ClGuardedRoom(std::size_t nCapacity) {
        const auto nPage = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t nBody = (nCapacity + cnMargin + nPage - 1) / nPage * nPage;
        m_nMapped = nBody + nPage;
        void* pMapped = mmap(nullptr, m_nMapped, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (pMapped == MAP_FAILED)
            throw std::runtime_error("no memory to guard");
        m_pMapped = static_cast<unsigned char*>(pMapped);
        m_pEnd = m_pMapped + nBody;
        m_nCapacity = nBody - cnMargin;
        mprotect(m_pEnd, nPage, PROT_NONE);
    }
    ClGuardedRoom(const ClGuardedRoom&) = delete;
    ClGuardedRoom& operator=(const ClGuardedRoom&) = delete;
    ~ClGuardedRoom() { munmap(m_pMapped, m_nMapped); }

    std::size_t Capacity() const { return m_nCapacity; }

    /// A copy of a block to read from.
    unsigned char* Hold(const Bytes& aBlock) {
        Take(aBlock.size());
        if (!aBlock.empty())
            std::memcpy(m_pBlock, aBlock.data(), aBlock.size());
        return m_pBlock;
    }
    /// A buffer to write to.
    unsigned char* Offer(std::size_t nSize) {
        Take(nSize);
        std::memset(m_pBlock, cnFill, nSize);
        return m_pBlock;
    }

    /// Whether the block, and what stands in front of it, is as it was given.
    bool IsHolding(const Bytes& aBlock) const {
        return IsMarginWhole() &&
               (aBlock.empty() || std::memcmp(m_pBlock, aBlock.data(), aBlock.size()) == 0);
    }
    /// Whether the buffer was written to in its first `nUsed` bytes at most.
    bool IsUntouchedBehind(std::size_t nUsed) const {
        return IsMarginWhole() &&
               std::all_of(m_pBlock + nUsed, m_pEnd, [](unsigned char n) { return n == cnFill; });
    }

    const unsigned char* Data() const { return m_pBlock; }
    Bytes First(std::size_t nSize) const { return Bytes(m_pBlock, m_pBlock + nSize); }

private:
    static constexpr std::size_t cnMargin = 64;
    static constexpr unsigned char cnMarginFill = 0xA5;

    void Take(std::size_t nSize) {
        if (nSize > m_nCapacity)
            throw std::length_error("the room is too small for the block");
        m_pBlock = m_pEnd - nSize;
        std::memset(m_pBlock - cnMargin, cnMarginFill, cnMargin);
    }
    bool IsMarginWhole() const {
        return std::all_of(m_pBlock - cnMargin, m_pBlock,
                           [](unsigned char n) { return n == cnMarginFill; });
    }

    unsigned char* m_pMapped = nullptr;
    unsigned char* m_pEnd = nullptr;
    unsigned char* m_pBlock = nullptr;
    std::size_t m_nMapped = 0;
    std::size_t m_nCapacity = 0;
};

} // namespace Calls
