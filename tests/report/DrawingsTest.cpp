/// What holds for every drawing, whatever it is given.

#include "report/Coverage.h"
#include "report/DistortionField.h"
#include "report/DotsOverCapture.h"
#include "report/DrawingReader.h"
#include "report/EftsPairs.h"
#include "report/ErrorMap.h"
#include "report/ResidualHistogram.h"
#include "report/ResidualVectors.h"
#include "report/Trend.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace report;
using namespace TestSupport;

namespace {

constexpr const char* cszHostile = "<&\">' \xC3\xA9\xE2\x82\xAC\x01\xFF]]>--><script>";

/// Mostly sensible numbers, now and then one that is not.
class ClWild {
public:
    explicit ClWild(unsigned nSeed) : m_Engine(nSeed) {}

    int Below(int nEnd) { return static_cast<int>(m_Engine() % static_cast<unsigned>(nEnd)); }
    bool OneIn(int n) { return Below(n) == 0; }

    double Value(double dLow, double dHigh) {
        static const double s_aOdd[] = {0.0,
                                        -0.0,
                                        std::numeric_limits<double>::quiet_NaN(),
                                        std::numeric_limits<double>::infinity(),
                                        -std::numeric_limits<double>::infinity(),
                                        std::numeric_limits<double>::max(),
                                        std::numeric_limits<double>::lowest(),
                                        std::numeric_limits<double>::denorm_min(),
                                        -1e-300,
                                        1e9};
        if (OneIn(m_nOdd))
            return s_aOdd[Below(10)];
        return std::uniform_real_distribution<double>(dLow, dHigh)(m_Engine);
    }

    StPoint Point(double dWidth, double dHeight) {
        const double x = Value(0.0, dWidth);
        return {x, Value(0.0, dHeight)};
    }

    std::string Name() {
        std::string sName;
        for (int n = Below(30); n > 0; --n)
            sName += static_cast<char>(Below(256));
        return OneIn(2) ? cszHostile : sName;
    }

    StFrame Frame() {
        if (OneIn(12))
            return {};
        return {1 + Below(600), 1 + Below(1500), {Value(1.0, 50.0), Value(1.0, 50.0)}, OneIn(2)};
    }

    Dots RandomDots(const StFrame& Frame) {
        Dots aDots;
        for (int n = Below(100); n > 0; --n)
            aDots.push_back({{Below(9), Below(13)},
                             Point(Frame.m_nWidth, Frame.m_nHeight),
                             {Value(-9.0, 9.0), Value(-9.0, 9.0)},
                             OneIn(5)});
        return aDots;
    }

