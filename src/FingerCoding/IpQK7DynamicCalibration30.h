#pragma once

/// `ClIpQK7DynamicCalibration30` corrects the brightness of one capture and reports on it: it evens
/// out the light of the scanner, finds the finger, turns everything else white, and measures how
/// much dirt lies on the platen and how dry the finger is.
///
/// It has no reference image and reads no calibration data: all that it uses is derived from the
/// capture in hand, so that the same capture always gives the same result. Two stretches even out
/// the light. The global one maps the range of grey values that is free of noise to 0 to 255; the
/// local one maps each pixel through the minimum and the maximum of its surroundings. The finger is
/// sought between the two, where grey values of distant places can still be compared. Then
///
///     out = min(255, mask + stretched)
///
/// with a mask that is 0 on the finger, 255 on the background and soft along the border: the finger
/// keeps its grey values and fades into white.
///
/// A capture that is of no use is no failure of a run. Its output is pure white, its dirt level
/// exactly 100.0, and its dry finger level 0.0 where no finger was found. Unusable is: a mask that
/// could not be built as one region, or, without the sensitive mode, a range of grey values of 96
/// or less; a finger that leaves no background to measure; a dirt level of 2000.0 or more.
///
/// The mask takes two detectors that fail differently. Brightness finds a wet finger, in which
/// ridges run together, and takes shadows for fingers; contrast finds a dry one and shuns shadows.
/// Their probability images, in which 128 is the decision of the detector and lower is finger, are
/// added, contrast twice. A fingerprint is one blob: the region found is closed, counted, and made
/// convex, for a gap along a dry patch would cut a hole into the finger.
///
/// The files of a run (`m_bDumpImages`) have fixed names of a developer's drive. On systems where
/// those are ordinary names, such as "C:\01_InImage.kpf", they come to stand in the working
/// directory, which is how they are led elsewhere.

#include "Tools/ProcessorBase.h"

#include <memory>

class ClImage;
class ClMask2;

namespace Quick {
class ClDynamicCalibration;
}

class ClIpQK7DynamicCalibration30 : public ClProcessorBase {
public:
    ClIpQK7DynamicCalibration30();
    ~ClIpQK7DynamicCalibration30() override;

    ClProcessorBase* Create() override;
    const char* Name() const override;

    /// Returns 0, or -37 for a missing image. Throws "Image Type is not the assigned type" (-101)
    /// unless the capture is of type `eUInt8`, "Color-image not supported in ClHistogram::Create."
    /// (-101) for several planes, -13 where the finger is sought in a capture without resolution or
    /// of so coarse a one that it would exceed 4096 pixels in width or height, or 8 million in all,
    /// at 250 dots per inch, the resolution at which ridges are sought, "Image area must be
    /// positive" (-101) where that of one axis is ten thousand times coarser than that of the
    /// other, `ClExBadAlloc` (-102), and the failures of a file (-200, -202) with the dumps on.
    ///
    /// After an exception the levels are those of the run before, except that the dirt level may
    /// be the new one, and the outputs hold no promise beyond being valid images. The output may
    /// be the capture, which then changes with success only.
    long Process() override;

    bool m_bSensitiveMode = false;         ///< seeks the finger in captures of little range, too
    ClImage* m_pInImage = nullptr;         ///< borrowed, as all images: the capture, not changed
    ClImage* m_pOutImage = nullptr;        ///< the corrected image, of the size of the capture
    ClImage* m_pOutMaskImage = nullptr;    ///< may be null: the finger mask as it is found
    double m_dDirtWarningLevel = 0.0;      ///< from 0.0, without an upper end; see above for 100.0
    double m_dDryFingerWarningLevel = 0.0; ///< from 0.0 to 100.0
    unsigned char m_aDirtWeights[256];     ///< what a grey value of the background counts as dirt
    bool m_bDumpImages = false;            ///< stores the image of every stage in a file
    bool m_bDumpDefectImage = false;       ///< stores the image of the functionality check
    bool m_bMaskOnly = false;              ///< nobody reads the output: it may stay as it is

protected: // the steps of a run, open to tests by derivation
    // Finger mask. `dRidgeDist` is the distance of ridges in pixels.

