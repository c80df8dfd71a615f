#pragma once

/// The library, called without the tool: what the tool has to give.

#include "apps/qk7/File.h"

#include <string>
#include <utility>
#include <vector>

namespace TestSupport {

/// The status of Calibrate() on a handle with these options and this calibration block.
long DirectStatus(const qk7::Bytes& Calibration, const qk7::Bytes& Capture,
                  const std::vector<std::string>& options);

/// The status of CalibrateSetData(), without the work of a warp table.
long DirectLoadStatus(const qk7::Bytes& Calibration);

/// The result of Calibrate() on a handle with these options and this calibration block. Fails the
/// test, and is empty, where a call does not succeed.
qk7::Bytes DirectlyCalibrated(const qk7::Bytes& Calibration, const qk7::Bytes& Capture,
                              const std::vector<std::string>& options);

/// The result of CalibrateGetPrecalculatedData().
qk7::Bytes DirectlyPrecalculated(const qk7::Bytes& Calibration);

/// What CalibrateGenerateData() makes of a capture, by CalibrateGetData(). The reference is not set
/// when it is empty. Fails the test where a call does not succeed.
qk7::Bytes DirectlyGenerated(const qk7::Bytes& Target, const qk7::Bytes& Reference = {});

/// The results of CalibrateCheckEfts() and of ContaminationDetection().
double DirectPercent(const qk7::Bytes& Calibration, const qk7::Bytes& Corrected);
double DirectContamination(const qk7::Bytes& Capture);

/// The dirt level and the dry finger level that Calibrate() leaves.
std::pair<double, double> DirectLevels(const qk7::Bytes& Calibration, const qk7::Bytes& Capture);

/// The record of tests/data that most tests use, and its path: captures of 384 x 1057 pixels.
qk7::Bytes Record();
std::string RecordPath();

/// The same with a first point that lies a thousandth of a pixel elsewhere, and a right checksum.
qk7::Bytes OtherRecord();

/// A capture's block for that record.
qk7::Bytes Capture();

} // namespace TestSupport
