#pragma once

/// Captures of fingers and of the empty platen, as the page of a scanner tells them.

#include "apps/qk7/Derivation.h"
#include "apps/qk7/Handle.h"
#include "report/PageData.h"

#include <memory>

namespace qk7 {

/// A handle for `GatherFinger`, with the calibration and its table.
std::unique_ptr<ClHandle> FingerHandle(const StBlocks& Blocks);

/// Corrects, measures and shows; without a handle it only shows. What the library refuses is told
/// in the result. Throws `ClFailure` for a file that cannot be read.
report::StFinger GatherFinger(const std::string& Path, ClHandle* pHandle);

/// Throws `ClFailure` for a file that cannot be read, and for a picture that cannot be measured.
report::StPlaten GatherPlaten(const std::string& Path);

} // namespace qk7
