#include "apps/qk7/Handle.h"

#include "TessarinCalibrateSDK.h"

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

void ClHandle::SetData(const Bytes& Block) {
    Check(CalibrateSetData(m_pHandle, ReadOnly(Block), Block.size()));
}

void ClHandle::SetPrecalculatedData(const Bytes& Block) {
    Check(CalibrateSetPrecalculatedData(m_pHandle, ReadOnly(Block), Block.size()));
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

} // namespace qk7
