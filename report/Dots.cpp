#include "report/Dots.h"

#include <cmath>

namespace report {

namespace {

constexpr double cdMicrometres = 1000.0; ///< per millimetre

StDot DotOf(const diagnosis::StDotReading& Reading) {
    return {Reading.m_Place, Reading.m_Found, Reading.m_LeaveOneOut, false};
}

} // namespace

Dots DotsOf(const diagnosis::StDiagnosis& Diagnosis) {
    Dots aDots;
    for (const diagnosis::StDotReading& Reading : Diagnosis.m_aDots)
        aDots.push_back(DotOf(Reading));
    for (const diagnosis::StReason& Reason : Diagnosis.m_aReasons)
        if (Reason.m_eReason == diagnosis::EReason::eDot && Reason.m_nDot < aDots.size())
            aDots[Reason.m_nDot].m_bDoubtful = true;
    return aDots;
}

std::string NameOf(const StPatternPlace& Place) {
    if (Place.m_nColumn < 1 || Place.m_nRow < 1)
        return "dot";
    return "column " + std::to_string(Place.m_nColumn) + ", row " + std::to_string(Place.m_nRow);
}

double Micrometres(const StPoint& Pixels, const StDensity& Density) {
    return cdMicrometres * std::hypot(Pixels.m_dX / Density.m_dX, Pixels.m_dY / Density.m_dY);
}

std::vector<double> ResidualLengths(const Dots& aDots, const StDensity& Density) {
    std::vector<double> aLengths;
    for (const StDot& Dot : aDots)
        aLengths.push_back(Micrometres(Dot.m_Residual, Density));
    return aLengths;
}

} // namespace report
