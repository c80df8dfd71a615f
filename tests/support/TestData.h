#pragma once

/// The files below tests/data.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace TestSupport {

using Bytes = std::vector<unsigned char>;

std::string DataPath(const std::string& Name);

inline Bytes DataFile(const std::string& Name) {
    std::ifstream File(DataPath(Name), std::ios::binary);
    EXPECT_TRUE(File.good()) << Name;
    return Bytes(std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>());
}

/// The bitmap block of a .bmp file: all that stands behind its file header.
inline Bytes DataBlock(const std::string& Name) {
    const Bytes aFile = DataFile(Name);
    return aFile.size() < 14 ? Bytes() : Bytes(aFile.begin() + 14, aFile.end());
}

} // namespace TestSupport
