#include "PeerOperators.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace peer {

// Means

void ClMean::Prepare(cv::Size size, int nWidth) {
    if (size == m_Size && nWidth == m_nWidth)
        return;
    m_Size = size;
    m_nWidth = nWidth;
    const int h = nWidth / 2;
    const auto clipped = [h](int i, int n) {
        return 1.0F / static_cast<float>(std::min(n - 1, i + h) - std::max(0, i - h) + 1);
    };
    m_afRows.clear();
    m_afColumns.clear();
    for (int y = 0; y < size.height; ++y)
        m_afRows.push_back(clipped(y, size.height));
    for (int x = 0; x < size.width; ++x)
        m_afColumns.push_back(clipped(x, size.width));
}

/// trunc(sum / n) as trunc((sum + 0.5) * (1 / n)), which is exact for these sums.
void ClMean::Line(int y, const int* pAbove, const int* pBelow, unsigned char* pOut) const {
    const int h = m_nWidth / 2;
    const int w = m_Size.width;
    const float fRow = m_afRows[static_cast<std::size_t>(y)];
    const float* pColumns = m_afColumns.data();
    const auto pixel = [&](int x, int x0, int x1) {
        const int nSum = pBelow[x1] - pBelow[x0] - pAbove[x1] + pAbove[x0];
        const float fMean = (static_cast<float>(nSum) + 0.5F) * (fRow * pColumns[x]);
        pOut[x] = static_cast<unsigned char>(static_cast<int>(fMean));
    };
    for (int x = 0; x < h && x < w; ++x)
        pixel(x, 0, std::min(w, x + h + 1));
    for (int x = h; x < w - h; ++x)
        pixel(x, x - h, x + h + 1);
    for (int x = std::max(h, w - h); x < w; ++x)
        pixel(x, x - h, w);
}

void ClMean::operator()(const cv::Mat& In, cv::Mat& rOut, int nWidth) {
    Prepare(In.size(), nWidth);
    cv::integral(In, m_Integral, CV_32S);
    rOut.create(In.size(), CV_8U);
    const int h = nWidth / 2;
    for (int y = 0; y < m_Size.height; ++y)
        Line(y, m_Integral.ptr<int>(std::max(0, y - h)),
             m_Integral.ptr<int>(std::min(m_Size.height, y + h + 1)), rOut.ptr(y));
}

// Grey values

Histogram HistogramOf(const cv::Mat& In) {
    static thread_local cv::Mat counts;
    const int nChannel = 0;
    const int nBins = 256;
    const float afRange[2] = {0.0F, 256.0F};
    const float* pRange = afRange;
    cv::calcHist(&In, 1, &nChannel, cv::Mat(), counts, 1, &nBins, &pRange);
    Histogram aCounts;
    for (int i = 0; i < nBins; ++i)
        aCounts.push_back(static_cast<long>(counts.at<float>(i)));
    return aCounts;
}

std::pair<int, int> NoiseFreeRange(const Histogram& aCounts, double dDark, double dBright) {
    double dTotal = 0.0;
    for (const long n : aCounts)
        dTotal += static_cast<double>(n);
    int nFrom = 0;
    for (double d = 0.0; nFrom < 255; ++nFrom)
        if ((d += static_cast<double>(aCounts[static_cast<std::size_t>(nFrom)])) > dDark * dTotal)
            break;
    int nTo = 255;
    for (double d = 0.0; nTo > 0; --nTo)
        if ((d += static_cast<double>(aCounts[static_cast<std::size_t>(nTo)])) > dBright * dTotal)
            break;
    return {nFrom, nTo};
}

cv::Mat StretchTable(int nFrom, int nTo) {
    cv::Mat table(1, 256, CV_8U);
    const double dStep = nTo > nFrom ? 255.9 / (nTo - nFrom) : 0.0;
    for (int i = 0; i < 256; ++i)
        table.at<unsigned char>(i) =
            cv::saturate_cast<unsigned char>(static_cast<int>(std::floor((i - nFrom) * dStep)));
    return table;
}

void Binarize(const cv::Mat& In, cv::Mat& rOut, int nThreshold) {
    cv::threshold(In, rOut, nThreshold - 1, 255, cv::THRESH_BINARY);
}

// Linear filters

