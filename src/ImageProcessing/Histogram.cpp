#include "ImageProcessing/Histogram.h"

#include "ImageProcessing/Kernels/Histogram.h"
#include "ImageProcessing/RequireBytes.h"
#include "Tools/Exception.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int cnLast = 255;
constexpr std::int64_t cnSignedOffset = 128;

[[noreturn]] void ThrowPlain(const char* szText) {
    throw ClException(szText, QMT_ERROR_INTERNAL, false, VEK_NOWHERE);
}

void CheckImage(const ClImage& Image) {
    if (Image.DataType() != ClImage::eInt8)
        RequireBytes(Image, VEK_HERE);
    if (Image.Data() == nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
}

void CheckRange(unsigned char nPos1, unsigned char nPos2, const char* szText, long nLine) {
    if (nPos2 < nPos1)
        throw ClException(szText, QMT_ERROR_PARAM_OUT_OF_RANGE, true, VEK_FILE, nLine);
}

unsigned char Middle(unsigned char nPos1, unsigned char nPos2) {
    return static_cast<unsigned char>((nPos1 + nPos2) >> 1);
}

/// The number of samples that a share of `nTotal` sets aside, for comparison with a count.
std::int64_t Limit(double dShare, std::int64_t nTotal) {
    constexpr double cdTwoTo63 = 9223372036854775808.0;
    const double dLimit = dShare * static_cast<double>(nTotal);
    if (std::isnan(dLimit))
        return 0;
    if (dLimit >= cdTwoTo63)
        return std::numeric_limits<std::int64_t>::max(); // above every count
    return dLimit < -cdTwoTo63 ? -1 : static_cast<std::int64_t>(dLimit);
}

} // namespace

ClHistogram::ClHistogram() {
    Reset();
}

ClHistogram::~ClHistogram() = default;

void ClHistogram::Reset() {
    std::fill(m_anCount, m_anCount + 256, 0);
    m_nOffset = 0;
}

// Counting

void ClHistogram::Create(const ClImage& Image) {
    Create(Image, 0, 0, Image.Width(), Image.Height());
}

void ClHistogram::Create(const ClImage& Image, int nLeft, int nTop, int nRight, int nBottom) {
    Reset();
    if (Image.Planes() != 1)
        ThrowPlain("Color-image not supported in ClHistogram::Create.");
    if (nLeft >= nRight || nTop >= nBottom)
        ThrowPlain("invalid Range in ClHistogram::Create.");
    CheckImage(Image);

    nLeft = std::max(nLeft, 0);
    nTop = std::max(nTop, 0);
    nRight = std::min(nRight, Image.Width());
    nBottom = std::min(nBottom, Image.Height());
    if (nLeft < nRight && nTop < nBottom)
        Kernels::CountValues(Image.LineData(nTop) + nLeft, Image.LineStrideBytes(), nRight - nLeft,
                             nBottom - nTop, m_anCount);
    if (ClImage::IsSigned(Image.DataType())) { // the bytes 128 to 255 are the values below 0
        std::swap_ranges(m_anCount, m_anCount + cnSignedOffset, m_anCount + cnSignedOffset);
        m_nOffset = cnSignedOffset;
    }
}

// Values

unsigned char ClHistogram::LessOffset(int nPos) const {
    return static_cast<unsigned char>(nPos - m_nOffset);
}

unsigned char ClHistogram::FirstValue() const {
    for (int i = 0; i <= cnLast; ++i)
        if (m_anCount[i] != 0)
            return LessOffset(i);
    return cnLast;
}

unsigned char ClHistogram::LastValue() const {
    for (int i = cnLast; i >= 0; --i)
        if (m_anCount[i] != 0)
            return LessOffset(i);
    return 0;
}

int ClHistogram::GetColorCount() const {
    return static_cast<int>(256 - std::count(m_anCount, m_anCount + 256, 0));
}

int ClHistogram::MaxCount() const {
    return *std::max_element(m_anCount, m_anCount + 256);
}

int ClHistogram::MinCount() const {
    return *std::min_element(m_anCount, m_anCount + 256);
}

