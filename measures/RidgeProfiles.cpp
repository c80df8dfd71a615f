#include "measures/RidgeProfiles.h"

#include <algorithm>
#include <cmath>

namespace measures {

namespace {

constexpr int cnBeside = 2; ///< values on each side that are averaged, along the ridge
constexpr double cdSpacing = 0.5;

/// Where `dAcross` samples across the ridges and `dAlong` samples along them lead.
ClStep Place(int x, int y, const ClStep& Across, double dAcross, double dAlong) {
    return {x + dAcross * Across.x - dAlong * Across.y, y + dAcross * Across.y + dAlong * Across.x};
}

/// The nearest sample and its neighbours to the right and below are there, and it is finger.
bool IsInside(const ClGreyView& Mask, const ClStep& p) {
    const double x = std::floor(p.x);
    const double y = std::floor(p.y);
    if (!(x >= 0.0 && y >= 0.0 && x + 2.0 <= Mask.m_nWidth - 1 && y + 2.0 <= Mask.m_nHeight - 1))
        return false;
    return IsFinger(Mask, static_cast<int>(std::lround(p.x)), static_cast<int>(std::lround(p.y)));
}

/// A rectangle whose corners are inside the frame is inside of it as a whole.
bool IsStripInside(const ClGreyView& Mask, int x, int y, const ClStep& Across, int nReach) {
    for (const int nAcross : {-nReach, nReach})
        for (const int nAlong : {-cnBeside, cnBeside})
            if (!IsInside(Mask, Place(x, y, Across, nAcross, nAlong)))
                return false;
    return true;
}

/// Interpolated between the four samples around.
double Interpolated(const ClGreyView& Image, const ClStep& p) {
    const int x = static_cast<int>(p.x);
    const int y = static_cast<int>(p.y);
    const double u = p.x - x;
    const double v = p.y - y;
    const double dUpper = (1.0 - u) * Image.At(x, y) + u * Image.At(x + 1, y);
    const double dLower = (1.0 - u) * Image.At(x, y + 1) + u * Image.At(x + 1, y + 1);
    return (1.0 - v) * dUpper + v * dLower;
}

double MeanAlong(const ClGreyView& Image, int x, int y, const ClStep& Across, double dAcross) {
    double dSum = 0.0;
    for (int n = -cnBeside; n <= cnBeside; ++n)
        dSum += Interpolated(Image, Place(x, y, Across, dAcross, n));
    return dSum / (2 * cnBeside + 1);
}

} // namespace

std::optional<Profile> ProfileAcross(const ClGreyView& Image, const ClGreyView& Mask, int x, int y,
                                     const ClStep& Across, int nReach) {
    if (!IsStripInside(Mask, x, y, Across, nReach))
        return std::nullopt;
    Profile Values;
    for (int n = -2 * nReach; n <= 2 * nReach; ++n)
        Values.push_back(MeanAlong(Image, x, y, Across, cdSpacing * n));
    return Values;
}

double ContrastOf(const Profile& Values) {
    const auto [itLowest, itHighest] = std::minmax_element(Values.begin(), Values.end());
    return *itHighest - *itLowest;
}

void AddWidths(const Profile& Values, ClWidths& rWidths) {
    const auto [itLowest, itHighest] = std::minmax_element(Values.begin(), Values.end());
    const double dMiddle = 0.5 * (*itLowest + *itHighest);
    std::optional<double> dBegin;
    for (std::size_t n = 1; n < Values.size(); ++n) {
        const bool bRidge = Values[n - 1] < dMiddle;
        if (bRidge == (Values[n] < dMiddle))
            continue;
        const double dPart = (dMiddle - Values[n - 1]) / (Values[n] - Values[n - 1]);
        const double dEnd = cdSpacing * (static_cast<double>(n - 1) + dPart);
        if (dBegin)
            (bRidge ? rWidths.m_aRidges : rWidths.m_aValleys).push_back(dEnd - *dBegin);
        dBegin = dEnd;
    }
}

} // namespace measures
