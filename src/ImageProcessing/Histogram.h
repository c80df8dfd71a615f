#pragma once

/// `ClHistogram`, the distribution of the grey values of an 8-bit image of one plane. The
/// brightness calibration steers by it: the range that is free of noise decides the global
/// stretch, the smoothed derivative the threshold of the brightness mask.
///
/// Bin i counts the samples of value i, or of value i - 128 for a signed image. Positions below
/// are bins; a result "less the offset" is the sample value. The object has no storage of its own
/// beside the bins and stands on the stack.

#include "Tools/FpImage.h"

#include <cstdint>

class ClHistogram {
public:
    /// Empty.
    ClHistogram();
    ClHistogram(const ClHistogram&) = default;
    ClHistogram& operator=(const ClHistogram&) = default;
    virtual ~ClHistogram();

    /// Counts the whole image; see the window.
    void Create(const ClImage& Image);
    /// Counts a window, right and bottom excluded, as far as it lies in the image. The former
    /// counts are dropped first. Throws "Color-image not supported in ClHistogram::Create.",
    /// "invalid Range in ClHistogram::Create." for a window without area, "Image Type is not the
    /// assigned type" for other types than `eUInt8` and `eInt8` (all -101), -37 for missing
    /// pixels; the histogram is empty then.
    void Create(const ClImage& Image, int nLeft, int nTop, int nRight, int nBottom);
    /// Back to the empty histogram.
    void Reset();

    /// Lowest and highest value that occurs, less the offset; 255 and 0 of an empty histogram.
    unsigned char FirstValue() const;
    unsigned char LastValue() const;
    /// Number of values that occur.
    int GetColorCount() const;
    /// The highest and the lowest count of a bin.
    int MaxCount() const;
    int MinCount() const;

    /// Mean of the samples in the bins `nFrom` to `nTo`, less the offset. The sum of the values is
    /// kept modulo 2^32. A range that is empty, or reversed, has the mean (nFrom + nTo) >> 1.
    double GetGreyMid(unsigned char nFrom, unsigned char nTo) const;
    /// Standard deviation of these samples as a population, less the offset; 0.0 for an empty or
    /// reversed range.
    double GetStdDeviation(unsigned char nFrom, unsigned char nTo) const;
    /// Mean absolute deviation of all samples from their mean; 0.0 of an empty histogram.
    double GetAverageDeviation() const;

    // Within the bins `nPos1` to `nPos2`. Each throws its message (-35) where nPos2 < nPos1.

    /// Average count of a bin, truncated.
    unsigned GetMid(unsigned char nPos1, unsigned char nPos2) const;
    /// Mean position of the samples, truncated; the middle, (nPos1 + nPos2) >> 1, without any.
    unsigned char GetCentreOfMass(unsigned char nPos1, unsigned char nPos2) const;
    /// Position of the first bin with the highest, or the lowest, count.
    unsigned char GetLocalMax(unsigned char nPos1, unsigned char nPos2) const;
    unsigned char GetLocalMin(unsigned char nPos1, unsigned char nPos2) const;

    /// Replaces each count by the truncated mean of the counts at i - nWidth / 2 to
    /// i + nWidth / 2, as far as they are bins. A width below 2 changes nothing.
    void LowPass(int nWidth);
    /// The same of width 3.
    void LowPass() { LowPass(3); }

    /// Walks from `nPos` to a peak (valley): compares the truncated averages of the `nWidth` bins
    /// below and above, takes the side with the higher (lower) one and goes on in that direction
    /// while the average ahead is strictly higher (lower) than the one behind. Windows end at the
    /// first and last bin; one without bins has the average 0. The result is less the offset.
    unsigned char Climb(unsigned char nPos, unsigned char nWidth) const;
    unsigned char Descend(unsigned char nPos, unsigned char nWidth) const;

    /// Whether the counts have one peak from `nPos` on. The peak is the first position whose 5
    /// bins below average more than its 25 bins above; no 10 bins that follow it may average more
    /// than those one further down. True without a peak.
    bool IsUnimodal(unsigned char nPos) const;

    /// The range that remains when a share of the darkest and of the brightest samples is set
    /// aside. With L = trunc(dDark * samples), `nLow` is the first bin at which the running count
    /// from bin 0 exceeds L, and 255 if it never does; `nHigh` likewise from bin 255 down, with
    /// `dBright`, and 0. Shares may be any number; NaN counts as 0.
    void GetNoiseFreeRange(double dDark, double dBright, unsigned char& nLow,
                           unsigned char& nHigh) const;

    /// First derivative, smoothed by weights of 1 / distance. With w = min(nWidth, 255),
    ///
    ///     pOut[i] = sum over j = 1 to w of (h[i + j] - h[i - j]) * 0.5 / j, divided by max(w, 1)
    ///
    /// for i from w to 255 - w; `pOut` has 256 entries, of which the others stay. Nothing is
    /// written for a width above 127. A negative width counts as 0.
    void CalcFirstDerivation(int nWidth, double* pOut) const;

    /// GetNoiseFreeRange() of an image.
    static void GetRange(const ClImage& Image, double dDark, double dBright, unsigned char& nLow,
                         unsigned char& nHigh);

    std::int32_t m_anCount[256];
    std::int64_t m_nOffset; ///< 128 for a signed image, else 0

private:
    std::int64_t Count(int nFrom, int nTo) const;
    std::int64_t Weight(int nFrom, int nTo) const;
    std::int64_t Average(int nFrom, int nTo) const;
    std::int64_t RiseAt(int nPos, int nWidth) const;
    unsigned char Walk(int nPos, int nWidth, int nSign) const;
    int PeakFrom(int nPos) const;
    unsigned char LessOffset(int nPos) const;
};
