// Tools for developers of the dot location: nothing in the library calls them.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"
#include "Tools/Bitmap.h"
#include "Tools/CallTrace.h"
#include "Tools/FpImage.h"
#include "Tools/MathConst.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace {

using PointList = ClIpCalibrateGeometricBuildRefPointsBase::PointList;

constexpr double cdQuarterPi = MathConst::cdPi / 4;
/// Pixels as near as this touch each other.
constexpr double cdNear = 1.5;
/// How much smaller a dot may be, in millimetres of its diameter.
constexpr double cdDiameterTolerance = 0.2;
/// The x of a point that belongs to a cluster.
constexpr double cdTaken = -1.0;

constexpr std::size_t cnNameSize = 2048;
constexpr char cszEnding[] = ".bmp";

/// When this file was compiled, for names of debug files only. The compiler takes both from
/// SOURCE_DATE_EPOCH where that is set: a build that wants to be reproducible sets it.
constexpr const char* cszBuildDate = __DATE__;
constexpr const char* cszBuildTime = __TIME__;

// Windows and clusters

/// The whole numbers from `m_nBegin` to `m_nEnd` - 1.
struct StSpan {
    int m_nBegin = 0;
    int m_nEnd = 0;
};

/// The pixels at most `dHalf` from `nCentre`, of `nSize` that there are.
StSpan SpanAround(long nCentre, double dHalf, int nSize) {
    const double dFirst = std::max(0.0, static_cast<double>(nCentre) - dHalf);
    const double dLast = std::min(nSize - 1.0, static_cast<double>(nCentre) + dHalf);
    if (!(dHalf >= 0.0) || !(dFirst <= dLast))
        return {};
    return {static_cast<int>(dFirst), static_cast<int>(dLast) + 1};
}

double Pixels(double dMillimetres, double dDpi) {
    return dMillimetres * dDpi / MathConst::cdMillimetresPerInch;
}

/// The weighted centre of what is darker than `nRef` in a window.
ClVector DarkCentre(const ClImage& rImage, StSpan Columns, StSpan Lines, long nRef) {
    ClVector vSum;
    double dWeights = 0.0;
    for (int y = Lines.m_nBegin; y < Lines.m_nEnd; ++y) {
        const unsigned char* pLine = rImage.LineData(y);
        for (int x = Columns.m_nBegin; x < Columns.m_nEnd; ++x) {
            const long nValue = pLine[static_cast<std::ptrdiff_t>(x) * rImage.Planes()];
            const double dWeight = nRef > nValue ? static_cast<double>(nRef - nValue) : 0.0;
            vSum = vSum + ClVector(dWeight * x, dWeight * y);
            dWeights += dWeight;
        }
    }
    if (!(dWeights > 0.0))
        return {MathConst::cdNaN, MathConst::cdNaN};
    return {vSum.x / dWeights, vSum.y / dWeights};
}

struct StCluster {
    ClVector m_vSum;
    long m_nPoints = 0;
};

/// Takes in what stands behind point `nFirst` and near to it.
StCluster TakeCluster(PointList& rPoints, unsigned long nFirst) {
    const ClVector vFirst = rPoints[nFirst];
    StCluster Cluster{vFirst, 1};
    for (unsigned long i = nFirst + 1; i < rPoints.Entries(); ++i) {
        ClVector& rPoint = rPoints[i];
        if (rPoint.x < 0.0 || !((rPoint - vFirst).Length() < cdNear))
            continue;
        Cluster.m_vSum = Cluster.m_vSum + rPoint;
        ++Cluster.m_nPoints;
        rPoint.x = cdTaken;
    }
    return Cluster;
}

// File names

void CurrentTime(char (&szTime)[32]) {
    const std::time_t nNow = std::time(nullptr);
    if (ctime_r(&nNow, szTime) == nullptr)
        szTime[0] = '\0';
}

void DebugFileName(char (&szFile)[cnNameSize], const char* szName, const char* szPath) {
    char szTime[32];
    CurrentTime(szTime);
    const int nLength = std::snprintf(szFile, cnNameSize, "%sCalibrate[%s %s] %s %.24s.bmp",
                                      szPath != nullptr ? szPath : "", cszBuildDate, cszBuildTime,
                                      szName != nullptr ? szName : "", szTime);
    if (nLength < 0)
        throw ClExTessarin(QMT_ERROR_INTERNAL, VEK_HERE);
    if (static_cast<std::size_t>(nLength) >= cnNameSize)
        std::memcpy(szFile + cnNameSize - sizeof cszEnding, cszEnding, sizeof cszEnding);
    // Not every file system takes a colon; the first characters may name a drive.
    if (std::strlen(szFile) > 4)
        std::replace(szFile + 4, szFile + std::strlen(szFile), ':', '.');
}

} // namespace

void ClIpCalibrateGeometricBuildRefPointsBase::CheckDot(const ClImage& rImage, long nX, long nY,
                                                        long nRef, ClVector& rCentre) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::CheckDot()");
    if (rImage.Data() == nullptr) {
        rCentre = {MathConst::cdNaN, MathConst::cdNaN};
    } else {
        if (rImage.DataType() != ClImage::eUInt8)
            throw ClException("Image Type is not the assigned type", QMT_ERROR_INTERNAL, true,
                              VEK_HERE);
        const double dHalfX = std::trunc(Pixels(m_dDotDiameter, m_dSourceDpiX));
        const double dHalfY = std::trunc(Pixels(m_dDotDiameter, m_dSourceDpiY));
        rCentre = DarkCentre(rImage, SpanAround(nX, dHalfX, rImage.Width()),
                             SpanAround(nY, dHalfY, rImage.Height()), nRef);
    }
}

void ClIpCalibrateGeometricBuildRefPointsBase::RemoveSmallPoints(PointList& rIn,
                                                                 PointList& rOut) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::RemoveSmallPoints()");
    const double dX = Pixels(m_dDotDiameter, m_dSourceDpiX);
    const double dY = Pixels(m_dDotDiameter, m_dSourceDpiY);
    const double dLessX = Pixels(cdDiameterTolerance, m_dSourceDpiX);
    const double dLessY = Pixels(cdDiameterTolerance, m_dSourceDpiY);
    const double dArea = std::trunc(dX) * std::trunc(dY) * cdQuarterPi;
    const double dTolerance = dArea - (dX - dLessX) * (dY - dLessY) * cdQuarterPi;
    for (unsigned long i = 0; i < rIn.Entries(); ++i) {
        if (rIn[i].x < 0.0)
            continue;
        const StCluster Cluster = TakeCluster(rIn, i);
        const auto dCount = static_cast<double>(Cluster.m_nPoints);
        if (dArea - dTolerance < dCount && dArea + dTolerance > dCount)
            rOut.Append({Cluster.m_vSum.x / dCount, Cluster.m_vSum.y / dCount});
    }
}

void ClIpCalibrateGeometricBuildRefPointsBase::StoreDebug(ClImage* pImage, const char* szName,
                                                          const char* szPath) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBuildRefPointsBase::StoreDebug()");
    if (pImage == nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
    char szFile[cnNameSize];
    DebugFileName(szFile, szName, szPath);
    ClBitmap Bitmap;
    Bitmap.Attach(*pImage);
    Bitmap.Store(szFile);
}
