#include "sim/RidgePattern.h"

#include "sim/Elementary.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

constexpr double g_dSamplesPerMm = 12.0;
constexpr int g_nAngles = 36;        ///< steps of 5 degrees
constexpr int g_nPeriods = 9;        ///< steps of 0.02 mm
constexpr double g_dShortest = 0.40; ///< millimetres
constexpr double g_dPeriodStep = 0.02;
constexpr int g_nReach = 7;
constexpr int g_nLines = 2 * g_nReach + 1;
constexpr int g_nLineTaps = g_nLines + 1; ///< the last tap is 0 and fills whole vectors
constexpr int g_nTaps = g_nLines * g_nLineTaps;
constexpr int g_nFrame = g_nReach + 1;
constexpr double g_dGain = 1.9;   ///< of the ridges that fit, per round
constexpr double g_dSigma = 0.42; ///< of the filters' envelope, in ridge distances
constexpr int g_nRounds = 13;
/// Undoes the gain of the last round; a saturated wave is 1.2 times its limit.
constexpr auto g_fFinish = static_cast<float>(1.0 / (g_dGain * 1.2));

enum ESubject : std::uint64_t { eSubjectSeedNoise = 31 };

} // namespace

/// One filter per direction and ridge distance.
class ClRidgePattern::ClFilterBank {
public:
    ClFilterBank();

    static unsigned short Choose(const ClPoint& Doubled, double dPeriod);
    const float* Taps(unsigned short nFilter) const {
        return &m_aTaps[static_cast<std::size_t>(nFilter) * g_nTaps];
    }

private:
    static void Fill(double dAngle, double dPeriod, float* pTaps);

    std::vector<float> m_aTaps;
};

ClRidgePattern::ClFilterBank::ClFilterBank()
    : m_aTaps(static_cast<std::size_t>(g_nAngles) * g_nPeriods * g_nTaps) {
    float* pTaps = m_aTaps.data();
    for (int nAngle = 0; nAngle < g_nAngles; ++nAngle) {
        for (int nPeriod = 0; nPeriod < g_nPeriods; ++nPeriod) {
            Fill(nAngle * g_dPi / g_nAngles,
                 (g_dShortest + nPeriod * g_dPeriodStep) * g_dSamplesPerMm, pTaps);
            pTaps += g_nTaps;
        }
    }
}

unsigned short ClRidgePattern::ClFilterBank::Choose(const ClPoint& Doubled, double dPeriod) {
    const double dTurn = Angle(Doubled.x, Doubled.y) / (2.0 * g_dPi);
    const int nAngle = static_cast<int>(std::floor(dTurn * g_nAngles + 0.5));
    const int nPeriod = static_cast<int>(std::floor((dPeriod - g_dShortest) / g_dPeriodStep + 0.5));
    return static_cast<unsigned short>((nAngle + g_nAngles) % g_nAngles * g_nPeriods +
                                       std::clamp(nPeriod, 0, g_nPeriods - 1));
}

/// A wave across the ridges under a round envelope, without constant part, and of the gain told
/// for ridges of exactly this direction and distance.
void ClRidgePattern::ClFilterBank::Fill(double dAngle, double dPeriod, float* pTaps) {
    const double dSigma = g_dSigma * dPeriod;
    const double dCosine = Cosine(dAngle);
    const double dSine = Sine(dAngle);
    double aEnvelope[g_nTaps] = {};
    double aWave[g_nTaps] = {};
    double dEnvelopeSum = 0.0;
    double dSum = 0.0;
    for (int y = -g_nReach; y <= g_nReach; ++y) {
        for (int x = -g_nReach; x <= g_nReach; ++x) {
            const int n = (y + g_nReach) * g_nLineTaps + x + g_nReach;
            aEnvelope[n] = Decay(0.5 * (x * x + y * y) / (dSigma * dSigma));
            aWave[n] = Cosine(2.0 * g_dPi * (dCosine * y - dSine * x) / dPeriod);
            dEnvelopeSum += aEnvelope[n];
            dSum += aEnvelope[n] * aWave[n];
        }
    }
    double dResponse = 0.0;
    for (int n = 0; n < g_nTaps; ++n) {
        aEnvelope[n] *= aWave[n] - dSum / dEnvelopeSum;
        dResponse += aEnvelope[n] * aWave[n];
    }
    for (int n = 0; n < g_nTaps; ++n)
        pTaps[n] = static_cast<float>(aEnvelope[n] * g_dGain / dResponse);
}

