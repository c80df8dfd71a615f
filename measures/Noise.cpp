#include "measures/Noise.h"

#include "measures/Tiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace measures {

namespace {

constexpr int cnLeastSide = 4; ///< of a tile, samples
constexpr double cdRounding = 1.0 / 12.0;

template <class TpOfTile>
double MedianOfTiles(const ClGreyView& Image, TpOfTile OfTile) {
    std::array<double, static_cast<std::size_t>(cnTiles)> aValues;
    for (int n = 0; n < cnTiles; ++n)
        aValues[static_cast<std::size_t>(n)] = OfTile(TileOf(n, Image.m_nWidth, Image.m_nHeight));
    const auto itMiddle = aValues.begin() + aValues.size() / 2;
    std::nth_element(aValues.begin(), itMiddle, aValues.end());
    return *itMiddle;
}

double PixelVariance(const ClGreyView& Image, const ClTile& Tile) {
    double dSquares = 0.0;
    for (int y = Tile.m_nTop; y + 1 < Tile.m_nBottom; ++y)
        for (int x = Tile.m_nLeft; x + 1 < Tile.m_nRight; ++x) {
            const int d =
                Image.At(x, y) - Image.At(x + 1, y) - Image.At(x, y + 1) + Image.At(x + 1, y + 1);
            dSquares += d * d;
        }
    const double dCount =
        static_cast<double>(Tile.m_nRight - Tile.m_nLeft - 1) * (Tile.m_nBottom - Tile.m_nTop - 1);
    return dSquares / (4.0 * dCount);
}

/// Mean step from each line to the next, between two columns.
std::vector<double> Steps(const ClGreyView& Image, const ClTile& Tile) {
    std::vector<double> aSteps;
    for (int y = Tile.m_nTop; y + 1 < Tile.m_nBottom; ++y) {
        int nSum = 0;
        for (int x = Tile.m_nLeft; x < Tile.m_nRight; ++x)
            nSum += Image.At(x, y + 1) - Image.At(x, y);
        aSteps.push_back(static_cast<double>(nSum) / Tile.Width());
    }
    return aSteps;
}

double Covariance(const std::vector<double>& a, const std::vector<double>& b) {
    double dA = 0.0;
    double dB = 0.0;
    double dProducts = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        dA += a[i];
        dB += b[i];
        dProducts += a[i] * b[i];
    }
    const double dCount = static_cast<double>(a.size());
    return dProducts / dCount - dA * dB / (dCount * dCount);
}

double LineVariance(const ClGreyView& Image, const ClTile& Tile) {
    const int nMiddle = (Tile.m_nLeft + Tile.m_nRight) / 2;
    return 0.5 * Covariance(Steps(Image, {Tile.m_nLeft, Tile.m_nTop, nMiddle, Tile.m_nBottom}),
                            Steps(Image, {nMiddle, Tile.m_nTop, Tile.m_nRight, Tile.m_nBottom}));
}

double Deviation(double dVariance) {
    return std::sqrt(std::max(dVariance, 0.0));
}

} // namespace

std::optional<ClNoise> MeasureNoise(const ClGreyView& Empty) {
    if (Empty.IsEmpty() || Empty.m_nWidth < cnTilesAcross * cnLeastSide ||
        Empty.m_nHeight < cnTilesDown * cnLeastSide)
        return std::nullopt;
    const double dPixel =
        MedianOfTiles(Empty, [&](const ClTile& Tile) { return PixelVariance(Empty, Tile); });
    const double dLine =
        MedianOfTiles(Empty, [&](const ClTile& Tile) { return LineVariance(Empty, Tile); });
    return ClNoise{Deviation(dPixel - cdRounding), Deviation(dLine)};
}

} // namespace measures
