#include "diagnosis/Diagnosis.h"

#include "diagnosis/DotShape.h"
#include "diagnosis/SplineSystem.h"

namespace diagnosis {

namespace {

Points LeaveOneOut(const StRecord& Record) {
    const ClSplineSystem System(Record.m_aTarget);
    const Values aX = System.LeaveOneOut(Along(&StPoint::m_dX, Record.m_aFound));
    const Values aY = System.LeaveOneOut(Along(&StPoint::m_dY, Record.m_aFound));
    Points aErrors;
    for (std::size_t i = 0; i < aX.size(); ++i)
        aErrors.push_back({aX[i], aY[i]});
    return aErrors;
}

std::vector<std::size_t> IndicesOf(const std::vector<StDotOff>& aDots) {
    std::vector<std::size_t> aIndices;
    aIndices.reserve(aDots.size());
    for (const StDotOff& Dot : aDots)
        aIndices.push_back(Dot.m_nDot);
    return aIndices;
}

std::vector<StDotReading> ReadDots(const StRecord& Record, const StGrey& Capture,
                                   const std::vector<StDotOff>& aDoubtful) {
    const Points aErrors = LeaveOneOut(Record);
    const Points aOff = OffFromOthers(Record, aDoubtful);
    std::vector<StDotReading> aDots;
    for (std::size_t i = 0; i < aErrors.size(); ++i) {
        const StPoint& Found = Record.m_aFound[i];
        const StDotShape Shape = MeasureDot(Capture, Found, Record.m_Source);
        aDots.push_back({PatternPlace(i), Found, aErrors[i], aOff[i], Shape.m_GreyCentre - Found,
                         Shape.m_dContrast, Shape.m_dDiameter, Shape.m_dRoundness});
    }
    return aDots;
}

} // namespace

StDiagnosis Diagnose(const Bytes& Calibration, const Bytes& Capture) {
    const StRecord Record = ReadRecord(Calibration);
    const std::vector<StDotOff> aDoubtful = DoubtfulDots(Record);
    StDiagnosis Diagnosis;
    Diagnosis.m_aDots = ReadDots(Record, ReadGrey(Capture), aDoubtful);
    Diagnosis.m_Plate = FitPlate(Record);
    Diagnosis.m_Errors = MapErrors(Record, IndicesOf(aDoubtful));
    Diagnosis.m_aReasons = DotReasons(Record, aDoubtful);
    const Reasons aPlate = PlateReasons(Diagnosis.m_Plate);
    Diagnosis.m_aReasons.insert(Diagnosis.m_aReasons.end(), aPlate.begin(), aPlate.end());
    return Diagnosis;
}

} // namespace diagnosis
