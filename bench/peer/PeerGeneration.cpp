#include "PeerGeneration.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace peer {

namespace {

double Kernel(double s) {
    return s > 0.0 ? s * std::log(s) : 0.0;
}

double Squared(const cv::Point2d& Point) {
    return Point.dot(Point);
}

constexpr double cdSmallestDot = 200.0; ///< pixels
constexpr double cdLargestDot = 700.0;

} // namespace

void ClPeerSpline::Solve(const std::vector<cv::Point2d>& aFrom,
                         const std::vector<cv::Point2d>& aTo) {
    const int n = static_cast<int>(aFrom.size());
    m_aFrom = aFrom;
    m_System = cv::Mat::zeros(n + 3, n + 3, CV_64F);
    m_Right = cv::Mat::zeros(n + 3, 2, CV_64F);
    for (int i = 0; i < n; ++i) {
        const cv::Point2d at = aFrom[static_cast<std::size_t>(i)];
        double* pRow = m_System.ptr<double>(i);
        for (int j = 0; j < n; ++j)
            pRow[j] = Kernel(Squared(at - aFrom[static_cast<std::size_t>(j)]));
        pRow[n] = m_System.at<double>(n, i) = 1.0;
        pRow[n + 1] = m_System.at<double>(n + 1, i) = at.x;
        pRow[n + 2] = m_System.at<double>(n + 2, i) = at.y;
        m_Right.at<double>(i, 0) = aTo[static_cast<std::size_t>(i)].x;
        m_Right.at<double>(i, 1) = aTo[static_cast<std::size_t>(i)].y;
    }
    cv::solve(m_System, m_Right, m_Weights, cv::DECOMP_LU);
}

cv::Point2d ClPeerSpline::operator()(double x, double y) const {
    const int n = static_cast<int>(m_aFrom.size());
    const double* pWeights = m_Weights.ptr<double>();
    double dX = 0.0;
    double dY = 0.0;
    for (int i = 0; i < n; ++i) {
        const cv::Point2d& rFrom = m_aFrom[static_cast<std::size_t>(i)];
        const double dx = x - rFrom.x;
        const double dy = y - rFrom.y;
        const double u = Kernel(dx * dx + dy * dy);
        dX += u * pWeights[2 * i];
        dY += u * pWeights[2 * i + 1];
    }
    const double* pPlane = pWeights + 2 * n;
    return {dX + pPlane[0] + x * pPlane[2] + y * pPlane[4],
            dY + pPlane[1] + x * pPlane[3] + y * pPlane[5]};
}

void ClPeerSpline::Table(cv::Size size, cv::Mat& rX, cv::Mat& rY) const {
    rX.create(size, CV_32F);
    rY.create(size, CV_32F);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const cv::Point2d at = (*this)(x, y);
            rX.at<float>(y, x) = static_cast<float>(at.x);
            rY.at<float>(y, x) = static_cast<float>(at.y);
        }
}

void ClPeerSpline::TableByMatrices(cv::Size size, cv::Mat& rX, cv::Mat& rY) const {
    const int n = static_cast<int>(m_aFrom.size());
    rX.create(size, CV_32F);
    rY.create(size, CV_32F);
    cv::Mat distances(size.width, n, CV_64F);
    cv::Mat logarithms;
    cv::Mat terms(size.width, n + 3, CV_64F);
    cv::Mat positions;
    cv::Mat kernels = terms.colRange(0, n);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            double* pDistances = distances.ptr<double>(x);
            for (int i = 0; i < n; ++i)
                pDistances[i] = std::max(
                    Squared(cv::Point2d(x, y) - m_aFrom[static_cast<std::size_t>(i)]), 1e-300);
            double* pPlane = terms.ptr<double>(x) + n;
            pPlane[0] = 1.0;
            pPlane[1] = x;
            pPlane[2] = y;
        }
        cv::log(distances, logarithms);
        cv::multiply(distances, logarithms, kernels);
        cv::gemm(terms, m_Weights, 1, cv::noArray(), 0, positions);
        for (int x = 0; x < size.width; ++x) {
            rX.at<float>(y, x) = static_cast<float>(positions.at<double>(x, 0));
            rY.at<float>(y, x) = static_cast<float>(positions.at<double>(x, 1));
        }
    }
}

ClPeerGeneration::ClPeerGeneration(std::vector<cv::Point2d> aTarget,
                                   std::vector<cv::Point2d> aActual, cv::Size frame, bool bMatrices)
    : m_aTarget(std::move(aTarget)), m_aActual(std::move(aActual)), m_Frame(frame),
      m_bMatrices(bMatrices) {}

/// Moments and mean grey of every component in one pass.
void ClPeerGeneration::Measure(const cv::Mat& Capture, int nLabels) {
    m_aMoments.assign(static_cast<std::size_t>(nLabels), StDot());
    for (int y = 0; y < Capture.rows; ++y) {
        const int* pLabels = m_Labels.ptr<int>(y);
        const unsigned char* pGrey = Capture.ptr(y);
        for (int x = 0; x < Capture.cols; ++x)
            if (pLabels[x] != 0) {
                StDot& rDot = m_aMoments[static_cast<std::size_t>(pLabels[x])];
                rDot.m_dPixels += 1.0;
                rDot.m_dX += x;
                rDot.m_dY += y;
                rDot.m_dXX += static_cast<double>(x) * x;
                rDot.m_dYY += static_cast<double>(y) * y;
                rDot.m_dXY += static_cast<double>(x) * y;
                rDot.m_dGrey += pGrey[x];
            }
    }
}

void ClPeerGeneration::FindDots(const cv::Mat& Capture) {
    m_Threshold(Capture, m_Binary, 42, 87, 10);
    cv::bitwise_not(m_Binary, m_Binary);
    Measure(Capture, cv::connectedComponents(m_Binary, m_Labels, 4, CV_32S));
    m_aDots.clear();
    for (const StDot& Dot : m_aMoments)
        if (Dot.m_dPixels >= cdSmallestDot && Dot.m_dPixels <= cdLargestDot)
            m_aDots.emplace_back(Dot.m_dX / Dot.m_dPixels, Dot.m_dY / Dot.m_dPixels);
    const auto isLeft = [](const cv::Point2d& a, const cv::Point2d& b) { return a.x < b.x; };
    std::sort(m_aDots.begin(), m_aDots.end(), isLeft);
}

/// A first spline places the target: all points of the frame's border are looked at.
void ClPeerGeneration::SumBorder(const ClPeerSpline& Spline) {
    m_dBorder = 0.0;
    for (int x = 0; x < m_Frame.width; ++x)
        m_dBorder += Spline(x, 0).y + Spline(x, m_Frame.height).y;
    for (int y = 0; y < m_Frame.height; ++y)
        m_dBorder += Spline(0, y).x + Spline(m_Frame.width, y).x;
}

void ClPeerGeneration::Run(const cv::Mat& Capture) {
    FindDots(Capture);
    ClPeerSpline spline;
    spline.Solve(m_aTarget, m_aActual);
    SumBorder(spline);
    spline.Solve(m_aTarget, m_aActual);
    if (m_bMatrices)
        spline.TableByMatrices(m_Frame, m_X, m_Y);
    else
        spline.Table(m_Frame, m_X, m_Y);
    cv::convertMaps(m_X, m_Y, m_Positions, m_Fractions, CV_16SC2);
}

} // namespace peer
