#include "FingerCoding/NaiveDynamicCalibration.h"

namespace TestSupport::Naive {

namespace {

struct Box {
    double m_dX, m_dY, m_dWidth, m_dHeight;
};

int Rounded(double d) {
    return static_cast<int>(d + 0.5);
}

/// Windows, each in the frame of the first. One that is about as large as a known one is not added.
void AddWindow(std::vector<Box>& rWindows, const Box& New) {
    const double dTolerance = std::min(New.m_dWidth, New.m_dHeight) * 0.01 + 0.5;
    for (const Box& Known : rWindows)
        if (Known.m_dWidth - New.m_dWidth < dTolerance &&
            Known.m_dHeight - New.m_dHeight < dTolerance)
            return;
    const Box Last = rWindows.back();
    rWindows.push_back({Last.m_dX + New.m_dX, Last.m_dY + New.m_dY, New.m_dWidth, New.m_dHeight});
}

/// The extent of a region whose columns and lines are enlarged.
Box Extent(const Grid& Region, double dScaleX, double dScaleY, int nHeight) {
    const auto scaled = [](int n, double d) { return static_cast<int>(n * d); };
    int l = 1 << 30;
    int t = 1 << 30;
    int r = 0;
    int b = 0;
    for (int y = 0; y < Region.m_nHeight; ++y)
        for (int x = 0; x < Region.m_nWidth; ++x)
            if (Region.At(x, y) == 1) {
                l = std::min(l, scaled(x, dScaleX));
                t = std::min(t, scaled(y, dScaleY));
                r = std::max(r, scaled(x, dScaleX) + 1);
                b = std::max(
                    {b, scaled(y, dScaleY) + 1, std::min(scaled(y + 1, dScaleY), nHeight)});
            }
    return {double(l), double(t), double(r - l), double(b - t)};
}

// The finger

struct Finder {
    const StSettings& s;
    int m_nPelsX, m_nPelsY;
    StCalibrated& rResult;
    std::vector<Box> m_aWindows;

    void Stage(const char* szName, const Grid& Image) {
        rResult.m_aStages.emplace_back(szName, Image);
    }
    int Width(double dFactor) const { return static_cast<int>(s.m_dRidgeDist * dFactor) | 1; }

    int Threshold(const Grid& Image) const {
        const std::array<long, 256> h = Counts(Image);
        const auto at = [&](int v) { return h[static_cast<std::size_t>(v)]; };
        const int w = static_cast<int>(s.m_dDerivationWidth);
        const int nLow = std::max(static_cast<int>(s.m_dMinBinarizeThreshold), w);
        const int nHigh = std::min(255 - w, static_cast<int>(s.m_dMaxBinarizeThreshold));
        for (int v = nLow; v < nHigh; ++v) {
            long nDark = 0;
            for (int i = 0; i <= v; ++i)
                nDark += at(i);
            double dRise = 0.0;
            for (int j = 1; j <= w; ++j)
                dRise += static_cast<double>(at(v + j) - at(v - j)) * 0.5 / j;
            if (nDark > PixelsOf(s.m_dMinAreaMM2, m_nPelsX) && dRise / w > s.m_dDerivativeThresh)
                return v;
        }
        return nHigh;
    }

    /// The region of what is dark, in the frame of the last window; the probability.
    Grid DarkArea(const Grid& In, Grid& rProb) {
        Grid Lift = Highest(Framed(In, s.m_dImageBorderWidth), Width(s.m_dIlFixMaxWidthFactor));
        Lift = Mean(Each(Lift, [](int n) { return 255 - n; }), Width(s.m_dIlFixLowPassWidthFactor));
        Grid A = Added(In, Lift);
        const auto [nFrom, nTo] = NoiseFree(A, s.m_dDarkNoisePart, s.m_dBrightNoisePart);
        A = Stretched(A, std::min(nFrom, nTo), nTo);
        A = Mean(Lowest(A, Width(s.m_dDilatWidthFactor)), Width(s.m_dLowPassWidthFactor));
        const int t = Threshold(A);
        rProb = Each(A, [=](int n) { return std::clamp(n + 128 - t, 0, 255); });
        Grid Dark = Each(A, [=](int n) { return n < t ? 1 : 0; });
        Dark = WithoutHoles(WithoutSmall(Dark, 1000));
        m_aWindows = {{0, 0, double(In.m_nWidth), double(In.m_nHeight)}};
        if (IsEmpty(Dark))
            return Dark;
        const Box Whole = Extent(Dark, 1.0, 1.0, In.m_nHeight);
        AddWindow(m_aWindows, Whole);
        const Box& Last = m_aWindows.back();
        // The region moves to the corner, also where its window is none of its own.
        const Grid Moved =
            Cut(Dark, int(Whole.m_dX), int(Whole.m_dY), int(Whole.m_dWidth), int(Whole.m_dHeight));
        return Placed(Moved, 0, 0, int(Last.m_dWidth), int(Last.m_dHeight), 0);
    }

