#pragma once

/// The dynamic calibration of ordinary captures, on planes of bytes in memory that is kept. It
/// gives what the plain sequence of operators in `ClIpQK7DynamicCalibration30` gives, byte for
/// byte, and that sequence says what is done and why. What is saved is
///
/// - what nobody reads: gradients between the lines of the work, probabilities that no level
///   weighs, the stretched image behind the mask, everything where no finger is sought;
/// - images: a region is kept as spans and counted as such, two-valued means are comparisons of
///   counts (DoubleBlur.cpp, CleanBackground.cpp), and work on a region stays in its box;
/// - memory: all planes lie in one piece, which is taken once for a size.
///
/// Whatever is not ordinary is left to the plain sequence, so that one place tells of errors.

#include "FingerCoding/IpBrightnessMask.h"
#include "FingerCoding/IpContrastMask2.h"
#include "FingerCoding/Quick/FingerShape.h"
#include "FingerCoding/Quick/Plane.h"
#include "FingerCoding/Quick/RidgeArea.h"
#include "FingerCoding/Quick/Spans.h"
#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/IpStretchRangeGlobal.h"
#include "ImageProcessing/Kernels/Scratch.h"
#include "ImageProcessing/Mask2.h"
#include "Tools/FpImage.h"

#include <optional>

namespace Quick {

struct StLevels {
    double m_dDirt = 0.0;
    double m_dDryFinger = 0.0;
};

class ClDynamicCalibration {
public:
    ClDynamicCalibration();
    ClDynamicCalibration(const ClDynamicCalibration&) = delete; // its parts point into it
    ClDynamicCalibration& operator=(const ClDynamicCalibration&) = delete;

    /// Whether a capture is an ordinary one: bytes of one plane from 0 to 255, of a size and a
    /// resolution that scanners have.
    static bool Takes(const ClImage& Capture);

    /// Calibrates a capture that Takes() admits. Either output may be null; none shares pixels with
    /// another image. Nothing, and the outputs as they were, for a capture that turns out to be
    /// left to the plain sequence. Throws what that throws, and is good for another run then.
    std::optional<StLevels> Run(const ClImage& Capture, bool bSensitive, ClImage* pOut,
                                ClImage* pMask);

private:
    enum class EFinger { eFound, eNone, eUnusual };

    void Prepare(const ClImage& Capture);
    void TakeMemory(long nWidth, long nHeight);
    void MakeFade();

    int StretchGlobally(const ClHistogram& Histogram, bool bSensitive);
    EFinger FindFinger();
    void FindDarkArea();
    EFinger FindRidges();
    std::optional<StBox> CutBox(const ClImage& Image) const;
    void BeginStep(const ClImage& Image);
    void BoundStep(const ClSpans& Spans, const ClImage& Image);
    bool FindSumRegion();
    bool PlaceRidges();
    StBox PaintRegion();

    bool KeepCleanBackground(const StPlane& Capture);
    double DryFingerLevel() const;
    void WriteStretched(ClImage& Out);
    void WriteMask(const ClImage& Capture, bool bFinger, ClImage* pMask) const;

    ClIpBrightnessMask m_DarkSettings;
    ClIpContrastMask2 m_RidgeSettings;
    ClIpStretchRangeGlobal m_Table;
    ClMask2 m_Chain; ///< the windows; its runs are the corners of boxes

    Kernels::ClScratch m_Memory;
    ClImage m_Frame;  ///< layouts without pixels
    ClImage m_Window; ///< the dark area
    ClImage m_FadeImage;
    std::optional<ClRidgeArea> m_Ridges;
    StCanvas m_Canvas;
    ClSpans m_Dark;
    ClSpans m_Spans;
    unsigned char* m_pLine = nullptr;
    unsigned char* m_pFarMemory = nullptr;
    StPlane m_Stretched;
    StPlane m_A;
    StPlane m_B;
    StPlane m_Smooth; ///< of the dark area; its threshold is
    long m_nThreshold = 0;
    StPlane m_RidgeProb; ///< of the size of the window
    StPlane m_Mask;      ///< 255 outside of
    StBox m_MaskBox;
    StPlane m_Fade;

    StBox m_WindowBox; ///< in the frame

    StBox m_Pasted; ///< where the probability of ridges counts in the frame, which is moved by
    long m_nPasteX = 0;
    long m_nPasteY = 0;
    unsigned char m_nLocalLow = 0; ///< the range where all is flat
    unsigned char m_nLocalHigh = 0;
};

} // namespace Quick
