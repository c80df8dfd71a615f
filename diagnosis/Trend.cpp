#include "diagnosis/Trend.h"

#include <cmath>
#include <stdexcept>

namespace diagnosis {

namespace {

StPoint MiddleOf(const Points& aPlaces) {
    StPoint Sum;
    for (const StPoint& Place : aPlaces)
        Sum = Sum + Place;
    const double dCount = static_cast<double>(aPlaces.size());
    return {Sum.m_dX / dCount, Sum.m_dY / dCount};
}

double SpreadOf(const Points& aPlaces, const StPoint& Middle) {
    double dSum = 0.0;
    for (const StPoint& Place : aPlaces)
        dSum += SquaredLength(Place - Middle);
    return std::sqrt(dSum / static_cast<double>(aPlaces.size()));
}

/// x^n, x^(n-1) y, ..., y^n.
void AppendTerms(const StPoint& Place, int nDegree, Values& rTerms) {
    for (int nInY = 0; nInY <= nDegree; ++nInY) {
        double dTerm = 1.0;
        for (int i = 0; i < nDegree; ++i)
            dTerm *= i < nInY ? Place.m_dY : Place.m_dX;
        rTerms.push_back(dTerm);
    }
}

} // namespace

std::size_t TrendTerms(int nDegree) {
    if (nDegree < 1 || nDegree > 3)
        throw std::invalid_argument("a trend has a degree of 1 to 3");
    return static_cast<std::size_t>((nDegree + 1) * (nDegree + 2) / 2);
}

Values TrendAt(const StPoint& Place, int nDegree) {
    Values aTerms;
    for (int n = 0; n <= nDegree; ++n)
        AppendTerms(Place, n, aTerms);
    return aTerms;
}

Values FitTrend(const Points& aPlaces, const Values& aValues, int nDegree) {
    const std::size_t nTerms = TrendTerms(nDegree);
    if (aPlaces.size() != aValues.size() || aPlaces.size() < nTerms)
        throw std::invalid_argument("too few values for a trend");
    const double dShare = 1.0 / static_cast<double>(aPlaces.size());
    Values aSquares(nTerms * nTerms, 0.0);
    Values aMoments(nTerms, 0.0);
    for (std::size_t n = 0; n < aPlaces.size(); ++n) {
        const Values aTerms = TrendAt(aPlaces[n], nDegree);
        for (std::size_t i = 0; i < nTerms; ++i) {
            aMoments[i] += dShare * aTerms[i] * aValues[n];
            for (std::size_t j = 0; j < nTerms; ++j)
                aSquares[i * nTerms + j] += dShare * aTerms[i] * aTerms[j];
        }
    }
    return Product(Inverse(aSquares, nTerms), aMoments);
}

Values Along(double StPoint::*pAxis, const Points& aPoints) {
    Values aValues;
    for (const StPoint& Point : aPoints)
        aValues.push_back(Point.*pAxis);
    return aValues;
}

ClScaling::ClScaling(const Points& aPlaces) : m_Middle(MiddleOf(aPlaces)) {
    m_dScale = SpreadOf(aPlaces, m_Middle);
    if (!(m_dScale > 0.0) || !std::isfinite(m_dScale))
        throw std::invalid_argument("the places are one, or none");
}

StPoint ClScaling::operator()(const StPoint& Place) const {
    const StPoint d = Place - m_Middle;
    return {d.m_dX / m_dScale, d.m_dY / m_dScale};
}

Points ClScaling::operator()(const Points& aPlaces) const {
    Points aScaled;
    for (const StPoint& Place : aPlaces)
        aScaled.push_back((*this)(Place));
    return aScaled;
}

} // namespace diagnosis
