#pragma once

/// What `qk7 info` tells about a file, as text and as JSON.

#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/Png.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <variant>

namespace qk7 {

using FileInfo = std::variant<StCalibrationInfo, StPrecalculatedInfo, StBitmapInfo, StPngInfo>;

/// Reads what the first bytes say that it is. Throws `ClFailure`, whose words follow the name of
/// the file, when it is none of these or not readable to its end.
FileInfo ReadInfo(const Bytes& Content);

/// Lines "  name   value", the first one being the name of the file, its kind and size.
std::string TextOf(const std::string& Path, std::size_t nBytes, const FileInfo& Info);

/// One object: "file", "kind" ("calibration block", "precalculated block", "bitmap", "PNG
/// picture"), "bytes", and the fields of the kind. Numbers stay numbers; resolutions are given in
/// pixels per metre and in dpi.
nlohmann::ordered_json JsonOf(const std::string& Path, std::size_t nBytes, const FileInfo& Info);

} // namespace qk7
