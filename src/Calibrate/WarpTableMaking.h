#pragma once

/// Making of a warp table.

#include "Calibrate/WarpTable.h"
#include "Math/ThinPlateSplines.h"

namespace Warp {

/// Who tells where a pixel lies in the capture. The table is the same.
enum class EDecision {
    FieldWhereSure, ///< the field of the spline, where that is bound to give the same entry
    SplineAlways,   ///< every entry is in doubt
};

/// Fills a table for the sizes and planes of `Warp`, with one spline per plane. Returns how many
/// entries the splines themselves had to decide. Throws `ClExBadAlloc`.
std::uint64_t MakeTable(const StWarp& Warp, const TpThinPlateSplines<double>* pSplines,
                        unsigned char* pTable, EDecision eDecision = EDecision::FieldWhereSure);

} // namespace Warp
