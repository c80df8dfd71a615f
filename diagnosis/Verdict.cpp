#include "diagnosis/Verdict.h"

#include "diagnosis/LeftOut.h"
#include "diagnosis/Words.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace diagnosis {

namespace {

/// What optics do to a whole image is no fault of a dot.
constexpr int cnCubic = 3;

/// Without the sign of what is none.
double Hundredths(double dValue) {
    return std::round(100.0 * dValue) / 100.0 + 0.0;
}

std::string DotWords(const StRecord& Record, const StDotOff& Dot) {
    const StPatternPlace place = PatternPlace(Dot.m_nDot);
    const StPoint& found = Record.m_aFound[Dot.m_nDot];
    return Words("the dot at (%.0f, %.0f), column %d, row %d of the pattern, is %.2f pixels in x "
                 "and %.2f in y from where the other dots place it; %.2f and %.2f are trusted",
                 found.m_dX, found.m_dY, place.m_nColumn, place.m_nRow, Hundredths(Dot.m_Off.m_dX),
                 Hundredths(Dot.m_Off.m_dY), cdDoubtfulShare * cWrong.m_dX,
                 cdDoubtfulShare * cWrong.m_dY);
}

std::string SizeWords(double dScale) {
    return Words("%.1f percent %s", 100.0 * std::fabs(dScale - 1.0),
                 dScale < 1.0 ? "smaller" : "larger");
}

} // namespace

const char* ReasonName(EReason eReason) {
    constexpr std::array<const char*, 5> aNames{"dot", "pattern", "scale", "shear", "second"};
    return aNames.at(static_cast<std::size_t>(eReason));
}

double ShareOfWrong(const StPoint& Off) {
    return std::max(std::fabs(Off.m_dX) / cWrong.m_dX, std::fabs(Off.m_dY) / cWrong.m_dY);
}

std::vector<StDotOff> DoubtfulDots(const StRecord& Record, double dShare) {
    const ClSplineSystem System(Record.m_aTarget, cnCubic);
    ClLeftOut Others(System, Record.m_aFound);
    std::vector<StDotOff> aDoubtful;
    while (aDoubtful.size() <= cnMostDoubtfulDots) {
        const std::size_t nDot = Others.MostSuspicious(cWrong);
        if (!(ShareOfWrong(Others.Off(nDot)) >= dShare))
            break;
        Others.LeaveOut(nDot);
        aDoubtful.push_back({nDot, {}});
    }
    for (StDotOff& rDot : aDoubtful)
        rDot.m_Off = Others.Off(rDot.m_nDot);
    std::stable_sort(aDoubtful.begin(), aDoubtful.end(), [](const auto& a, const auto& b) {
        return ShareOfWrong(a.m_Off) > ShareOfWrong(b.m_Off);
    });
    return aDoubtful;
}

Points OffFromOthers(const StRecord& Record, const std::vector<StDotOff>& aDoubtful) {
    const ClSplineSystem System(Record.m_aTarget, cnCubic);
    ClLeftOut Others(System, Record.m_aFound);
    for (const StDotOff& Dot : aDoubtful)
        Others.LeaveOut(Dot.m_nDot);
    Points aOff;
    for (std::size_t i = 0; i < System.Size(); ++i)
        aOff.push_back(Others.Off(i));
    return aOff;
}

Reasons DotReasons(const StRecord& Record, const std::vector<StDotOff>& aDoubtful) {
    if (aDoubtful.size() > cnMostDoubtfulDots)
        return {{EReason::ePattern, cnDots,
                 Words("more than %zu dots are not where the others place them: no smooth grid",
                       cnMostDoubtfulDots)}};
    Reasons aReasons;
    for (const StDotOff& Dot : aDoubtful)
        aReasons.push_back({EReason::eDot, Dot.m_nDot, DotWords(Record, Dot)});
    return aReasons;
}

Reasons PlateReasons(const StPlateFit& Plate) {
    const StAffine& Middle = Plate.m_Middle;
    Reasons aReasons;
    const double dMost =
        std::max(std::fabs(Middle.m_dScaleX - 1.0), std::fabs(Middle.m_dScaleY - 1.0));
    if (!(dMost < cdDoubtfulScale))
        aReasons.push_back(
            {EReason::eScale, cnDots,
             "the pattern is " + SizeWords(Middle.m_dScaleX) + " in x and " +
                 SizeWords(Middle.m_dScaleY) +
                 " in y than the nominal resolution has it: a plate of another pitch, or a "
                 "scanner of another resolution"});
    if (!(std::fabs(Middle.m_dShear) < cdDoubtfulShear))
        aReasons.push_back({EReason::eShear, cnDots,
                            Words("rows and columns stand %.1f degrees off a right angle: a skew "
                                  "plate, or a skew scanner",
                                  std::fabs(Middle.m_dShear))});
    return aReasons;
}

} // namespace diagnosis