    Grid Nearest(const Grid& In, int nWidth, int nHeight, long nStepX, long nStepY) const {
        return Made(nWidth, nHeight, [&](int x, int y) {
            const long u = x * nStepX >> 12;
            const long v = y * nStepY >> 12;
            const bool bInside = u < In.m_nWidth && v < In.m_nHeight;
            return bInside ? In.At(static_cast<int>(u), static_cast<int>(v)) : 0;
        });
    }

    /// The probability of ridges in the gradients; adds the window of the region that has them.
    Grid Ridges(const Grid& In) {
        const double dFactor = m_nPelsX * 0.025400050800101603 / s.m_dWorkDpi;
        int nPelsX = static_cast<int>(m_nPelsX / dFactor);
        int nPelsY = static_cast<int>(m_nPelsY / dFactor);
        const auto size = [](int n, int nNew, int nOld) {
            return static_cast<int>(static_cast<double>(n) * nNew / nOld + 0.9999);
        };
        const int w = size(In.m_nWidth, nPelsX, m_nPelsX);
        const int h = size(In.m_nHeight, nPelsY, m_nPelsY);
        Grid A = In;
        if (w != In.m_nWidth || h != In.m_nHeight) {
            A = Nearest(In, w, h, m_nPelsX * 4096L / nPelsX, m_nPelsY * 4096L / nPelsY);
        } else {
            nPelsX = m_nPelsX;
            nPelsY = m_nPelsY;
        }
        A = Each(Framed(A, s.m_dBorderWidth),
                 [&](int n) { return static_cast<int>(std::min(255.0, n * s.m_dScaleFactor)); });
        A = Both(A, Median3(A), [](int a, int b) { return std::max(a, b); });
        const int n = static_cast<int>(s.m_dRidgeDist * s.m_dMidRotWidthFactor1 / dFactor);
        A = Mean(A, 2 * ((n - n / 2) | 1) - 1);
        const int t = static_cast<int>(s.m_dScaleFactor * s.m_dThresholdFactor) & 255;
        A = Each(A, [=](int v) { return std::clamp(v + 128 - t, 0, 255); });
        const Grid Strong = WithoutSmall(Each(A, [=](int v) { return v < t ? 0 : 1; }),
                                         PixelsOf(s.m_dMinFgBlobSize, nPelsX));
        AddRidgeWindow(Strong, double(m_nPelsX) / nPelsX, double(m_nPelsY) / nPelsY,
                       double(nPelsX) / m_nPelsX, double(nPelsY) / m_nPelsY, In.m_nHeight);
        const long nBackX = long{In.m_nWidth} * nPelsX / A.m_nWidth;
        const long nBackY = long{In.m_nHeight} * nPelsY / A.m_nHeight;
        if (In.m_nWidth != A.m_nWidth || In.m_nHeight != A.m_nHeight)
            A = Nearest(A, In.m_nWidth, In.m_nHeight, nPelsX * 4096L / nBackX,
                        nPelsY * 4096L / nBackY);
        return Each(A, [](int v) { return 255 - v; });
    }

    void AddRidgeWindow(const Grid& Strong, double dUpX, double dUpY, double dDownX, double dDownY,
                        int nHeight) {
        for (Box& r : m_aWindows) // there and back
            r = {r.m_dX * dDownX * dUpX, r.m_dY * dDownY * dUpY, r.m_dWidth * dDownX * dUpX,
                 r.m_dHeight * dDownY * dUpY};
        if (!IsEmpty(Strong))
            AddWindow(m_aWindows, Extent(Strong, dUpX, dUpY, nHeight));
    }

