#pragma once

/// Captures of the target plate, painted: dots that stand exactly where the test says.

#include "Calibrate/DotGrids.h"
#include "Tools/FpImage.h"
#include "support/Images.h"

#include <vector>

namespace TestSupport {

/// How a plate looks in one plane. A dot is an ellipse about a whole-numbered place, so that the
/// mean of its pixels is that place without rounding.
struct StPaint {
    int m_nRadiusX = 8;
    int m_nRadiusY = 16;
    int m_nGround = 60;
    int m_nDot = 180;

    bool Covers(const ClVector& vPlace, int x, int y) const {
        const double dX = (x - vPlace.x) / m_nRadiusX;
        const double dY = (y - vPlace.y) / m_nRadiusY;
        return dX * dX + dY * dY <= 1.0;
    }
};

inline void PaintPlane(ClImage& rImage, int nPlane, const std::vector<ClVector>& aPlaces,
                       const StPaint& Paint = {}) {
    for (int y = 0; y < rImage.Height(); ++y)
        for (int x = 0; x < rImage.Width(); ++x) {
            bool bDot = false;
            for (const ClVector& v : aPlaces)
                bDot = bDot || Paint.Covers(v, x, y);
            SetSample(rImage, x, y, nPlane, bDot ? Paint.m_nDot : Paint.m_nGround);
        }
}

/// A plate at 508 by 1016 dots per inch, that is 20 by 40 pixels a millimetre, the first dot at
/// (x, y).
inline std::vector<ClVector> PlatePlaces(int x = 50, int y = 70) {
    return PatternPlaces(x, y, 40.0, 80.0);
}

inline ClTestImage PaintedPlate(const std::vector<ClVector>& aPlaces, const StPaint& Paint = {}) {
    ClTestImage Image = BlankImage(ClImage::eUInt8, 345, 951);
    PaintPlane(Image, 0, aPlaces, Paint);
    return Image;
}

} // namespace TestSupport
