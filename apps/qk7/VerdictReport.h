#pragma once

/// What the diagnosis of a calibration says, as text and as JSON.

#include "apps/qk7/Document.h"
#include "diagnosis/Diagnosis.h"
#include "diagnosis/SecondCapture.h"

#include <optional>
#include <string>

namespace qk7 {

/// A calibration, and what is known about it.
struct StJudged {
    diagnosis::StDiagnosis m_First;
    /// Of a stored calibration, whose dots are those of another capture: the target, corrected.
    std::optional<diagnosis::StSecond> m_Target;
    std::optional<diagnosis::StSecond> m_Second;

    bool IsGood() const;
    /// Of all of them.
    diagnosis::Reasons Reasons() const;
};

/// The words of a reason, with a capital letter and a full stop.
std::string SentenceOf(const diagnosis::StReason& Reason);

/// "good" or "doubtful".
std::string VerdictOf(const StJudged& Judged);

/// "scanner.cal: good" with the figures, or "doubtful" with a line for each reason; ends with a
/// line feed. `Verdict` is the word for it, coloured or not.
std::string TextOf(const std::string& Calibration, const StJudged& Judged,
                   const std::string& Verdict);

/// "verdict", "reasons", "dots", "plate", "expected_error" and, where there was one, "second".
Json JsonOf(const StJudged& Judged);

} // namespace qk7
