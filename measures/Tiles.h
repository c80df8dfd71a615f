#pragma once

/// The tiles that the frame of a platen is divided into, about 2 mm each.

namespace measures {

constexpr int cnTilesAcross = 8;
constexpr int cnTilesDown = 12;
constexpr int cnTiles = cnTilesAcross * cnTilesDown;

/// The first sample of a tile, and the one behind its last.
struct ClTile {
    int m_nLeft;
    int m_nTop;
    int m_nRight;
    int m_nBottom;

    int Width() const { return m_nRight - m_nLeft; }
    int Height() const { return m_nBottom - m_nTop; }
};

/// Where the tile of this number begins, or ends for the next number; in 64 bits for wide images.
inline int TileBorder(int nTile, int nTiles, int nSize) {
    return static_cast<int>(static_cast<long long>(nTile) * nSize / nTiles);
}

/// Tile `nTile` of an image, line by line.
inline ClTile TileOf(int nTile, int nWidth, int nHeight) {
    const int nColumn = nTile % cnTilesAcross;
    const int nRow = nTile / cnTilesAcross;
    return {TileBorder(nColumn, cnTilesAcross, nWidth), TileBorder(nRow, cnTilesDown, nHeight),
            TileBorder(nColumn + 1, cnTilesAcross, nWidth),
            TileBorder(nRow + 1, cnTilesDown, nHeight)};
}

} // namespace measures
