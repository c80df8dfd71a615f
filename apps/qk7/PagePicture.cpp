#include "apps/qk7/PagePicture.h"

#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/Png.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace qk7 {

namespace {

constexpr std::size_t cnHeightAt = 8;
constexpr std::size_t cnImageSizeAt = 20;
constexpr std::size_t cnPelsYAt = 28;
constexpr std::size_t cnGreyPixelsAt = 40 + 1024;
constexpr double cdShownPerMetre = 19685.0; ///< a corrected image is shown pixel by pixel
constexpr double cdDenser = 1.5;            ///< lines to columns, from which on they are paired

void PutLittle32(Bytes& rBlock, std::size_t nAt, std::uint32_t nValue) {
    for (std::size_t i = 0; i < 4; ++i)
        rBlock[nAt + i] = static_cast<unsigned char>(nValue >> (8 * i));
}

bool IsPlainGrey(const StBitmapInfo& Info, const Bytes& Block) {
    return Info.m_nBits == 8 && Info.m_nCompression == 0 && Info.m_nPlanes == 1 &&
           (Info.m_nColours == 0 || Info.m_nColours == 256) && Info.m_nImpliedBytes &&
           *Info.m_nImpliedBytes <= Block.size() && Info.m_nWidth > 0;
}

std::size_t LineBytes(const StBitmapInfo& Info) {
    return (static_cast<std::size_t>(Info.m_nWidth) + 3) / 4 * 4;
}

bool HasDenseLines(const StBitmapInfo& Info) {
    return Info.m_nPelsX > 0 && Info.m_nPelsY > cdDenser * Info.m_nPelsX;
}

/// The length that so many pixels have, in pixels of a corrected image.
int ShownLength(std::int64_t nPixels, std::int32_t nPels) {
    const double dPels = nPels > 0 ? nPels : cdShownPerMetre;
    return static_cast<int>(
        std::lround(static_cast<double>(std::llabs(nPixels)) / dPels * cdShownPerMetre));
}

} // namespace

Bytes WithLinesPaired(const Bytes& Block) {
    const StBitmapInfo info = ReadBitmapInfo(Block);
    if (!IsPlainGrey(info, Block) || std::abs(info.m_nHeight) < 2)
        return Block;
    const std::size_t nLine = LineBytes(info);
    const auto nPairs = static_cast<std::size_t>(std::abs(info.m_nHeight)) / 2;
    Bytes paired(Block.begin(), Block.begin() + cnGreyPixelsAt);
    paired.reserve(cnGreyPixelsAt + nPairs * nLine);
    for (std::size_t nPair = 0; nPair < nPairs; ++nPair)
        for (std::size_t x = 0; x < nLine; ++x) {
            const std::size_t nAt = cnGreyPixelsAt + 2 * nPair * nLine + x;
            paired.push_back(static_cast<unsigned char>((Block[nAt] + Block[nAt + nLine] + 1) / 2));
        }
    PutLittle32(paired, cnHeightAt, static_cast<std::uint32_t>(info.m_nHeight / 2));
    PutLittle32(paired, cnImageSizeAt, static_cast<std::uint32_t>(nPairs * nLine));
    PutLittle32(paired, cnPelsYAt, static_cast<std::uint32_t>(info.m_nPelsY / 2));
    return paired;
}

report::StPicture PagePicture(const Bytes& Block) {
    const StBitmapInfo info = ReadBitmapInfo(Block);
    if (!IsPlainGrey(info, Block))
        return {};
    report::StPicture picture;
    picture.m_sSource = "data:image/png;base64," +
                        Base64(PngOfBlock(HasDenseLines(info) ? WithLinesPaired(Block) : Block));
    picture.m_nWidth = ShownLength(info.m_nWidth, info.m_nPelsX);
    picture.m_nHeight = ShownLength(info.m_nHeight, info.m_nPelsY);
    return picture;
}

std::string Base64(const Bytes& Content) {
    constexpr const char* szDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((Content.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < Content.size(); i += 3) {
        const std::size_t nBytes = std::min<std::size_t>(Content.size() - i, 3);
        std::uint32_t nGroup = 0;
        for (std::size_t n = 0; n < 3; ++n)
            nGroup = nGroup << 8 | (n < nBytes ? Content[i + n] : 0U);
        for (std::size_t n = 0; n < 4; ++n)
            text += n <= nBytes ? szDigits[nGroup >> (18 - 6 * n) & 63U] : '=';
    }
    return text;
}

} // namespace qk7
