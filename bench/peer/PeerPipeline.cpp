#include "PeerPipeline.h"

#include <algorithm>
#include <utility>

namespace peer {

namespace {

constexpr int cnRidge = 23;           ///< two distances of ridges
constexpr int cnCanvas = 2 * cnRidge; ///< by which the canvas of the closing exceeds the frame
constexpr int cnSmallestBox = 64;     ///< pixels

cv::Mat DirtWeights() {
    cv::Mat weights(1, 256, CV_8U);
    for (int v = 0; v < 256; ++v) {
        const int d = std::max(205 - v, 0);
        weights.at<unsigned char>(v) = static_cast<unsigned char>(std::min(255, d * d / 255));
    }
    return weights;
}

void PaintBorder(cv::Mat& rImage, int nWidth) {
    cv::rectangle(rImage, cv::Rect(cv::Point(0, 0), rImage.size()), cv::Scalar(0), 2 * nWidth - 1);
}

cv::Rect BoxOf(const cv::Mat& Foreground) {
    const cv::Rect box = cv::boundingRect(Foreground);
    return box.area() < cnSmallestBox ? cv::Rect(cv::Point(0, 0), Foreground.size()) : box;
}

/// Where the cumulated histogram rises for the first time.
int BrightnessThreshold(const Histogram& aCounts) {
    const auto count = [&](int i) {
        return static_cast<double>(aCounts[static_cast<std::size_t>(std::clamp(i, 0, 255))]);
    };
    double dBelow = 0.0;
    for (int i = 0; i < 100; ++i)
        dBelow += count(i);
    for (int v = 100; v < 198; ++v) {
        double dSlope = 0.0;
        for (int j = 1; j <= 10; ++j)
            dSlope += (count(v + j) - count(v - j)) * 0.05 / j;
        dBelow += count(v);
        if (dBelow > 0.0 && dSlope > 15.0)
            return v;
    }
    return 198;
}

} // namespace

ClPeerPipeline::ClPeerPipeline(cv::Mat mapPositions, cv::Mat mapFractions)
    : m_MapPositions(std::move(mapPositions)), m_MapFractions(std::move(mapFractions)),
      m_DirtWeights(DirtWeights()) {}

void ClPeerPipeline::Run(const cv::Mat& Capture) {
    m_Sharpen(Capture, m_Sharp);
    cv::remap(m_Sharp, m_Warped, m_MapPositions, m_MapFractions, cv::INTER_CUBIC,
              cv::BORDER_CONSTANT, cv::Scalar(255));
    const Histogram aCounts = HistogramOf(m_Warped);
    const double dWhite =
        static_cast<double>(aCounts[255]) / static_cast<double>(m_Warped.total()) + 0.005;
    const auto [nFrom, nTo] = NoiseFreeRange(aCounts, 0.001, dWhite);
    cv::LUT(m_Warped, StretchTable(nFrom, nTo), m_Stretched);
    m_GradientLength(m_Stretched, m_Length);
    FindBright();
    FindContrast();
    Vote();
    Close();
    Embrace();
    Smoothen();
    m_LocalStretch(m_Stretched, m_Local);
    cv::add(m_Mask, m_Local, m_Out);
    MeasureLevels();
}

void ClPeerPipeline::FindBright() {
    static const cv::Mat wide = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(23, 23));
    static const cv::Mat narrow = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(7, 7));
    m_Stretched.copyTo(m_a);
    PaintBorder(m_a, 4);
    cv::dilate(m_a, m_b, wide);
    cv::bitwise_not(m_b, m_b);
    m_Mean(m_b, m_a, 5);
    cv::add(m_Stretched, m_a, m_b);
    auto [nFrom, nTo] = NoiseFreeRange(HistogramOf(m_b), 0.11, 0.1);
    cv::LUT(m_b, StretchTable(std::min(nFrom, nTo), nTo), m_a);
    cv::erode(m_a, m_b, narrow);
    m_Mean(m_b, m_a, 15);
    const int nThreshold = BrightnessThreshold(HistogramOf(m_a));
    if (nThreshold <= 128)
        cv::add(m_a, cv::Scalar(128 - nThreshold), m_BrightProb);
    else
        cv::subtract(m_a, cv::Scalar(nThreshold - 128), m_BrightProb);
    cv::threshold(m_a, m_Bright, nThreshold - 1, 255, cv::THRESH_BINARY_INV);
    m_Regions.RemoveSmall(m_Bright, 1000);
    m_Regions.FillHoles(m_Bright);
    m_BrightBox = BoxOf(m_Bright);
}

/// In the bounding box, at half the resolution.
void ClPeerPipeline::FindContrast() {
    m_Window.create(m_BrightBox.size(), CV_8U);
    m_Window.setTo(cv::Scalar(0));
    m_Length(m_BrightBox).copyTo(m_Window, m_Bright(m_BrightBox));
    const cv::Size half((m_BrightBox.width + 1) / 2, (m_BrightBox.height + 1) / 2);
    cv::resize(m_Window, m_Small, half, 0, 0, cv::INTER_NEAREST);
    PaintBorder(m_Small, 3);
    m_Small.convertTo(m_Small, CV_8U, 7.8);
    cv::medianBlur(m_Small, m_Median, 3);
    cv::max(m_Small, m_Median, m_Small);
    m_Mean(m_Small, m_Median, 13);
    cv::add(m_Median, cv::Scalar(50), m_Median);
    cv::resize(m_Median, m_ContrastProb, m_BrightBox.size(), 0, 0, cv::INTER_NEAREST);
    cv::bitwise_not(m_ContrastProb, m_ContrastProb);
    Binarize(m_Median, m_Small, 78);
    m_Regions.RemoveSmall(m_Small, 1549);
    cv::resize(m_Small, m_Contrast, m_BrightBox.size(), 0, 0, cv::INTER_NEAREST);
    m_ContrastBox = BoxOf(m_Contrast);
}

