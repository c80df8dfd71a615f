#include "ByteOrder.h"
#include "Formats.h"

#include <algorithm>

namespace Fuzz {

namespace {

constexpr std::uint32_t cnMagic = 0x4B504600;
constexpr std::uint32_t cnMostSide = 20;
constexpr std::uint8_t canTypes[] = {1, 2, 4, 129, 130, 132, 196, 200};

std::size_t HeadBytes(const std::string& Bytes) {
    return Big<std::uint32_t>(Bytes, 4) == 0 ? 49 : 53;
}

std::size_t SampleBytes(const std::string& Bytes) {
    const std::size_t nBytes = static_cast<unsigned char>(Bytes[8]) & 31U;
    const std::size_t nLine = nBytes * Big<std::uint32_t>(Bytes, 9) * Big<std::uint32_t>(Bytes, 17);
    return ((nLine + 3) & ~std::size_t{3}) * Big<std::uint32_t>(Bytes, 13);
}

} // namespace

void RepairRawImage(std::string& rBytes, ClRandom& rRandom) {
    rBytes.resize(std::max<std::size_t>(rBytes.size(), 53));
    PutBig(rBytes, 0, cnMagic);
    if (!rRandom.OneIn(16))
        PutBig<std::uint32_t>(rBytes, 4, Big<std::uint32_t>(rBytes, 4) % 2);
    if (!rRandom.OneIn(8))
        rBytes[8] = static_cast<char>(canTypes[static_cast<unsigned char>(rBytes[8]) % 8]);
    for (const std::size_t nAt : {9U, 13U, 17U}) {
        const auto nSide = Big<std::uint32_t>(rBytes, nAt);
        if (nSide > cnMostSide)
            PutBig<std::uint32_t>(rBytes, nAt, 1 + nSide % cnMostSide);
    }
    if (rRandom.OneIn(16))
        return;
    rBytes.resize(HeadBytes(rBytes) + SampleBytes(rBytes) + 4);
    PutBig(rBytes, rBytes.size() - 4, cnMagic);
}

} // namespace Fuzz