    /// Makes `OutMask`, of the size of `*m_pInImage`, and `OutProb`, the sum of both
    /// probabilities, of the size of `In`, which is the globally stretched capture.
    ///
    /// Returns 0 for one finger; -37 for an image without pixels; -33 where the region found does
    /// not close to one piece, in which case `OutMask` is that region as it was found, neither
    /// closed nor convex, with a soft border; or the code with which the addition of the
    /// probabilities fails, in which case `OutMask` is left alone. Throws -13 for an image without
    /// resolution and for one too large at the resolution of the work, as
    /// ClIpContrastMask2::CheckWorkSize() tells, before anything is made; then what the detectors
    /// and `ClMask2` throw: "*m_pdRidgeDist is out of range" (-35) unless the distance is above 0.
    long BuildMaskImage(const ClImage& In, double dRidgeDist, ClImage& OutMask, ClImage& OutProb);
    /// The gradient of `In` in x and y, of type `eInt8`, and its length. Returns 0.
    long BuildDerivationImages(const ClImage& In, ClImage& OutDx, ClImage& OutDy,
                               ClImage& OutLength);
    /// Brings an image of a window back to the frame that it was cut from: copies its lines to
    /// where the region's steps tell, as wide as the last step, and what both images have. Without
    /// steps both begin at the same corner. Both images have one byte per pixel. Throws the index
    /// message (-35) for an image at no step.
    static void PasteWindow(const ClMask2& Region, const ClImage& Window, ClImage& Frame);
    /// Closes a region of 0 on 255 and makes it convex, in place. Returns 0; -33, with the mask
    /// as it came, where the closed region is not one piece. A distance that is not a number, or
    /// negative, counts as 0.
    long EmbraceMask(ClImage& Mask, double dRidgeDist);
    /// Gives a region of 0 on 255 a soft border, in place. Returns 0. Distances as above.
    long SmoothenMask(ClImage& Mask, double dRidgeDist);
    /// Number of regions of the value `nValue`, of pixels that join by their four neighbours, in
    /// an 8-bit image of one plane. The image is not changed.
    long GetMaskRegionCount(const ClImage& Image, unsigned char nValue);

    // Levels. Images are 8-bit, of one plane and of equal size. In the two that a run takes an
    // image without lines comes first; then "Image Type is not the assigned type" (-101), -11 for
    // several planes and -14 for unequal sizes are thrown.

    /// Sum over all pixels of the background, not normalised by its area:
    ///
    ///     level = (sum of mask * weights[in]) / 2550.0
    ///
    /// with a mask that is 255 on clean background. 0.0 without lines and for a mask of 0.
    double CalcDirtWarningLevel(const ClImage& In, const ClImage& Mask) const;
    /// Mean excess of the probability above its decision value, over the finger and the zone
    /// around it:
    ///
    ///     level = 2 * (sum of max(0, prob - 128) * (255 - mask) / (sum of 255 - mask) - 5.0)
    ///
    /// limited to 0.0 to 100.0: a dry finger leaves pale pixels that pass for background. 0.0
    /// without lines and for a mask of 255.
    double CalcDryFingerWarningLevel(const ClImage& Prob, const ClImage& Mask) const;
    /// Another measure of dirt, which no run takes: max(100.0, 0.0005 * sum), with the sum of the
    /// defects that the functionality check finds on the background.
    ///
    /// Of a capture without lines, or with a mask of another size, nothing is left, and the
    /// level is 100.0. A mask that is an empty image is not: "Input pixel type "unknown" not
    /// supported by processor." (-33). Throws -101 for a capture of another type than `eUInt8` or
    /// of several planes, as the functionality check does.
    double CalcDirtWarningLevel2(const ClImage& In, const ClImage& Mask) const;

private:
    bool IsObserved() const;
    bool IsOrdinary() const;
    bool ProcessQuickly();

    // The stages of a run, each from whole images to whole images
    void Correct(const ClImage& Capture, ClImage& Out);
    int StretchGlobally(const ClImage& Capture, ClImage& Stretched) const;
    bool FindFinger(const ClImage& Capture, const ClImage& Stretched, int nRange, ClImage& Mask,
                    ClImage& Prob);
    void StretchLocally(ClImage& Stretched) const;
    void WhitenBackground(const ClImage& Mask, const ClImage& Stretched, ClImage& Out) const;
    void KeepCleanBackground(const ClImage& Capture, ClImage& Mask) const;
    void StoreDefects(const ClImage& Capture) const;

    void PaintRegion(const ClMask2& Region, ClImage& OutMask) const;
    void FillDirtWeights();
    void Dump(const ClImage& Image, const char* szFileName) const;

    std::unique_ptr<Quick::ClDynamicCalibration> m_pQuick; ///< keeps memory for one size
};
