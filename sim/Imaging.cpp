#include "sim/Imaging.h"

#include "sim/Elementary.h"
#include "sim/Random.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace sim {

namespace {

enum ESubject : std::uint64_t { eSubjectGain = 11, eSubjectPixel, eSubjectLine };

/// Positions inside a pixel: the plate has 2.6 by 1.3 samples per raw pixel and 2.5 by 2.5 per
/// pixel of the frame, so three by two interpolated ones leave no sample out.
constexpr int g_nAcross = 3;
constexpr int g_nDown = 2;

/// A grey image in the making: values of double precision.
struct ClField {
    ClField(int nWidth, int nHeight)
        : m_nWidth(nWidth), m_nHeight(nHeight),
          m_aValues(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight)) {}
    double* Line(int y) {
        return &m_aValues[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth)];
    }
    const double* Line(int y) const {
        return &m_aValues[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth)];
    }
    int m_nWidth;
    int m_nHeight;
    std::vector<double> m_aValues;
};

ClPoint Between(const ClPoint& a, const ClPoint& b, double t) {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

/// Mean reflectance over the quadrilateral between two points of the upper and two of the lower
/// edge.
double MeanReflectance(const ClPlate& Plate, const ClPoint* pUpper, const ClPoint* pLower) {
    double dSum = 0.0;
    for (int j = 0; j < g_nDown; ++j) {
        const double v = (j + 0.5) / g_nDown;
        const ClPoint Left = Between(pUpper[0], pLower[0], v);
        const ClPoint Right = Between(pUpper[1], pLower[1], v);
        for (int i = 0; i < g_nAcross; ++i)
            dSum += Plate.Reflectance(Between(Left, Right, (i + 0.5) / g_nAcross));
    }
    return dSum / (g_nAcross * g_nDown);
}

/// Fills a field with the plate's reflectance; `ToPlaten` maps its pixels to the platen.
template <class TpToPlaten>
ClField Sampled(const ClPlate& Plate, int nWidth, int nHeight, TpToPlaten ToPlaten) {
    ClField Field(nWidth, nHeight);
    std::vector<ClPoint> aUpper(static_cast<std::size_t>(nWidth) + 1);
    std::vector<ClPoint> aLower(aUpper.size());
    const auto Corners = [&](int y, std::vector<ClPoint>& aCorners) {
        for (int x = 0; x <= nWidth; ++x)
            aCorners[static_cast<std::size_t>(x)] = ToPlaten(ClPoint{x - 0.5, y - 0.5});
    };
    Corners(0, aUpper);
    for (int y = 0; y < nHeight; ++y) {
        Corners(y + 1, aLower);
        double* pLine = Field.Line(y);
        for (std::size_t x = 0; x + 1 < aUpper.size(); ++x)
            pLine[x] = MeanReflectance(Plate, &aUpper[x], &aLower[x]);
        std::swap(aUpper, aLower);
    }
    return Field;
}

/// Weights of a point spread, middle first, of sum 1 over both sides.
std::vector<double> PointSpread(double dSigma) {
    std::vector<double> aWeights{1.0};
    const int nReach = static_cast<int>(std::ceil(3.5 * dSigma));
    double dSum = 1.0;
    for (int n = 1; n <= nReach; ++n) {
        aWeights.push_back(Decay(0.5 * n * n / (dSigma * dSigma)));
        dSum += 2.0 * aWeights.back();
    }
    for (double& dWeight : aWeights)
        dWeight /= dSum;
    return aWeights;
}

ClField BlurredAcross(const ClField& In, double dSigma) {
    const std::vector<double> aWeights = PointSpread(dSigma);
    const int nReach = static_cast<int>(aWeights.size()) - 1;
    ClField Out(In.m_nWidth, In.m_nHeight);
    for (int y = 0; y < In.m_nHeight; ++y) {
        const double* pIn = In.Line(y);
        double* pOut = Out.Line(y);
        for (int x = 0; x < In.m_nWidth; ++x) {
            double dSum = aWeights[0] * pIn[x];
            for (int n = 1; n <= nReach; ++n)
                dSum += aWeights[static_cast<std::size_t>(n)] *
                        (pIn[std::max(x - n, 0)] + pIn[std::min(x + n, In.m_nWidth - 1)]);
            pOut[x] = dSum;
        }
    }
    return Out;
}

ClField BlurredDown(const ClField& In, double dSigma) {
    const std::vector<double> aWeights = PointSpread(dSigma);
    const int nReach = static_cast<int>(aWeights.size()) - 1;
    ClField Out(In.m_nWidth, In.m_nHeight);
    for (int y = 0; y < In.m_nHeight; ++y) {
        double* pOut = Out.Line(y);
        for (int n = -nReach; n <= nReach; ++n) {
            const double* pIn = In.Line(std::clamp(y + n, 0, In.m_nHeight - 1));
            const double dWeight = aWeights[static_cast<std::size_t>(std::abs(n))];
            for (int x = 0; x < In.m_nWidth; ++x)
                pOut[x] += dWeight * pIn[x];
        }
    }
    return Out;
}

unsigned char Grey(double dValue) {
    return static_cast<unsigned char>(Limit(dValue + 0.5, 0.0, 255.0));
}

/// The gains of a scanner's columns.
std::vector<double> ColumnGains(const ClScanner& Scanner) {
    std::vector<double> aGains(static_cast<std::size_t>(Scanner.Settings().m_nRawWidth));
    ClRandom Random(Scanner.Seed(), eSubjectGain);
    for (double& dGain : aGains)
        dGain = 1.0 + Scanner.Settings().m_Sensor.m_dColumnGain * Random.Normal();
    return aGains;
}

/// Light, gain and noise: what the sensor makes of the reflectances that reach it.
ClRaster Exposed(const ClScanner& Scanner, const ClField& Reflectance, std::uint64_t nSeed) {
    const ClSensorSettings& Sensor = Scanner.Settings().m_Sensor;
    const std::vector<double> aGains = ColumnGains(Scanner);
    const std::uint64_t nPixelSeed = ClRandom::Derive(nSeed, eSubjectPixel);
    ClRandom LineNoise(nSeed, eSubjectLine);
    ClRaster Raw = Scanner.RawRaster(0);
    std::uint64_t nPixel = 0;
    for (int y = 0; y < Raw.m_nHeight; ++y) {
        const double dLine = Sensor.m_dLineNoise * LineNoise.Normal();
        const double v = (2.0 * y + 1.0) / Raw.m_nHeight - 1.0;
        const double* pIn = Reflectance.Line(y);
        for (int x = 0; x < Raw.m_nWidth; ++x) {
            const double u = (2.0 * x + 1.0) / Raw.m_nWidth - 1.0;
            const double dNoise =
                Sensor.m_dNoise * ClRandom::ToNormal(ClRandom::Lookup(nPixelSeed, nPixel++));
            const double dSignal =
                pIn[x] * Scanner.Light().At(u, v) * aGains[static_cast<std::size_t>(x)];
            Raw.At(x, y) = Grey(dSignal + dLine + dNoise);
        }
    }
    return Raw;
}

} // namespace