// Moments

std::int64_t ClHistogram::Count(int nFrom, int nTo) const {
    std::int64_t nSum = 0;
    for (int i = nFrom; i <= nTo; ++i)
        nSum += m_anCount[i];
    return nSum;
}

std::int64_t ClHistogram::Weight(int nFrom, int nTo) const {
    std::int64_t nSum = 0;
    for (int i = nFrom; i <= nTo; ++i)
        nSum += std::int64_t{m_anCount[i]} * i;
    return nSum;
}

double ClHistogram::GetGreyMid(unsigned char nFrom, unsigned char nTo) const {
    const std::int64_t nCount = Count(nFrom, nTo);
    if (nCount == 0)
        return Middle(nFrom, nTo);
    const auto nWeight = static_cast<std::uint32_t>(Weight(nFrom, nTo));
    return static_cast<double>(nWeight) / static_cast<double>(nCount) -
           static_cast<double>(m_nOffset);
}

double ClHistogram::GetStdDeviation(unsigned char nFrom, unsigned char nTo) const {
    const auto dCount = static_cast<double>(Count(nFrom, nTo));
    if (dCount == 0.0)
        return 0.0;
    const double dMean = static_cast<double>(Weight(nFrom, nTo)) / dCount;
    double dSum = 0.0;
    for (int i = nFrom; i <= nTo; ++i)
        dSum += m_anCount[i] * (i - dMean) * (i - dMean);
    return std::sqrt(dSum / dCount) - static_cast<double>(m_nOffset);
}

double ClHistogram::GetAverageDeviation() const {
    const auto dCount = static_cast<double>(Count(0, cnLast));
    if (dCount == 0.0)
        return 0.0;
    const double dMean = static_cast<double>(Weight(0, cnLast)) / dCount;
    double dSum = 0.0;
    for (int i = 0; i <= cnLast; ++i)
        dSum += m_anCount[i] * std::abs(i - dMean);
    return dSum / dCount;
}

// Positions

unsigned ClHistogram::GetMid(unsigned char nPos1, unsigned char nPos2) const {
    CheckRange(nPos1, nPos2,
               "ClHistogram::GetMid(BYTE nPos1, BYTE nPos2): nPos2 >= nPos1 must given.", __LINE__);
    return static_cast<unsigned>(Average(nPos1, nPos2));
}

unsigned char ClHistogram::GetCentreOfMass(unsigned char nPos1, unsigned char nPos2) const {
    CheckRange(nPos1, nPos2,
               "ClHistogram::GetCentreOfMass(BYTE nPos1, BYTE nPos2): nPos2 >= nPos1 must given.",
               __LINE__);
    const std::int64_t nCount = Count(nPos1, nPos2);
    return nCount == 0 ? Middle(nPos1, nPos2)
                       : static_cast<unsigned char>(Weight(nPos1, nPos2) / nCount);
}

unsigned char ClHistogram::GetLocalMax(unsigned char nPos1, unsigned char nPos2) const {
    CheckRange(nPos1, nPos2,
               "ClHistogram::GetLocalMax(BYTE nPos1, BYTE nPos2): nPos2 >= nPos1 must given.",
               __LINE__);
    return static_cast<unsigned char>(std::max_element(m_anCount + nPos1, m_anCount + nPos2 + 1) -
                                      m_anCount);
}

unsigned char ClHistogram::GetLocalMin(unsigned char nPos1, unsigned char nPos2) const {
    CheckRange(nPos1, nPos2,
               "ClHistogram::GetLocalMin(BYTE nPos1, BYTE nPos2): nPos2 >= nPos1 must given.",
               __LINE__);
    return static_cast<unsigned char>(std::min_element(m_anCount + nPos1, m_anCount + nPos2 + 1) -
                                      m_anCount);
}

// Shape

/// Truncated average of the bins `nFrom` to `nTo` that there are; 0 without any.
std::int64_t ClHistogram::Average(int nFrom, int nTo) const {
    nFrom = std::max(nFrom, 0);
    nTo = std::min(nTo, cnLast);
    return nFrom > nTo ? 0 : Count(nFrom, nTo) / (nTo - nFrom + 1);
}

