#include "report/PageFigures.h"

#include "diagnosis/SecondCapture.h"
#include "diagnosis/Verdict.h"
#include "report/Markup.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace report {

namespace {

using diagnosis::cdDoubtfulScale;
using diagnosis::cdDoubtfulShare;
using diagnosis::cdDoubtfulShear;
using diagnosis::cdSecondScale;

constexpr std::nullopt_t None = std::nullopt;
constexpr double cdPercent = 100.0;

using List = std::vector<StFigure>;

List DotFigures() {
    return {
        {"report/worst_dot", EGroup::eDots, "Worst dot", "", 2, 1.0, None, cdDoubtfulShare,
         EWorse::eHigh,
         "The dot that lies furthest from where the others place it, about a smooth distortion: 1 "
         "is 1.5 raw pixels in x or 3 in y, a tenth of a dot.",
         "It says nothing of an error that all dots share, as with a plate of another pitch."},
        {"report/residual_mean", EGroup::eDots, "Mean residual", "\u00b5m", 1, 1.0, None, None,
         EWorse::eHigh,
         "How far, in the mean, a dot lies from where the calibration's own spline through the "
         "other 74 would have placed it.",
         "It is no error of the corrected image: the dots at the border are predicted from one "
         "side alone, and the calibration does use them."},
        {"report/residual_max", EGroup::eDots, "Largest residual", "\u00b5m", 1, 1.0, None, None,
         EWorse::eHigh, "The same of the dot that is predicted worst, mostly one in a corner.",
         "Large in a corner it tells of distortion, and only amid the dots of a wrong mark."},
    };
}

List PlateFigures() {
    return {
        {"generate/plate/middle/scale/0", EGroup::ePlate, "Scale in x", "", 4, 1.0,
         1.0 - cdDoubtfulScale, 1.0 + cdDoubtfulScale, EWorse::eFarFromOne,
         "How large the pattern is along the rows, in its middle, against what the nominal "
         "resolution of the scanner makes of it.",
         "Plate and scanner together: a plate that is one percent larger and a scanner that "
         "resolves one percent more look the same."},
        {"generate/plate/middle/scale/1", EGroup::ePlate, "Scale in y", "", 4, 1.0,
         1.0 - cdDoubtfulScale, 1.0 + cdDoubtfulScale, EWorse::eFarFromOne,
         "The same along the columns.", "As above."},
        {"generate/plate/middle/shear", EGroup::ePlate, "Shear", "\u00b0", 2, 1.0, -cdDoubtfulShear,
         cdDoubtfulShear, EWorse::eFarFromZero,
         "By how much rows and columns miss a right angle, in the middle.",
         "It does not tell whether the plate or the scanner is skew."},
        {"generate/plate/whole/rotation", EGroup::ePlate, "Rotation", "\u00b0", 2, 1.0, None, None,
         EWorse::eFarFromZero,
         "How far the rows are turned, toward later lines at their right end: how the target was "
         "laid, and how the sensor sits.",
         "No fault: the correction takes it out."},
        {"generate/plate/distortion_mm/max", EGroup::ePlate, "Distortion", "mm", 3, 1.0, None, None,
         EWorse::eHigh,
         "The furthest that a dot lies from a straight, evenly scaled pattern: what the "
         "correction has to bend.",
         "No fault by itself. Optics that differ much from those of the other scanners are worth "
         "a look."},
    };
}

List ImageFigures() {
    return {
        {"generate/expected_error/inside", EGroup::eImage, "Expected error amid the dots", "px", 3,
         1.0, None, None, EWorse::eHigh,
         "How far, root mean square, the content of the corrected image is expected to lie from "
         "where it belongs, within the hull of the dots; a pixel is 50.8 \u00b5m.",
         "An expectation from how the dots scatter, not a measurement; an error that all dots "
         "share is not in it."},
        {"generate/expected_error/edge", EGroup::eImage, "Expected error at the sides", "px", 3,
         1.0, None, None, EWorse::eHigh, "The same beyond the dots, to one side.",
         "There the calibration extrapolates."},
        {"generate/expected_error/corner", EGroup::eImage, "Expected error in the corners", "px", 2,
         1.0, None, None, EWorse::eHigh, "The same beyond the dots in x and in y.",
         "It grows with the distortion of the optics; cleaning does not lower it."},
        {"report/coverage", EGroup::eImage, "Coverage", "%", 2, 1.0, None, None, EWorse::eLow,
         "Share of the corrected image whose content the capture has.",
         "What lacks is filled with the background, and no finger shows there."},
        {"check/efts_percent", EGroup::eImage, "EFTS distances", "%", 2, 1.0, None, None,
         EWorse::eLow,
         "Share of all 2775 distances between two dots of the corrected target that are right to "
         "1 percent, or to 0.35 pixels where they are short.",
         "Of this very capture: what the calibration takes for right passes. A wrong point does "
         "not show here; the second capture shows it."},
    };
}

List SecondFigures() {
    return {
        {"generate/second/scale", EGroup::eSecond, "Second capture: scale", "", 4, 1.0,
         1.0 - cdSecondScale, 1.0 + cdSecondScale, EWorse::eFarFromOne,
         "How large the pattern of the second capture comes out, corrected.",
         "With the same plate it is near 1 whatever the plate's pitch."},
        {"generate/second/rms", EGroup::eSecond, "Second capture: RMS error", "px", 2, 1.0, None,
         None, EWorse::eHigh, "How far its dots come out from where they belong, root mean square.",
         "It has the scatter of both captures in it."},
        {"generate/second/max", EGroup::eSecond, "Second capture: furthest dot", "px", 2, 1.0, None,
         None, EWorse::eHigh, "The same of the worst one; how far each may be, the verdict knows.",
         "Beyond the dots of the first capture the calibration extrapolates, and a dot may be "
         "further off there."},
        {"generate/second/efts_percent", EGroup::eSecond, "Second capture: EFTS distances", "%", 2,
         1.0, None, None, EWorse::eLow,
         "Share of the 2775 distances of the second capture that are right.",
         "Unlike that of the first capture it does show a wrong point."},
    };
}

List PlatenFigures() {
    return {
        {"contamination/contamination_level", EGroup::ePlaten, "Contamination", "", 2, 1.0, None,
         None, EWorse::eHigh, "The library's level: its response to dark spots on the platen.",
         "It is 100 from some 50 specks on, and does not tell dirty from very dirty."},
        {"contamination/platen/brightness", EGroup::ePlaten, "Brightness", "", 1, 1.0, None, None,
         EWorse::eLow, "Mean light of the platen, grey values from 0 to 255.",
         "Bright is not even: see below."},
        {"contamination/platen/uniformity", EGroup::ePlaten, "Uniformity", "", 3, 1.0, None, None,
         EWorse::eLow, "Light of the darkest tile of 2 mm over that of the brightest; 1 is even.",
         "A stain wider than half a tile counts as light."},
        {"contamination/platen/soiled_share", EGroup::ePlaten, "Soiled", "%", 3, cdPercent, None,
         None, EWorse::eHigh, "Share of the platen that lacks more than 7 percent of its light.",
         "It does not tell what lies there: dirt, a scratch or a dead pixel."},
        {"contamination/platen/saturated_share", EGroup::ePlaten, "Saturated", "%", 3, cdPercent,
         None, None, EWorse::eHigh, "Share of samples that are 255: light that is lost.",
         "None lost does not mean that the light is enough."},
        {"contamination/platen/dark_share", EGroup::ePlaten, "Dark", "%", 3, cdPercent, None, None,
         EWorse::eHigh, "Share of samples below 85, a third of the way to white.",
         "It does not tell dirt from a lack of light."},
        {"contamination/platen/noise", EGroup::ePlaten, "Noise", "", 2, 1.0, None, None,
         EWorse::eHigh,
         "What a pixel differs by from capture to capture, standard deviation in grey values, from "
         "neighbours of one capture.",
         "Where samples are saturated there is none to see. A rough surface counts as noise."},
        {"contamination/platen/line_noise", EGroup::ePlaten, "Noise of lines", "", 2, 1.0, None,
         None, EWorse::eHigh, "What whole lines differ by, the same way.",
         "It does not tell flicker of the light from the sensor's own."},
    };
}

List LevelFigures() {
    return {
        {"calibrate/dirt_level", EGroup::eLevels, "Dirt level", "", 2, 1.0, None, None,
         EWorse::eHigh,
         "The library's: the darkness of the platen away from the finger, summed up over about a "
         "quarter of the frame.",
         "No percentage. Pale stains, and dirt near the finger, are not in it."},
        {"calibrate/dry_finger_level", EGroup::eLevels, "Dry finger level", "", 2, 1.0, None, None,
         EWorse::eHigh, "The library's: how much of the platen near the finger is bare.",
         "No measure of dryness: the finger's size and place make it, not its ridges."},
        {"contamination/contamination_level", EGroup::eLevels, "Contamination", "", 2, 1.0, None,
         None, EWorse::eHigh, "The library's response to dark spots on the raw capture.",
         "With a finger on the platen it is the finger that it responds to."},
    };
}

List PrintFigures() {
    return {
        {"calibrate/measures/area_mm2", EGroup::ePrint, "Area", "mm\u00b2", 1, 1.0, None, None,
         EWorse::eLow, "What the mask takes for finger.", "Not how good the print is."},
        {"calibrate/measures/offset_right_mm", EGroup::ePrint, "Offset to the right", "mm", 2, 1.0,
         None, None, EWorse::eFarFromZero, "Of the middle of the print from that of the image.",
         "No fault of the scanner."},
        {"calibrate/measures/offset_down_mm", EGroup::ePrint, "Offset to later lines", "mm", 2, 1.0,
         None, None, EWorse::eFarFromZero,
         "The same along the columns. The picture shows later lines further up.", "As above."},
        {"calibrate/measures/saturated_share", EGroup::ePrint, "White on the finger", "%", 1,
         cdPercent, None, None, EWorse::eHigh, "Share of the finger's samples that are 255.",
         "The correction stretches valleys to white: some always are."},
        {"calibrate/measures/dark_share", EGroup::ePrint, "Dark on the finger", "%", 1, cdPercent,
         None, None, EWorse::eHigh, "Share of the finger's samples below 85.",
         "It follows pressure and moisture alike."},
        {"calibrate/measures/ridge_contrast", EGroup::ePrint, "Ridge contrast", "", 3, 1.0, None,
         None, EWorse::eLow, "Mean step from ridge to valley, in parts of 255.",
         "As delivered: the correction makes a pale finger as dark as a strong one."},
        {"calibrate/measures/ridge_width_mm", EGroup::ePrint, "Ridge width", "mm", 3, 1.0, None,
         None, EWorse::eLow, "Mean over all profiles across ridges.",
         "Below 0.15 mm it comes out up to a fifth of a sample too wide."},
        {"calibrate/measures/valley_width_mm", EGroup::ePrint, "Valley width", "mm", 3, 1.0, None,
         None, EWorse::eHigh, "The same of the valleys.",
         "With the ridge width it makes the ridge distance of this finger, which is no fault."},
        {"calibrate/measures/ridge_share", EGroup::ePrint, "Ridge share", "", 3, 1.0, None, None,
         EWorse::eLow, "Ridge width over ridge and valley width; below a half valleys are wider.",
         "It does not tell dryness from little pressure."},
        {"calibrate/measures/ridge_spread", EGroup::ePrint, "Ridge spread", "", 3, 1.0, None, None,
         EWorse::eHigh, "How uneven ridge widths are: deviation over mean.",
         "Wet fingers raise it, and so do broken ridges."},
        {"calibrate/measures/valley_spread", EGroup::ePrint, "Valley spread", "", 3, 1.0, None,
         None, EWorse::eHigh, "The same of the valleys.", "As above."},
        {"calibrate/measures/brokenness", EGroup::ePrint, "Brokenness", "", 4, 1.0, None, None,
         EWorse::eHigh, "How broken ridges are along themselves: follows dryness.",
         "Pores and scars break ridges, too."},
        {"calibrate/measures/pressure", EGroup::ePrint, "Pressure", "", 3, 1.0, None, None,
         EWorse::eLow, "Ridge share without what moisture does to it: follows pressure.",
         "No force: its weights were fitted to simulated fingers."},
        {"calibrate/measures/light_taken", EGroup::ePrint, "Light taken", "", 3, 1.0, None, None,
         EWorse::eLow, "Share of the light that ridges take, before the correction stretches it.",
         "The only one of these that tells a pale finger from a strong one."},
    };
}

List AllFigures() {
    List aAll;
    for (const List& aSome : {DotFigures(), PlateFigures(), ImageFigures(), SecondFigures(),
                              PlatenFigures(), LevelFigures(), PrintFigures()})
        aAll.insert(aAll.end(), aSome.begin(), aSome.end());
    return aAll;
}

} // namespace

