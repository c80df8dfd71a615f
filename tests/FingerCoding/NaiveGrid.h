#pragma once

/// Images as plain arrays, and what the dynamic calibration does to them, by its definitions:
/// nothing is carried from one pixel to the next, and nothing of the library is in it.

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace TestSupport::Naive {

/// An image of one plane.
struct Grid {
    Grid() = default;
    Grid(int nWidth, int nHeight, int nValue = 0)
        : m_nWidth(nWidth), m_nHeight(nHeight),
          m_aValues(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight), nValue) {}

    int& At(int x, int y) { return m_aValues[Index(x, y)]; }
    int At(int x, int y) const { return m_aValues[Index(x, y)]; }
    bool operator==(const Grid& Other) const {
        return m_nWidth == Other.m_nWidth && m_aValues == Other.m_aValues;
    }

    int m_nWidth = 0;
    int m_nHeight = 0;
    std::vector<int> m_aValues;

private:
    std::size_t Index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
               static_cast<std::size_t>(x);
    }
};

// Point by point

template <class Function> // of the place
Grid Made(int nWidth, int nHeight, Function value) {
    Grid Out(nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            Out.At(x, y) = value(x, y);
    return Out;
}

template <class Function> // of the value
Grid Each(const Grid& In, Function value) {
    return Made(In.m_nWidth, In.m_nHeight, [&](int x, int y) { return value(In.At(x, y)); });
}

template <class Function> // of both values
Grid Both(const Grid& A, const Grid& B, Function value) {
    return Made(A.m_nWidth, A.m_nHeight,
                [&](int x, int y) { return value(A.At(x, y), B.At(x, y)); });
}

inline Grid Added(const Grid& A, const Grid& B) {
    return Both(A, B, [](int a, int b) { return std::min(255, a + b); });
}

inline Grid Less(const Grid& A, const Grid& B) {
    return Both(A, B, [](int a, int b) { return std::max(0, a - b); });
}

inline Grid Binary(const Grid& In, double dThreshold) {
    return Each(In, [=](int n) { return n < dThreshold ? 0 : 255; });
}

inline Grid Framed(const Grid& In, double dBorder) {
    return Made(In.m_nWidth, In.m_nHeight, [&](int x, int y) {
        const int nEdge = std::min({x, y, In.m_nWidth - 1 - x, In.m_nHeight - 1 - y});
        return nEdge < dBorder ? 0 : In.At(x, y);
    });
}

/// `Small` in a field of the value.
inline Grid Placed(const Grid& Small, int nX, int nY, int nWidth, int nHeight, int nValue) {
    return Made(nWidth, nHeight, [&](int x, int y) {
        const bool bInside =
            x >= nX && y >= nY && x - nX < Small.m_nWidth && y - nY < Small.m_nHeight;
        return bInside ? Small.At(x - nX, y - nY) : nValue;
    });
}

inline Grid Cut(const Grid& In, int nX, int nY, int nWidth, int nHeight) {
    return Made(nWidth, nHeight, [&](int x, int y) { return In.At(nX + x, nY + y); });
}

// Windows

/// The mean over the part of a square inside the image: sums of all that lies above and to the
/// left, four of which give any rectangle.
inline Grid Mean(const Grid& In, int nWidth) {
    const int w = In.m_nWidth;
    const int h = In.m_nHeight;
    if (nWidth <= 1 || nWidth > w || nWidth > h)
        return In;
    Grid Sum(w + 1, h + 1);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            Sum.At(x + 1, y + 1) = In.At(x, y) + Sum.At(x, y + 1) + Sum.At(x + 1, y) - Sum.At(x, y);
    return Made(w, h, [&](int x, int y) {
        const int l = std::max(0, x - nWidth / 2);
        const int r = std::min(w, x + nWidth / 2 + 1);
        const int t = std::max(0, y - nWidth / 2);
        const int b = std::min(h, y + nWidth / 2 + 1);
        const int n = Sum.At(r, b) - Sum.At(l, b) - Sum.At(r, t) + Sum.At(l, t);
        const int nArea = (r - l) * (b - t);
        if (nWidth != 3)
            return n / nArea;
        return nArea == 4 ? (n + 2) >> 2 : ((n + nArea / 2) * (nArea == 6 ? 682 : 455)) >> 12;
    });
}

/// The best of a square, along lines and then along columns.
template <class Better>
Grid Extreme(const Grid& In, int nWidth, Better better) {
    const auto along = [&](const Grid& From, int dx, int dy) {
        return Made(In.m_nWidth, In.m_nHeight, [&](int x, int y) {
            int nBest = From.At(x, y);
            for (int i = -(nWidth / 2); i <= nWidth / 2; ++i) {
                const int u = std::clamp(x + i * dx, 0, In.m_nWidth - 1); // the edge counts anyway
                const int v = std::clamp(y + i * dy, 0, In.m_nHeight - 1);
                nBest = better(From.At(u, v), nBest) ? From.At(u, v) : nBest;
            }
            return nBest;
        });
    };
    return along(along(In, 1, 0), 0, 1);
}

inline Grid Highest(const Grid& In, int nWidth) {
    return Extreme(In, nWidth, [](int a, int b) { return a > b; });
}

inline Grid Lowest(const Grid& In, int nWidth) {
    return Extreme(In, nWidth, [](int a, int b) { return a < b; });
}

inline Grid Median3(const Grid& In) {
    return Made(In.m_nWidth, In.m_nHeight, [&](int x, int y) {
        std::array<int, 9> a = {};
        for (int i = 0; i < 9; ++i)
            a[static_cast<std::size_t>(i)] = In.At(std::clamp(x + i % 3 - 1, 0, In.m_nWidth - 1),
                                                   std::clamp(y + i / 3 - 1, 0, In.m_nHeight - 1));
        std::sort(a.begin(), a.end());
        return a[4];
    });
}

/// The derivative of a Gaussian of sigma 1, along one axis.
inline Grid Slope(const Grid& In, int dx, int dy) {
    int nWidth = std::min(9, (dx != 0 ? In.m_nWidth : In.m_nHeight) - 1);
    nWidth = std::max(1, nWidth % 2 == 0 ? nWidth - 1 : nWidth);
    std::vector<double> aKernel;
    double dHalf = 0.0; // sum of the taps of one sign; those of the other are as large
    for (int k = -(nWidth / 2); k <= nWidth / 2; ++k) {
        aKernel.push_back(k * std::exp(-k * k / 2.0) * (-1.0 / std::sqrt(6.283185307179586)));
        dHalf += std::max(aKernel.back(), 0.0);
    }
    return Made(In.m_nWidth, In.m_nHeight, [&](int x, int y) {
        int nSum = 0;
        for (int k = -(nWidth / 2); k <= nWidth / 2 && dHalf > 0.0; ++k) {
            const double dTap = aKernel[static_cast<std::size_t>(k + nWidth / 2)];
            nSum += static_cast<int>(dTap / (2.0 * dHalf) * 4095.0) *
                    In.At(std::clamp(x + k * dx, 0, In.m_nWidth - 1),
                          std::clamp(y + k * dy, 0, In.m_nHeight - 1));
        }
        return nSum / 4096;
    });
}

// Grey values

inline std::array<long, 256> Counts(const Grid& In) {
    std::array<long, 256> aCounts = {};
    for (const int n : In.m_aValues)
        ++aCounts[static_cast<std::size_t>(n)];
    return aCounts;
}

/// The first value from either end on that more samples than the share have passed; 255 and 0
/// where none is.
inline std::pair<int, int> NoiseFree(const Grid& In, double dDark, double dBright) {
    const std::array<long, 256> aCounts = Counts(In);
    const auto nTotal = static_cast<double>(In.m_aValues.size());
    const auto first = [&](double dShare, int nFrom, int nStep) {
        long nPassed = 0;
        for (int v = nFrom; v >= 0 && v < 256; v += nStep) {
            nPassed += aCounts[static_cast<std::size_t>(v)];
            if (nPassed > static_cast<long>(dShare * nTotal))
                return v;
        }
        return 255 - nFrom;
    };
    return {first(dDark, 0, 1), first(dBright, 255, -1)};
}

inline Grid Stretched(const Grid& In, int nFrom, int nTo) {
    if (nFrom == nTo)
        return Each(In, [](int) { return 0; });
    const auto nStep = static_cast<long>(255.9 * 4096.0 / (nTo - nFrom));
    return Each(In, [=](int n) {
        return static_cast<int>(std::clamp((n - nFrom) * nStep >> 12, 0L, 255L));
    });
}

inline long PixelsOf(double dMM2, int nPels) {
    const double dSide = std::sqrt(dMM2) * 100.0 * (nPels * 1e-5);
    return static_cast<long>(dSide * dSide);
}

// Regions: 1 in a grid

struct Blob {
    std::vector<std::pair<int, int>> m_aPlaces;
    bool m_bAtEdge = false;
};

/// The places of equal value that join a place by their sides; they become -1.
inline Blob TakeBlob(Grid& Left, int nX, int nY) {
    const int nKind = Left.At(nX, nY);
    Blob Found;
    std::vector<std::pair<int, int>> aOpen = {{nX, nY}};
    while (!aOpen.empty()) {
        const auto [x, y] = aOpen.back();
        aOpen.pop_back();
        if (x < 0 || y < 0 || x >= Left.m_nWidth || y >= Left.m_nHeight || Left.At(x, y) != nKind)
            continue;
        Left.At(x, y) = -1;
        Found.m_aPlaces.emplace_back(x, y);
        Found.m_bAtEdge |= x == 0 || y == 0 || x == Left.m_nWidth - 1 || y == Left.m_nHeight - 1;
        aOpen.insert(aOpen.end(), {{x + 1, y}, {x - 1, y}, {x, y + 1}, {x, y - 1}});
    }
    return Found;
}

/// The first place of the last run of a kind.
inline std::pair<int, int> LastRun(const Grid& Region, int nKind) {
    for (int y = Region.m_nHeight - 1; y >= 0; --y)
        for (int x = Region.m_nWidth - 1; x >= 0; --x)
            if (Region.At(x, y) == nKind) {
                while (x > 0 && Region.At(x - 1, y) == nKind)
                    --x;
                return {x, y};
            }
    return {0, 0};
}

/// Turns the blobs of a kind that are `wrong` into the other. None begins at the last run.
template <class Wrong>
Grid WithoutBlobs(const Grid& Region, int nKind, Wrong wrong) {
    Grid Out = Region;
    Grid Left = Region;
    const std::pair<int, int> Last = LastRun(Region, nKind);
    for (int y = 0; y < Region.m_nHeight; ++y)
        for (int x = 0; x < Region.m_nWidth; ++x) {
            if (Left.At(x, y) != nKind)
                continue;
            const Blob Found = TakeBlob(Left, x, y);
            if (wrong(Found) && std::pair(x, y) != Last)
                for (const auto& [u, v] : Found.m_aPlaces)
                    Out.At(u, v) = 1 - nKind;
        }
    return Out;
}

inline Grid WithoutSmall(const Grid& Region, long nMinSize) {
    return WithoutBlobs(Region, 1, [=](const Blob& Found) {
        return static_cast<long>(Found.m_aPlaces.size()) < nMinSize;
    });
}

inline bool IsEmpty(const Grid& Region) {
    return std::find(Region.m_aValues.begin(), Region.m_aValues.end(), 1) == Region.m_aValues.end();
}

inline Grid WithoutHoles(const Grid& Region) {
    if (IsEmpty(Region))
        return Region;
    return WithoutBlobs(Region, 0, [](const Blob& Found) { return !Found.m_bAtEdge; });
}

} // namespace TestSupport::Naive
