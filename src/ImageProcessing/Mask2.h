#pragma once

/// `ClMask2`, a region of an image as horizontal runs, independent of any one image. A mask is
/// built from an image and painted onto others; its connected parts are counted and removed.
///
/// A mask also remembers the chain of windows, the precut steps, through which images were cut
/// before it was built. That relates images of different windows and resolutions: an image is
/// recognised by its size as standing at one step of the chain. The last step is the frame of the
/// runs.
///
/// Runs are compact (a finger has a few per line), and their connectivity needs two lines at a
/// time only; an image of the same region would have to be visited pixel by pixel.

#include "Tools/Array.h"
#include "Tools/FpImage.h"

#include <cstdint>

class ClImagePyramid;

namespace Mask {

/// A window in whole pixels.
struct StWindow {
    long m_nX = 0;
    long m_nY = 0;
    long m_nWidth = 0;
    long m_nHeight = 0;
};

class ClPrecutChain;

} // namespace Mask

class ClMask2 {
public:
    /// One run of foreground pixels.
    struct STEntry {
        std::int64_t nFrom = 0; ///< first column
        std::int64_t nTo = 0;   ///< last column, inclusive
        std::int64_t nLine = 0; ///< -1 marks a run as consumed, in working copies

        bool operator==(const STEntry& other) const {
            return nFrom == other.nFrom && nTo == other.nTo && nLine == other.nLine;
        }
        /// By line, then by column.
        bool operator<(const STEntry& other) const;
    };

    /// One window, in the scale of the mask and relative to the first step.
    struct STPrecutStep {
        double dX = 0.0;
        double dY = 0.0;
        double dWidth = 0.0;
        double dHeight = 0.0;

        void Scale(double sx, double sy) {
            dX *= sx;
            dWidth *= sx;
            dY *= sy;
            dHeight *= sy;
        }
        bool operator==(const STPrecutStep& other) const {
            return dX == other.dX && dY == other.dY && dWidth == other.dWidth &&
                   dHeight == other.dHeight;
        }
    };

    ClMask2() = default;
    ClMask2(const ClMask2&) = default;
    /// On failure this mask is as before.
    ClMask2& operator=(const ClMask2& Other);
    virtual ~ClMask2() = default;

    /// No runs, no steps, no resolution. Both are the same operation.
    void Init();
    void Reset() { Init(); }
    void ResetEntries();
    /// Takes over resolution and steps.
    void CopyHeader(const ClMask2& From);

    // Images

    /// The runs become the pixels other than `nBackground` of an 8-bit image of one plane, and
    /// the image a step, where none fits. A mask of another resolution takes over the image's.
    ///
    /// Throws "Image Type is not the assigned type" (-101) and -37 for an image without pixels,
    /// before anything changes; then, with the runs dropped, -13 for an image without resolution,
    /// the index message (-35) for one that stands at no step, `ClExBadAlloc` (-102).
    void BuildFromImage(const ClImage& Image, unsigned char nBackground);
    /// Paints `nValue` on an 8-bit image: outside the runs, line padding included, or inside them.
    /// A mask without resolution or runs paints nothing outside and everything inside.
    ///
    /// Runs are scaled to the resolution of the image, where both have one, line by line: an image
    /// of twice the resolution keeps every other line outside. What lies beyond the image is cut
    /// off. Outside goes by the order of the bytes: before the first run, from the furthest end so
    /// far to the next run, and behind that end. So, where several lines of the mask fall on one
    /// of a coarser image, nothing before the end of the first is painted for the others. Throws as
    /// BuildFromImage(), and the index message (-35) for an image at no step.
    void ApplyOnImage(ClImage& Image, bool bOutside, unsigned char nValue) const;
    /// Cuts an image of any step and any type to the last step; a copy where there are no steps.
    /// An axis on which image or mask has no resolution is not scaled. `Out` may be `In`. Throws
    /// the index message (-35) and what `ClIpCut` throws.
    void CutImage(ClImage& In, ClImage& Out) const;
    void CutImage(ClImage& InOut) const;
    /// Records the image's frame and a window of it, and cuts the image to the window.
    void Cut(ClImage& Image, int x, int y, int w, int h);
    /// Cuts every layer to the last step, at its own resolution; an empty layer stays empty.
    /// Throws the index message (-35) where layer 0 stands at no step, and what `ClIpCut` throws;
    /// then `Out`, which may be `In`, is as before.
    void CutPyramid(ClImagePyramid& In, ClImagePyramid& Out) const;
    void CutPyramid(ClImagePyramid& InOut) const;

    // Steps

    /// Adds the window (x, y, cutW, cutH) of a frame of w x h pixels at the given resolution. The
    /// first call makes the frame itself the first step and its resolution the mask's. A window
    /// whose size a step already has adds nothing. `bReset` drops the runs before all tests.
    ///
    /// Throws -13 for a resolution below 1, "No image size given." (-701) for a frame without
    /// area, "The precut index 'nRefIdx' is out of range." (-35) where the frame stands at no
    /// step, `ClExBadAlloc` (-102); then steps and resolution are as before.
    void AddPrecutStep(int w, int h, int pelsX, int pelsY, int x, int y, int cutW, int cutH,
                       bool bReset);
    /// The same for a window of an image; drops the runs.
    void AddPrecutStep(const ClImage& Image, int x, int y, int w, int h);
    /// Adds the bounding box of the runs as a step, relative to the last one, and moves the runs
    /// into it, the latter also where a step has the size of the box already. False without runs.
    /// Throws the index message (-35) without steps, -13 without resolution, `ClExBadAlloc`
    /// (-102); then nothing changes.
    bool SetBoundingBox();
    long GetOffsetsCount() const;
    /// The first step that an image of this size and resolution may stand at, or -1. Throws
    /// "No image size given." (-701) for sides below 1 and negative resolutions.
    long GetOffsetsIndex(long nWidth, long nHeight, long nPelsX, long nPelsY) const;
    long GetOffsetsIndex(const ClImage& Image) const;
    /// The last step relative to step `nRefIdx`, in pixels of a resolution; one below 1 stands for
    /// that of the mask. Without steps the outputs stay. Throws the index message (-35).
    template <class T1, class T2>
    void GetCutOffsets(unsigned long nRefIdx, T2 nPelsX, T2 nPelsY, T1& x, T1& y, T1& w,
                       T1& h) const;
    /// Where the step at which an image stands begins, in pixels of the image. Throws the index
    /// message (-35) where it stands at none.
    template <class T>
    void GetOffsets(const ClImage& Image, T& x, T& y) const;

