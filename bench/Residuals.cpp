#include "bench/Residuals.h"

#include "bench/PlateFrame.h"
#include "bench/ResidualPicture.h"

#include "Math/ThinPlateSplines.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace bench {

namespace {

constexpr std::uint64_t cnCapture = 1;

constexpr std::array<const char*, 3> g_aZoneNames{"inside the dots", "beyond them to one side",
                                                  "corners"};

std::size_t IndexOf(EZone eZone) {
    return static_cast<std::size_t>(eZone);
}

std::vector<ClVector> VectorsOf(const Points& aPoints) {
    std::vector<ClVector> aVectors;
    for (const sim::ClPoint& Point : aPoints)
        aVectors.emplace_back(Point.x, Point.y);
    return aVectors;
}

/// The mapping of a corrected image to its capture, as the warp evaluates it.
class ClMapping {
public:
    ClMapping(const Points& aTarget, const Points& aActual) {
        const std::vector<ClVector> aFrom = VectorsOf(aTarget);
        const std::vector<ClVector> aTo = VectorsOf(aActual);
        m_Spline.Setup(static_cast<long>(aFrom.size()), aFrom.data(), aTo.data());
    }
    sim::ClPoint operator()(const sim::ClPoint& Corrected) const {
        sim::ClPoint Raw;
        m_Spline.Transform(Corrected.x, Corrected.y, &Raw.x, &Raw.y);
        return Raw;
    }

private:
    TpThinPlateSplines<double> m_Spline;
};

/// Of one set of calibrations, by zone.
struct ClTally {
    void Add(const ClResidualField& Field);
    void Print(const char* szWhat) const;

    std::array<ClLengths, 3> m_aAll;
    std::array<ClLengths, 3> m_aWorst; ///< the largest of each calibration
};

template <class Visit>
void ForEachPlace(Visit visit) {
    for (int nRow = 0; nRow < ClResidualField::cnRows; ++nRow)
        for (int nColumn = 0; nColumn < ClResidualField::cnColumns; ++nColumn)
            visit(nColumn, nRow);
}

void ClTally::Add(const ClResidualField& Field) {
    std::array<double, 3> aWorst{};
    ForEachPlace([&](int nColumn, int nRow) {
        const sim::ClPoint& Vector = Field.At(nColumn, nRow);
        const double dLength = std::hypot(Vector.x, Vector.y);
        const std::size_t n =
            IndexOf(ZoneOf(ClResidualField::PlaceOf(nColumn, nRow), Field.m_aTarget));
        m_aAll[n].Add(dLength);
        aWorst[n] = std::max(aWorst[n], dLength);
    });
    for (std::size_t n = 0; n < aWorst.size(); ++n)
        m_aWorst[n].Add(aWorst[n]);
}

void ClTally::Print(const char* szWhat) const {
    std::printf("%s\n%26s %8s %8s %8s %8s %16s %8s\n", szWhat, "", "places", "mean", "rms", "95 %",
                "largest, mean", "largest");
    for (const EZone eZone : g_aZones) {
        const std::size_t n = IndexOf(eZone);
        std::printf("%26s %8zu %8.3f %8.3f %8.3f %16.3f %8.3f\n", g_aZoneNames.at(n),
                    m_aAll[n].Count(), m_aAll[n].Mean(), m_aAll[n].Rms(), m_aAll[n].Percentile95(),
                    m_aWorst[n].Mean(), m_aWorst[n].Largest());
    }
}

/// One scanner, its calibration and the same with the true centres.
struct ClMeasured {
    ClResidualField m_Derived;
    ClResidualField m_True;
};

ClMeasured Measure(unsigned long nSeed) {
    const sim::ClScanner Scanner(nSeed);
    const sim::ClCapture Target = sim::CaptureKind(Scanner, sim::EKind::eTarget, cnCapture);
    ClGeneration Generated = Generate(Target.m_Raw);
    if (Generated.m_nStatus != 0)
        throw std::runtime_error("scanner " + std::to_string(nSeed) + ": " + Generated.m_sWords);
    ClMeasured Measured;
    Measured.m_Derived = MeasureResiduals(Scanner, Target, Generated);
    Generated.m_aActual = Target.m_aDots;
    Measured.m_True = MeasureResiduals(Scanner, Target, Generated);
    return Measured;
}

} // namespace

sim::ClPoint ClResidualField::PlaceOf(int nColumn, int nRow) {
    return {nColumn * (sim::g_nFrameWidth - 1.0) / (cnColumns - 1),
            nRow * (sim::g_nFrameHeight - 1.0) / (cnRows - 1)};
}

ClResidualField MeasureResiduals(const sim::ClScanner& Scanner, const sim::ClCapture& Target,
                                 const ClGeneration& Generated) {
    Points aOnPlaten;
    for (const sim::ClPoint& Dot : Target.m_aDots)
        aOnPlaten.push_back(Scanner.PlatenFromRaw(Dot));
    const ClPlateFrame Frame(aOnPlaten, Generated.m_aTarget);
    const ClMapping Mapping(Generated.m_aTarget, Generated.m_aActual);
    ClResidualField Field;
    Field.m_aTarget = Generated.m_aTarget;
    ForEachPlace([&](int nColumn, int nRow) {
        const sim::ClPoint Lies = ClResidualField::PlaceOf(nColumn, nRow);
        const sim::ClPoint Should = Frame.FromPlaten(Scanner.PlatenFromRaw(Mapping(Lies)));
        Field.m_aVectors.push_back({Lies.x - Should.x, Lies.y - Should.y});
    });
    return Field;
}

EZone ZoneOf(const sim::ClPoint& Place, const Points& aTarget) {
    diagnosis::Points aPoints;
    for (const sim::ClPoint& Point : aTarget)
        aPoints.push_back({Point.x, Point.y});
    return diagnosis::ZoneOf({Place.x, Place.y}, aPoints);
}

double ClLengths::Mean() const {
    double dSum = 0.0;
    for (const double d : m_aLengths)
        dSum += d;
    return dSum / static_cast<double>(m_aLengths.size());
}

double ClLengths::Rms() const {
    double dSum = 0.0;
    for (const double d : m_aLengths)
        dSum += d * d;
    return std::sqrt(dSum / static_cast<double>(m_aLengths.size()));
}

double ClLengths::Largest() const {
    return *std::max_element(m_aLengths.begin(), m_aLengths.end());
}

double ClLengths::Percentile95() const {
    std::vector<double> aSorted = m_aLengths;
    const auto nth = aSorted.begin() + static_cast<std::ptrdiff_t>(aSorted.size() * 95 / 100);
    std::nth_element(aSorted.begin(), nth, aSorted.end());
    return *nth;
}

int PrintResiduals(const std::string& sPicture, unsigned long nScanners, unsigned long nFirst) {
    ClTally Derived;
    ClTally True;
    ClResidualPicture Picture;
    for (unsigned long nSeed = nFirst; nSeed < nFirst + nScanners; ++nSeed) {
        const ClMeasured Measured = Measure(nSeed);
        Derived.Add(Measured.m_Derived);
        True.Add(Measured.m_True);
        Picture.Add(Measured.m_Derived);
    }
    std::printf("distance of what a corrected image shows from where it belongs, pixels of 0.0508 "
                "mm, %lu scanners\n",
                nScanners);
    Derived.Print("derived data");
    True.Print("the same with the true centres of the dots");
    Picture.Write(sPicture);
    return 0;
}

} // namespace bench
