#pragma once

/// What a number of captures came to, as a line of a Markdown table.

#include "bench/FingerRun.h"

#include <string>
#include <vector>

namespace bench {

/// Mean and range of what was added.
class ClSpread {
public:
    void Add(double d) { m_aValues.push_back(d); }
    /// "mean (lowest to highest)"; "-" where nothing was added.
    std::string Text(int nDecimals) const;
    /// "mean, lowest"; "-" where nothing was added.
    std::string LowText(int nDecimals) const;

private:
    double Mean() const;

    std::vector<double> m_aValues;
};

class ClFingerTally {
public:
    /// Runs the library on a capture, in the sensitive mode as well, and adds what it answers.
    /// Returns whether the default options take it as a finger.
    bool Measure(const ClFingerScanner& Finger, const sim::ClCapture& Capture);

    static void PrintHead(const char* szFirstColumn);
    void Print(const std::string& sFirstColumn) const;

private:
    void AddTaken(const ClFingerRun& Run, const sim::ClCapture& Capture);
    void AddSensitive(const ClFingerRun& Run, const sim::ClCapture& Capture);

    int m_nCaptures = 0;
    int m_nTaken = 0;
    /// Refused although a finger was found, which shows in a mask that is not all white.
    int m_nTooDirty = 0;     ///< dirt of 2000 or more
    int m_nNoFreePlaten = 0; ///< the finger leaves nothing to measure the dirt on
    ClSpread m_Area;         ///< overlap with the finger
    ClSpread m_Print;        ///< overlap with its print
    ClSpread m_AreaWithRim;  ///< the same of all that is not wholly background
    ClSpread m_PrintWithRim;
    ClSpread m_Dirt;          ///< of what was taken: the others have fixed levels
    ClSpread m_Dry;           ///< the same
    ClSpread m_Contamination; ///< of all
    int m_nTakenSensitive = 0;
    ClSpread m_AreaSensitive; ///< overlap with the finger in the sensitive mode
    ClSpread m_DrySensitive;
};

} // namespace bench
