#pragma once

/// Diagnoses of an image of the target and of a record as text and as JSON, and the failures that
/// carry them.

#include "apps/qk7/RecordFault.h"
#include "apps/qk7/TargetDiagnosis.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace qk7 {

/// Lines that begin with a line feed and a blank, for the end of a message:
/// "\n  74 of 75 dots found." They name a few places for each reason.
std::string TextOf(const StTargetDiagnosis& Diagnosis);

/// "The dot at (195, 551), column 4, row 7 of the pattern: 103.9 lines to the dot ...".
std::string SentenceOf(const StRecordFault& Fault);

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
    const std::string& Advice() const { return m_Advice; }

private:
    std::string m_Message;
    std::string m_Advice;
    StTargetDiagnosis m_Diagnosis;
};

/// A calibration that was generated and would not load. what() is `Message`, the fault, `Advice`.
class ClUnloadableRecord : public ClFailure {
public:
    /// `Diagnosis` is that of the target.
    ClUnloadableRecord(const std::string& Message, const StRecordFault& Fault,
                       const StTargetDiagnosis& Diagnosis, const std::string& Advice);

    const StRecordFault& Fault() const { return m_Fault; }
    const StTargetDiagnosis& Diagnosis() const { return m_Diagnosis; }
    /// Without fault and advice.
    const std::string& Message() const { return m_Message; }
    const std::string& Advice() const { return m_Advice; }

private:
    std::string m_Message;
    std::string m_Advice;
    StRecordFault m_Fault;
    StTargetDiagnosis m_Diagnosis;
};

/// "file" and "error"; "target" of a `ClRefusedTarget` and of a `ClUnloadableRecord`, and of the
/// latter "dot" with "column", "row" and its place in the capture.
nlohmann::ordered_json FailureJson(const std::string& Path, const std::exception& Error);

} // namespace qk7