ClRaster ImageRaw(const ClScanner& Scanner, const ClPlate& Plate, std::uint64_t nSeed) {
    const ClScannerSettings& Settings = Scanner.Settings();
    ClField Field = Sampled(Plate, Settings.m_nRawWidth, Settings.m_nRawHeight,
                            [&](const ClPoint& Raw) { return Scanner.PlatenFromRaw(Raw); });
    if (Settings.m_Sensor.m_dBlurX > 0.0)
        Field = BlurredAcross(Field, Settings.m_Sensor.m_dBlurX);
    if (Settings.m_Sensor.m_dBlurY > 0.0)
        Field = BlurredDown(Field, Settings.m_Sensor.m_dBlurY);
    return Exposed(Scanner, Field, nSeed);
}

ClRaster ImageIdeal(const ClScanner& Scanner, const ClPlate& Plate) {
    const double dBright = Scanner.Settings().m_Light.m_dBright;
    const ClField Field = Sampled(Plate, g_nFrameWidth, g_nFrameHeight, [&](const ClPoint& Frame) {
        return Scanner.PlatenFromFrame(Frame);
    });
    ClRaster Ideal = ClScanner::FrameRaster(0);
    for (int y = 0; y < g_nFrameHeight; ++y)
        for (int x = 0; x < g_nFrameWidth; ++x)
            Ideal.At(x, y) = Grey(dBright * Field.Line(y)[x]);
    return Ideal;
}

ClRaster ImageFingerArea(const ClScanner& Scanner, const ClPlate& Plate) {
    ClRaster Area = ClScanner::FrameRaster(255);
    for (int y = 0; y < g_nFrameHeight; ++y)
        for (int x = 0; x < g_nFrameWidth; ++x)
            if (Plate.IsCovered(Scanner.PlatenFromFrame({1.0 * x, 1.0 * y})))
                Area.At(x, y) = 0;
    return Area;
}

} // namespace sim
