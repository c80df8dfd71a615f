#include "report/Clip.h"

#include <algorithm>
#include <cmath>

namespace report {

namespace {

/// Keeps what is at `dSign` times the coordinate not below `dSign` times the limit.
struct StSide {
    double StPoint::*m_pAxis;
    double m_dLimit;
    double m_dSign;

    double Inside(const StPoint& p) const { return m_dSign * (p.*m_pAxis - m_dLimit); }
};

StPoint Crossing(const StPoint& a, const StPoint& b, const StSide& Side) {
    const double t = Side.Inside(a) / (Side.Inside(a) - Side.Inside(b));
    StPoint Cross = a + StPoint{t * (b.m_dX - a.m_dX), t * (b.m_dY - a.m_dY)};
    Cross.*Side.m_pAxis = Side.m_dLimit;
    return Cross;
}

Points CutAt(const StSide& Side, const Points& aPolygon) {
    Points aCut;
    for (std::size_t i = 0; i < aPolygon.size(); ++i) {
        const StPoint& From = aPolygon[i];
        const StPoint& To = aPolygon[(i + 1) % aPolygon.size()];
        const bool bFrom = Side.Inside(From) >= 0.0;
        if (bFrom)
            aCut.push_back(From);
        if (bFrom != (Side.Inside(To) >= 0.0))
            aCut.push_back(Crossing(From, To, Side));
    }
    return aCut;
}

} // namespace

Points Clipped(Points aPolygon, const StBox& Box) {
    aPolygon.erase(std::remove_if(aPolygon.begin(), aPolygon.end(),
                                  [](const StPoint& p) {
                                      return !std::isfinite(p.m_dX) || !std::isfinite(p.m_dY);
                                  }),
                   aPolygon.end());
    for (const StSide& Side :
         {StSide{&StPoint::m_dX, Box.m_dX, 1.0}, StSide{&StPoint::m_dX, Box.Right(), -1.0},
          StSide{&StPoint::m_dY, Box.m_dY, 1.0}, StSide{&StPoint::m_dY, Box.Bottom(), -1.0}})
        aPolygon = CutAt(Side, aPolygon);
    return aPolygon;
}

Points Hatching(const StBox& Box, double dStep) {
    Points aEnds;
    const int nLines = static_cast<int>(std::ceil((Box.m_dWidth + Box.m_dHeight) / dStep)) - 1;
    for (int n = 1; n <= nLines; ++n) {
        const double d = n * dStep;
        const double dLeft = std::max(0.0, d - Box.m_dHeight);
        const double dTop = std::max(0.0, d - Box.m_dWidth);
        aEnds.push_back({Box.m_dX + dLeft, Box.m_dY + d - dLeft});
        aEnds.push_back({Box.m_dX + d - dTop, Box.m_dY + dTop});
    }
    return aEnds;
}

} // namespace report