void Gauss(const cv::Mat& In, cv::Mat& rOut, int nWidth, double dSigma, bool bAlongX) {
    const cv::Mat kernel = cv::getGaussianKernel(nWidth, dSigma, CV_32F);
    const cv::Mat one = cv::Mat::ones(1, 1, CV_32F);
    cv::sepFilter2D(In, rOut, -1, bAlongX ? kernel : one, kernel, cv::Point(-1, -1), 0,
                    cv::BORDER_REPLICATE);
}

void ClSharpen::operator()(const cv::Mat& In, cv::Mat& rOut) {
    Gauss(In, m_LowPass, 7, 0.9, false);
    cv::addWeighted(In, 2, m_LowPass, -1, 0, rOut);
}

/// 9 taps of the derived Gaussian of sigma 1, whose absolute values sum to 1.
ClGradientLength::ClGradientLength() : m_Kernel(1, 9, CV_32F), m_One(cv::Mat::ones(1, 1, CV_32F)) {
    for (int i = -4; i <= 4; ++i)
        m_Kernel.at<float>(i + 4) = static_cast<float>(-i * std::exp(-0.5 * i * i));
    m_Kernel /= cv::norm(m_Kernel, cv::NORM_L1);
}

void ClGradientLength::operator()(const cv::Mat& In, cv::Mat& rOut) {
    const cv::Point middle(-1, -1);
    cv::sepFilter2D(In, m_dx, CV_32F, m_Kernel, m_One, middle, 0, cv::BORDER_REPLICATE);
    cv::sepFilter2D(In, m_dy, CV_32F, m_One, m_Kernel, middle, 0, cv::BORDER_REPLICATE);
    cv::magnitude(m_dx, m_dy, m_Length);
    m_Length.convertTo(rOut, CV_8U, 1.414);
}

// Local stretch and threshold

void ClLocalStretch::Surroundings(const cv::Mat& In, cv::Mat& rMin, cv::Mat& rMax) {
    static const cv::Mat square = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(23, 23));
    cv::erode(In, m_Extreme, square);
    m_Mean(m_Extreme, rMin, 23);
    cv::dilate(In, m_Extreme, square);
    m_Mean(m_Extreme, rMax, 23);
}

void ClLocalStretch::operator()(const cv::Mat& In, cv::Mat& rOut) {
    Surroundings(In, m_Min, m_Max);
    Divide(In, m_Min, m_Max, rOut);
}

void ClLocalStretch::Divide(const cv::Mat& In, const cv::Mat& Min, const cv::Mat& Max,
                            cv::Mat& rOut) {
    cv::subtract(Max, Min, m_Range);
    m_Range.convertTo(m_Denominator, CV_32F, 1, 1);
    cv::subtract(In, Min, m_Numerator, cv::noArray(), CV_32F);
    cv::divide(m_Numerator, m_Denominator, m_Numerator, 255);
    m_Numerator.convertTo(rOut, CV_8U);
    cv::compare(m_Range, cv::Scalar(5), m_Flat, cv::CMP_LE);
    if (cv::countNonZero(m_Flat) != 0)
        StretchFlat(In, rOut);
}

void ClLocalStretch::StretchFlat(const cv::Mat& In, cv::Mat& rOut) {
    const auto [nFrom, nTo] = NoiseFreeRange(HistogramOf(In), 0.001, 0.001);
    cv::LUT(In, StretchTable(nFrom, nTo), m_Global);
    m_Global.copyTo(rOut, m_Flat);
}

void ClLocalThreshold::operator()(const cv::Mat& In, cv::Mat& rOut, int nWidth, int nHeight,
                                  int nOffset) {
    const int hx = nWidth / 2;
    const int hy = nHeight / 2;
    cv::boxFilter(In, m_Sum, CV_32S, cv::Size(2 * hx + 1, 2 * hy + 1), cv::Point(-1, -1), false,
                  cv::BORDER_CONSTANT | cv::BORDER_ISOLATED);
    m_anColumns.clear();
    for (int x = 0; x < In.cols; ++x)
        m_anColumns.push_back(std::min(In.cols, x + hx + 1) - std::max(0, x - hx));
    rOut.create(In.size(), CV_8U);
    for (int y = 0; y < In.rows; ++y) {
        const int nRows = std::min(In.rows - 1, y + hy) - std::max(0, y - hy) + 1;
        const int* pSum = m_Sum.ptr<int>(y);
        const unsigned char* pIn = In.ptr(y);
        unsigned char* pOut = rOut.ptr(y);
        const int* pColumns = m_anColumns.data();
        const int w = In.cols;
        for (int x = 0; x < w; ++x)
            pOut[x] = (pIn[x] + nOffset) * (pColumns[x] * nRows) > pSum[x] ? 255 : 0;
    }
}

