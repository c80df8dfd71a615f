#include "diagnosis/SplineSystem.h"

#include <cmath>
#include <numeric>
#include <stdexcept>

namespace diagnosis {

namespace {

/// r^2 log r.
double Radial(const StPoint& Difference) {
    const double s = SquaredLength(Difference);
    return s > 0.0 ? 0.5 * s * std::log(s) : 0.0;
}

} // namespace

ClSplineSystem::ClSplineSystem(const Points& aPlaces, int nDegree)
    : m_nDegree(nDegree), m_nRows(aPlaces.size() + TrendTerms(nDegree)), m_Scaling(aPlaces),
      m_aPlaces(m_Scaling(aPlaces)) {
    if (aPlaces.size() <= TrendTerms(nDegree))
        throw std::invalid_argument("too few places for a spline of which one is left out");
    Values aMatrix(m_nRows * m_nRows, 0.0);
    for (std::size_t i = 0; i < Size(); ++i) {
        const Values aBasis = BasisAt(aPlaces[i]);
        for (std::size_t j = 0; j < m_nRows; ++j)
            aMatrix[i * m_nRows + j] = aMatrix[j * m_nRows + i] = aBasis[j];
    }
    m_aInverse = Inverse(aMatrix, m_nRows);
}

Values ClSplineSystem::BasisAt(const StPoint& Place) const {
    const StPoint Here = m_Scaling(Place);
    Values aBasis;
    aBasis.reserve(m_nRows);
    for (const StPoint& Other : m_aPlaces)
        aBasis.push_back(Radial(Here - Other));
    const Values aTrend = TrendAt(Here, m_nDegree);
    aBasis.insert(aBasis.end(), aTrend.begin(), aTrend.end());
    return aBasis;
}

Values ClSplineSystem::Weights(const Values& aValues) const {
    if (aValues.size() != Size())
        throw std::invalid_argument("a value for each place is needed");
    Values aRight = aValues;
    aRight.resize(m_nRows, 0.0);
    Values aWeights = Product(m_aInverse, aRight);
    aWeights.resize(Size());
    return aWeights;
}

Values ClSplineSystem::LeaveOneOut(const Values& aValues) const {
    Values aErrors = Weights(aValues);
    for (std::size_t i = 0; i < aErrors.size(); ++i)
        aErrors[i] /= Bending(i, i);
    return aErrors;
}

StKnowledge ClSplineSystem::KnowledgeAt(const StPoint& Place) const {
    const Values aBasis = BasisAt(Place);
    StKnowledge Known;
    Known.m_aCounts = Product(m_aInverse, aBasis); // the inverse is symmetric
    const double dOpen =
        -std::inner_product(aBasis.begin(), aBasis.end(), Known.m_aCounts.begin(), 0.0);
    Known.m_dOpenness = dOpen > 0.0 ? dOpen : 0.0;
    Known.m_aCounts.resize(Size());
    return Known;
}

} // namespace diagnosis