/// By how much the bins above a position average more than those below.
std::int64_t ClHistogram::RiseAt(int nPos, int nWidth) const {
    return Average(nPos + 1, nPos + nWidth) - Average(nPos - nWidth, nPos - 1);
}

/// To where the counts no longer rise (`nSign` 1) or fall (-1).
unsigned char ClHistogram::Walk(int nPos, int nWidth, int nSign) const {
    const std::int64_t nStart = RiseAt(nPos, nWidth) * nSign;
    const int nStep = nStart > 0 ? 1 : nStart < 0 ? -1 : 0;
    const int nEnd = nStep > 0 ? cnLast : 0;
    while (nPos != nEnd && RiseAt(nPos, nWidth) * nSign * nStep > 0)
        nPos += nStep;
    return LessOffset(nPos);
}

unsigned char ClHistogram::Climb(unsigned char nPos, unsigned char nWidth) const {
    return Walk(nPos, nWidth, 1);
}

unsigned char ClHistogram::Descend(unsigned char nPos, unsigned char nWidth) const {
    return Walk(nPos, nWidth, -1);
}

/// First position from `nPos` on where the counts fall; behind the last bin without one.
int ClHistogram::PeakFrom(int nPos) const {
    constexpr int cnBelow = 5;
    constexpr int cnAbove = 25;
    while (nPos <= cnLast && Average(nPos - cnBelow, nPos - 1) <= Average(nPos + 1, nPos + cnAbove))
        ++nPos;
    return nPos;
}

bool ClHistogram::IsUnimodal(unsigned char nPos) const {
    constexpr int cnWindow = 10;
    for (int i = PeakFrom(nPos) + 1; i + cnWindow <= cnLast; ++i)
        if (Average(i + 1, i + cnWindow) > Average(i, i + cnWindow - 1))
            return false;
    return true;
}

void ClHistogram::LowPass(int nWidth) {
    if (nWidth < 2)
        return;
    const ClHistogram Before(*this);
    const int nHalf = std::min(nWidth / 2, cnLast);
    for (int i = 0; i <= cnLast; ++i)
        m_anCount[i] = static_cast<std::int32_t>(Before.Average(i - nHalf, i + nHalf));
}

// Calibration

void ClHistogram::GetNoiseFreeRange(double dDark, double dBright, unsigned char& nLow,
                                    unsigned char& nHigh) const {
    const std::int64_t nTotal = Count(0, cnLast);
    int nFrom = 0;
    const std::int64_t nDark = Limit(dDark, nTotal);
    for (std::int64_t nSum = m_anCount[0]; nSum <= nDark && nFrom < cnLast;)
        nSum += m_anCount[++nFrom];
    int nTo = cnLast;
    const std::int64_t nBright = Limit(dBright, nTotal);
    for (std::int64_t nSum = m_anCount[cnLast]; nSum <= nBright && nTo > 0;)
        nSum += m_anCount[--nTo];
    nLow = static_cast<unsigned char>(nFrom);
    nHigh = static_cast<unsigned char>(nTo);
}

void ClHistogram::CalcFirstDerivation(int nWidth, double* pOut) const {
    const int w = std::clamp(nWidth, 0, cnLast);
    for (int i = w; i <= cnLast - w; ++i) { // none from a width of 128 on
        double dSum = 0.0;
        for (int j = 1; j <= w; ++j) {
            const auto dRise =
                static_cast<double>(std::int64_t{m_anCount[i + j]} - m_anCount[i - j]);
            dSum += dRise * 0.5 / j;
        }
        pOut[i] = dSum / std::max(w, 1);
    }
}

void ClHistogram::GetRange(const ClImage& Image, double dDark, double dBright, unsigned char& nLow,
                           unsigned char& nHigh) {
    ClHistogram Histogram;
    Histogram.Create(Image);
    Histogram.GetNoiseFreeRange(dDark, dBright, nLow, nHigh);
}
