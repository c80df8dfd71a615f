#pragma once

/// What the calls answer to a bitmap block, worked out from its bytes alone.

#include "support/BitmapBlocks.h"

namespace Calls {

using TestSupport::Bytes;

/// The number at an offset, little endian.
std::int64_t Field(const Bytes& aBlock, std::size_t nOffset, int nBytes);
std::int64_t SignedField(const Bytes& aBlock, std::size_t nOffset);

/// The size that a header implies; -1 where a part of it overflows 32 bits.
std::int64_t ImpliedSize(const Bytes& aBlock);

/// The status that the tests in their order give for a block of `nSize` bytes as a call takes it.
long StatusOfBlock(const Bytes& aBlock, std::size_t nSize);
/// The same with the tests on the image behind them.
long StatusOfImage(const Bytes& aBlock, std::size_t nSize);
/// The same for the contamination, which finds nothing in a compressed image.
long StatusOfRawImage(const Bytes& aBlock, std::size_t nSize);

} // namespace Calls
