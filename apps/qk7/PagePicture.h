#pragma once

/// Bitmap blocks as pictures of a page.

#include "apps/qk7/File.h"
#include "report/PageData.h"

namespace qk7 {

/// The picture as a data URI of PNG. A raw capture has twice as many lines as columns to the
/// millimetre: pairs of its lines are averaged, which makes its pixels square and the page
/// smaller. Without a source where the block is not 8-bit grey.
report::StPicture PagePicture(const Bytes& Block);

/// A block of 8-bit grey with pairs of lines averaged, rounded up at a half; the last line of an
/// odd number goes. Any other block as it is.
Bytes WithLinesPaired(const Bytes& Block);

/// As in RFC 4648, padded.
std::string Base64(const Bytes& Content);

} // namespace qk7
