#pragma once

/// The bitmap blocks of the exported functions: tests on foreign bytes, in the order in which
/// applications know them, and the copy that the work is done on.

#include "Tools/Bitmap.h"

class ClImage;

namespace BitmapBlock {

/// Bytes of a block by its header; 0 where a line, the pixels or the palette overflow 32 bits,
/// which no block has.
std::uint64_t SizeByRule(const tagBITMAPINFOHEADER& Header);

/// Copies a block of `nSize` bytes. Returns -21 for less than a header and, behind the tests of
/// `ClBitmap::MemToBitmapInfoHeader`, which throws, where the size differs from the rule; else 0.
/// The caller's header is read once, and what is tested is what is kept: a block that changes
/// meanwhile can show mixed pixels and nothing worse.
long Copy(const unsigned char* pBlock, unsigned long nSize, ClBitmap& rBitmap);

/// Attaches an image to the copy. Throws -12 for a depth that no image has, and "Image area must
/// be positive" (-101) for one plane without pixels. A compressed bitmap leaves the image empty,
/// a coloured one gives it several planes: which images are fit for the work is the processor's
/// decision.
void Attach(const ClBitmap& Bitmap, ClImage& Image);

/// Copy() and Attach() in one, for an image that is kept from block to block: where the block
/// before had the same size, nothing is allocated.
long CopyToImage(const unsigned char* pBlock, unsigned long nSize, ClImage& rImage);

/// Throws "Image area must be positive" (-101) for planes without pixels, whatever their number.
void CheckArea(const ClImage& Image);

} // namespace BitmapBlock
