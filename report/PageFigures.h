#pragma once

/// The figures that pages tell, stated once: name, unit, limits, what each means and what it does
/// not. Pages of scanners, the index of many and their trends are made from this list.

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace report {

/// Values by their names: the command whose JSON tells the number, and the path to it in a result,
/// "generate/plate/middle/scale/0". What no command but `report` tells begins with "report/".
using Values = std::map<std::string, double>;

/// Nothing where there is no such value.
std::optional<double> ValueOf(const Values& Known, const std::string& sId);

enum class EGroup {
    eDots,   ///< the dots of the target, and what the calibration makes of them
    ePlate,  ///< the plate as a whole
    eImage,  ///< the corrected image
    eSecond, ///< the second capture
    ePlaten, ///< the empty platen
    eLevels, ///< a finger, by the library's own levels
    ePrint,  ///< a finger, measured
};

/// Which way of a figure is the worse one, for an order of scanners.
enum class EWorse { eHigh, eLow, eFarFromOne, eFarFromZero };

struct StFigure {
    const char* m_szId;
    EGroup m_eGroup;
    const char* m_szName;
    const char* m_szUnit;           ///< empty for none
    int m_nDecimals;                ///< shown
    double m_dFactor;               ///< what is shown is the value times this, as with percent
    std::optional<double> m_dLower; ///< limits of the value, as the verdict has them
    std::optional<double> m_dUpper;
    EWorse m_eWorse;
    const char* m_szMeans;
    const char* m_szMeansNot;
};

/// In the order in which pages tell them.
const std::vector<StFigure>& Figures();

/// Throws std::invalid_argument for an id that is none.
const StFigure& FigureOf(const std::string& sId);

/// "0.9985", "12.1 %": as shown.
std::string Shown(const StFigure& Figure, double dValue);
/// "0.9900 to 1.0100", "up to 0.95", "none".
std::string LimitWords(const StFigure& Figure);
/// Not a number keeps no limit.
bool IsWithin(const StFigure& Figure, double dValue);

/// How bad a value is, by the worse way of the figure: the larger the worse.
double Badness(const StFigure& Figure, double dValue);

} // namespace report
