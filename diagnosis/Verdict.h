#pragma once

/// Whether a calibration can be believed.
///
/// The thresholds stand here, each with the figure that it rests on; docs/accuracy.md has the
/// measurements.

#include "diagnosis/PlateFit.h"
#include "diagnosis/Record.h"

#include <string>

namespace diagnosis {

/// A point further off its dot than this is wrong, raw pixels: a tenth of a dot in either
/// direction, 0.077 millimetres.
constexpr StPoint cWrong{1.5, 3.0};

/// A dot is doubtful from this share of it on, measured against what the other dots predict. That
/// prediction is right to a tenth of it or so.
constexpr double cdDoubtfulShare = 0.95;

/// The resolution in the middle of the pattern may differ from the nominal one by this share: the
/// EFTS limit of a distance. What part of it is the plate's cannot be told from one capture.
constexpr double cdDoubtfulScale = 0.01;

/// Degrees between the rows and the columns, there, that are missing from a right angle.
constexpr double cdDoubtfulShear = 1.0;

/// With more doubtful dots than this it is the pattern that is doubtful.
constexpr std::size_t cnMostDoubtfulDots = 15;

enum class EReason {
    eDot,     ///< a dot is not where the others place it
    ePattern, ///< too many are not
    eScale,   ///< another pitch, or another resolution
    eShear,   ///< rows and columns at another angle
    eSecond,  ///< a second capture contradicts
};

/// The name of a reason: "dot".
const char* ReasonName(EReason eReason);

struct StReason {
    EReason m_eReason = EReason::eDot;
    std::size_t m_nDot = cnDots; ///< in pattern order; `cnDots` where it is about the whole
    std::string m_Words;         ///< a sentence without full stop
};

using Reasons = std::vector<StReason>;

/// A dot against what the others predict.
struct StDotOff {
    std::size_t m_nDot = 0;
    StPoint m_Off; ///< raw pixels
};

/// |x| and |y| by those of `cWrong`, the larger of the two: 1 is wrong.
double ShareOfWrong(const StPoint& Off);

/// Dots that others contradict by a share of `cWrong` or more, the worst first; at most one more
/// than `cnMostDoubtfulDots`. Throws std::invalid_argument where the target points are no pattern.
std::vector<StDotOff> DoubtfulDots(const StRecord& Record, double dShare = cdDoubtfulShare);

/// All dots against what those that are not doubtful predict, in pattern order.
Points OffFromOthers(const StRecord& Record, const std::vector<StDotOff>& aDoubtful);

Reasons DotReasons(const StRecord& Record, const std::vector<StDotOff>& aDoubtful);
Reasons PlateReasons(const StPlateFit& Plate);

} // namespace diagnosis