void ClPeerPipeline::Vote() {
    m_Prob.create(m_Warped.size(), CV_8U);
    m_Prob.setTo(cv::Scalar(255));
    m_ContrastProb.copyTo(m_Prob(m_BrightBox));
    cv::add(m_BrightProb, m_Prob, m_Prob);
    const cv::Rect box = m_ContrastBox + m_BrightBox.tl();
    cv::add(m_BrightProb(box), m_ContrastProb(m_ContrastBox), m_Sum);
    cv::add(m_Sum, m_ContrastProb(m_ContrastBox), m_Sum);
    cv::threshold(m_Sum, m_Sum, 71, 255, cv::THRESH_BINARY_INV);
    m_Regions.FillHoles(m_Sum);
    m_Mask.create(m_Warped.size(), CV_8U);
    m_Mask.setTo(cv::Scalar(255));
    cv::Mat found = m_Mask(box);
    cv::bitwise_not(m_Sum, found);
}

void ClPeerPipeline::Close() {
    cv::copyMakeBorder(m_Mask, m_Canvas, cnCanvas, cnCanvas, cnCanvas, cnCanvas,
                       cv::BORDER_CONSTANT, cv::Scalar(255));
    for (const int nThreshold : {245, 10, 10}) {
        m_Mean(m_Canvas, m_Canvas2, cnRidge);
        m_Mean(m_Canvas2, m_Canvas, cnRidge);
        Binarize(m_Canvas, m_Canvas, nThreshold);
    }
    m_Mean(m_Canvas, m_Canvas2, cnRidge);
    m_Mean(m_Canvas2, m_Canvas3, cnRidge);
    Binarize(m_Canvas3, m_Canvas2, 245);
    m_nRegions = m_Regions.Count(m_Canvas2);
}

void ClPeerPipeline::Embrace() {
    m_Hull(m_Canvas);
    m_Mean(m_Canvas, m_Canvas2, cnRidge);
    m_Mean(m_Canvas2, m_Canvas, cnRidge);
    Binarize(m_Canvas, m_Canvas, 245);
    m_Canvas(cv::Rect(cv::Point(cnCanvas, cnCanvas), m_Warped.size())).copyTo(m_Mask);
}

void ClPeerPipeline::Smoothen() {
    cv::copyMakeBorder(m_Mask, m_a, 2, 2, 2, 2, cv::BORDER_CONSTANT, cv::Scalar(255));
    m_Mean(m_a, m_b, 11);
    m_Mean(m_b, m_a, 11);
    m_a.convertTo(m_a, CV_8U, 2.2);
    m_a(cv::Rect(cv::Point(2, 2), m_Warped.size())).copyTo(m_Mask);
}

void ClPeerPipeline::MeasureLevels() {
    Binarize(m_Warped, m_Saturated, 255);
    cv::subtract(m_Mask, m_Saturated, m_Mask);
    m_Mean(m_Mask, m_Far, 53);
    Binarize(m_Far, m_Far, 250);
    PaintSensorBorder(m_Sensor, m_Mask.size());
    m_Mean(m_Sensor, m_SensorSoft, 21);
    cv::subtract(m_Far, m_SensorSoft, m_Mask);
    cv::LUT(m_Warped, m_DirtWeights, m_Weighted);
    m_dDirt = m_Mask.dot(m_Weighted) / 2550.0;
    cv::bitwise_not(m_Mask, m_Finger);
    cv::subtract(m_Prob, cv::Scalar(128), m_Excess);
    const double dWeight = cv::sum(m_Finger)[0];
    const double dMean = dWeight > 0.0 ? m_Excess.dot(m_Finger) / dWeight : 0.0;
    m_dDry = std::clamp(2.0 * (dMean - 5.0), 0.0, 100.0);
}

double ClPeerContamination::Run(const cv::Mat& Capture) {
    cv::bitwise_not(Capture, m_Inverse);
    m_Inverse.convertTo(m_Scaled, CV_8U, 3.0);
    Gauss(m_Scaled, m_Fine, 13, 1.5, true);
    m_Mean(m_Scaled, m_Coarse, 51);
    cv::absdiff(m_Fine, m_Coarse, m_Difference);
    cv::min(m_Difference, cv::Scalar(128), m_Difference);
    cv::LUT(m_Difference, StretchTable(5, 64), m_Stretched);
    PaintSensorBorder(m_Sensor, Capture.size());
    m_Mean(m_Sensor, m_SensorSoft, 21);
    cv::subtract(m_Stretched, m_SensorSoft, m_Stretched);
    const Histogram aCounts = HistogramOf(m_Stretched);
    double dSum = 0.0;
    for (std::size_t i = 0; i < aCounts.size(); ++i)
        dSum += static_cast<double>(aCounts[i]) * static_cast<double>(i);
    const double dLevel = static_cast<double>(aCounts[255]) * 0.5 +
                          10.0 * dSum / static_cast<double>(Capture.total());
    return std::min(100.0, dLevel);
}

} // namespace peer