    // Runs

    /// Sum of nTo - nFrom: a run of one pixel counts 0.
    long AreaSize() const;
    /// The first unconsumed run from `nIdx` on, in steps of `nStep`; `nIdx` becomes its index. A
    /// step of 0 looks at one run. False, with the outputs as they are, where there is none.
    bool GetNextFgEntry(long& nIdx, long nStep, STEntry& Out) const;
    /// Smallest and largest column and line; zeros without runs.
    void GetRange(long& nLeft, long& nRight, long& nTop, long& nBottom) const;
    /// Changes the resolution of steps and runs; a mask without resolution only takes it over.
    /// A line is repeated on all lines that it fills. With a smaller resolution runs of several
    /// lines come to stand in one, and may overlap. Throws -13 for a resolution below 1, "New
    /// Width or Height too small." (-101) where a run does not fit; then nothing changes.
    void ResizeMask(int nWidth, int nHeight, int nPelsX, int nPelsY);
    /// Becomes the complement of `From` inside its frame. `From` may be this mask.
    void Invert(const ClMask2& From);
    /// Deletes the runs that `Sub` has, too.
    void RemoveSubMask(const ClMask2& Sub);

    // Blobs: runs that touch in a column of neighbouring lines. Where memory is missing
    // (`ClExBadAlloc`, -102), this mask is as before.

    /// Removes blobs of fewer than `nMinSize` pixels, except, with `bKeepBorderBlobs`, those that
    /// touch the frame, and returns how many are kept. The last run is no seed: a blob of it alone
    /// is neither counted nor removed.
    long RemoveSmallFgBlobs(long nMinSize, bool bKeepBorderBlobs);
    /// The same with the size of the largest blob, and without regard to the frame.
    long RemoveSmallFgBlobs();
    long GetMaxFgBlobSize() const;
    /// Fills the holes that do not touch the frame. The last run of the background is no seed: a
    /// hole of it alone stays.
    void RemoveBgBlobs();
    /// Moves the blob of run `nIdx` to `Out`, marking its runs here as consumed, and returns its
    /// pixels; 0 for an index outside and for a consumed run.
    long SeparateFgBlob(long nIdx, ClMask2& Out);
    /// Moves the runs that connect with `Seed`, looking from run `nIdx` in steps of `nStep` as far
    /// as the lines next to it, and all that connect with them in either direction. Returns their
    /// pixels.
    long CompleteFgBlob(long nIdx, long nStep, STEntry Seed, ClMask2& Out);
    /// How many of the four borders of the frame the runs touch.
    int CountBorders() const;

    /// Runs sorted, disjoint and inside the last step. For an image, it also stands at a step.
    bool IsValid() const;
    bool IsValid(const ClImage& Image) const;
    bool operator==(const ClMask2& Other) const;
    bool operator!=(const ClMask2& Other) const { return !(*this == Other); }

    TpArrayDynamic<STPrecutStep, 3> m_aPrecutSteps; ///< oldest first
    int m_nPelsX = 0;                               ///< of the runs, picture elements per metre
    int m_nPelsY = 0;
    TpArrayDynamic<STEntry, 100> m_aEntries; ///< sorted by line and column

private:
    Mask::ClPrecutChain Chain() const;
    Mask::StWindow WindowFrom(unsigned long nRefIdx, double dPelsX, double dPelsY) const;
    Mask::StWindow OffsetOf(const ClImage& Image) const;
    void AddWindow(unsigned long nStep, STPrecutStep Window, double sx, double sy);
    /// The borders of the frame that a run touches, one bit each.
    unsigned BordersOf(const STEntry& Run) const;
    /// Moves an index of a run on; false where it would leave the runs.
    bool Advance(long& nIdx, long nStep) const;
    /// Runs of the foreground of an image.
    void AppendRuns(const ClImage& Image, unsigned char nBackground);
    void PaintOutside(ClImage& Image, const Mask::StWindow& At, unsigned char nValue) const;
    void PaintInside(ClImage& Image, const Mask::StWindow& At, unsigned char nValue) const;
};

template <class T1, class T2>
void ClMask2::GetCutOffsets(unsigned long nRefIdx, T2 nPelsX, T2 nPelsY, T1& x, T1& y, T1& w,
                            T1& h) const {
    if (m_aPrecutSteps.Entries() == 0)
        return;
    const Mask::StWindow Window =
        WindowFrom(nRefIdx, static_cast<double>(nPelsX), static_cast<double>(nPelsY));
    x = static_cast<T1>(Window.m_nX);
    y = static_cast<T1>(Window.m_nY);
    w = static_cast<T1>(Window.m_nWidth);
    h = static_cast<T1>(Window.m_nHeight);
}

template <class T>
void ClMask2::GetOffsets(const ClImage& Image, T& x, T& y) const {
    const Mask::StWindow Window = OffsetOf(Image);
    x = static_cast<T>(Window.m_nX);
    y = static_cast<T>(Window.m_nY);
}