    void SetOdd(int nOneIn) { m_nOdd = nOneIn; }

private:
    std::mt19937 m_Engine;
    int m_nOdd = 20;
};

std::string RandomCapture(ClWild& rWild) {
    StCaptureView View;
    View.m_Frame = rWild.Frame();
    View.m_sPicture = rWild.OneIn(2) ? "" : "data:image/png;base64,AAAA";
    View.m_aDots = rWild.RandomDots(View.m_Frame);
    for (int n = rWild.Below(8); n > 0; --n)
        View.m_aRegions.push_back({rWild.OneIn(2) ? ERegion::eMissing : ERegion::eRefused,
                                   {rWild.Value(-50.0, 500.0), rWild.Value(-50.0, 1500.0),
                                    rWild.Value(0.0, 90.0), rWild.Value(0.0, 90.0)},
                                   rWild.Name()});
    return DrawDotsOverCapture(View, "wild");
}

std::string RandomVectors(ClWild& rWild) {
    const StFrame Frame = rWild.Frame();
    return DrawResidualVectors(Frame, rWild.RandomDots(Frame), "wild");
}

std::string RandomHistogram(ClWild& rWild) {
    std::vector<double> aLengths;
    const double dMost = std::pow(10.0, rWild.Below(12) - 5);
    for (int n = rWild.Below(200); n > 0; --n)
        aLengths.push_back(rWild.Value(0.0, dMost));
    return DrawResidualHistogram(aLengths, "wild");
}

std::string RandomErrors(ClWild& rWild) {
    StErrorView View;
    View.m_bUpward = rWild.OneIn(2);
    View.m_Errors.m_nWidth = rWild.Below(600);
    View.m_Errors.m_nHeight = rWild.Below(600);
    for (int n = 0; n < 41 * 61; ++n)
        View.m_Errors.m_aErrors.push_back(rWild.Value(0.0, 3.0));
    if (rWild.OneIn(10))
        View.m_Errors.m_aErrors.pop_back();
    View.m_Errors.m_dCorner = rWild.Value(0.0, 3.0);
    View.m_Errors.m_dInside = rWild.Value(0.0, 3.0);
    for (int n = rWild.Below(80); n > 0; --n)
        View.m_aDots.push_back(rWild.Point(600.0, 600.0));
    return DrawErrorMap(View, "wild");
}

std::string RandomField(ClWild& rWild) {
    StWarpGrid Grid{rWild.Frame(), rWild.Below(12), rWild.Below(12), {}, {}};
    Grid.m_Step = {rWild.Value(0.1, 3.0), rWild.Value(0.1, 3.0)};
    for (int n = 0; n < Grid.m_nColumns * Grid.m_nRows; ++n)
        Grid.m_aRaw.push_back(rWild.Point(Grid.m_Capture.m_nWidth, Grid.m_Capture.m_nHeight));
    return DrawDistortionField(Grid, "wild");
}

std::string RandomCoverage(ClWild& rWild) {
    StCoverage Coverage{rWild.Frame(), {}, rWild.Value(0.0, 100.0)};
    for (int n = rWild.Below(40); n > 0; --n)
        Coverage.m_aOutline.push_back(rWild.Point(900.0, 900.0));
    return DrawCoverage(Coverage, "wild");
}

std::string RandomPairs(ClWild& rWild) {
    StEftsPairs Pairs;
    Pairs.m_Corrected = rWild.Frame();
    Pairs.m_aDots = rWild.RandomDots(Pairs.m_Corrected);
    for (int n = rWild.Below(200); n > 0; --n)
        Pairs.m_aFailing.push_back(
            {static_cast<std::size_t>(rWild.Below(110)), static_cast<std::size_t>(rWild.Below(110)),
             rWild.Value(0.0, 400.0), rWild.Value(0.0, 400.0), rWild.Value(0.0, 4.0)});
    Pairs.m_nAll = static_cast<std::size_t>(rWild.Below(2776));
    Pairs.m_dPercent = rWild.Value(0.0, 100.0);
    return DrawEftsPairs(Pairs, "wild");
}

std::string RandomTrend(ClWild& rWild) {
    StTrend Trend{rWild.Name(), rWild.Name(), rWild.Below(10), {}, {}, {}};
    if (rWild.OneIn(2))
        Trend.m_dLower = rWild.Value(-10.0, 10.0);
    if (rWild.OneIn(2))
        Trend.m_dUpper = rWild.Value(0.0, 30.0);
    const double dMost = std::pow(10.0, rWild.Below(12) - 5);
    for (int n = rWild.Below(rWild.OneIn(3) ? 2 : 300); n > 0; --n)
        Trend.m_aPoints.push_back({rWild.Name(), rWild.Value(-dMost, dMost), rWild.OneIn(20)});
    return DrawTrend(Trend, "wild");
}

using RandomDrawing = std::string (*)(ClWild&);

class ReportDrawings : public testing::TestWithParam<RandomDrawing> {};

} // namespace

TEST_P(ReportDrawings, AreSoundWhateverTheyAreGiven) {
    for (unsigned nSeed = 1; nSeed <= 80 && !HasFailure(); ++nSeed) {
        SCOPED_TRACE(nSeed);
        ClWild Wild(nSeed);
        Wild.SetOdd(nSeed % 3 == 0 ? 1000000 : 20); // every third one has sensible numbers alone
        ExpectSound(GetParam()(Wild), "wild");
    }
}

INSTANTIATE_TEST_SUITE_P(All, ReportDrawings,
                         testing::Values(RandomCapture, RandomVectors, RandomHistogram,
                                         RandomErrors, RandomField, RandomCoverage, RandomPairs,
                                         RandomTrend));
