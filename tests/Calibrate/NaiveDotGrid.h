#pragma once

/// The steps of linking and pruning by plain walks over all pairs of dots, on dots that hold
/// nothing but what these steps touch. Slow, and short enough to be believed.

#include "Calibrate/DotGrids.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <vector>

namespace TestSupport {

struct StPlainDot {
    int m_nIndex = 0;
    ClVector m_vPos;
    ClVector m_vTarget;
    bool m_bValid = true;
    unsigned m_nStatus = 0;
    std::vector<int> m_anNeighbours; ///< by their indices

    bool operator==(const StPlainDot& Other) const {
        return m_nIndex == Other.m_nIndex && m_vTarget.x == Other.m_vTarget.x &&
               m_vTarget.y == Other.m_vTarget.y && m_bValid == Other.m_bValid &&
               m_nStatus == Other.m_nStatus && m_anNeighbours == Other.m_anNeighbours;
    }
};

inline std::ostream& operator<<(std::ostream& rTo, const StPlainDot& Dot) {
    rTo << "dot " << Dot.m_nIndex << " at (" << Dot.m_vPos.x << ", " << Dot.m_vPos.y
        << "), target (" << Dot.m_vTarget.x << ", " << Dot.m_vTarget.y << "), "
        << (Dot.m_bValid ? "valid" : "out") << ", status " << Dot.m_nStatus << ", neighbours";
    for (const int n : Dot.m_anNeighbours)
        rTo << ' ' << n;
    return rTo;
}

using PlainGrid = std::vector<StPlainDot>;

inline PlainGrid Plain(const ClBuilder::DotGrid& Grid) {
    PlainGrid aDots;
    for (unsigned long i = 0; i < Grid.Entries(); ++i) {
        const ClDot& Dot = *Grid[i];
        aDots.push_back({Dot.m_nIndex, Dot.m_vPos, Dot.m_vTarget, Dot.m_bValid, Dot.m_nStatus,
                         Neighbours(Dot)});
    }
    return aDots;
}

// Linking

inline double PlainStepError(double dStep, double dPitch, double dTolerance) {
    const double dLength = std::fabs(dStep);
    return dLength <= dTolerance ? dLength : std::fabs(dLength - dPitch);
}

inline bool ArePlainNeighbours(const StPlainDot& A, const StPlainDot& B, const ClBuilder& Builder) {
    const double dPitchX = Builder.m_dSourceDpiX / 25.4 * Builder.m_dPitch;
    const double dPitchY = Builder.m_dSourceDpiY / 25.4 * Builder.m_dPitch;
    const double dTolX = dPitchX * Builder.m_dPitchTolerance;
    const double dTolY = dPitchY * Builder.m_dPitchTolerance;
    const double x = A.m_vPos.x - B.m_vPos.x;
    const double y = A.m_vPos.y - B.m_vPos.y;
    if (!(PlainStepError(x, dPitchX, dTolX) < dTolX) ||
        !(PlainStepError(y, dPitchY, dTolY) < dTolY))
        return false;
    return !(std::fabs(x) < dTolX && std::fabs(y) < dTolY);
}

/// Links every valid dot with all its neighbours, in the order of the grid.
inline void LinkPlainly(PlainGrid& rDots, const ClBuilder& Builder) {
    for (StPlainDot& rDot : rDots) {
        rDot.m_anNeighbours.clear();
        for (const StPlainDot& Other : rDots)
            if (&rDot != &Other && rDot.m_bValid && Other.m_bValid &&
                ArePlainNeighbours(rDot, Other, Builder))
                rDot.m_anNeighbours.push_back(Other.m_nIndex);
    }
}

// Taking out

inline void TakeOutPlainly(PlainGrid& rDots, StPlainDot& rOut, unsigned nStatus) {
    for (StPlainDot& rDot : rDots) {
        std::vector<int>& rList = rDot.m_anNeighbours;
        rList.erase(std::remove(rList.begin(), rList.end(), rOut.m_nIndex), rList.end());
    }
    rOut.m_bValid = false;
    rOut.m_nStatus = nStatus;
}

/// Passes over the whole grid until one changes nothing. Returns how many dots went.
inline int RemoveLonelyPlainly(PlainGrid& rDots) {
    int nRemoved = 0;
    for (bool bChanged = true; bChanged;) {
        bChanged = false;
        for (StPlainDot& rDot : rDots)
            if (rDot.m_bValid && rDot.m_anNeighbours.size() < 2) {
                TakeOutPlainly(rDots, rDot, 5);
                ++nRemoved;
                bChanged = true;
            }
    }
    return nRemoved;
}

// Matching

/// Moves the ideal points onto the clean dots.
inline void CentrePlainly(std::vector<ClVector>& rIdeal, const PlainGrid& aDots) {
    ClVector vDots;
    ClVector vIdeal;
    double dDots = 0;
    for (const StPlainDot& Dot : aDots)
        if (Dot.m_bValid && Dot.m_nStatus == 0) {
            vDots = vDots + Dot.m_vPos;
            ++dDots;
        }
    for (const ClVector& v : rIdeal)
        vIdeal = vIdeal + v;
    const double dIdeal = static_cast<double>(rIdeal.size());
    const ClVector vMove =
        ClVector(vDots.x / dDots, vDots.y / dDots) - ClVector(vIdeal.x / dIdeal, vIdeal.y / dIdeal);
    for (ClVector& v : rIdeal)
        v = v + vMove;
}

inline void MatchPlainly(PlainGrid& rDots, const std::vector<ClVector>& aIdeal) {
    for (const ClVector& v : aIdeal) {
        double dBest = 10000.0;
        StPlainDot* pBest = nullptr;
        for (StPlainDot& rDot : rDots) {
            const double x = rDot.m_vPos.x - v.x;
            const double y = rDot.m_vPos.y - v.y;
            if (rDot.m_bValid && std::sqrt(x * x + y * y) < dBest) {
                dBest = std::sqrt(x * x + y * y);
                pBest = &rDot;
            }
        }
        if (pBest != nullptr)
            pBest->m_vTarget = v;
    }
}

inline int RemoveUnmatchedPlainly(PlainGrid& rDots, std::vector<ClVector> aIdeal) {
    CentrePlainly(aIdeal, rDots);
    MatchPlainly(rDots, aIdeal);
    for (StPlainDot& rDot : rDots)
        if (rDot.m_bValid && rDot.m_vTarget.x < 0)
            rDot.m_nStatus = 6;
    CentrePlainly(aIdeal, rDots);
    for (StPlainDot& rDot : rDots) {
        rDot.m_nStatus = rDot.m_nStatus == 6 ? 0 : rDot.m_nStatus;
        rDot.m_vTarget = {-1, -1};
    }
    MatchPlainly(rDots, aIdeal);
    int nRemoved = 0;
    for (StPlainDot& rDot : rDots)
        if (rDot.m_bValid && rDot.m_vTarget.x < 0) {
            TakeOutPlainly(rDots, rDot, 6);
            ++nRemoved;
        }
    return nRemoved;
}

} // namespace TestSupport
