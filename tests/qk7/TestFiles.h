#pragma once

/// Files of the tests of the tool.

#include "apps/qk7/File.h"
#include "support/TestData.h"
#include "support/TestFolder.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TestSupport {

qk7::Bytes ToBytes(const std::string& Text);
std::string ToText(const qk7::Bytes& Content);
/// Written and read without the code under test.
void Put(const std::string& Path, const qk7::Bytes& Content);
qk7::Bytes Get(const std::string& Path);

void AppendBig32(qk7::Bytes& rBytes, std::uint32_t nValue);
void AppendLittle(qk7::Bytes& rBytes, std::uint64_t nValue, int nBytes);
qk7::Bytes operator+(qk7::Bytes Front, const qk7::Bytes& Behind);

/// A bitmap block of 8 bits with an identity palette, pixel (x, y) being x * 7 + y * 13 modulo 256.
qk7::Bytes GreyBlock(int nWidth, int nHeight);
/// The 14 bytes of a file header in front of a GreyBlock.
qk7::Bytes GreyFileHeader(int nWidth, int nHeight);

} // namespace TestSupport
