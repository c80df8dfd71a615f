#pragma once

/// Binary images for the operators on regions, 0 on the object and 255 on the ground, and the
/// plain ways of finding regions: a union-find over pixels and a walk in breadth.

#include "support/Images.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <pthread.h>

namespace TestSupport {

/// Lines of text: '#' is the object.
inline ClTestImage Drawn(const std::vector<std::string>& aLines) {
    Rows aRows;
    for (const std::string& Line : aLines) {
        aRows.emplace_back();
        for (char c : Line)
            aRows.back().push_back(c == '#' ? 0 : 255);
    }
    return Img(aRows);
}

/// Pixels belong to the object where `isObject(x, y)` says so.
template <class IsObject>
ClTestImage Shape(int nWidth, int nHeight, IsObject isObject) {
    ClTestImage image = BlankImage(ClImage::eUInt8, nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            image.LineData(y)[x] = isObject(x, y) ? 0 : 255;
    return image;
}

/// Each pixel belongs to the object with the given chance.
inline ClTestImage RandomShape(int nWidth, int nHeight, double dShare, unsigned nSeed) {
    std::mt19937 random(nSeed);
    const auto isObject = [&](int, int) {
        return static_cast<double>(random()) < dShare * 4294967296.0;
    };
    return Shape(nWidth, nHeight, isObject);
}

/// One path, a pixel wide, that winds inward with a pixel of ground between its turns.
inline ClTestImage Spiral(int nSize) {
    ClTestImage image = FlatImage(ClImage::eUInt8, nSize, nSize, 1, 255.0);
    const int anX[] = {1, 0, -1, 0};
    const int anY[] = {0, 1, 0, -1};
    const auto isFree = [&](int x, int y) {
        return x < 0 || y < 0 || x >= nSize || y >= nSize || image.LineData(y)[x] == 255;
    };
    int x = 0;
    int y = 0;
    image.LineData(0)[0] = 0;
    for (int nDirection = 0, nTurns = 0; nTurns < 2;) {
        const int dx = anX[nDirection];
        const int dy = anY[nDirection];
        const bool bInside = x + dx >= 0 && y + dy >= 0 && x + dx < nSize && y + dy < nSize;
        if (bInside && isFree(x + dx, y + dy) && isFree(x + 2 * dx, y + 2 * dy)) {
            x += dx;
            y += dy;
            image.LineData(y)[x] = 0;
            nTurns = 0;
        } else {
            nDirection = (nDirection + 1) % 4;
            ++nTurns;
        }
    }
    return image;
}

/// A back at the top, or at the bottom, with a tooth in every second column.
inline ClTestImage Comb(int nWidth, int nHeight, bool bBackOnTop) {
    const int nBack = bBackOnTop ? 0 : nHeight - 1;
    return Shape(nWidth, nHeight, [&](int x, int y) { return y == nBack || x % 2 == 0; });
}

/// Full lines, four apart, that every second column joins: each of them is reached many times.
inline ClTestImage Lattice(int nSize) {
    return Shape(nSize, nSize, [](int x, int y) { return y % 4 == 0 || x % 2 == 1; });
}

/// The label of every pixel, 0 on the ground, by joining neighbours pair by pair.
class ClNaiveLabels {
public:
    explicit ClNaiveLabels(const ClImage& Image)
        : m_nWidth(Image.Width()), m_anParent(Count(Image)) {
        std::iota(m_anParent.begin(), m_anParent.end(), std::size_t{0});
        for (int y = 0; y < Image.Height(); ++y)
            for (int x = 0; x < Image.Width(); ++x) {
                if (x > 0 && IsPair(Image, x - 1, y, x, y))
                    Join(Index(x - 1, y), Index(x, y));
                if (y > 0 && IsPair(Image, x, y - 1, x, y))
                    Join(Index(x, y - 1), Index(x, y));
            }
        Number(Image);
    }

    const Rows& Labels() const { return m_aLabels; }
    int Regions() const { return m_nRegions; }

private:
    static std::size_t Count(const ClImage& Image) {
        return static_cast<std::size_t>(Image.Width()) * static_cast<std::size_t>(Image.Height());
    }
    std::size_t Index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
               static_cast<std::size_t>(x);
    }
    static bool IsPair(const ClImage& Image, int x1, int y1, int x2, int y2) {
        return Image.LineData(y1)[x1] == 0 && Image.LineData(y2)[x2] == 0;
    }
    std::size_t Root(std::size_t i) {
        while (m_anParent[i] != i)
            i = m_anParent[i] = m_anParent[m_anParent[i]];
        return i;
    }
    void Join(std::size_t a, std::size_t b) { m_anParent[Root(b)] = Root(a); }

    void Number(const ClImage& Image) {
        std::vector<int> anLabel(m_anParent.size(), 0);
        for (int y = 0; y < Image.Height(); ++y) {
            m_aLabels.emplace_back();
            for (int x = 0; x < Image.Width(); ++x) {
                const bool bObject = Image.LineData(y)[x] == 0;
                int& rLabel = anLabel[Root(Index(x, y))];
                if (bObject && rLabel == 0)
                    rLabel = ++m_nRegions;
                m_aLabels.back().push_back(bObject ? rLabel : 0);
            }
        }
    }

    int m_nWidth;
    std::vector<std::size_t> m_anParent;
    Rows m_aLabels;
    int m_nRegions = 0;
};

/// The pixels of the region around a pixel, and what bounds them.
struct StNaiveRegion {
    long m_anBox[4]; ///< smallest x, smallest y, largest x, largest y
    long m_nPixels = 0;
};

/// Fills one plane of rows of samples, and tells the region.
inline StNaiveRegion NaiveFill(Rows& rRows, int nX, int nY, int nColor, int nPlanes = 1,
                               int nPlane = 0) {
    const int nHeight = static_cast<int>(rRows.size());
    const int nWidth = static_cast<int>(rRows.at(0).size()) / nPlanes;
    const auto sample = [&](int x, int y) -> int& {
        return rRows.at(static_cast<std::size_t>(y))
            .at(static_cast<std::size_t>(x * nPlanes + nPlane));
    };
    StNaiveRegion Region = {{nX, nY, nX, nY}};
    const int nSeed = sample(nX, nY);
    if (nSeed == nColor)
        return Region;
    std::deque<std::pair<int, int>> aQueue = {{nX, nY}};
    sample(nX, nY) = nColor;
    for (; !aQueue.empty(); aQueue.pop_front()) {
        const auto [x, y] = aQueue.front();
        ++Region.m_nPixels;
        Region.m_anBox[0] = std::min<long>(Region.m_anBox[0], x);
        Region.m_anBox[1] = std::min<long>(Region.m_anBox[1], y);
        Region.m_anBox[2] = std::max<long>(Region.m_anBox[2], x);
        Region.m_anBox[3] = std::max<long>(Region.m_anBox[3], y);
        for (const auto& [u, v] : {std::pair{x - 1, y}, {x + 1, y}, {x, y - 1}, {x, y + 1}})
            if (u >= 0 && v >= 0 && u < nWidth && v < nHeight && sample(u, v) == nSeed) {
                sample(u, v) = nColor;
                aQueue.emplace_back(u, v);
            }
    }
    return Region;
}

/// Runs the work on a call stack of its own, of 256 KiB: a recursion over the pixels of a larger
/// image would end the program.
inline void RunOnSmallStack(const std::function<void()>& work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 256 * 1024), 0);
    const auto run = [](void* pWork) -> void* {
        (*static_cast<const std::function<void()>*>(pWork))();
        return nullptr;
    };
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, run,
                             const_cast<void*>(static_cast<const void*>(&work))),
              0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

} // namespace TestSupport
