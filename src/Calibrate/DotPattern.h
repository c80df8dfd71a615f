#pragma once

/// The dot pattern of the target plate: seven columns of dots, all beginning at the same row. The
/// two lower corners are missing, which tells how the plate lies. Lists of its points go column by
/// column from the left, each from the top.

#include "Math/Vector.h"
#include "Tools/Array.h"
#include "Tools/MathConst.h"

#include <algorithm>
#include <iterator>

/// Dots of the target pattern; every record has a point for each.
inline constexpr unsigned long cnPatternPoints = 75;

namespace DotPattern {

/// Dots per column, from the left.
inline constexpr int canColumnLengths[] = {10, 11, 11, 11, 11, 11, 10};

inline void GetColumnLengths(TpArrayStatic<int>& rLengths) {
    rLengths.New(std::size(canColumnLengths));
    std::copy(std::begin(canColumnLengths), std::end(canColumnLengths), rLengths.Data());
}

/// The points of a pattern of columns of these lengths, `dPitch` apart.
/// Millimetres and dots per inch.
inline void GetPoints(const TpArrayStatic<int>& rLengths, double dPitch, double dDpiX, double dDpiY,
                      const ClVector& rOffset, TpArrayDynamic<ClVector, 10>& rPoints) {
    rPoints.Clear();
    for (unsigned long c = 0; c < rLengths.Entries(); ++c)
        for (int r = 0; r < rLengths[c]; ++r)
            rPoints.Append({(rOffset.x + static_cast<double>(c) * dPitch) * dDpiX *
                                MathConst::cdInchesPerMillimetre,
                            (r * dPitch + rOffset.y) * dDpiY * MathConst::cdInchesPerMillimetre});
}

} // namespace DotPattern
