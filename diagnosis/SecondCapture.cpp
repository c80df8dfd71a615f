#include "diagnosis/SecondCapture.h"

#include "diagnosis/DotShape.h"
#include "diagnosis/ErrorMap.h"
#include "diagnosis/LocatedDots.h"
#include "diagnosis/Words.h"

#include <algorithm>
#include <cmath>

namespace diagnosis {

namespace {

StPoint MeanOf(const Points& aPoints) {
    StPoint Sum;
    for (const StPoint& Point : aPoints)
        Sum = Sum + Point;
    const double dCount = static_cast<double>(aPoints.size());
    return {Sum.m_dX / dCount, Sum.m_dY / dCount};
}

/// Turns and scales about one middle and moves it to another, by the least squares: with places as
/// complex numbers p and q about their middles, the factor is sum(q p*) / sum(p p*).
class ClSimilarity {
public:
    ClSimilarity(const Points& aFrom, const Points& aTo)
        : m_From(MeanOf(aFrom)), m_To(MeanOf(aTo)) {
        double dReal = 0.0;
        double dImaginary = 0.0;
        double dSquares = 0.0;
        for (std::size_t i = 0; i < aFrom.size(); ++i) {
            const StPoint p = aFrom[i] - m_From;
            const StPoint q = aTo[i] - m_To;
            dReal += q.m_dX * p.m_dX + q.m_dY * p.m_dY;
            dImaginary += q.m_dY * p.m_dX - q.m_dX * p.m_dY;
            dSquares += SquaredLength(p);
        }
        const double dLength = std::hypot(dReal, dImaginary);
        m_dScale = dLength / dSquares;
        m_dCosine = dReal / dLength;
        m_dSine = dImaginary / dLength;
    }
    double Scale() const { return m_dScale; }

    /// Turned and moved, not scaled.
    StPoint Laid(const StPoint& Place) const {
        const StPoint p = Place - m_From;
        return {m_To.m_dX + m_dCosine * p.m_dX - m_dSine * p.m_dY,
                m_To.m_dY + m_dSine * p.m_dX + m_dCosine * p.m_dY};
    }

private:
    StPoint m_From;
    StPoint m_To;
    double m_dScale;
    double m_dCosine;
    double m_dSine;
};

void Place(const StRecord& Record, const Points& aFound, StSecond& rSecond) {
    const ClSimilarity Lying(Record.m_aTarget, aFound);
    const StErrorMap Errors = MapErrors(Record, {});
    rSecond.m_dScale = Lying.Scale();
    double dSum = 0.0;
    for (std::size_t i = 0; i < aFound.size(); ++i) {
        const StPoint Off = aFound[i] - Lying.Laid(Record.m_aTarget[i]);
        dSum += SquaredLength(Off);
        rSecond.m_dMax = std::max(rSecond.m_dMax, std::sqrt(SquaredLength(Off)));
        rSecond.m_aDots.push_back({PatternPlace(i), aFound[i], Off,
                                   std::hypot(cdSecondOff, cdSecondSpread * Errors.At(aFound[i])),
                                   0});
    }
    rSecond.m_dRms = std::sqrt(dSum / static_cast<double>(aFound.size()));
}

void CountPairs(const StLocated& Located, StSecond& rSecond) {
    rSecond.m_dPercent = Located.m_dPercent;
    for (const auto& [i, j] : Located.m_aFailedPairs) {
        ++rSecond.m_aDots[i].m_nFailedPairs;
        ++rSecond.m_aDots[j].m_nFailedPairs;
    }
}

void JudgeScale(const std::string& sCapture, StSecond& rSecond) {
    if (std::fabs(rSecond.m_dScale - 1.0) < cdSecondScale)
        return;
    rSecond.m_aReasons.push_back(
        {EReason::eSecond, cnDots,
         sCapture + Words(" shows the pattern %.1f percent too %s: one of the two plates has "
                          "another pitch",
                          100.0 * std::fabs(rSecond.m_dScale - 1.0),
                          rSecond.m_dScale < 1.0 ? "small" : "large")});
}

/// How far a dot is off, as a share of how far it may be.
double ShareOfTrusted(const StSecondDot& Dot) {
    return std::sqrt(SquaredLength(Dot.m_Off)) / Dot.m_dTrusted;
}

void JudgeDots(const std::string& sCapture, StSecond& rSecond) {
    const auto& aDots = rSecond.m_aDots;
    const auto nOff = std::count_if(aDots.begin(), aDots.end(), [](const StSecondDot& Dot) {
        return !(ShareOfTrusted(Dot) < 1.0);
    });
    if (nOff == 0)
        return;
    const auto worst =
        std::max_element(aDots.begin(), aDots.end(), [](const auto& a, const auto& b) {
            return ShareOfTrusted(a) < ShareOfTrusted(b);
        });
    rSecond.m_aReasons.push_back(
        {EReason::eSecond, static_cast<std::size_t>(worst - aDots.begin()),
         sCapture +
             Words(" has %d of its dots off their places, most the one at (%.0f, %.0f) of the "
                   "corrected image, column %d, row %d, by %.2f pixels; %.2f are trusted",
                   static_cast<int>(nOff), worst->m_Found.m_dX, worst->m_Found.m_dY,
                   worst->m_Place.m_nColumn, worst->m_Place.m_nRow,
                   std::sqrt(SquaredLength(worst->m_Off)), worst->m_dTrusted)});
}

} // namespace

StSecond CheckSecond(const Bytes& Calibration, const Bytes& Corrected,
                     const std::string& sCapture) {
    const StRecord Record = ReadRecord(Calibration);
    const StGrey Image = ReadGrey(Corrected);
    StSecond Second;
    const StLocated Located = LocateCorrected(Calibration, Corrected);
    Second.m_bFound = Located.m_aFound.size() == cnDots;
    if (!Second.m_bFound) {
        Second.m_aReasons.push_back(
            {EReason::eSecond, cnDots,
             sCapture + ", corrected, does not show the target: it was laid badly, or the "
                        "calibration is wrong"});
        return Second;
    }
    Points aCentres;
    for (const StPoint& Found : Located.m_aFound) {
        const StPoint Centre = MeasureDot(Image, Found, Record.m_Target).m_GreyCentre;
        aCentres.push_back(std::isfinite(Centre.m_dX) ? Centre : Found);
    }
    Place(Record, aCentres, Second);
    CountPairs(Located, Second);
    JudgeScale(sCapture, Second);
    if (Second.m_aReasons.empty())
        JudgeDots(sCapture, Second);
    return Second;
}

} // namespace diagnosis
