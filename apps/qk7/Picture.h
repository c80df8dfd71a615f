#pragma once

/// Picture files, bitmaps and PNG alike, as the bitmap blocks of the library's interface.

#include "apps/qk7/File.h"

#include <string>

namespace qk7 {

enum class EPictureFormat { eBitmap, ePng };

/// What a file of this name is written as: PNG where it ends in ".png" in any case, else a bitmap.
EPictureFormat FormatOf(const std::string& Path);

/// The block in a picture file; which format it has, its first bytes say. Throws `ClFailure`.
Bytes ReadBlock(const std::string& Path);

/// A block as the bytes of a picture file.
Bytes PictureFile(const Bytes& Block, EPictureFormat eFormat);

/// A block that the library gave, as a file in the format of its name, or in the one given.
void WriteBlock(const std::string& Path, const Bytes& Block);
void WriteBlock(const std::string& Path, const Bytes& Block, EPictureFormat eFormat);

} // namespace qk7
