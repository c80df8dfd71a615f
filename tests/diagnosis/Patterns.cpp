#include "diagnosis/Patterns.h"

#include "Math/ThinPlateSplines.h"
#include "sim/Random.h"
#include "sim/Scanner.h"
#include "sim/Target.h"

namespace TestSupport {

using diagnosis::Points;
using diagnosis::StPoint;
using diagnosis::StRecord;

Points PatternPlaces() {
    Points aPlaces;
    for (const sim::ClPoint& Dot : sim::DotPattern())
        aPlaces.push_back({160.0 + 19.685 * Dot.x, 240.0 + 19.685 * Dot.y});
    return aPlaces;
}

Points FoundBy(const Points& aPlaces, std::uint64_t nSeed) {
    sim::ClRandom Random(nSeed);
    const double dNoise = nSeed == 0 ? 0.0 : 0.3;
    Points aFound;
    for (const StPoint& Place : aPlaces) {
        const double x = Place.m_dX - 150.0;
        const double y = Place.m_dY - 230.0;
        const double dRadial = 1.0 - 2e-7 * (x * x + y * y);
        const double dx = dNoise * Random.Normal();
        aFound.push_back({195.0 + 0.985 * x * dRadial + dx,
                          525.0 + 2.02 * y * dRadial + 0.01 * x + dNoise * Random.Normal()});
    }
    return aFound;
}

StRecord RecordOf(const Points& aFound) {
    StRecord Record;
    Record.m_aTarget = PatternPlaces();
    Record.m_aFound = aFound;
    Record.m_Target = {19.685, 19.685};
    Record.m_Source = {19.397, 39.735};
    Record.m_nTargetWidth = sim::g_nFrameWidth;
    Record.m_nTargetHeight = sim::g_nFrameHeight;
    return Record;
}

StPoint SplineAt(const StRecord& Record, const StPoint& Place) {
    std::vector<ClVector> aFrom;
    std::vector<ClVector> aTo;
    for (std::size_t i = 0; i < Record.m_aTarget.size(); ++i) {
        aFrom.emplace_back(Record.m_aTarget[i].m_dX, Record.m_aTarget[i].m_dY);
        aTo.emplace_back(Record.m_aFound[i].m_dX, Record.m_aFound[i].m_dY);
    }
    TpThinPlateSplines<double> Spline;
    Spline.Setup(static_cast<long>(aFrom.size()), aFrom.data(), aTo.data());
    StPoint Mapped;
    Spline.Transform(Place.m_dX, Place.m_dY, &Mapped.m_dX, &Mapped.m_dY);
    return Mapped;
}

} // namespace TestSupport