// Regions

void ClRegions::RemoveSmall(cv::Mat& rForeground, int nArea) {
    const int nLabels = cv::connectedComponents(rForeground, m_Labels, 4, CV_32S);
    m_anAreas.assign(static_cast<std::size_t>(nLabels), 0);
    int* pAreas = m_anAreas.data();
    const int nColumns = m_Labels.cols;
    for (int y = 0; y < m_Labels.rows; ++y) {
        const int* pLabels = m_Labels.ptr<int>(y);
        for (int x = 0; x < nColumns; ++x)
            ++pAreas[pLabels[x]];
    }
    pAreas[0] = 0;
    for (int y = 0; y < m_Labels.rows; ++y) {
        const int* pLabels = m_Labels.ptr<int>(y);
        unsigned char* pOut = rForeground.ptr(y);
        for (int x = 0; x < nColumns; ++x)
            pOut[x] = pAreas[pLabels[x]] >= nArea ? 255 : 0;
    }
}

void ClRegions::FillHoles(cv::Mat& rForeground) {
    cv::copyMakeBorder(rForeground, m_Padded, 1, 1, 1, 1, cv::BORDER_CONSTANT, cv::Scalar(0));
    cv::floodFill(m_Padded, cv::Point(0, 0), cv::Scalar(128), nullptr, cv::Scalar(), cv::Scalar(),
                  4);
    cv::compare(m_Padded(cv::Rect(1, 1, rForeground.cols, rForeground.rows)), cv::Scalar(128),
                rForeground, cv::CMP_NE);
}

int ClRegions::Count(const cv::Mat& Mask) {
    Mask.copyTo(m_Filled);
    int nRegions = 0;
    for (int y = 0; y < m_Filled.rows; ++y) {
        const unsigned char* pLine = m_Filled.ptr(y);
        for (int x = 0; x < m_Filled.cols; ++x)
            if (pLine[x] == 0) {
                ++nRegions;
                cv::floodFill(m_Filled, cv::Point(x, y), cv::Scalar(255), nullptr, cv::Scalar(),
                              cv::Scalar(), 4);
            }
    }
    return nRegions;
}

void ClHull::operator()(cv::Mat& rMask) {
    m_aEnds.clear();
    for (int y = 0; y < rMask.rows; ++y) {
        const unsigned char* pLine = rMask.ptr(y);
        const auto nColumns = static_cast<std::size_t>(rMask.cols);
        const void* pFirst = std::memchr(pLine, 0, nColumns);
        if (pFirst == nullptr)
            continue;
        const auto* pEnd = std::find(std::make_reverse_iterator(pLine + nColumns),
                                     std::make_reverse_iterator(pLine), 0)
                               .base();
        m_aEnds.emplace_back(static_cast<int>(static_cast<const unsigned char*>(pFirst) - pLine),
                             y);
        m_aEnds.emplace_back(static_cast<int>(pEnd - 1 - pLine), y);
    }
    if (m_aEnds.empty())
        return;
    cv::convexHull(m_aEnds, m_aHull);
    rMask.setTo(cv::Scalar(255));
    cv::fillConvexPoly(rMask, m_aHull, cv::Scalar(0), cv::LINE_8);
}

void PaintSensorBorder(cv::Mat& rMask, cv::Size size) {
    constexpr int nBorder = 15;
    constexpr int nCorner = 100;
    const cv::Scalar white(255);
    rMask.create(size, CV_8U);
    rMask.setTo(cv::Scalar(0));
    cv::rectangle(rMask, cv::Rect(cv::Point(0, 0), size), white, 2 * nBorder - 1);
    for (int i = 0; i < nCorner; ++i) {
        const int n = i * 60 / 100;
        unsigned char* pLine = rMask.ptr(size.height - nCorner + i);
        std::memset(pLine, 255, static_cast<std::size_t>(n));
        std::memset(pLine + size.width - n, 255, static_cast<std::size_t>(n));
    }
    rMask.rowRange(0, 25).setTo(white);
}

} // namespace peer
