#include "ByteOrder.h"
#include "Formats.h"

#include <algorithm>

namespace Fuzz {

namespace {

constexpr std::size_t cnFileHead = 14;
constexpr std::size_t cnInfoHead = 40;
constexpr std::uint32_t cnMostSide = 100;
constexpr std::uint16_t canDepths[] = {8, 24, 1, 16, 32, 4, 8, 8};
constexpr std::uint32_t cnRuns = 1;
constexpr std::uint32_t cnMasks = 3;

/// What the info header at the beginning says.
struct StHead {
    explicit StHead(const std::string& Bytes)
        : m_nWidth(Little<std::uint32_t>(Bytes, 4)), m_nHeight(Little<std::uint32_t>(Bytes, 8)),
          m_nBits(Little<std::uint16_t>(Bytes, 14)),
          m_nCompression(Little<std::uint32_t>(Bytes, 16)),
          m_nColours(Little<std::uint32_t>(Bytes, 32)) {}

    std::size_t Stride() const {
        return ((std::size_t{m_nBits} * m_nWidth + 7) / 8 + 3) & ~std::size_t{3};
    }
    std::size_t Palette() const {
        if (m_nBits > 8)
            return m_nCompression == cnMasks ? 12 : std::size_t{m_nColours} * 4;
        return std::size_t{m_nColours != 0 ? m_nColours : 1U << m_nBits} * 4;
    }
    std::size_t Lines() const {
        const auto nHeight = static_cast<std::int32_t>(m_nHeight);
        return static_cast<std::size_t>(nHeight < 0 ? -std::int64_t{nHeight} : nHeight);
    }

    std::uint32_t m_nWidth;
    std::uint32_t m_nHeight;
    std::uint16_t m_nBits;
    std::uint32_t m_nCompression;
    std::uint32_t m_nColours;
};

void RepairSides(std::string& rBytes, ClRandom& rRandom) {
    const StHead Head(rBytes);
    if ((Head.m_nWidth == 0 || Head.m_nWidth > cnMostSide) && !rRandom.OneIn(16))
        PutLittle<std::uint32_t>(rBytes, 4, 1 + Head.m_nWidth % cnMostSide);
    if ((Head.Lines() == 0 || Head.Lines() > cnMostSide) && !rRandom.OneIn(16))
        PutLittle<std::uint32_t>(rBytes, 8, 1 + Head.m_nHeight % cnMostSide);
}

void RepairDepth(std::string& rBytes, ClRandom& rRandom) {
    const StHead Head(rBytes);
    if (std::find(std::begin(canDepths), std::end(canDepths), Head.m_nBits) == std::end(canDepths))
        PutLittle(rBytes, 14, canDepths[Head.m_nBits % std::size(canDepths)]);
    if (!rRandom.OneIn(8))
        PutLittle<std::uint16_t>(rBytes, 12, 1);
    if (Head.m_nCompression > cnMasks)
        PutLittle<std::uint32_t>(rBytes, 16, rRandom.OneIn(2) ? 0 : Head.m_nCompression % 4);
    if (Head.m_nColours > 256)
        PutLittle<std::uint32_t>(rBytes, 32, Head.m_nColours % 257);
}

/// The length that the header implies, as far as it is one worth a run.
void RepairLength(std::string& rBytes, ClRandom& rRandom) {
    const StHead Head(rBytes);
    constexpr std::size_t nMost = 1U << 16;
    const std::size_t nLength = cnInfoHead + Head.Palette() + Head.Stride() * Head.Lines();
    if (Head.m_nCompression != cnRuns && nLength < nMost && !rRandom.OneIn(16))
        rBytes.resize(nLength, rBytes.back());
}

void RepairBlock(std::string& rBytes, ClRandom& rRandom) {
    rBytes.resize(std::max(rBytes.size(), cnInfoHead));
    if (!rRandom.OneIn(64))
        PutLittle<std::uint32_t>(rBytes, 0, cnInfoHead);
    RepairSides(rBytes, rRandom);
    RepairDepth(rBytes, rRandom);
    RepairLength(rBytes, rRandom);
}

} // namespace

void RepairBitmap(std::string& rBytes, ClRandom& rRandom) {
    if (rBytes.substr(0, 2) != "BM" || rBytes.size() < cnFileHead)
        return RepairBlock(rBytes, rRandom);
    std::string FileHead = rBytes.substr(0, cnFileHead);
    std::string Block = rBytes.substr(cnFileHead);
    RepairBlock(Block, rRandom);
    if (!rRandom.OneIn(8))
        PutLittle(FileHead, 10,
                  static_cast<std::uint32_t>(cnFileHead + cnInfoHead + StHead(Block).Palette()));
    rBytes = FileHead + Block;
}

void RepairCapture(std::string& rBytes, ClRandom& rRandom) {
    if (rRandom.OneIn(2)) {
        rBytes.resize(std::max(rBytes.size(), cnInfoHead));
        for (const std::size_t nAt : {4U, 8U})
            PutLittle<std::uint32_t>(rBytes, nAt, 64);
    }
    RepairBlock(rBytes, rRandom);
}

} // namespace Fuzz
