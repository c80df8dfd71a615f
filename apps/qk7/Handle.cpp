#include "apps/qk7/Handle.h"

#include "TessarinCalibrateSDK.h"

#include <cstring>

namespace qk7 {

namespace {

/// The interface takes blocks that it only reads by plain pointers. A vector without bytes has no
/// pointer to give, which would be another failure than that of an empty block.
unsigned char* ReadOnly(const Bytes& Block) {
    static unsigned char nothing = 0;
    return Block.empty() ? &nothing : const_cast<unsigned char*>(Block.data());
}

void Check(long nStatus) {
    if (nStatus != QMT_SUCCESS)
        throw ClLibraryError(nStatus);
}

/// The size protocol: call with the guess, and once more when the library asks for more room. The
/// status of a buffer that is too small has other meanings too: only a size that grew asks.
template <class Call>
Bytes Fetch(std::size_t nExpected, Call call) {
    Bytes result(nExpected > 0 ? nExpected : 1);
    unsigned long nSize = result.size();
    long nStatus = call(result.data(), &nSize);
    if (nStatus == QMT_ERROR_TEMPLATE_SIZE && nSize > result.size()) {
        result.resize(nSize);
        nStatus = call(result.data(), &nSize);
    }
    Check(nStatus);
    result.resize(nSize);
    return result;
}

} // namespace

ClLibraryError::ClLibraryError(long nNumber)
    : std::runtime_error(std::to_string(nNumber) + " " + CalibrateGetErrorDescription(nNumber)),
      m_nNumber(nNumber) {}

ClHandle::ClHandle() : m_pHandle(CalibrateCreate()) {
    if (m_pHandle == nullptr)
        throw ClLibraryError(QMT_ERROR_OUT_OF_MEMORY);
}

ClHandle::~ClHandle() {
    CalibrateDelete(&m_pHandle);
}

void ClHandle::SetOption(const std::string& Option) {
    Check(CalibrateSetOption(m_pHandle, Option.c_str()));
}

bool ClHandle::IsEnabled(const std::string& Key) const {
    char szValue[16] = "";
    unsigned long nSize = sizeof szValue;
    Check(CalibrateGetOption(m_pHandle, Key.c_str(), szValue, &nSize));
    return std::strcmp(szValue, "Enabled") == 0;
}

void ClHandle::SetData(const Bytes& Block) {
    Check(CalibrateSetData(m_pHandle, ReadOnly(Block), Block.size()));
}

void ClHandle::SetPrecalculatedData(const Bytes& Block) {
    Check(CalibrateSetPrecalculatedData(m_pHandle, ReadOnly(Block), Block.size()));
}

void ClHandle::SetReferenceData(const Bytes& Block) {
    Check(CalibrateSetReferenceData(m_pHandle, ReadOnly(Block), Block.size()));
}

void ClHandle::GenerateData(const Bytes& Capture) {
    Check(CalibrateGenerateData(m_pHandle, ReadOnly(Capture), Capture.size()));
}

Bytes ClHandle::Data() const {
    constexpr std::size_t cnUsualBytes = 2048; // 75 pairs of points take 1.2 KiB
    return Fetch(cnUsualBytes, [this](unsigned char* pData, unsigned long* pSize) {
        return CalibrateGetData(m_pHandle, pData, pSize);
    });
}

Bytes ClHandle::PrecalculatedData(std::size_t nExpected) const {
    return Fetch(nExpected, [this](unsigned char* pData, unsigned long* pSize) {
        return CalibrateGetPrecalculatedData(m_pHandle, pData, pSize);
    });
}

Bytes ClHandle::Calibrate(const Bytes& Capture, std::size_t nExpected) const {
    return Fetch(nExpected, [&](unsigned char* pData, unsigned long* pSize) {
        return ::Calibrate(m_pHandle, ReadOnly(Capture), Capture.size(), pData, pSize);
    });
}

StLevels ClHandle::Levels() const {
    StLevels levels;
    Check(GetCalibrationWarningLevels(m_pHandle, &levels.m_dDirt, &levels.m_dDryFinger));
    return levels;
}

double ClHandle::CheckEfts(const Bytes& Corrected) const {
    double dPercent = 0.0;
    Check(CalibrateCheckEfts(m_pHandle, ReadOnly(Corrected), Corrected.size(), &dPercent));
    return dPercent;
}

double ClHandle::Contamination(const Bytes& Capture) const {
    double dLevel = 0.0;
    Check(ContaminationDetection(m_pHandle, ReadOnly(Capture), Capture.size(), &dLevel));
    return dLevel;
}

} // namespace qk7