ClRidgePattern::ClRidgePattern(const ClRidgeFlow& Flow, double dHalfWidth, double dHalfHeight,
                               std::uint64_t nSeed)
    : m_nWidth(2 * static_cast<int>(std::ceil(dHalfWidth * g_dSamplesPerMm)) + 1),
      m_nHeight(2 * static_cast<int>(std::ceil(dHalfHeight * g_dSamplesPerMm)) + 1) {
    // The same for every finger; made once.
    static const ClFilterBank Bank;
    ChooseFilters(Flow, Bank);
    Sow(nSeed);
    for (int nRound = 0; nRound < g_nRounds; ++nRound) {
        Filter(Bank);
        Saturate();
    }
    // Saturated waves have edges; one more round leaves only what the raster can carry.
    Filter(Bank);
    for (float& fValue : m_aRidges)
        fValue *= g_fFinish;
}

std::size_t ClRidgePattern::Index(int nColumn, int nRow) const {
    const int nStride = m_nWidth + 2 * g_nFrame;
    return static_cast<std::size_t>(nRow + g_nFrame) * static_cast<std::size_t>(nStride) +
           static_cast<std::size_t>(nColumn + g_nFrame);
}

ClPoint ClRidgePattern::Position(int nColumn, int nRow) const {
    return {(nColumn - 0.5 * (m_nWidth - 1)) / g_dSamplesPerMm,
            (nRow - 0.5 * (m_nHeight - 1)) / g_dSamplesPerMm};
}

void ClRidgePattern::ChooseFilters(const ClRidgeFlow& Flow, const ClFilterBank& Bank) {
    m_aFilters.reserve(static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight));
    for (int y = 0; y < m_nHeight; ++y) {
        for (int x = 0; x < m_nWidth; ++x) {
            const ClPoint p = Position(x, y);
            m_aFilters.push_back(Bank.Choose(Flow.DoubledDirection(p), Flow.Period(p)));
        }
    }
}

/// Weak noise everywhere, frame included: the frame stays as it is and feeds the growth inside.
void ClRidgePattern::Sow(std::uint64_t nSeed) {
    ClRandom Random(nSeed, eSubjectSeedNoise);
    m_aRidges.resize(Index(m_nWidth + g_nFrame, m_nHeight + g_nFrame - 1));
    for (float& fValue : m_aRidges)
        fValue = static_cast<float>(Random.Around(0.0, 0.5));
}

/// One round: filters the inside; the frame keeps its values.
void ClRidgePattern::Filter(const ClFilterBank& Bank) {
    std::vector<float> aFiltered(m_aRidges);
    std::size_t nSample = 0;
    for (int y = 0; y < m_nHeight; ++y) {
        for (int x = 0; x < m_nWidth; ++x) {
            const float* pTaps = Bank.Taps(m_aFilters[nSample++]);
            // Independent sums, one per column of the filter: a vector takes several at once.
            float aSums[g_nLineTaps] = {};
            for (int j = 0; j < g_nLines; ++j, pTaps += g_nLineTaps) {
                const float* pIn = &m_aRidges[Index(x - g_nReach, y - g_nReach + j)];
                for (int i = 0; i < g_nLineTaps; ++i)
                    aSums[i] += pTaps[i] * pIn[i];
            }
            float fSum = 0.0F;
            for (const float fColumn : aSums)
                fSum += fColumn;
            aFiltered[Index(x, y)] = fSum;
        }
    }
    m_aRidges.swap(aFiltered);
}

/// Saturation: what has grown beyond 1 stays there.
void ClRidgePattern::Saturate() {
    for (float& fValue : m_aRidges)
        fValue = std::clamp(fValue, -1.0F, 1.0F);
}

namespace {

/// Cubic interpolation between b and c.
double Cubic(double a, double b, double c, double d, double t) {
    return b +
           0.5 * t * (c - a + t * (2.0 * a - 5.0 * b + 4.0 * c - d + t * (3.0 * (b - c) + d - a)));
}

} // namespace

double ClRidgePattern::At(const ClPoint& Position) const {
    const double dColumn =
        Limit(Position.x * g_dSamplesPerMm + 0.5 * (m_nWidth - 1), 0.0, m_nWidth - 1.0);
    const double dRow =
        Limit(Position.y * g_dSamplesPerMm + 0.5 * (m_nHeight - 1), 0.0, m_nHeight - 1.0);
    const int nColumn = static_cast<int>(dColumn);
    const int nRow = static_cast<int>(dRow);
    double aLines[4];
    for (int j = 0; j < 4; ++j) {
        const float* p = &m_aRidges[Index(nColumn - 1, nRow - 1 + j)];
        aLines[j] = Cubic(p[0], p[1], p[2], p[3], dColumn - nColumn);
    }
    return Cubic(aLines[0], aLines[1], aLines[2], aLines[3], dRow - nRow);
}

} // namespace sim
