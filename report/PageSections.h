#pragma once

/// The parts of a scanner's page, each in a file of its own.

#include "report/PageWriter.h"

namespace report {

/// Name, verdict, reasons, advice, files, and links to the sections.
void AddHead(ClPage& rPage, const StScanner& Scanner);

/// What was found in the target, dot by dot where there is a calibration.
void AddTarget(ClPage& rPage, const StScanner& Scanner);

/// The main figures, and the corrected image in pictures; nothing without a calibration.
void AddFigures(ClPage& rPage, const StScanner& Scanner);
void AddImage(ClPage& rPage, const StScanner& Scanner);
/// Nothing without a second capture.
void AddSecond(ClPage& rPage, const StScanner& Scanner);

/// Nothing without a capture of the empty platen, or without fingers.
void AddPlaten(ClPage& rPage, const StScanner& Scanner);
void AddFingers(ClPage& rPage, const StScanner& Scanner);

} // namespace report
