#pragma once

/// Images of the target for the tests of the tool, by a simulated scanner without faults: what is
/// found in them is known from what was printed.

#include "apps/qk7/File.h"
#include "sim/Capture.h"

namespace TestSupport {

/// No distortion, even light, no noise, no dirt but what is asked for.
sim::ClCapture TargetCapture(const sim::ClTargetSettings& Target = {},
                             const sim::ClDirtSettings& Dirt = {});

/// A target without the dots of these indices into the pattern.
sim::ClTargetSettings Without(const std::vector<int>& aMissing);

/// The raw capture as a block; without arguments that of the target as it should be.
qk7::Bytes RawTarget();
qk7::Bytes RawTarget(const sim::ClTargetSettings& Target, const sim::ClDirtSettings& Dirt = {});
/// The same target as a perfect corrected image.
qk7::Bytes CorrectedTarget(const sim::ClTargetSettings& Target = {});
/// A platen without anything on it.
qk7::Bytes EmptyPlaten();

/// The calibration block of that scanner by its true geometry.
qk7::Bytes TrueCalibration();
/// The same with its target points moved apart by a factor for each axis, and a right checksum.
qk7::Bytes StretchedCalibration(float fFactorX, float fFactorY);
/// The same with one dot found elsewhere in the capture, by columns and lines.
qk7::Bytes CalibrationWithDotMoved(int nDot, float fColumns, float fLines);

} // namespace TestSupport
