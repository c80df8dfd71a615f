#pragma once

#include "report/Dots.h"

namespace report {

/// The dots in their places with arrows from where they are predicted to where they were found,
/// magnified by a round number that leaves the longest believed one about as long as half the way
/// to a neighbour. Doubtful ones, drawn no longer than that way, have a square and a name. An arrow
/// of a round length tells the scale, in micrometres and in raw pixels of either direction.
/// `sPrefix` as for `ClSvg`.
std::string DrawResidualVectors(const StFrame& Capture, const Dots& aDots,
                                const std::string& sPrefix);

} // namespace report
