#include "Calibrate/IpCalibrateGeometricBicubic.h"

#include "Calibrate/WarpEntries.h"
#include "Calibrate/WarpTableMaking.h"
#include "ImageProcessing/Kernels/Warp.h"
#include "Math/ThinPlateSplines.h"
#include "Tools/Allocate.h"
#include "Tools/CallTrace.h"
#include "Tools/FpImage.h"

#include <cmath>

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
        return Warp::OuterCubic(u);
    return Warp::InnerCubic(u);
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
    Warp::MakeTable(*this, aSplines, pTable.get());
    m_pTable = std::move(pTable);
}

void ClIpCalibrateGeometricBicubic::FillEntry(double sx, double sy, unsigned char* pEntry) const {
    Warp::FillEntry({m_nSourceWidth, m_nSourceHeight}, sx, sy, pEntry);
}

void ClIpCalibrateGeometricBicubic::CalibrateGeo(ClImage& rIn, ClImage& rOut) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBicubic::CalibrateGeo()");
    const std::size_t nLineEntries = std::size_t{m_nTargetWidth} * m_nPlanes;
    const unsigned char* pEntries = m_pTable.get();
    for (int y = 0; y < rOut.Height(); ++y, pEntries += nLineEntries * m_nEntrySize)
        Kernels::WarpLine(pEntries, nLineEntries, rIn.Data(), rIn.LineStrideBytes(),
                          static_cast<int>(m_nPlanes), m_nBackground, rOut.LineData(y));
}
