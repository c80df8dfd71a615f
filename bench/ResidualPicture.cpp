#include "bench/ResidualPicture.h"

#include "bench/Sheet.h"

#include <algorithm>
#include <cmath>

namespace bench {

namespace {

constexpr int cnScale = 2;       ///< samples per pixel of the corrected image
constexpr double cdMagnify = 20; ///< of the vectors
constexpr int cnGreys = 16;      ///< of the file
constexpr int cnEveryPlace = 2;  ///< one vector for each two columns and rows
constexpr int cnBarMargin = 10;
constexpr unsigned char cnBlack = 0;

/// One grey for each band, from the nearest to the furthest.
constexpr std::array<unsigned char, g_aBandEnds.size() + 1> g_aBandGreys{255, 238, 204,
                                                                         170, 136, 85};

unsigned char GreyOf(double dLength) {
    const auto end = std::upper_bound(g_aBandEnds.begin(), g_aBandEnds.end(), dLength);
    return g_aBandGreys.at(static_cast<std::size_t>(end - g_aBandEnds.begin()));
}

double LengthOf(const sim::ClPoint& Vector) {
    return std::hypot(Vector.x, Vector.y);
}

sim::ClPoint OnPanel(const sim::ClPoint& Place) {
    return {cnScale * Place.x, cnScale * Place.y};
}

void SetPixel(sim::ClRaster& rPanel, int x, int y) {
    if (x >= 0 && y >= 0 && x < rPanel.m_nWidth && y < rPanel.m_nHeight)
        rPanel.At(x, y) = cnBlack;
}

void DrawLine(sim::ClRaster& rPanel, const sim::ClPoint& From, const sim::ClPoint& To) {
    const double dLength = std::max(std::fabs(To.x - From.x), std::fabs(To.y - From.y));
    const int nSteps = std::max(1, static_cast<int>(std::lround(dLength)));
    for (int i = 0; i <= nSteps; ++i) {
        const double t = static_cast<double>(i) / nSteps;
        SetPixel(rPanel, static_cast<int>(std::lround(From.x + t * (To.x - From.x))),
                 static_cast<int>(std::lround(From.y + t * (To.y - From.y))));
    }
}

/// A square on the foot, so that the direction shows.
void DrawVector(sim::ClRaster& rPanel, const sim::ClPoint& Place, const sim::ClPoint& Vector) {
    const sim::ClPoint Foot = OnPanel(Place);
    const int nX = static_cast<int>(std::lround(Foot.x));
    const int nY = static_cast<int>(std::lround(Foot.y));
    for (int y = nY - 1; y <= nY + 1; ++y)
        for (int x = nX - 1; x <= nX + 1; ++x)
            SetPixel(rPanel, x, y);
    DrawLine(rPanel, Foot,
             {Foot.x + cnScale * cdMagnify * Vector.x, Foot.y + cnScale * cdMagnify * Vector.y});
}

/// A ring of the size of a dot.
void DrawDot(sim::ClRaster& rPanel, const sim::ClPoint& Dot) {
    constexpr double cdRadius = 0.5 * sim::g_dDotDiameter * sim::g_dFrameDpi / 25.4 * cnScale;
    constexpr int cnAngles = 120;
    const sim::ClPoint Centre = OnPanel(Dot);
    for (int i = 0; i < cnAngles; ++i) {
        const double dAngle = 2.0 * M_PI * i / cnAngles;
        SetPixel(rPanel, static_cast<int>(std::lround(Centre.x + cdRadius * std::cos(dAngle))),
                 static_cast<int>(std::lround(Centre.y + cdRadius * std::sin(dAngle))));
    }
}

/// The value of a field of lengths between its places, linear in both directions.
double Between(const std::vector<double>& aLengths, int nX, int nY, const sim::ClRaster& Panel) {
    constexpr int cnColumns = ClResidualField::cnColumns;
    const double dX = (cnColumns - 1.0) * nX / (Panel.m_nWidth - 1);
    const double dY = (ClResidualField::cnRows - 1.0) * nY / (Panel.m_nHeight - 1);
    const int nColumn = std::min(static_cast<int>(dX), cnColumns - 2);
    const int nRow = std::min(static_cast<int>(dY), ClResidualField::cnRows - 2);
    const auto at = [&](int nRight, int nDown) {
        return aLengths[static_cast<std::size_t>((nRow + nDown) * cnColumns + nColumn + nRight)];
    };
    const double u = dX - nColumn;
    const double v = dY - nRow;
    return (1.0 - v) * ((1.0 - u) * at(0, 0) + u * at(1, 0)) +
           v * ((1.0 - u) * at(0, 1) + u * at(1, 1));
}

sim::ClRaster Panel(const std::vector<double>& aLengths) {
    sim::ClRaster Panel(cnScale * sim::g_nFrameWidth, cnScale * sim::g_nFrameHeight, 255);
    for (int y = 0; y < Panel.m_nHeight; ++y)
        for (int x = 0; x < Panel.m_nWidth; ++x)
            Panel.At(x, y) = GreyOf(Between(aLengths, x, y, Panel));
    return Panel;
}

/// The greys of the bands, from left to right.
sim::ClRaster Legend() {
    constexpr int cnBand = 60;
    constexpr int cnHeight = 24;
    const int nBands = static_cast<int>(g_aBandGreys.size());
    sim::ClRaster Legend(cnBand * nBands, cnHeight, 255);
    for (int y = 0; y < Legend.m_nHeight; ++y)
        for (int x = 0; x < Legend.m_nWidth; ++x)
            Legend.At(x, y) = g_aBandGreys.at(static_cast<std::size_t>(x / cnBand));
    return Legend;
}

/// As long as a vector of one pixel.
sim::ClRaster Bar() {
    sim::ClRaster Bar(cnScale * sim::g_nFrameWidth, 24, 255);
    DrawVector(Bar, {static_cast<double>(cnBarMargin), 6.0}, {1.0, 0.0});
    return Bar;
}

} // namespace

void ClResidualPicture::Add(const ClResidualField& Field) {
    m_aFields.push_back(Field);
}

sim::ClRaster ClResidualPicture::Vectors() const {
    const ClResidualField& Field = m_aFields.at(0);
    std::vector<double> aLengths;
    for (const sim::ClPoint& Vector : Field.m_aVectors)
        aLengths.push_back(LengthOf(Vector));
    sim::ClRaster Image = Panel(aLengths);
    for (int nRow = 0; nRow < ClResidualField::cnRows; nRow += cnEveryPlace)
        for (int nColumn = 0; nColumn < ClResidualField::cnColumns; nColumn += cnEveryPlace)
            DrawVector(Image, ClResidualField::PlaceOf(nColumn, nRow), Field.At(nColumn, nRow));
    return Image;
}

sim::ClRaster ClResidualPicture::RmsLengths() const {
    std::vector<double> aSquares(m_aFields.at(0).m_aVectors.size(), 0.0);
    for (const ClResidualField& Field : m_aFields)
        for (std::size_t n = 0; n < aSquares.size(); ++n)
            aSquares[n] += LengthOf(Field.m_aVectors[n]) * LengthOf(Field.m_aVectors[n]);
    for (double& rSquare : aSquares)
        rSquare = std::sqrt(rSquare / static_cast<double>(m_aFields.size()));
    sim::ClRaster Image = Panel(aSquares);
    for (const sim::ClPoint& Dot : m_aFields.at(0).m_aTarget)
        DrawDot(Image, Dot);
    return Image;
}

void ClResidualPicture::Write(const std::string& sFile) const {
    WritePng(sFile.c_str(), SetTiles({{Vectors(), RmsLengths()}, {Bar(), Legend()}}), cnGreys);
}

} // namespace bench
