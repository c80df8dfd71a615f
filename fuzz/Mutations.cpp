#include "Mutations.h"

#include "Formats.h"
#include "Harness.h"

#include <array>

namespace Fuzz {

namespace {

std::string Mutate(std::string Bytes, ClRandom& rRandom) {
    static constexpr std::array<std::uint32_t, 8> canExtremes = {
        0, 1, 4, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x10000, 0xFFFFFFF0};
    const std::size_t nChanges = 1 + rRandom.Below(3);
    for (std::size_t i = 0; i < nChanges && !Bytes.empty(); ++i) {
        // Headers decide most: half of the changes hit the first 128 bytes.
        const std::size_t nEnd =
            rRandom.Below(2) == 0 ? std::min<std::size_t>(Bytes.size(), 128) : Bytes.size();
        const std::size_t nAt = rRandom.Below(nEnd);
        switch (rRandom.Below(3)) {
        case 0:
            Bytes.resize(nAt);
            break;
        case 1:
            Bytes[nAt] = static_cast<char>(rRandom.Below(256));
            break;
        default: {
            const std::uint32_t nValue = canExtremes[rRandom.Below(canExtremes.size())];
            for (std::size_t b = 0; b < 4 && nAt + b < Bytes.size(); ++b)
                Bytes[nAt + b] = static_cast<char>(nValue >> (8 * b));
        }
        }
    }
    return Bytes;
}

} // namespace

std::string Mutation(const std::string& Bytes, ClRandom& rRandom) {
    std::string Mutated = Mutate(Bytes, rRandom);
    if (ClFormat::Repair() != nullptr && rRandom.OneIn(2))
        ClFormat::Repair()(Mutated, rRandom);
    return Mutated;
}

void Run(const std::string& Bytes) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(Bytes.data()), Bytes.size());
}

} // namespace Fuzz
