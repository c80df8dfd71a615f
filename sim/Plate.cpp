#include "sim/Plate.h"

#include "sim/Elementary.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

constexpr double g_dMiddleX = 0.5 * (ClPlate::ms_nWidth - 1);
constexpr double g_dMiddleY = 0.5 * (ClPlate::ms_nHeight - 1);

/// A sample coordinate as an index inside 0 to nCount.
int Clipped(double dSample, int nCount) {
    return static_cast<int>(Limit(dSample, 0.0, static_cast<double>(nCount)));
}

} // namespace

ClPlate::ClPlate()
    : m_aReflectance(Index(0, ms_nHeight), 1.0F), m_aCovered(Index(0, ms_nHeight), 0) {}

std::size_t ClPlate::Index(int nColumn, int nRow) {
    return static_cast<std::size_t>(nRow) * ms_nWidth + static_cast<std::size_t>(nColumn);
}

ClPoint ClPlate::Position(int nColumn, int nRow) {
    return {(nColumn - g_dMiddleX) / ms_dSamplesPerMm, (nRow - g_dMiddleY) / ms_dSamplesPerMm};
}

ClPoint ClPlate::Sample(const ClPoint& Platen) {
    return {Platen.x * ms_dSamplesPerMm + g_dMiddleX, Platen.y * ms_dSamplesPerMm + g_dMiddleY};
}

void ClPlate::Darken(int nColumn, int nRow, double dDarkness) {
    float& fReflectance = m_aReflectance[Index(nColumn, nRow)];
    fReflectance = static_cast<float>(fReflectance * (1.0 - dDarkness));
}

void ClPlate::Brighten(int nColumn, int nRow, double dLight) {
    float& fReflectance = m_aReflectance[Index(nColumn, nRow)];
    fReflectance = static_cast<float>(fReflectance + dLight);
}

void ClPlate::DarkenTo(int nColumn, int nRow, double dReflectance) {
    float& fReflectance = m_aReflectance[Index(nColumn, nRow)];
    fReflectance = std::min(fReflectance, static_cast<float>(dReflectance));
}

void ClPlate::Cover(int nColumn, int nRow) {
    m_aCovered[Index(nColumn, nRow)] = 1;
}

double ClPlate::Reflectance(const ClPoint& Platen) const {
    const ClPoint s = Sample(Platen);
    const double x = Limit(s.x, 0.0, ms_nWidth - 1.0);
    const double y = Limit(s.y, 0.0, ms_nHeight - 1.0);
    const int nColumn = std::min(static_cast<int>(x), ms_nWidth - 2);
    const int nRow = std::min(static_cast<int>(y), ms_nHeight - 2);
    const double u = x - nColumn;
    const double v = y - nRow;
    const float* pUpper = &m_aReflectance[Index(nColumn, nRow)];
    const float* pLower = pUpper + ms_nWidth;
    return (pUpper[0] * (1.0 - u) + pUpper[1] * u) * (1.0 - v) +
           (pLower[0] * (1.0 - u) + pLower[1] * u) * v;
}

bool ClPlate::IsCovered(const ClPoint& Platen) const {
    const ClPoint s = Sample(Platen);
    return m_aCovered[Index(Clipped(s.x + 0.5, ms_nWidth - 1),
                            Clipped(s.y + 0.5, ms_nHeight - 1))] != 0;
}

ClWindow::ClWindow(const ClPoint& Centre, double dReachX, double dReachY) {
    const ClPoint From = ClPlate::Sample({Centre.x - dReachX, Centre.y - dReachY});
    const ClPoint To = ClPlate::Sample({Centre.x + dReachX, Centre.y + dReachY});
    m_nLeft = Clipped(std::floor(From.x), ClPlate::ms_nWidth);
    m_nTop = Clipped(std::floor(From.y), ClPlate::ms_nHeight);
    m_nRight = Clipped(std::ceil(To.x) + 1.0, ClPlate::ms_nWidth);
    m_nBottom = Clipped(std::ceil(To.y) + 1.0, ClPlate::ms_nHeight);
}

} // namespace sim
