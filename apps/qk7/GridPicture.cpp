#include "apps/qk7/GridPicture.h"

#include <algorithm>
#include <cmath>

namespace qk7 {

namespace {

constexpr unsigned char cnInk = 0;
constexpr unsigned char cnLinked = 128; ///< in the marks
constexpr double cdSpoke = 0.35;        ///< lengths, in pitches
constexpr double cdCross = 0.15;
constexpr double cdBox = 0.25;

struct StStep {
    int m_nX;
    int m_nY;
};

/// The eight places around a sample.
constexpr StStep caSteps[] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};

bool IsInside(const ClImage& Image, double dX, double dY) {
    return dX >= 0.0 && dY >= 0.0 && dX < Image.Width() && dY < Image.Height();
}

unsigned char Sample(const ClImage& Image, double dX, double dY) {
    return IsInside(Image, dX, dY) ? Image.LineData(static_cast<int>(dY))[static_cast<int>(dX)] : 0;
}

/// A raw capture has two lines for each column: ink is two lines high to stay visible in both.
void Ink(const ClImage& rImage, double dX, double dY) {
    for (const double dLine : {dY, dY + 1.0})
        if (IsInside(rImage, dX, dLine))
            rImage.LineData(static_cast<int>(dLine))[static_cast<int>(dX)] = cnInk;
}

} // namespace

ClGridPicture::ClGridPicture(const ClImage& Target, const StPlace& Pitch) : m_Pitch(Pitch) {
    m_Image = Target;
    for (int y = 0; y < m_Image.Height(); ++y) {
        unsigned char* pLine = m_Image.LineData(y);
        std::transform(pLine, pLine + m_Image.Width(), pLine, [](unsigned char nValue) {
            return static_cast<unsigned char>(128 + nValue / 2);
        });
    }
}

void ClGridPicture::DrawLine(const StPlace& Place, const StPlace& From, const StPlace& To) {
    const double dX = (To.m_dX - From.m_dX) * m_Pitch.m_dX;
    const double dY = (To.m_dY - From.m_dY) * m_Pitch.m_dY;
    const int nSteps = 1 + static_cast<int>(std::max(std::fabs(dX), std::fabs(dY)));
    for (int i = 0; i <= nSteps; ++i)
        Ink(m_Image, Place.m_dX + From.m_dX * m_Pitch.m_dX + dX * i / nSteps,
            Place.m_dY + From.m_dY * m_Pitch.m_dY + dY * i / nSteps);
}

void ClGridPicture::AddDot(const ClImage& Marks, const StPlace& Dot) {
    for (const StStep& step : caSteps)
        if (Sample(Marks, Dot.m_dX + step.m_nX, Dot.m_dY + step.m_nY) == cnLinked)
            DrawLine(Dot, {}, {cdSpoke * step.m_nX, cdSpoke * step.m_nY});
}

void ClGridPicture::AddRefused(const StPlace& Region) {
    DrawLine(Region, {-cdCross, -cdCross}, {cdCross, cdCross});
    DrawLine(Region, {-cdCross, cdCross}, {cdCross, -cdCross});
}

void ClGridPicture::AddMissing(const StPlace& Gap) {
    const StPlace aCorners[] = {{-cdBox, -cdBox}, {cdBox, -cdBox}, {cdBox, cdBox}, {-cdBox, cdBox}};
    for (std::size_t i = 0; i < 4; ++i)
        DrawLine(Gap, aCorners[i], aCorners[(i + 1) % 4]);
}

} // namespace qk7
