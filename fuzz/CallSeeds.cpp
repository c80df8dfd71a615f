// Writes seeds for the harness CallSequence: sequences that a generator has chosen, as the bytes
// that choose the same. To be made anew whenever steps choose in another order:
//
//     call_seeds FOLDER NUMBER
//
// Most choices come to calls without data or with spoilt ones; so every fourth time the rarest
// kind of a block, which is a painted target, is taken.

#include "calls/InjectedFaults.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

constexpr long cnMostSteps = 24;

/// Chooses by a generator, and notes the bytes that ClByteChoices would choose the same by.
class ClNotedChoices : public Calls::ClChoices {
public:
    explicit ClNotedChoices(std::uint64_t nSeed) : m_Choices(nSeed), m_Rare(~nSeed) {}

    void BeginStep(long nStep) override { m_Choices.BeginStep(nStep); }
    std::uint32_t Below(std::uint32_t nEnd) override {
        const bool bRare = (nEnd == 64 || nEnd == 128) && m_Rare.OneIn(4);
        const std::uint32_t nValue = bRare ? nEnd - 1 : m_Choices.Below(nEnd);
        int nBytes = 0;
        for (std::uint32_t nLeft = nEnd - 1; nLeft != 0; nLeft >>= 8)
            ++nBytes;
        while (nBytes-- > 0)
            m_Bytes += static_cast<char>(nValue >> (8 * nBytes));
        return nValue;
    }
    bool IsEmpty() const override { return false; }

    const std::string& Bytes() const { return m_Bytes; }

private:
    Calls::ClSeededChoices m_Choices;
    Calls::ClSeededChoices m_Rare;
    std::string m_Bytes;
};

class ClSilentObserver : public Calls::ClObserver {
public:
    void OnBroken(const std::string& Promise) override {
        std::fprintf(stderr, "broken: %s\n", Promise.c_str());
        std::abort();
    }
};

std::string Seed(std::uint64_t nSeed) {
    ClNotedChoices Choices(nSeed);
    Calls::ClInjectedFaults Faults;
    ClSilentObserver Observer;
    Calls::ClCallSequence(Choices, Faults, Observer)
        .Run(4 + static_cast<long>(nSeed % (cnMostSteps - 3)));
    return Choices.Bytes();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s FOLDER NUMBER\n", argv[0]);
        return 2;
    }
    const unsigned long nCount = std::strtoul(argv[2], nullptr, 10);
    for (unsigned long i = 1; i <= nCount; ++i)
        std::ofstream(std::string(argv[1]) + "/seed-" + std::to_string(i), std::ios::binary)
            << Seed(i);
    return 0;
}
