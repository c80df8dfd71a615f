#pragma once

/// The steps of the calibration as a user of OpenCV writes them, each in the fastest way that was
/// found among its calls. Where a call means something else than ours at the border of an image or
/// in its rounding, the nearest call stands, but for the mean, whose window is clipped: the plain
/// loops that it takes are part of the peer.
///
/// A class keeps its scratch images from run to run.

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <map>
#include <utility>
#include <vector>

namespace peer {

/// The mean over a window that is clipped to the image, truncated.
class ClMean {
public:
    void operator()(const cv::Mat& In, cv::Mat& rOut, int nWidth);

private:
    void Prepare(cv::Size size, int nWidth);
    void Line(int y, const int* pAbove, const int* pBelow, unsigned char* pOut) const;

    cv::Size m_Size;
    int m_nWidth = 0;
    cv::Mat m_Integral;
    std::vector<float> m_afRows; ///< 1 / lines of the window
    std::vector<float> m_afColumns;
};

/// One mean for each size and width.
class ClMeans {
public:
    void operator()(const cv::Mat& In, cv::Mat& rOut, int nWidth) {
        m_aMeans[{In.cols * 65536 + In.rows, nWidth}](In, rOut, nWidth);
    }

private:
    std::map<std::pair<int, int>, ClMean> m_aMeans;
};

using Histogram = std::vector<long>;

Histogram HistogramOf(const cv::Mat& In);

/// The grey values beyond which no more than the parts told lie.
std::pair<int, int> NoiseFreeRange(const Histogram& aCounts, double dDark, double dBright);

/// The table that stretches a range to 0 to 255.
cv::Mat StretchTable(int nFrom, int nTo);

/// 255 from the threshold on, else 0.
void Binarize(const cv::Mat& In, cv::Mat& rOut, int nThreshold);

/// A Gaussian along one axis or both; `dSigma` in pixels.
void Gauss(const cv::Mat& In, cv::Mat& rOut, int nWidth, double dSigma, bool bAlongX);

/// 2 p - l with the Gaussian of sigma 0.9 along the columns.
class ClSharpen {
public:
    void operator()(const cv::Mat& In, cv::Mat& rOut);

private:
    cv::Mat m_LowPass;
};

class ClGradientLength {
public:
    ClGradientLength();
    void operator()(const cv::Mat& In, cv::Mat& rOut);

private:
    cv::Mat m_Kernel;
    cv::Mat m_One;
    cv::Mat m_dx;
    cv::Mat m_dy;
    cv::Mat m_Length;
};

/// 255 * (p - min) / (max - min + 1), and the global stretch where a neighbourhood is flat.
class ClLocalStretch {
public:
    void operator()(const cv::Mat& In, cv::Mat& rOut);
    void Divide(const cv::Mat& In, const cv::Mat& Min, const cv::Mat& Max, cv::Mat& rOut);
    void Surroundings(const cv::Mat& In, cv::Mat& rMin, cv::Mat& rMax);

private:
    void StretchFlat(const cv::Mat& In, cv::Mat& rOut);

    ClMeans m_Mean;
    cv::Mat m_Min, m_Max, m_Extreme, m_Range, m_Numerator, m_Denominator, m_Flat, m_Global;
};

/// A pixel plus an offset against the mean of its window of nWidth x nHeight.
class ClLocalThreshold {
public:
    void operator()(const cv::Mat& In, cv::Mat& rOut, int nWidth, int nHeight, int nOffset);

private:
    cv::Mat m_Sum;
    std::vector<int> m_anColumns;
};

/// Regions of 255 on 0.
class ClRegions {
public:
    void RemoveSmall(cv::Mat& rForeground, int nArea);
    void FillHoles(cv::Mat& rForeground);
    /// Number of regions of 0 on 255.
    int Count(const cv::Mat& Mask);

private:
    cv::Mat m_Labels, m_Padded, m_Filled;
    std::vector<int> m_anAreas;
};

/// Makes a region of 0 on 255 convex.
class ClHull {
public:
    void operator()(cv::Mat& rMask);

private:
    std::vector<cv::Point> m_aEnds, m_aHull;
};

/// What lies beyond the sensor: 255 along the border.
void PaintSensorBorder(cv::Mat& rMask, cv::Size size);

} // namespace peer
