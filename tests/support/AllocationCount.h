#pragma once

/// Counted allocations, for work that shall do with the memory that it has.

#include <cstddef>

namespace TestSupport {

/// What a piece of work has allocated on this thread.
struct StAllocations {
    long m_nCount = 0;
    std::size_t m_nLargest = 0; ///< bytes of the largest one
};

/// Counts from its making on.
class ClCountAllocations {
public:
    ClCountAllocations();
    ClCountAllocations(const ClCountAllocations&) = delete;
    ClCountAllocations& operator=(const ClCountAllocations&) = delete;
    ~ClCountAllocations();

    StAllocations SoFar() const { return m_Counted; }

private:
    StAllocations m_Counted;
};

/// Allocations of this thread that were not released yet, less those of others that it released.
long LiveAllocations();

} // namespace TestSupport