    /// A mask and whether it is of one finger.
    bool Find(const Grid& In, Grid& rMask, Grid& rProb) {
        const Grid Length = Both(Slope(In, 1, 0), Slope(In, 0, 1), [](int a, int b) {
            return static_cast<int>(std::sqrt(double(a * a + b * b)) * 1.414);
        });
        Grid Bright;
        const Grid Dark = DarkArea(In, Bright);
        Stage("21_BrightProbImage", Bright);
        const Box Outer = m_aWindows.back();
        Grid Inside = Cut(Length, Rounded(Outer.m_dX), Rounded(Outer.m_dY), Rounded(Outer.m_dWidth),
                          Rounded(Outer.m_dHeight));
        if (!IsEmpty(Dark))
            Inside = Both(Inside, Dark, [](int n, int nIn) { return nIn == 1 ? n : 0; });
        const Grid Contrast = Ridges(Inside);
        Stage("21_ContrastProbImage", Contrast);
        const Box Last = m_aWindows.back();
        const int x = Rounded(Last.m_dX);
        const int y = Rounded(Last.m_dY);
        const int w = Rounded(Last.m_dWidth);
        const int h = Rounded(Last.m_dHeight);
        const int nInX = Rounded(Last.m_dX - Outer.m_dX);
        const int nInY = Rounded(Last.m_dY - Outer.m_dY);
        const Grid Columns =
            Cut(Contrast, 0, 0, std::min(w, Contrast.m_nWidth), Contrast.m_nHeight);
        rProb = Added(Bright, Placed(Columns, x - nInX, y - nInY, In.m_nWidth, In.m_nHeight, 255));
        const Grid Twice = Cut(Contrast, nInX, nInY, w, h);
        const Grid Sum = Added(Added(Cut(Bright, x, y, w, h), Twice), Twice);
        const Grid Region = WithoutHoles(Each(Sum, [](int n) { return n < 72 ? 1 : 0; }));
        rMask = IsEmpty(Region) ? Grid(In.m_nWidth, In.m_nHeight)
                                : Placed(Each(Region, [](int n) { return n == 1 ? 0 : 255; }), x, y,
                                         In.m_nWidth, In.m_nHeight, 255);
        Stage("03_MaskImage", rMask);
        const bool bOne = Embrace(rMask);
        Stage("04_MaskProbImage", rProb);
        Stage("05_EmbracedMaskImage", rMask);
        Soften(rMask);
        Stage("06_SmoothMaskImage", rMask);
        return bOne;
    }

    static Grid Twice(const Grid& In, int nWidth) { return Mean(Mean(In, nWidth), nWidth); }

    bool Embrace(Grid& rMask) const {
        const int k = static_cast<int>(2.0 * s.m_dRidgeDist);
        const int w = rMask.m_nWidth;
        const int h = rMask.m_nHeight;
        Grid A = Placed(rMask, 2 * k, 2 * k, w + 4 * k, h + 4 * k, 255);
        for (const double t : {245.0, 10.0, 10.0})
            A = Binary(Twice(A, k | 1), t);
        if (Pieces(Binary(Twice(A, k | 1), 245.0)) != 1)
            return false;
        rMask = Cut(Binary(Twice(Hull(A), k | 1), 245.0), 2 * k, 2 * k, w, h);
        return true;
    }

    static int Pieces(Grid Mask) {
        int n = 0;
        for (int y = 0; y < Mask.m_nHeight; ++y)
            for (int x = 0; x < Mask.m_nWidth; ++x)
                if (Mask.At(x, y) == 0) {
                    TakeBlob(Mask, x, y);
                    ++n;
                }
        return n;
    }

    /// Every line of the hull ends at the outermost of all chords between the ends of a line above
    /// it and of one below it.
    static Grid Hull(const Grid& In) {
        std::vector<std::array<long, 3>> aEnds; // line, first and last column
        for (int y = 0; y < In.m_nHeight; ++y) {
            long nFirst = -1;
            long nLast = -1;
            for (int x = 0; x < In.m_nWidth; ++x)
                if (In.At(x, y) == 0) {
                    nFirst = nFirst < 0 ? x : nFirst;
                    nLast = x;
                }
            if (nFirst >= 0)
                aEnds.push_back({y, nFirst, nLast});
        }
        std::vector<long> aFrom(static_cast<std::size_t>(In.m_nHeight), In.m_nWidth);
        std::vector<long> aTo(static_cast<std::size_t>(In.m_nHeight), -1);
        for (const auto& [a, l, r] : aEnds)
            for (const auto& [b, l2, r2] : aEnds)
                for (long y = a; y <= b; ++y) {
                    const long d = std::max(b - a, 1L);
                    const auto i = static_cast<std::size_t>(y);
                    aFrom[i] = std::min(aFrom[i], (l * d + (y - a) * (l2 - l)) / d);
                    aTo[i] = std::max(aTo[i], (r * d + (y - a) * (r2 - r)) / d);
                }
        return Made(In.m_nWidth, In.m_nHeight, [&](int x, int y) {
            const auto i = static_cast<std::size_t>(y);
            return x >= aFrom[i] && x <= aTo[i] ? 0 : 255;
        });
    }

