#pragma once

/// Numbers by chance that are the same on every machine.

#include <cstddef>
#include <cstdint>

namespace Fuzz {

/// xorshift64*, which is enough to choose bytes with.
class ClRandom {
public:
    explicit ClRandom(std::uint64_t nSeed) : m_nState(nSeed * 0x9E3779B97F4A7C15ULL | 1) {}
    std::size_t Below(std::size_t nEnd) {
        m_nState ^= m_nState >> 12;
        m_nState ^= m_nState << 25;
        m_nState ^= m_nState >> 27;
        return static_cast<std::size_t>((m_nState * 0x2545F4914F6CDD1DULL) >> 32) % nEnd;
    }
    /// True once in `nTimes`.
    bool OneIn(std::size_t nTimes) { return Below(nTimes) == 0; }

private:
    std::uint64_t m_nState;
};

} // namespace Fuzz
