#include "bench/PlateFrame.h"

namespace bench {

namespace {

constexpr std::size_t cnRowEnd = 65;   ///< last dot of the first row
constexpr std::size_t cnColumnEnd = 9; ///< last dot of the first column

sim::ClPoint Difference(const sim::ClPoint& a, const sim::ClPoint& b) {
    return {a.x - b.x, a.y - b.y};
}

} // namespace

ClPlateFrame::ClPlateFrame(const Points& aOnPlaten, const Points& aTarget)
    : m_Platen(aOnPlaten.at(0)), m_Target(aTarget.at(0)) {
    const sim::ClPoint p = Difference(aOnPlaten.at(cnRowEnd), m_Platen);
    const sim::ClPoint q = Difference(aOnPlaten.at(cnColumnEnd), m_Platen);
    const sim::ClPoint s = Difference(aTarget.at(cnRowEnd), m_Target);
    const sim::ClPoint t = Difference(aTarget.at(cnColumnEnd), m_Target);
    // The matrix that takes p to s and q to t.
    const double dDeterminant = p.x * q.y - p.y * q.x;
    m_aMatrix[0] = (s.x * q.y - t.x * p.y) / dDeterminant;
    m_aMatrix[1] = (t.x * p.x - s.x * q.x) / dDeterminant;
    m_aMatrix[2] = (s.y * q.y - t.y * p.y) / dDeterminant;
    m_aMatrix[3] = (t.y * p.x - s.y * q.x) / dDeterminant;
}

sim::ClPoint ClPlateFrame::FromPlaten(const sim::ClPoint& Platen) const {
    const sim::ClPoint d = Difference(Platen, m_Platen);
    return {m_Target.x + m_aMatrix[0] * d.x + m_aMatrix[1] * d.y,
            m_Target.y + m_aMatrix[2] * d.x + m_aMatrix[3] * d.y};
}

} // namespace bench
