#pragma once

/// Calibrations by the exported calls.

#include "diagnosis/Record.h"

namespace TestSupport {

/// The calibration block of a capture of the target.
diagnosis::Bytes Generated(const diagnosis::Bytes& Capture);

/// A capture corrected with a calibration block, without finger mask.
diagnosis::Bytes Corrected(const diagnosis::Bytes& Calibration, const diagnosis::Bytes& Capture);

} // namespace TestSupport
