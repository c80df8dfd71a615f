#pragma once

/// The correction of a capture and the measure of contamination, made of the peer's operators.

#include "PeerOperators.h"

namespace peer {

class ClPeerPipeline {
public:
    /// With the maps of the warp as `cv::remap` wants them.
    ClPeerPipeline(cv::Mat mapPositions, cv::Mat mapFractions);

    /// Corrects a capture; out comes what `Calibrate` makes by its default options.
    void Run(const cv::Mat& Capture);

    const cv::Mat& Output() const { return m_Out; }

private:
    void FindBright();
    void FindContrast();
    void Vote();
    void Close();
    void Embrace();
    void Smoothen();
    void MeasureLevels();

    cv::Mat m_MapPositions, m_MapFractions, m_DirtWeights;
    ClMeans m_Mean;
    ClSharpen m_Sharpen;
    ClGradientLength m_GradientLength;
    ClLocalStretch m_LocalStretch;
    ClRegions m_Regions;
    ClHull m_Hull;

    cv::Mat m_Sharp, m_Warped, m_Stretched, m_Length, m_a, m_b;
    cv::Mat m_BrightProb, m_Bright, m_Window, m_Small, m_Median, m_ContrastProb, m_Contrast;
    cv::Mat m_Prob, m_Sum, m_Mask, m_Canvas, m_Canvas2, m_Canvas3, m_Local, m_Out;
    cv::Mat m_Saturated, m_Far, m_Sensor, m_SensorSoft, m_Weighted, m_Finger, m_Excess;
    cv::Rect m_BrightBox, m_ContrastBox;
    double m_dDirt = 0.0;
    double m_dDry = 0.0;
    int m_nRegions = 0;
};

/// What `ContaminationDetection` measures.
class ClPeerContamination {
public:
    double Run(const cv::Mat& Capture);

private:
    ClMeans m_Mean;
    cv::Mat m_Inverse, m_Scaled, m_Fine, m_Coarse, m_Difference, m_Stretched, m_Sensor,
        m_SensorSoft;
};

} // namespace peer
