#include "bench/Generation.h"

#include "Calibrate/CalibrateGeometricData.h"
#include "Tools/MemStream.h"
#include "sim/BitmapBlock.h"
#include "tests/support/OwnedHandle.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace {

thread_local std::string g_sLastWords;

void KeepWords(const char* szText) {
    const char* szError = std::strstr(szText, "() Error: ");
    if (szError == nullptr)
        return;
    const char* szFeed = std::strchr(szError, '\n');
    g_sLastWords = szFeed != nullptr ? szFeed + 1 : szError + std::strlen("() Error: ");
}

} // namespace

// The library's trace comes here, since the program has a function of this name.
extern "C" long VekLFLog(long, const char* format, ...) {
    char szText[1024];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(szText, sizeof szText, format, arguments);
    va_end(arguments);
    KeepWords(szText);
    return 0;
}

namespace bench {

namespace {

using TestSupport::ClOwnedHandle;

void Require(long nStatus) {
    TestSupport::RequireSuccess(nStatus, " (" + LastWords() + ")");
}

Bytes DataOf(void* handle) {
    unsigned long nSize = 0;
    CalibrateGetData(handle, nullptr, &nSize);
    Bytes aBlock(nSize);
    Require(CalibrateGetData(handle, aBlock.data(), &nSize));
    return aBlock;
}

Points PointsOf(const ClCalibrateGeometricData::PointList& rList) {
    Points aPoints;
    for (unsigned long n = 0; n < rList.Entries(); ++n)
        aPoints.push_back({rList[n].x, rList[n].y});
    return aPoints;
}

void ReadPoints(ClGeneration& rResult) {
    const unsigned char* pBlock = rResult.m_aBlock.data();
    ClMemStream Stream(pBlock, rResult.m_aBlock.size());
    ClCalibrateGeometricData Data;
    Data.Read(Stream);
    rResult.m_aActual = PointsOf(Data.m_aActual[0]);
    rResult.m_aTarget = PointsOf(Data.m_aTarget);
}

} // namespace

std::string LastWords() {
    return g_sLastWords;
}

ClGeneration Generate(const sim::ClRaster& Raw) {
    Bytes aCapture = sim::BitmapBlock(Raw);
    const ClOwnedHandle Handle;
    ClGeneration Result;
    g_sLastWords.clear();
    Result.m_nStatus = CalibrateGenerateData(Handle, aCapture.data(), aCapture.size());
    Result.m_sWords = LastWords();
    if (Result.m_nStatus == QMT_SUCCESS) {
        Result.m_aBlock = DataOf(Handle);
        ReadPoints(Result);
    }
    return Result;
}

bool Loads(const Bytes& aCalibration) {
    Bytes aData = aCalibration;
    const ClOwnedHandle Handle;
    // Where the points are judged, no table is needed.
    Require(CalibrateSetOption(Handle, "PrecalculatedData=true"));
    return CalibrateSetData(Handle, aData.data(), aData.size()) == QMT_SUCCESS;
}

Bytes Correct(const Bytes& aCalibration, const sim::ClRaster& Raw) {
    Bytes aData = aCalibration;
    Bytes aCapture = sim::BitmapBlock(Raw);
    Bytes aOut(cnPixelsAt + sim::g_nFrameWidth * sim::g_nFrameHeight);
    unsigned long nSize = aOut.size();
    const ClOwnedHandle Handle;
    Require(CalibrateSetOption(Handle, "DynamicFingerMask=false"));
    Require(CalibrateSetData(Handle, aData.data(), aData.size()));
    Require(Calibrate(Handle, aCapture.data(), aCapture.size(), aOut.data(), &nSize));
    return aOut;
}

double CheckEfts(const Bytes& aCalibration, const Bytes& aCorrected) {
    Bytes aData = aCalibration;
    Bytes aImage = aCorrected;
    const ClOwnedHandle Handle;
    double dResult = 0.0;
    // The check needs the points, not the table.
    Require(CalibrateSetOption(Handle, "PrecalculatedData=true"));
    Require(CalibrateSetData(Handle, aData.data(), aData.size()));
    Require(CalibrateCheckEfts(Handle, aImage.data(), aImage.size(), &dResult));
    return dResult;
}

ClPointErrors ErrorsOf(const Points& aActual, const Points& aTrue) {
    if (aActual.size() != aTrue.size() || aTrue.empty())
        throw std::runtime_error("points and true centres differ in number");
    ClPointErrors Errors;
    for (std::size_t n = 0; n < aTrue.size(); ++n) {
        const double dx = std::fabs(aActual[n].x - aTrue[n].x);
        const double dy = std::fabs(aActual[n].y - aTrue[n].y);
        Errors.m_dMaxX = std::max(Errors.m_dMaxX, dx);
        Errors.m_dMaxY = std::max(Errors.m_dMaxY, dy);
        Errors.m_dRmsX += dx * dx;
        Errors.m_dRmsY += dy * dy;
    }
    Errors.m_dRmsX = std::sqrt(Errors.m_dRmsX / static_cast<double>(aTrue.size()));
    Errors.m_dRmsY = std::sqrt(Errors.m_dRmsY / static_cast<double>(aTrue.size()));
    return Errors;
}

bool IsWrong(const ClPointErrors& Errors) {
    return Errors.m_dMaxX > cdWrongX || Errors.m_dMaxY > cdWrongY;
}

} // namespace bench