    void Soften(Grid& rMask) const {
        const int w = rMask.m_nWidth;
        const int h = rMask.m_nHeight;
        const Grid Soft = Twice(Placed(rMask, 2, 2, w + 4, h + 4, 255), Width(1.0));
        rMask = Cut(Each(Soft, [](int n) { return static_cast<int>(std::min(255.0, n * 2.2)); }), 2,
                    2, w, h);
    }
};

// The whole

Grid LocallyStretched(const Grid& In, const Grid& Min, const Grid& Max) {
    const auto [nLow, nHigh] = NoiseFree(In, 0.001, 0.001);
    return Made(In.m_nWidth, In.m_nHeight, [&, l = nLow, h = nHigh](int x, int y) {
        const long d = Max.At(x, y) - Min.At(x, y);
        const long nFrom = d > 5 ? Min.At(x, y) : l;
        const long nSpan = d > 5 ? d + 1 : h - l + 1;
        return static_cast<int>(
            std::clamp((0xFF0000 / nSpan) * (In.At(x, y) - nFrom) >> 16, 0L, 255L));
    });
}

/// What the frame of the sensor leaves of a mask.
Grid Faded(const Grid& In) {
    const Grid Frame = Made(In.m_nWidth, In.m_nHeight, [&](int x, int y) {
        const int nSide = std::min(x, In.m_nWidth - 1 - x);
        const int i = y - (In.m_nHeight - 100);
        const bool bCorner = i >= 0 && nSide < i * 60 / 100;
        return nSide < 15 || y < 25 || In.m_nHeight - 1 - y < 15 || bCorner ? 255 : 0;
    });
    return Less(In, Mean(Frame, 21));
}

double Dirt(const Grid& Capture, const Grid& Mask) {
    long nSum = 0;
    for (std::size_t i = 0; i < Mask.m_aValues.size(); ++i) {
        const int nDark = std::max(205 - Capture.m_aValues[i], 0);
        nSum += Mask.m_aValues[i] * std::min(255, nDark * nDark / 255);
    }
    return static_cast<double>(nSum) * 0.000392156862745098;
}

double Dry(const Grid& Prob, const Grid& Mask) {
    long nWeights = 0;
    long nExcess = 0;
    for (std::size_t i = 0; i < Mask.m_aValues.size(); ++i) {
        nWeights += 255 - Mask.m_aValues[i];
        nExcess += std::max(Prob.m_aValues[i] - 128, 0) * (255 - Mask.m_aValues[i]);
    }
    if (nWeights == 0)
        return 0.0;
    const double dRatio = static_cast<double>(nExcess) / static_cast<double>(nWeights);
    return std::clamp(2.0 * (dRatio - 5.0), 0.0, 100.0);
}

} // namespace

StCalibrated Calibrated(const Grid& Capture, int nPelsX, int nPelsY, const StSettings& Settings) {
    StCalibrated Result;
    Finder Finger{Settings, nPelsX, nPelsY, Result, {}};
    Finger.Stage("01_InImage", Capture);
    const double dWhite =
        static_cast<double>(Counts(Capture)[255]) / static_cast<double>(Capture.m_aValues.size());
    const auto [nFrom, nTo] =
        NoiseFree(Capture, Settings.m_bSensitive ? 0.05 : 0.001, dWhite + 0.005);
    Grid Image = Stretched(Capture, nFrom, nTo);
    if (nTo < nFrom) { // the whole range
        const auto [nFirst, nLast] = NoiseFree(Capture, 0.0, 0.0);
        Image = Stretched(Capture, nFirst, nLast);
    }
    Finger.Stage("02_GloballyStretchedImage", Image);
    Grid Mask;
    Grid Prob;
    bool bFinger = (nTo - nFrom > 96 || Settings.m_bSensitive) && Finger.Find(Image, Mask, Prob);
    if (!bFinger)
        Mask = Grid(Capture.m_nWidth, Capture.m_nHeight, 255);
    Finger.Stage("03_MaskImage_orig", Mask);
    Result.m_Mask = Mask;
    const Grid Min = Mean(Lowest(Image, 23), 23);
    const Grid Max = Mean(Highest(Image, 23), 23);
    Finger.Stage("07_MinImage", Min);
    Finger.Stage("08_MaxImage", Max);
    Image = LocallyStretched(Image, Min, Max);
    Finger.Stage("09_StretchedImage", Image);
    Result.m_Out = Added(Mask, Image);
    Finger.Stage("10_OutImage", Result.m_Out);
    Mask = Less(Mask, Binary(Capture, 255.0));
    Finger.Stage("11b_ExtendedMaskImage", Mask);
    Mask = Faded(Binary(Mean(Mask, 53), 250.0));
    Finger.Stage("11c_FadedMaskImageForDirtMeasurement", Mask);
    const bool bFlat = std::all_of(Mask.m_aValues.begin(), Mask.m_aValues.end(),
                                   [&](int n) { return n == Mask.m_aValues[0]; });
    bFinger = bFinger && !bFlat;
    Result.m_dDirt = Dirt(Capture, Mask);
    Result.m_dDry = bFinger ? Dry(Prob, Mask) : 0.0;
    if (!(Result.m_dDirt < 2000.0 && bFinger)) {
        Result.m_dDirt = 100.0;
        Result.m_Out = Grid(Capture.m_nWidth, Capture.m_nHeight, 255);
    }
    return Result;
}

} // namespace TestSupport::Naive
