#pragma once

/// The measures of prints and platens, from bitmap blocks, as lines of text and as JSON.

#include "apps/qk7/Handle.h"

#include "measures/Finger.h"
#include "measures/Platen.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace qk7 {

struct StFingerMeasures {
    measures::ClFingerMeasures m_Print;
    measures::Measure m_dLightTaken;
};

/// Nothing is measurable on blocks that are not uncompressed 8-bit grey, or that differ in size.
StFingerMeasures MeasureFinger(const Bytes& Corrected, const Bytes& Mask, const Bytes& Warped);

/// Corrects a capture three times: as an image, as its finger mask, and warped only. The options
/// are put back, and the levels are those of this capture. `nExpected` is a guess of a result's
/// size. Throws as `ClHandle::Calibrate`.
StFingerMeasures MeasureCapture(ClHandle& rHandle, const Bytes& Capture, std::size_t nExpected);

/// Of a raw capture; nothing for one that is not uncompressed 8-bit grey.
std::optional<measures::ClPlatenMeasures> MeasurePlaten(const Bytes& Raw);

/// An object with a number for each measure, or null for what is not measurable.
nlohmann::ordered_json FingerJson(const StFingerMeasures& Measures);
/// The same; null where nothing is measurable.
nlohmann::ordered_json PlatenJson(const std::optional<measures::ClPlatenMeasures>& Measures);

/// Lines for a reader, each indented by two blanks.
std::string FingerText(const StFingerMeasures& Measures);
std::string PlatenText(const std::optional<measures::ClPlatenMeasures>& Measures);

} // namespace qk7
