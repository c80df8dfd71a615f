#pragma once

/// Simulated fingers through the exported calls, and how the finger mask compares with the truth.

#include "sim/Capture.h"

#include <vector>

namespace bench {

/// What the library answers to one capture.
struct ClFingerRun {
    sim::ClRaster m_Output;
    sim::ClRaster m_Mask;
    double m_dDirt = 0.0;
    double m_dDry = 0.0;

    /// The output is not all white.
    bool IsTaken() const;
    /// The mask is not all white; the output may be all the same, where the capture was given up
    /// after the finger had been found.
    bool HasMask() const;
};

/// A simulated scanner with the library's handle for it, its true geometry loaded.
class ClFingerScanner {
public:
    explicit ClFingerScanner(const sim::ClScanner& Scanner);
    ~ClFingerScanner();
    ClFingerScanner(const ClFingerScanner&) = delete;
    ClFingerScanner& operator=(const ClFingerScanner&) = delete;

    const sim::ClScanner& Scanner() const { return m_Scanner; }

    /// Default options, but for the sensitive mode. Throws what the library answers, as the others.
    ClFingerRun Run(const sim::ClRaster& Raw, bool bSensitive) const;
    /// Sharpened and warped only: what the dynamic calibration begins with.
    sim::ClRaster Warped(const sim::ClRaster& Raw) const;
    /// Of the raw capture.
    double Contamination(const sim::ClRaster& Raw) const;

private:
    void Set(const char* szOption) const;
    sim::ClRaster Calibrated(const sim::ClRaster& Raw) const;

    sim::ClScanner m_Scanner;
    void* m_pHandle;
};

/// A mask pixel below this is finger: half way through the soft rim.
constexpr int cnMaskThreshold = 128;
/// A mask pixel below this is finger or rim.
constexpr int cnBackground = 255;

/// Intersection over union of the mask's pixels below a value and a true area, which is 0 on the
/// finger and not empty.
double OverlapOf(const sim::ClRaster& Mask, const sim::ClRaster& Area, int nThreshold);

bool HasFinger(const sim::ClCapture& Capture);

/// The part of the true finger area that prints: its pixels that take at least half as much light
/// as its ridges (the darkest tenth) do, and what lies between them, closed over 15 x 15 pixels. A
/// finger bends away from the platen toward its outline, so that its area ends outside of what a
/// capture can show. 0 and 255 as there; all 255 without a finger.
sim::ClRaster PrintArea(const sim::ClCapture& Capture);

} // namespace bench
