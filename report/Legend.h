#pragma once

#include "report/Svg.h"

#include <functional>
#include <vector>

namespace report {

/// What marks mean, below a drawing: entries in lines, as many in a line as there is room for.
class ClLegend {
public:
    /// Draws a mark about a place.
    using Sample = std::function<void(ClSvg&, const StPoint&)>;

    explicit ClLegend(double dWidth) : m_dWidth(dWidth) {}

    void Add(const Sample& sample, const std::string& sMeaning);
    /// A sentence without a mark, in lines of its own.
    void AddRemark(const std::string& sRemark);

    double Height() const;
    void Draw(ClSvg& rSvg, const StPoint& UpperLeft) const;

private:
    struct StEntry {
        Sample m_Sample;
        std::string m_sText;
        StPoint m_At; ///< from the upper left: the left end of the base line
    };
    void Place(const Sample& sample, const std::string& sText, bool bNewLine);
    double WidthOf(const StEntry& Entry) const;

    double m_dWidth;
    std::vector<StEntry> m_aEntries;
};

/// A text in lines that are no wider, broken between words; a word that is wider by itself is cut.
std::vector<std::string> LinesOf(const std::string& sText, double dWidth);

} // namespace report
