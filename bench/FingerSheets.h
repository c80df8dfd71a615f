#pragma once

/// Pictures of what the dynamic calibration does.

#include <string>

namespace bench {

/// Writes three sheets into a folder, in half size:
///
/// - fingers-chain.png, one finger step by step. Above: the raw capture, warped, stretched
///   globally, probability of brightness, probability of contrast (of the window that is left to
///   it). Below: both probabilities added, finger mask, stretched locally, output, and where dirt
///   is measured.
/// - fingers-kinds.png, every kind of capture, two in a row: raw, warped, finger mask, output.
/// - fingers-sensitive.png, a faint finger, a small one and an empty platen: warped, finger mask,
///   output. Above with the default options, below in the sensitive mode.
void DrawSheets(const std::string& sFolder, unsigned long nScanner);

} // namespace bench
