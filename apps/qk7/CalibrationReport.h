#pragma once

/// The target and its calibration, as the page of a scanner tells them.

#include "apps/qk7/Derivation.h"
#include "report/PageData.h"

namespace qk7 {

/// The picture of a file. Throws `ClFailure` with its name where its header is none.
report::StPicture PictureOf(const StSource& Source);

/// The capture as a picture, and the size of its frame. Throws as above.
void NoteCapture(const StSource& Capture, report::StScanner& rScanner);

/// What was found of the dots, and the resolution by which they were looked for.
void NoteTarget(const StTargetDiagnosis& Target, report::StScanner& rScanner);

/// Verdict, reasons, advice, all figures, and what is drawn of them.
void NoteJudged(const StDerivation& Derivation, const StBlocks& Blocks, const StJudged& Judged,
                report::StScanner& rScanner);

} // namespace qk7
