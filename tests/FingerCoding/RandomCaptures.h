#pragma once

/// Small captures drawn at random: a platen with a slope of light, up to two prints of ridges,
/// specks, noise, now and then a saturated part or more of it.

#include "support/Images.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <random>

namespace TestSupport {

class ClRandomCapture {
public:
    explicit ClRandomCapture(unsigned nSeed) : m_Random(nSeed) {}

    ClTestImage Make() {
        static constexpr int aPels[][2] = {{19685, 19685}, {19685, 9842},  {9842, 19685},
                                           {19685, 39370}, {15000, 23000}, {9842, 9842}};
        const auto& Pels = aPels[Number(0, static_cast<int>(std::size(aPels)) - 1)];
        Lay(60, 220, 60, 260, Pels[0], Pels[1]);
        for (int n = Number(0, 5) / 2; n > 0; --n) {
            const double dX = Number(0, m_Image.Width());
            const double dY = Number(0, m_Image.Height());
            const double dHalfWidth = Number(15, 90);
            const double dHalfHeight = Number(20, 110);
            PaintPrint(dX, dY, dHalfWidth, dHalfHeight, Number(30, 220));
        }
        for (int n = Number(0, 3); n > 0; --n)
            PaintSpeck();
        return m_Image;
    }

    /// A print of a few millimetres, on a platen whose sides are between the limits.
    ClTestImage MakeOfAScrap(int nLeastSize, int nMostSize) {
        const int nPels = Number(1, 2) * 9842;
        Lay(nLeastSize, nMostSize, nLeastSize, nMostSize, nPels, nPels);
        const double dX = m_Image.Width() / 2.0 + Number(-9, 9);
        const double dY = m_Image.Height() / 2.0 + Number(-9, 9);
        const double dHalfWidth = Number(14, 44);
        const double dHalfHeight = Number(14, 44);
        PaintPrint(dX, dY, dHalfWidth, dHalfHeight, Number(20, 120));
        return m_Image;
    }

    /// A print of a few millimetres on a small platen of smooth bright and dark places.
    ClTestImage MakeOnAWavyPlaten() {
        Lay(100, 150, 100, 150, 19685, 19685);
        PaintWaves();
        const double dX = m_Image.Width() / 2.0 + Number(-9, 9);
        const double dY = m_Image.Height() / 2.0 + Number(-9, 9);
        const double dHalfWidth = Number(20, 34);
        const double dHalfHeight = Number(20, 34);
        PaintPrint(dX, dY, dHalfWidth, dHalfHeight, Number(80, 220));
        return m_Image;
    }

private:
    int Number(int nFrom, int nTo) { // the same ones everywhere
        return nFrom + static_cast<int>(m_Random() % static_cast<unsigned>(nTo - nFrom + 1));
    }

    /// value(x, y, old value), with noise.
    template <class Value>
    void Paint(Value value) {
        for (int y = 0; y < m_Image.Height(); ++y)
            for (int x = 0; x < m_Image.Width(); ++x) {
                unsigned char& rPixel = m_Image.LineData(y)[x];
                rPixel = static_cast<unsigned char>(
                    std::clamp(value(x, y, double{1.0} * rPixel), 0.0, 255.0));
            }
    }

    /// A platen of a size between the limits.
    void Lay(int nLeastWidth, int nMostWidth, int nLeastHeight, int nMostHeight, int nPelsX,
             int nPelsY) {
        const int nWidth = Number(nLeastWidth, nMostWidth);
        m_Image.NewWithType(ClImage::eUInt8, nWidth, Number(nLeastHeight, nMostHeight), 1, nPelsX,
                            nPelsY);
        PaintPlaten();
    }

    void PaintPlaten() {
        const int nLight = Number(150, 265);
        const double dSlope = Number(-60, 60);
        const int nNoise = Number(0, 8);
        Paint([&](int x, int, double) {
            return nLight + dSlope * (1.0 * x / m_Image.Width() - 0.5) + Number(-nNoise, nNoise);
        });
    }

    void PaintPrint(double dX, double dY, double dHalfWidth, double dHalfHeight, double dDepth) {
        const double dRidge = Number(60, 140) / 10.0;
        const double dSlant = Number(-20, 20) / 10.0;
        const double dClosed = Number(0, 60) / 100.0; // how little the valleys are seen
        Paint([&](int x, int y, double d) {
            const double u = (x - dX) / dHalfWidth;
            const double v = (y - dY) / dHalfHeight;
            if (u * u + v * v > 1.0)
                return d;
            const double dPhase = (x * dSlant + y) / dRidge * 6.283185307179586;
            return d - dDepth * std::max(dClosed, 0.5 + 0.5 * std::sin(dPhase)) + Number(-9, 9);
        });
    }

    void PaintWaves() {
        const double dHeight = Number(10, 60);
        const double dAcross = Number(20, 70) / 100.0;
        const double dDown = Number(20, 70) / 100.0;
        Paint([&](int x, int y, double d) {
            return d - dHeight * (1.0 + std::sin(x * dAcross) * std::sin(y * dDown));
        });
    }

    void PaintSpeck() {
        const int nX = Number(0, m_Image.Width() - 1);
        const int nY = Number(0, m_Image.Height() - 1);
        const int nSize = Number(1, 12);
        const int nValue = Number(0, 1) * 255;
        for (int y = nY; y < std::min(nY + nSize, m_Image.Height()); ++y)
            for (int x = nX; x < std::min(nX + nSize, m_Image.Width()); ++x)
                m_Image.LineData(y)[x] = static_cast<unsigned char>(nValue);
    }

    std::mt19937 m_Random;
    ClTestImage m_Image;
};

} // namespace TestSupport
