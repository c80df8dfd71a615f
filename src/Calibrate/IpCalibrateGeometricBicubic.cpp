#include "Calibrate/IpCalibrateGeometricBicubic.h"

#include "ImageProcessing/Kernels/Warp.h"
#include "Math/ThinPlateSplines.h"
#include "Tools/Allocate.h"
#include "Tools/CallTrace.h"
#include "Tools/FpImage.h"

#include <cmath>
#include <cstring>

ClProcessorBase* ClIpCalibrateGeometricBicubic::Create() {
    return Vek::NewObject<ClIpCalibrateGeometricBicubic>();
}

const char* ClIpCalibrateGeometricBicubic::Name() const {
    return "ClIpCalibrateGeometricBicubic";
}

double ClIpCalibrateGeometricBicubic::CubicConvolution(double t) {
    const double u = std::fabs(t);
    if (u >= 2.0)
        return 0.0;
    if (u >= 1.0)
        return -0.75 * u * u * u + 3.75 * u * u - 6.0 * u + 3.0;
    return (1.25 * u - 2.25) * u * u + 1.0;
}

void ClIpCalibrateGeometricBicubic::InitiateParams(PointList& rTarget, PointList* pActual,
                                                   unsigned int nPlanes) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBicubic::InitiateParams()");
    if (!Warp::IsSizeAllowed(m_nTargetWidth, m_nTargetHeight, nPlanes))
        throw ClExTessarin(QMT_ERROR_CURRUPT_DATA, VEK_HERE);
    TpThinPlateSplines<double> aSplines[ClCalibrateGeometricData::cnMaxPlanes];
    for (unsigned int p = 0; p < nPlanes; ++p) {
        if (pActual[p].Entries() != rTarget.Entries())
            throw ClExTessarin(QMT_ERROR_CURRUPT_DATA, VEK_HERE);
        aSplines[p].Setup(static_cast<long>(rTarget.Entries()), rTarget.Data(), pActual[p].Data());
    }

    m_nEntrySize = Warp::cnEntrySize;
    auto pTable = Vek::NewArrayPtr<unsigned char>(TableBytes());
    unsigned char* pEntry = pTable.get();
    for (std::uint32_t y = 0; y < m_nTargetHeight; ++y)
        for (std::uint32_t x = 0; x < m_nTargetWidth; ++x)
            for (unsigned int p = 0; p < nPlanes; ++p, pEntry += m_nEntrySize) {
                double sx = 0.0;
                double sy = 0.0;
                aSplines[p].Transform(x, y, &sx, &sy);
                FillEntry(sx, sy, pEntry);
            }
    m_pTable = std::move(pTable);
}

namespace {

/// One axis of a source position: the first of its 4 samples and their kernel values.
struct StAxis {
    std::int64_t m_nFirst = 0;
    double m_adKernel[4] = {};
};

/// Splits a position that lies within 1 and `dLimit`. The fraction is taken from the position
/// rounded to a 32-bit float, as tables in use have it.
StAxis SplitPosition(double dPosition, float fLimit) {
    float f = static_cast<float>(dPosition);
    if (f < 1.0F)
        f = 1.0F;
    if (f > fLimit)
        f = fLimit;
    StAxis Axis;
    const std::int64_t nWhole = static_cast<std::int64_t>(f);
    const double dFraction = static_cast<double>(f) - static_cast<double>(nWhole);
    Axis.m_nFirst = nWhole - 1;
    Axis.m_adKernel[0] = ClIpCalibrateGeometricBicubic::CubicConvolution(-1.0 - dFraction);
    Axis.m_adKernel[1] = ClIpCalibrateGeometricBicubic::CubicConvolution(-dFraction);
    Axis.m_adKernel[2] = ClIpCalibrateGeometricBicubic::CubicConvolution(1.0 - dFraction);
    Axis.m_adKernel[3] = ClIpCalibrateGeometricBicubic::CubicConvolution(2.0 - dFraction);
    return Axis;
}

/// Whether all samples around a position lie inside an axis of this length. False for a position
/// that is not a number.
bool IsInside(double dPosition, float fLength) {
    return dPosition >= 1.0 && dPosition <= static_cast<double>(fLength) - 3.0;
}

} // namespace

void ClIpCalibrateGeometricBicubic::FillEntry(double sx, double sy, unsigned char* pEntry) const {
    std::memset(pEntry, 0, Warp::cnEntrySize);
    std::int32_t nOffset = Warp::cnNoSource;
    std::memcpy(pEntry, &nOffset, sizeof nOffset);

    const float fWidth = static_cast<float>(m_nSourceWidth);
    const float fHeight = static_cast<float>(m_nSourceHeight);
    if (!IsInside(sx, fWidth) || !IsInside(sy, fHeight))
        return;
    const StAxis X = SplitPosition(sx, fWidth - 3.0F);
    const StAxis Y = SplitPosition(sy, fHeight - 3.0F);
    const std::int64_t nStride = static_cast<std::int64_t>(Warp::LineStride(m_nSourceWidth));
    // Sides beyond what a float holds exactly, or what an offset reaches, have no source.
    if (X.m_nFirst + 4 > std::int64_t{m_nSourceWidth} ||
        Y.m_nFirst + 4 > std::int64_t{m_nSourceHeight} ||
        Y.m_nFirst > (INT32_MAX - X.m_nFirst) / nStride)
        return;

    nOffset = static_cast<std::int32_t>(Y.m_nFirst * nStride + X.m_nFirst);
    std::memcpy(pEntry, &nOffset, sizeof nOffset);
    std::int16_t anWeights[16];
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            anWeights[4 * r + c] =
                static_cast<std::int16_t>(X.m_adKernel[c] * Warp::cdWeightOne * Y.m_adKernel[r]);
    std::memcpy(pEntry + sizeof nOffset, anWeights, sizeof anWeights);
}

void ClIpCalibrateGeometricBicubic::CalibrateGeo(ClImage& rIn, ClImage& rOut) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBicubic::CalibrateGeo()");
    const std::size_t nLineEntries = std::size_t{m_nTargetWidth} * m_nPlanes;
    const unsigned char* pEntries = m_pTable.get();
    for (int y = 0; y < rOut.Height(); ++y, pEntries += nLineEntries * m_nEntrySize)
        Kernels::WarpLine(pEntries, nLineEntries, rIn.Data(), rIn.LineStrideBytes(),
                          static_cast<int>(m_nPlanes), m_nBackground, rOut.LineData(y));
}
