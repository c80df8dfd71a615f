#pragma once

// What the examples need beside the library: whole files in memory, and the blocks of bitmap files.

#include <cstddef>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

using Block = std::vector<unsigned char>;

constexpr std::size_t fileHeaderSize = 14;

inline Block readFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    if (!file)
        throw std::runtime_error(name + ": cannot be read");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// All that stands behind the file header.
inline Block readBitmap(const std::string& name) {
    const Block file = readFile(name);
    if (file.size() < fileHeaderSize || file[0] != 'B' || file[1] != 'M')
        throw std::runtime_error(name + ": is no bitmap file");
    return {file.begin() + fileHeaderSize, file.end()};
}

inline void writeFile(const std::string& name, const Block& data) {
    std::ofstream file(name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(data.data()),
               static_cast<std::streamsize>(data.size()));
    if (!file.flush())
        throw std::runtime_error(name + ": cannot be written");
}

/// Writes a corrected block behind the header that bitmap files have.
inline void writeBitmap(const std::string& name, const Block& block) {
    constexpr std::size_t pixelsOffset = fileHeaderSize + 40 + 1024; // info header, 256 greys
    Block file(fileHeaderSize);
    const auto put = [&](std::size_t at, std::size_t value) {
        for (std::size_t i = 0; i < 4; ++i)
            file[at + i] = static_cast<unsigned char>(value >> (8 * i));
    };
    file[0] = 'B';
    file[1] = 'M';
    put(2, fileHeaderSize + block.size());
    put(10, pixelsOffset);
    file.insert(file.end(), block.begin(), block.end());
    writeFile(name, file);
}

/// Runs what an example does; a failure is told, and is the exit status 1.
template <class Work>
int exitStatusOf(Work work) {
    try {
        return work();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
