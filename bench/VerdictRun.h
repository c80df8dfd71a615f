#pragma once

/// One capture, what was derived from it, what is true about that, and what the diagnosis says.

#include "diagnosis/PlateFit.h"
#include "sim/TargetCases.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace bench {

/// Shares of a wrong point at which a dot might be flagged.
constexpr std::array<double, 12> g_aShares{0.2, 0.3, 0.4,  0.5, 0.6,  0.7,
                                           0.8, 0.9, 0.95, 1.0, 1.25, 1.5};

enum class ETruth {
    eGood,       ///< each point within two thirds of what is wrong, the plate the right one
    eBetween,    ///< no point wrong, one of them nearly so
    eWrongPoint, ///< off by more than 1.5 raw pixels in x or 3 in y
    eWrongPlate, ///< at another pitch by a percent or more, skew by a degree or more, no target
    eNearPlate,  ///< at another pitch, or skew, by less
};

enum class EDerived { eRefused, eDoesNotLoad, eLoads };

struct ClFlag {
    bool m_bFlagged = false;
    bool m_bNamed = false; ///< the dot that is furthest off is among the dots named
    bool m_bAll = false;   ///< and so are all others that are wrong
    int m_nRight = 0;      ///< dots named that are not wrong
};

/// Root mean squares over the three zones, pixels of the corrected image.
struct ClZoneErrors {
    std::array<double, 3> m_aTrue{};
    std::array<double, 3> m_aExpected{};
};

struct ClJudged {
    std::string m_sKind;
    EDerived m_eDerived = EDerived::eRefused;
    ETruth m_eTruth = ETruth::eGood;
    double m_dWorst = 0.0; ///< of the points, as a share of a wrong one
    std::array<ClFlag, g_aShares.size()> m_aFlags{};
    diagnosis::StAffine m_Middle;
    double m_dPlateScale = 1.0;    ///< true
    bool m_bDoubtful = false;      ///< the verdict
    bool m_bNamed = false;         ///< for a wrong point: the dot that is furthest off is named
    std::optional<bool> m_bSecond; ///< whether a second capture makes it doubtful, where asked
    double m_dSecondMax = 0.0;
    double m_dSecondScale = 1.0;
    std::optional<ClZoneErrors> m_Zones; ///< of good ones, where asked
};

/// What is looked at besides the verdict; both take longer than all the rest.
struct ClAsked {
    bool m_bSecond = false;
    bool m_bZones = false;
};

ClJudged Judge(const std::string& sKind, const sim::ClTargetScene& Scene, std::uint64_t nSeed,
               const ClAsked& Asked);

} // namespace bench
