#pragma once

/// Where a capture shows ridges: the steps of `ClIpContrastMask2` on planes, with the gradients
/// formed where they are read alone, which is every second line.

#include "FingerCoding/IpContrastMask2.h"
#include "FingerCoding/Quick/NearestAxis.h"
#include "FingerCoding/Quick/Plane.h"
#include "FingerCoding/Quick/Spans.h"

#include "ImageProcessing/Kernels/Scratch.h"

#include <array>
#include <cstdint>
#include <optional>

namespace Quick {

/// The window of a capture at the resolution of the work.
struct StRidgeWork {
    long m_nPelsX = 0;
    long m_nPelsY = 0;
    StNearestAxis m_X{1};
    StNearestAxis m_Y{1};
    long m_nMeanWidth = 0;

    /// Nothing for sizes that an image cannot have.
    static std::optional<StRidgeWork> Of(const ClImage& Window, const ClIpContrastMask2& Settings);
};

/// Pixels on either side that a gradient is formed of.
constexpr long cnGradientReach = 4;

/// What the work on captures of one size keeps. The planes have at least the size of the window at
/// the resolution of the work.
struct StRidgeMemory {
    StPlane m_A;
    StPlane m_B;
    int* m_pColumns = nullptr;           ///< one per column of the work, and of the window
    unsigned char* m_pPadded = nullptr;  ///< a line of the capture with its ends repeated
    std::uint16_t* m_pSquares = nullptr; ///< one line of the capture
    Kernels::ClScratch* m_pScratch = nullptr;
};

class ClRidgeArea {
public:
    /// Throws `ClExBadAlloc` (-102).
    ClRidgeArea(const ClIpContrastMask2& Settings, const StRidgeMemory& Memory);

    /// Looks for ridges in a window of a capture, in a region of it, whose spans stand `nX` columns
    /// and `nY` lines further than in the window; without spans, everywhere. `rStrong` becomes the
    /// spans that have ridges at the resolution of the work, without small blobs.
    void Find(const StPlane& In, const StBox& Window, const ClSpans& Region, long nX, long nY,
              const StRidgeWork& Work, ClSpans& rStrong);
    /// The probability, of the size of the window, after Find().
    void WriteProbability(const StRidgeWork& Work, const StPlane& Out);

private:
    void FindGradients(const StPlane& In, long nLine);
    void Shrink(const StPlane& In, const StBox& Window, const ClSpans& Region, long nX, long nY,
                const StRidgeWork& Work, const StPlane& Out);
    void Amplify(const StPlane& InOut, const StPlane& Median) const;
    void InvertLine(const unsigned char* pIn, long nColumns, unsigned char* pOut) const;

    const ClIpContrastMask2& m_rSettings;
    const StRidgeMemory m_Memory;
    const std::array<int, cnGradientReach> m_aTaps;
    StPlane m_Lifted; ///< in A or B, the amplified and smoothed gradients above the threshold
    /// Amplified length of a gradient by its square, up to a square that is white in any case.
    unsigned char m_aAmplified[1024];
};

} // namespace Quick
