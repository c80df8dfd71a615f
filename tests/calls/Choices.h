#pragma once

/// Who decides what a sequence of calls does next: a generator with a seed, or bytes.

#include <cstddef>
#include <cstdint>

namespace Calls {

class ClChoices {
public:
    virtual ~ClChoices() = default;

    /// A number from 0 to `nEnd` - 1; `nEnd` is at least 1.
    virtual std::uint32_t Below(std::uint32_t nEnd) = 0;
    /// Whether nothing is left to decide with.
    virtual bool IsEmpty() const = 0;
    /// A step begins: whatever was chosen before may decide it, or its number alone.
    virtual void BeginStep(long /*nStep*/) {}

    bool OneIn(std::uint32_t nEnd) { return Below(nEnd) == nEnd - 1; }

    template <class T, std::size_t n>
    const T& Of(const T (&aList)[n]) {
        return aList[Below(static_cast<std::uint32_t>(n))];
    }
    template <class List>
    const typename List::value_type& OneOf(const List& aList) {
        return aList[Below(static_cast<std::uint32_t>(aList.size()))];
    }
};

/// xorshift64*, which is enough to choose with. Each step has choices of its own, so that a step
/// chooses the same when others are left out.
class ClSeededChoices : public ClChoices {
public:
    explicit ClSeededChoices(std::uint64_t nSeed) : m_nSeed(Mixed(nSeed)) { BeginStep(0); }

    void BeginStep(long nStep) override {
        m_nState = Mixed(m_nSeed + static_cast<std::uint64_t>(nStep)) | 1;
    }

    std::uint32_t Below(std::uint32_t nEnd) override {
        m_nState ^= m_nState >> 12;
        m_nState ^= m_nState << 25;
        m_nState ^= m_nState >> 27;
        return static_cast<std::uint32_t>((m_nState * 0x2545F4914F6CDD1DULL) >> 32) % nEnd;
    }
    bool IsEmpty() const override { return false; }

private:
    static std::uint64_t Mixed(std::uint64_t n) {
        n = (n + 0x9E3779B97F4A7C15ULL) * 0xBF58476D1CE4E5B9ULL;
        n = (n ^ (n >> 27)) * 0x94D049BB133111EBULL;
        return n ^ (n >> 31);
    }

    std::uint64_t m_nSeed;
    std::uint64_t m_nState = 1;
};

/// Bytes decide, one for each choice among up to 256; behind the last one every choice is 0.
class ClByteChoices : public ClChoices {
public:
    ClByteChoices(const std::uint8_t* pData, std::size_t nSize) : m_pData(pData), m_nSize(nSize) {}

    std::uint32_t Below(std::uint32_t nEnd) override {
        std::uint32_t nValue = 0;
        for (std::uint32_t nLeft = nEnd - 1; nLeft != 0; nLeft >>= 8)
            nValue = nValue << 8 | Next();
        return nValue % nEnd;
    }
    bool IsEmpty() const override { return m_nNext >= m_nSize; }

private:
    std::uint32_t Next() { return IsEmpty() ? 0 : m_pData[m_nNext++]; }

    const std::uint8_t* m_pData;
    std::size_t m_nSize;
    std::size_t m_nNext = 0;
};

} // namespace Calls
