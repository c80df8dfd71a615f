#pragma once

/// The preparation of a warp: dots of the target, thin plate splines and a table of positions.

#include "PeerOperators.h"

#include <vector>

namespace peer {

/// Maps points onto others, with s log s of squared distances.
class ClPeerSpline {
public:
    void Solve(const std::vector<cv::Point2d>& aFrom, const std::vector<cv::Point2d>& aTo);
    cv::Point2d operator()(double x, double y) const;

    /// The positions of all pixels of a frame, by a plain loop of `std::log`.
    void Table(cv::Size size, cv::Mat& rX, cv::Mat& rY) const;
    /// The same line by line, by `cv::log` and a product of matrices.
    void TableByMatrices(cv::Size size, cv::Mat& rX, cv::Mat& rY) const;

private:
    std::vector<cv::Point2d> m_aFrom;
    cv::Mat m_System, m_Right, m_Weights;
};

class ClPeerGeneration {
public:
    /// The target points, and the points of a capture for one in which not all dots are found.
    ClPeerGeneration(std::vector<cv::Point2d> aTarget, std::vector<cv::Point2d> aActual,
                     cv::Size frame, bool bMatrices);

    void Run(const cv::Mat& Capture);
    std::size_t Dots() const { return m_aDots.size(); }

private:
    void FindDots(const cv::Mat& Capture);
    void Measure(const cv::Mat& Capture, int nLabels);
    void SumBorder(const ClPeerSpline& Spline);

    struct StDot {
        double m_dPixels = 0.0, m_dX = 0.0, m_dY = 0.0, m_dXX = 0.0, m_dYY = 0.0, m_dXY = 0.0,
               m_dGrey = 0.0;
    };

    std::vector<cv::Point2d> m_aTarget, m_aActual, m_aDots;
    cv::Size m_Frame;
    bool m_bMatrices;
    ClLocalThreshold m_Threshold;
    cv::Mat m_Binary, m_Labels, m_X, m_Y, m_Positions, m_Fractions;
    std::vector<StDot> m_aMoments;
    double m_dBorder = 0.0;
};

} // namespace peer
