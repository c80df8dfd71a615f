#pragma once

/// Grids for tests, put together by hand: components, dots, and the pattern as lists of positions.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7.h"
#include "Tools/Allocate.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace TestSupport {

using ClBuilder = ClIpCalibrateGeometricBuildRefPointsBase;
using ClDot = ClBuilder::ClDot;
using ClQK7 = ClIpCalibrateGeometricBuildRefPointsQK7;

/// The spacing of the raw capture's dots, pixels: resolution / 25.4 * 2 mm.
constexpr double cdPitchX = 38.7957480314961;
constexpr double cdPitchY = 79.4714173228346;

/// Owns its dots, which are numbered in the order in which they come.
class ClTestGrid : public ClBuilder::DotGrid {
public:
    ClTestGrid() = default;
    explicit ClTestGrid(const std::vector<ClVector>& aPlaces) : ClTestGrid() {
        for (const ClVector& rPlace : aPlaces)
            Add(rPlace.x, rPlace.y);
    }
    ClTestGrid(const ClTestGrid&) = delete;
    ClTestGrid& operator=(const ClTestGrid&) = delete;
    ~ClTestGrid() override { ClBuilder::ReleaseDots(*this); }

    ClDot& Add(double x, double y) {
        std::unique_ptr<ClDot> pDot(Vek::NewObject<ClDot>(ClVector(x, y)));
        pDot->m_nIndex = static_cast<int>(Entries());
        Append(pDot.get());
        return *pDot.release();
    }
    ClDot& operator()(unsigned long n) { return *(*this)[n]; }
    /// The dot made from a component.
    ClDot& OfIndex(int nIndex) {
        for (unsigned long i = 0; i < Entries(); ++i)
            if ((*this)[i]->m_nIndex == nIndex)
                return *(*this)[i];
        throw std::out_of_range("no such dot");
    }
};

/// The neighbours of a dot by their numbers, in the order of its list.
inline std::vector<int> Neighbours(const ClDot& rDot) {
    std::vector<int> anIndices;
    for (unsigned long i = 0; i < rDot.m_aNeighbours.Entries(); ++i)
        anIndices.push_back(rDot.m_aNeighbours[i]->m_nIndex);
    return anIndices;
}

/// A region of a fitting shape for either model.
inline ClIpConnectedComponent2::ClComponent Region(double x, double y, double dArea = 300.0,
                                                   double dEccentricity = 0.3) {
    ClIpConnectedComponent2::ClComponent Component;
    Component.m_vCentre = {x, y};
    Component.m_vMin = {x - 5.0, y - 10.0};
    Component.m_vMax = {x + 5.0, y + 10.0};
    Component.m_dArea = dArea;
    Component.m_dEccentricity = dEccentricity;
    return Component;
}

inline ClBuilder::ComponentsArray_t
Regions(const std::vector<ClIpConnectedComponent2::ClComponent>& aRegions) {
    ClBuilder::ComponentsArray_t aComponents;
    aComponents.Reserve(aRegions.size());
    for (const auto& rRegion : aRegions)
        aComponents.Append(rRegion);
    return aComponents;
}

inline ClBuilder::ComponentsArray_t RegionsAt(const std::vector<ClVector>& aPlaces) {
    ClBuilder::ComponentsArray_t aComponents;
    for (const ClVector& rPlace : aPlaces)
        aComponents.Append(Region(rPlace.x, rPlace.y));
    return aComponents;
}

using Bend_t = std::function<ClVector(const ClVector&)>;

/// The 75 places of the pattern in its order, the first at (x, y), bent by a function of the place.
inline std::vector<ClVector> PatternPlaces(
    double x = 100.0, double y = 150.0, double dPitchX = cdPitchX, double dPitchY = cdPitchY,
    const Bend_t& Bend = [](const ClVector& v) { return v; }) {
    const int anLengths[] = {10, 11, 11, 11, 11, 11, 10};
    std::vector<ClVector> aPlaces;
    for (int c = 0; c < 7; ++c)
        for (int r = 0; r < anLengths[c]; ++r)
            aPlaces.push_back(Bend({x + c * dPitchX, y + r * dPitchY}));
    return aPlaces;
}

/// The number of a point of the pattern.
inline unsigned long PointAt(int nColumn, int nRow) {
    return static_cast<unsigned long>(nColumn * 11 - (nColumn > 0 ? 1 : 0) + nRow);
}

inline ClBuilder::PointList ListOf(const std::vector<ClVector>& aPlaces) {
    ClBuilder::PointList aPoints;
    for (const ClVector& rPlace : aPlaces)
        aPoints.Append(rPlace);
    return aPoints;
}

} // namespace TestSupport
