#pragma once

#include "report/Dots.h"

namespace report {

/// Where the residual of a dot begins.
enum class EResidual {
    ePredicted, ///< where all others predict the dot
    ePlace,     ///< where the dot belongs
};

/// The dots in their places, each with an arrow for its residual: the way from where it is
/// predicted, or belongs, to where it was found, magnified by a round number that leaves the
/// longest believed one at most about half as long as the way to a neighbour. None is drawn longer
/// than that way, nor out of the drawing: those that are cut are thick. Doubtful dots have a square
/// and a name. An arrow of a round length tells the scale, in micrometres and in raw pixels of
/// either direction. `sPrefix` as for `ClSvg`.
std::string DrawResidualVectors(const StFrame& Capture, const Dots& aDots,
                                const std::string& sPrefix,
                                EResidual eResidual = EResidual::ePredicted);

} // namespace report
