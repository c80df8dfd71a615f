#include "measures/Platen.h"

#include "measures/Tiles.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

namespace measures {

namespace {

constexpr double cdLeastLight = 0.93; ///< of a clean sample; noise takes one or two percent
constexpr int cnDark = 85;
constexpr int cnSaturated = 255;

/// The lights of the tiles.
class ClLights {
public:
    explicit ClLights(const ClGreyView& Image);

    double Mean() const;
    double Lowest() const { return *std::min_element(m_aTiles.begin(), m_aTiles.end()); }
    double Highest() const { return *std::max_element(m_aTiles.begin(), m_aTiles.end()); }
    /// At a sample; beyond the middles of the outer tiles as the line through the last two goes on.
    double At(int x, int y) const;

private:
    double Tile(int nColumn, int nRow) const {
        return m_aTiles[static_cast<std::size_t>(nRow) * cnTilesAcross +
                        static_cast<std::size_t>(nColumn)];
    }

    std::array<double, static_cast<std::size_t>(cnTiles)> m_aTiles;
    double m_dColumnsPerSample;
    double m_dRowsPerSample;
};

double Median(const ClGreyView& Image, const ClTile& Tile) {
    std::vector<unsigned char> aSamples;
    for (int y = Tile.m_nTop; y < Tile.m_nBottom; ++y)
        for (int x = Tile.m_nLeft; x < Tile.m_nRight; ++x)
            aSamples.push_back(Image.At(x, y));
    const auto itMiddle = aSamples.begin() + static_cast<std::ptrdiff_t>(aSamples.size() / 2);
    std::nth_element(aSamples.begin(), itMiddle, aSamples.end());
    return *itMiddle;
}

ClLights::ClLights(const ClGreyView& Image)
    : m_dColumnsPerSample(static_cast<double>(cnTilesAcross) / Image.m_nWidth),
      m_dRowsPerSample(static_cast<double>(cnTilesDown) / Image.m_nHeight) {
    for (int n = 0; n < cnTiles; ++n)
        m_aTiles[static_cast<std::size_t>(n)] =
            Median(Image, TileOf(n, Image.m_nWidth, Image.m_nHeight));
}

double ClLights::Mean() const {
    return std::accumulate(m_aTiles.begin(), m_aTiles.end(), 0.0) /
           static_cast<double>(m_aTiles.size());
}

double ClLights::At(int x, int y) const {
    const double dColumn = (x + 0.5) * m_dColumnsPerSample - 0.5;
    const double dRow = (y + 0.5) * m_dRowsPerSample - 0.5;
    const int nColumn = std::clamp(static_cast<int>(dColumn), 0, cnTilesAcross - 2);
    const int nRow = std::clamp(static_cast<int>(dRow), 0, cnTilesDown - 2);
    const double u = dColumn - nColumn;
    const double v = dRow - nRow;
    const double dUpper = (1.0 - u) * Tile(nColumn, nRow) + u * Tile(nColumn + 1, nRow);
    const double dLower = (1.0 - u) * Tile(nColumn, nRow + 1) + u * Tile(nColumn + 1, nRow + 1);
    return (1.0 - v) * dUpper + v * dLower;
}

/// The share of all samples of which `Has(x, y)` is true.
template <class TpHas>
double ShareOf(const ClGreyView& Image, TpHas Has) {
    double dCount = 0.0;
    for (int y = 0; y < Image.m_nHeight; ++y)
        for (int x = 0; x < Image.m_nWidth; ++x)
            dCount += Has(x, y) ? 1.0 : 0.0;
    return dCount / Image.m_nWidth / Image.m_nHeight;
}

} // namespace

std::optional<ClPlatenMeasures> MeasurePlaten(const ClGreyView& Empty) {
    if (Empty.IsEmpty() || Empty.m_nWidth < cnTilesAcross || Empty.m_nHeight < cnTilesDown)
        return std::nullopt;
    const ClLights Lights(Empty);
    if (!(Lights.Highest() > 0.0))
        return std::nullopt;
    ClPlatenMeasures Measures;
    Measures.m_dBrightness = Lights.Mean();
    Measures.m_dUniformity = Lights.Lowest() / Lights.Highest();
    Measures.m_dSaturated =
        ShareOf(Empty, [&](int x, int y) { return Empty.At(x, y) == cnSaturated; });
    Measures.m_dDark = ShareOf(Empty, [&](int x, int y) { return Empty.At(x, y) < cnDark; });
    Measures.m_dSoiled = ShareOf(
        Empty, [&](int x, int y) { return Empty.At(x, y) < cdLeastLight * Lights.At(x, y); });
    Measures.m_Noise = MeasureNoise(Empty);
    return Measures;
}

} // namespace measures
