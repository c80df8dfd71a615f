#pragma once

/// A diagnosis of an image of the target as text and as JSON, and the failure that carries one.

#include "apps/qk7/TargetDiagnosis.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace qk7 {

/// Lines that begin with a line feed and a blank, for the end of a message:
/// "\n  74 of 75 dots found." They name a few places for each reason.
std::string TextOf(const StTargetDiagnosis& Diagnosis);

/// "dots", "found", "accepted", "missing" with places, "refused" with a count and up to 100 regions
/// for each reason.
nlohmann::ordered_json JsonOf(const StTargetDiagnosis& Diagnosis);

/// An image in which the library did not find the target. what() ends with the diagnosis' text.
class ClRefusedTarget : public ClFailure {
public:
    /// `Message` says what failed, as a `ClFailure` would; `Advice` ends what().
    ClRefusedTarget(const std::string& Message, const StTargetDiagnosis& Diagnosis,
                    const std::string& Advice);

    const StTargetDiagnosis& Diagnosis() const { return m_Diagnosis; }
    /// Without the diagnosis.
    const std::string& Message() const { return m_Message; }

private:
    std::string m_Message;
    StTargetDiagnosis m_Diagnosis;
};

/// "file" and "error", and "target" of a `ClRefusedTarget`.
nlohmann::ordered_json FailureJson(const std::string& Path, const std::exception& Error);

} // namespace qk7
