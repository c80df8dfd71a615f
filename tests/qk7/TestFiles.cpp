#include "qk7/TestFiles.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace TestSupport {

qk7::Bytes ToBytes(const std::string& Text) {
    return qk7::Bytes(Text.begin(), Text.end());
}

std::string ToText(const qk7::Bytes& Content) {
    return std::string(Content.begin(), Content.end());
}

void Put(const std::string& Path, const qk7::Bytes& Content) {
    std::ofstream file(Path, std::ios::binary);
    file << ToText(Content);
    if (!file.flush())
        throw std::runtime_error("cannot write " + Path);
}

qk7::Bytes Get(const std::string& Path) {
    std::ifstream file(Path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + Path);
    return qk7::Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

void AppendBig32(qk7::Bytes& rBytes, std::uint32_t nValue) {
    for (int nShift = 24; nShift >= 0; nShift -= 8)
        rBytes.push_back(static_cast<unsigned char>(nValue >> nShift));
}

void AppendLittle(qk7::Bytes& rBytes, std::uint64_t nValue, int nBytes) {
    for (int i = 0; i < nBytes; ++i)
        rBytes.push_back(static_cast<unsigned char>(nValue >> (8 * i)));
}

qk7::Bytes operator+(qk7::Bytes Front, const qk7::Bytes& Behind) {
    Front.insert(Front.end(), Behind.begin(), Behind.end());
    return Front;
}

qk7::Bytes GreyBlock(int nWidth, int nHeight) {
    qk7::Bytes block;
    AppendLittle(block, 40, 4);
    AppendLittle(block, static_cast<std::uint64_t>(nWidth), 4);
    AppendLittle(block, static_cast<std::uint64_t>(nHeight), 4);
    AppendLittle(block, 1, 2);
    AppendLittle(block, 8, 2);
    for (int i = 0; i < 6; ++i)
        AppendLittle(block, 0, 4);
    for (std::uint64_t nGrey = 0; nGrey < 256; ++nGrey)
        AppendLittle(block, nGrey * 0x010101, 4);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < (nWidth + 3) / 4 * 4; ++x)
            block.push_back(static_cast<unsigned char>(x < nWidth ? x * 7 + y * 13 : 0));
    return block;
}

qk7::Bytes GreyFileHeader(int nWidth, int nHeight) {
    qk7::Bytes header = ToBytes("BM");
    AppendLittle(header, 14 + GreyBlock(nWidth, nHeight).size(), 4);
    AppendLittle(header, 0, 4);
    AppendLittle(header, 14 + 40 + 1024, 4);
    return header;
}

} // namespace TestSupport
