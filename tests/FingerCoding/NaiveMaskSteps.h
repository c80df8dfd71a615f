#pragma once

/// The steps of both masks of a finger, by their definitions: loops over whole windows on rows of
/// integers, without a thought for time.

#include "ImageProcessing/MaskCases.h"
#include "support/Images.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <utility>
#include <vector>

namespace TestSupport::Naive {

inline int HeightOf(const Rows& aRows) {
    return static_cast<int>(aRows.size());
}

inline int WidthOf(const Rows& aRows) {
    return static_cast<int>(aRows.at(0).size());
}

inline int& At(Rows& aRows, int x, int y) {
    return aRows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
}

inline int At(const Rows& aRows, int x, int y) {
    return aRows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
}

inline Rows BlankRows(int nWidth, int nHeight, int nValue = 0) {
    return Rows(static_cast<std::size_t>(nHeight),
                std::vector<int>(static_cast<std::size_t>(nWidth), nValue));
}

/// Every sample from its place.
inline Rows Fill(int nWidth, int nHeight, const std::function<int(int x, int y)>& value) {
    Rows aRows = BlankRows(nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            At(aRows, x, y) = value(x, y);
    return aRows;
}

inline Rows Map(const Rows& aIn, const std::function<int(int)>& value) {
    return Fill(WidthOf(aIn), HeightOf(aIn), [&](int x, int y) { return value(At(aIn, x, y)); });
}

inline Rows Frame(const Rows& aIn, long nBorder, int nValue) {
    const int w = WidthOf(aIn);
    const int h = HeightOf(aIn);
    return Fill(w, h, [&](int x, int y) {
        return std::min({x, w - 1 - x, y, h - 1 - y}) < nBorder ? nValue : At(aIn, x, y);
    });
}

// Windows, cut at the edges

/// The samples of the window of half side `nHalf` around a place.
inline std::vector<int> Window(const Rows& aIn, int x, int y, long nHalf) {
    std::vector<int> aSamples;
    const long nBottom = std::min<long>(y + nHalf, HeightOf(aIn) - 1);
    const long nRight = std::min<long>(x + nHalf, WidthOf(aIn) - 1);
    for (long v = std::max(0L, y - nHalf); v <= nBottom; ++v)
        for (long u = std::max(0L, x - nHalf); u <= nRight; ++u)
            aSamples.push_back(At(aIn, static_cast<int>(u), static_cast<int>(v)));
    return aSamples;
}

inline Rows MaxOf(const Rows& aIn, long nWidth) {
    return Fill(WidthOf(aIn), HeightOf(aIn), [&](int x, int y) {
        const std::vector<int> a = Window(aIn, x, y, std::max(nWidth, 1L) / 2);
        return *std::max_element(a.begin(), a.end());
    });
}

inline Rows MinOf(const Rows& aIn, long nWidth) {
    return Fill(WidthOf(aIn), HeightOf(aIn), [&](int x, int y) {
        const std::vector<int> a = Window(aIn, x, y, std::max(nWidth, 1L) / 2);
        return *std::min_element(a.begin(), a.end());
    });
}

/// The square of width 3 rounds; a window wider than the image leaves it alone.
inline Rows MeanOf(const Rows& aIn, long nWidth) {
    if (nWidth <= 1 || nWidth > WidthOf(aIn) || nWidth > HeightOf(aIn))
        return aIn;
    return Fill(WidthOf(aIn), HeightOf(aIn), [&](int x, int y) {
        const std::vector<int> a = Window(aIn, x, y, nWidth / 2);
        int nSum = 0;
        for (int n : a)
            nSum += n;
        if (nWidth != 3)
            return nSum / static_cast<int>(a.size());
        return a.size() == 4   ? (nSum + 2) >> 2
               : a.size() == 6 ? ((nSum + 3) * 682) >> 12
                               : ((nSum + 4) * 455) >> 12;
    });
}

/// Of 9 samples; edge samples repeat.
inline Rows MedianOf(const Rows& aIn) {
    const int w = WidthOf(aIn);
    const int h = HeightOf(aIn);
    return Fill(w, h, [&](int x, int y) {
        std::vector<int> a;
        for (int v = y - 1; v <= y + 1; ++v)
            for (int u = x - 1; u <= x + 1; ++u)
                a.push_back(At(aIn, std::clamp(u, 0, w - 1), std::clamp(v, 0, h - 1)));
        std::sort(a.begin(), a.end());
        return a[4];
    });
}

// Grey values

inline std::array<long, 256> HistogramOf(const Rows& aIn) {
    std::array<long, 256> aCount = {};
    for (const std::vector<int>& aRow : aIn)
        for (int n : aRow)
            ++aCount[static_cast<std::size_t>(n)];
    return aCount;
}

/// The first value, from one end on, at which more samples than the share have been passed.
inline std::pair<int, int> NoiseFreeRange(const Rows& aIn, double dDark, double dBright) {
    const std::array<long, 256> aCount = HistogramOf(aIn);
    const double dTotal = static_cast<double>(WidthOf(aIn)) * HeightOf(aIn);
    int nLow = 255;
    int nHigh = 0;
    long nPassed = 0;
    for (int v = 255; v >= 0; --v) {
        nPassed += aCount[static_cast<std::size_t>(v)];
        if (nPassed > static_cast<long>(dBright * dTotal)) {
            nHigh = v;
            break;
        }
    }
    nPassed = 0;
    for (int v = 0; v <= 255; ++v) {
        nPassed += aCount[static_cast<std::size_t>(v)];
        if (nPassed > static_cast<long>(dDark * dTotal)) {
            nLow = v;
            break;
        }
    }
    return {std::min(nLow, nHigh), nHigh};
}

inline Rows Stretched(const Rows& aIn, double dDark, double dBright) {
    const auto [nLow, nHigh] = NoiseFreeRange(aIn, dDark, dBright);
    if (nLow == nHigh)
        return BlankRows(WidthOf(aIn), HeightOf(aIn));
    const auto nStep = static_cast<long>(255.9 * 4096.0 / (nHigh - nLow));
    return Map(aIn, [nFirst = nLow, nStep](int n) {
        return static_cast<int>(std::clamp((n - nFirst) * nStep >> 12, 0L, 255L));
    });
}

// Regions

inline Picture PictureWhere(const Rows& aIn, const std::function<bool(int)>& isRegion) {
    Picture aPicture;
    for (const std::vector<int>& aRow : aIn) {
        aPicture.emplace_back();
        for (int n : aRow)
            aPicture.back() += isRegion(n) ? '#' : '.';
    }
    return aPicture;
}

inline RunList RunsIn(const Picture& aPicture) {
    RunList aRuns;
    for (int y = 0; y < TestSupport::HeightOf(aPicture); ++y)
        for (int x = 0; x < TestSupport::WidthOf(aPicture); ++x)
            if (IsSet(aPicture, x, y)) {
                if (x > 0 && IsSet(aPicture, x - 1, y))
                    aRuns.back()[1] = x;
                else
                    aRuns.push_back({x, x, y});
            }
    return aRuns;
}

/// The places of the blob of a place, of equal characters, by sides; they are marked on the way.
inline std::vector<std::pair<int, int>> TakeBlob(Picture& aPicture, int x, int y) {
    const char cKind = aPicture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
    std::vector<std::pair<int, int>> aPlaces;
    std::vector<std::pair<int, int>> aOpen = {{x, y}};
    while (!aOpen.empty()) {
        const auto [u, v] = aOpen.back();
        aOpen.pop_back();
        if (u < 0 || v < 0 || u >= TestSupport::WidthOf(aPicture) ||
            v >= TestSupport::HeightOf(aPicture))
            continue;
        char& rPlace = aPicture[static_cast<std::size_t>(v)][static_cast<std::size_t>(u)];
        if (rPlace != cKind)
            continue;
        rPlace = '*';
        aPlaces.emplace_back(u, v);
        for (const auto& [du, dv] : {std::pair(1, 0), {-1, 0}, {0, 1}, {0, -1}})
            aOpen.emplace_back(u + du, v + dv);
    }
    return aPlaces;
}

/// A blob that is the last run of its kind and nothing else is overlooked.
inline bool IsLastRun(const Picture& aPicture, char cKind,
                      const std::vector<std::pair<int, int>>& aBlob) {
    for (int y = TestSupport::HeightOf(aPicture) - 1; y >= 0; --y) {
        const std::string& Line = aPicture[static_cast<std::size_t>(y)];
        const std::size_t nLast = Line.find_last_of(cKind);
        if (nLast == std::string::npos)
            continue;
        return std::all_of(aBlob.begin(), aBlob.end(), [&](const auto& Place) {
            return Place.second == y &&
                   Line.find_first_not_of(cKind, static_cast<std::size_t>(Place.first)) > nLast;
        });
    }
    return false;
}

/// Turns the blobs of one kind for which `isWrong(blob)` holds into the other kind.
inline Picture
WithoutBlobs(const Picture& aPicture, char cKind,
             const std::function<bool(const std::vector<std::pair<int, int>>&)>& isWrong) {
    Picture aResult = aPicture;
    Picture aLeft = aPicture;
    for (int y = 0; y < TestSupport::HeightOf(aPicture); ++y)
        for (int x = 0; x < TestSupport::WidthOf(aPicture); ++x) {
            if (aLeft[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] != cKind)
                continue;
            const auto aBlob = TakeBlob(aLeft, x, y);
            if (!isWrong(aBlob) || IsLastRun(aPicture, cKind, aBlob))
                continue;
            for (const auto& [u, v] : aBlob)
                aResult[static_cast<std::size_t>(v)][static_cast<std::size_t>(u)] =
                    cKind == '#' ? '.' : '#';
        }
    return aResult;
}

inline Picture WithoutSmallBlobs(const Picture& aPicture, long nMinSize) {
    return WithoutBlobs(aPicture, '#', [nMinSize](const auto& aBlob) {
        return static_cast<long>(aBlob.size()) < nMinSize;
    });
}

/// A region of nothing has no holes.
inline Picture WithoutHoles(const Picture& aPicture) {
    if (RunsIn(aPicture).empty())
        return aPicture;
    const int w = TestSupport::WidthOf(aPicture);
    const int h = TestSupport::HeightOf(aPicture);
    return WithoutBlobs(aPicture, '.', [w, h](const auto& aBlob) {
        return std::none_of(aBlob.begin(), aBlob.end(), [w, h](const auto& Place) {
            return Place.first == 0 || Place.second == 0 || Place.first == w - 1 ||
                   Place.second == h - 1;
        });
    });
}

/// Runs and steps of a mask.
struct StRegion {
    RunList m_aRuns;
    StepList m_aSteps;

    bool operator==(const StRegion& other) const {
        return m_aRuns == other.m_aRuns && m_aSteps == other.m_aSteps;
    }
};

inline StRegion RegionOf(const ClMask2& Mask) {
    return {RunsOf(Mask), StepsOf(Mask)};
}

/// Adds the bounding box as a step and moves the runs into it; false without runs. A box of nearly
/// the size of a step adds none.
inline bool SetBoundingBox(StRegion& rRegion) {
    if (rRegion.m_aRuns.empty())
        return false;
    std::array<long, 4> Box = {rRegion.m_aRuns[0][0], rRegion.m_aRuns[0][2], 0, 0};
    for (const auto& Run : rRegion.m_aRuns)
        Box = {std::min(Box[0], Run[0]), std::min(Box[1], Run[2]), std::max(Box[2], Run[1] + 1),
               std::max(Box[3], Run[2] + 1)};
    const auto w = static_cast<double>(Box[2] - Box[0]);
    const auto h = static_cast<double>(Box[3] - Box[1]);
    const double dTolerance = std::min(w, h) * 0.01 + 0.5;
    const bool bKnown =
        std::any_of(rRegion.m_aSteps.begin(), rRegion.m_aSteps.end(), [&](const auto& Step) {
            return Step[2] - w < dTolerance && Step[3] - h < dTolerance;
        });
    const auto Last = rRegion.m_aSteps.back();
    if (!bKnown)
        rRegion.m_aSteps.push_back(
            {Last[0] + static_cast<double>(Box[0]), Last[1] + static_cast<double>(Box[1]), w, h});
    for (auto& rRun : rRegion.m_aRuns)
        rRun = {rRun[0] - Box[0], rRun[1] - Box[0], rRun[2] - Box[1]};
    return true;
}

} // namespace TestSupport::Naive
