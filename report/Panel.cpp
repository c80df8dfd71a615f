#include "report/Panel.h"

#include "report/Markup.h"
#include "report/RoundNumbers.h"

#include <algorithm>
#include <cmath>

namespace report {

namespace {

constexpr double cdTick = 4.0;
constexpr double cdMostProportion = 4.0;
constexpr double cdColumnTicks = 68.0; ///< units from one to the next, or more
constexpr double cdLineTicks = 50.0;

bool IsDensity(double d) {
    return std::isfinite(d) && d > 0.0;
}

/// Millimetres on the plate.
StPoint SizeOf(const StFrame& Frame) {
    return {Frame.m_nWidth / Frame.m_Density.m_dX, Frame.m_nHeight / Frame.m_Density.m_dY};
}

bool HasSize(const StFrame& Frame) {
    if (Frame.m_nWidth <= 0 || Frame.m_nHeight <= 0 || !IsDensity(Frame.m_Density.m_dX) ||
        !IsDensity(Frame.m_Density.m_dY))
        return false;
    const StPoint Size = SizeOf(Frame);
    return Size.m_dX <= cdMostProportion * Size.m_dY && Size.m_dY <= cdMostProportion * Size.m_dX;
}

} // namespace

ClPanel::ClPanel(const StFrame& Frame, const StBox& Room) : m_Frame(Frame) {
    if (!HasSize(Frame))
        return;
    const StPoint Size = SizeOf(Frame);
    m_dScale = std::min(Room.m_dWidth / Size.m_dX, Room.m_dHeight / Size.m_dY);
    m_Box.m_dWidth = m_dScale * Size.m_dX;
    m_Box.m_dHeight = m_dScale * Size.m_dY;
    m_Box.m_dX = Room.m_dX + 0.5 * (Room.m_dWidth - m_Box.m_dWidth);
    m_Box.m_dY = Room.m_dY;
}

StPoint ClPanel::Along(const StPoint& Pixels) const {
    const double dSign = m_Frame.m_bUpward ? -1.0 : 1.0;
    return {Pixels.m_dX * m_Box.m_dWidth / m_Frame.m_nWidth,
            dSign * Pixels.m_dY * m_Box.m_dHeight / m_Frame.m_nHeight};
}

StPoint ClPanel::At(const StPoint& Pixel) const {
    const StPoint Origin{m_Box.m_dX, m_Frame.m_bUpward ? m_Box.Bottom() : m_Box.m_dY};
    return Origin + Along({Pixel.m_dX + 0.5, Pixel.m_dY + 0.5});
}

StBox ClPanel::At(const StBox& Pixels) const {
    const StPoint First = At(StPoint{Pixels.m_dX - 0.5, Pixels.m_dY - 0.5});
    const StPoint Size = Along({Pixels.m_dWidth, Pixels.m_dHeight});
    return {First.m_dX, std::min(First.m_dY, First.m_dY + Size.m_dY), Size.m_dX,
            std::fabs(Size.m_dY)};
}

bool ClPanel::Holds(const StPoint& Pixel) const {
    return Pixel.m_dX >= -0.5 && Pixel.m_dY >= -0.5 && Pixel.m_dX <= m_Frame.m_nWidth - 0.5 &&
           Pixel.m_dY <= m_Frame.m_nHeight - 0.5;
}

double HeightFor(const StFrame& Frame, double dWidth) {
    constexpr double cdMost = 2.0;
    if (!HasSize(Frame))
        return 0.0;
    const StPoint Size = SizeOf(Frame);
    return dWidth * std::min(cdMost, Size.m_dY / Size.m_dX);
}

void DrawRawAxes(ClSvg& rSvg, const ClPanel& Panel, const StFrame& Frame) {
    const StBox& Box = Panel.Box();
    rSvg.Rect(Box, mark::cszFrame);
    for (const double dColumn :
         RoundTicks(0.0, Frame.m_nWidth - 1.0, static_cast<int>(Box.m_dWidth / cdColumnTicks))) {
        const double x = Panel.At(StPoint{dColumn, 0.0}).m_dX;
        rSvg.Line({x, Box.Bottom()}, {x, Box.Bottom() + cdTick}, mark::cszAxis);
        rSvg.Text({x, Box.Bottom() + 15.0}, Decimal(dColumn, 0), mark::cszQuiet, EAnchor::eMiddle);
    }
    for (const double dLine :
         RoundTicks(0.0, Frame.m_nHeight - 1.0, static_cast<int>(Box.m_dHeight / cdLineTicks))) {
        const double y = Panel.At(StPoint{0.0, dLine}).m_dY;
        rSvg.Line({Box.m_dX - cdTick, y}, {Box.m_dX, y}, mark::cszAxis);
        rSvg.Text({Box.m_dX - 6.0, y + 4.0}, Decimal(dLine, 0), mark::cszQuiet, EAnchor::eEnd);
    }
    rSvg.Text({Box.Middle().m_dX, Box.Bottom() + 28.0},
              std::string("column of the ") + Frame.m_szWhat, mark::cszQuiet, EAnchor::eMiddle);
    const std::string sLine = std::string("line of the ") + Frame.m_szWhat;
    if (Box.m_dHeight > TextWidth(sLine))
        rSvg.UprightText({Box.m_dX - 36.0, Box.Middle().m_dY}, sLine, mark::cszQuiet);
}

} // namespace report