std::optional<double> ValueOf(const Values& Known, const std::string& sId) {
    const auto found = Known.find(sId);
    return found == Known.end() ? std::nullopt : std::optional<double>(found->second);
}

const std::vector<StFigure>& Figures() {
    static const List aFigures = AllFigures();
    return aFigures;
}

const StFigure& FigureOf(const std::string& sId) {
    const auto found = std::find_if(Figures().begin(), Figures().end(),
                                    [&](const StFigure& Figure) { return Figure.m_szId == sId; });
    if (found == Figures().end())
        throw std::invalid_argument("no figure: " + sId);
    return *found;
}

std::string Shown(const StFigure& Figure, double dValue) {
    const std::string sNumber = Decimal(Figure.m_dFactor * dValue, Figure.m_nDecimals);
    const std::string sUnit = Figure.m_szUnit;
    return sUnit.empty() ? sNumber : sNumber + (sUnit == "\u00b0" ? "" : "\u00a0") + sUnit;
}

std::string LimitWords(const StFigure& Figure) {
    const auto words = [&](double dLimit) {
        return Decimal(Figure.m_dFactor * dLimit, Figure.m_nDecimals);
    };
    if (Figure.m_dLower && Figure.m_dUpper)
        return words(*Figure.m_dLower) + " to " + words(*Figure.m_dUpper);
    if (Figure.m_dUpper)
        return "below " + words(*Figure.m_dUpper);
    return Figure.m_dLower ? "above " + words(*Figure.m_dLower) : "none";
}

bool IsWithin(const StFigure& Figure, double dValue) {
    return !std::isnan(dValue) && !(Figure.m_dLower && dValue <= *Figure.m_dLower) &&
           !(Figure.m_dUpper && dValue >= *Figure.m_dUpper);
}

double Badness(const StFigure& Figure, double dValue) {
    switch (Figure.m_eWorse) {
    case EWorse::eLow:
        return -dValue;
    case EWorse::eFarFromOne:
        return std::fabs(dValue - 1.0);
    case EWorse::eFarFromZero:
        return std::fabs(dValue);
    default:
        return dValue;
    }
}

} // namespace report
