#include "ByteOrder.h"
#include "Formats.h"

namespace Fuzz {

namespace {

constexpr std::uint32_t cnSide = 64; // of the captures, lines without padding
constexpr std::size_t cnHead = 94;   // bytes before the table
constexpr std::size_t cnEntry = 36;
constexpr std::uint32_t cnMagic = 0x4B504600;
constexpr std::uint32_t cnMostSide = 12;

void RepairSizes(std::string& rBytes, ClRandom& rRandom) {
    for (const std::size_t nAt : {12U, 16U})
        if (!rRandom.OneIn(16))
            PutBig(rBytes, nAt, cnSide);
    for (const std::size_t nAt : {20U, 24U}) {
        const auto nSide = Big<std::uint32_t>(rBytes, nAt);
        if (nSide == 0 || nSide > cnMostSide)
            PutBig<std::uint32_t>(rBytes, nAt, 1 + nSide % cnMostSide);
    }
    const auto nPlanes = Big<std::uint32_t>(rBytes, 36);
    if (nPlanes == 0 || nPlanes > 3 || rRandom.OneIn(2))
        PutBig<std::uint32_t>(rBytes, 36, 1);
}

/// The head of the image that the table is kept as.
void RepairImageHead(std::string& rBytes) {
    PutBig(rBytes, 41, cnMagic);
    PutBig<std::uint32_t>(rBytes, 45, 1);
    PutBig<std::uint8_t>(rBytes, 49, 1);
    for (std::size_t i = 0; i < 8; i += 4)
        PutBig(rBytes, 50 + i, Big<std::uint32_t>(rBytes, 20 + i));
    PutBig<std::uint32_t>(rBytes, 58, Big<std::uint32_t>(rBytes, 36) * cnEntry);
    for (std::size_t i = 0; i < 8; i += 4)
        PutBig(rBytes, 62 + i, Big<std::uint32_t>(rBytes, 28 + i));
    PutBig<std::uint32_t>(rBytes, 70, 0);
}

void RepairOffset(std::string& rBytes, std::size_t nAt, ClRandom& rRandom) {
    const auto nOffset = Little<std::uint32_t>(rBytes, nAt);
    const std::uint32_t nLine = nOffset / cnSide % (cnSide - 3);
    const std::uint32_t nColumn = nOffset % cnSide % (cnSide - 3);
    if (nOffset != 0xFFFFFFFF && !rRandom.OneIn(512))
        PutLittle(rBytes, nAt, nLine * cnSide + nColumn);
}

} // namespace

void RepairTable(std::string& rBytes, ClRandom& rRandom) {
    rBytes.resize(std::max(rBytes.size(), cnHead));
    rBytes.replace(0, 12, std::string("PRE\0GEO\0", 8) + "001" + '\0');
    RepairSizes(rBytes, rRandom);
    if (rRandom.OneIn(32))
        return;
    RepairImageHead(rBytes);
    const std::size_t nEntries = std::size_t{Big<std::uint32_t>(rBytes, 20)} *
                                 Big<std::uint32_t>(rBytes, 24) * Big<std::uint32_t>(rBytes, 36);
    rBytes.resize(cnHead + nEntries * cnEntry);
    for (std::size_t nEntry = 0; nEntry < nEntries; ++nEntry)
        RepairOffset(rBytes, cnHead + nEntry * cnEntry, rRandom);
    rBytes.resize(rBytes.size() + 4);
    PutBig(rBytes, rBytes.size() - 4, cnMagic);
}

} // namespace Fuzz
