#pragma once

/// Memory that a kernel works in, kept by whoever runs kernels again and again: it grows to the
/// most that was asked for and is never cleared.

#include "Tools/Allocate.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Kernels {

class ClScratch {
public:
    /// Lines that begin at multiples of this many bytes share no cache line and no vector.
    static constexpr std::size_t cnAlignment = 64;

    /// `nBytes` rounded up to whole lines.
    static constexpr std::size_t Aligned(std::size_t nBytes) {
        return (nBytes + cnAlignment - 1) / cnAlignment * cnAlignment;
    }

    /// Aligned memory of this size with anything in it; what was handed out before is lost. Throws
    /// `ClExBadAlloc`, and is empty then.
    unsigned char* Reserve(std::size_t nBytes) {
        if (nBytes > m_nBytes)
            Grow(nBytes);
        return m_pAligned;
    }

    std::size_t Bytes() const { return m_nBytes; }

private:
    void Grow(std::size_t nBytes) {
        m_nBytes = 0;
        m_pMemory.reset();
        m_pMemory = Vek::NewArrayPtr<unsigned char>(nBytes + cnAlignment - 1);
        const auto nAddress = reinterpret_cast<std::uintptr_t>(m_pMemory.get());
        m_pAligned = m_pMemory.get() + (Aligned(nAddress) - nAddress);
        m_nBytes = nBytes;
    }

    std::unique_ptr<unsigned char[]> m_pMemory;
    unsigned char* m_pAligned = nullptr;
    std::size_t m_nBytes = 0;
};

} // namespace Kernels
