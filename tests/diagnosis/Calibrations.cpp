#include "diagnosis/Calibrations.h"

#include "sim/Scanner.h"

#include <TessarinCalibrateSDK.h>

#include <stdexcept>
#include <string>

namespace TestSupport {

namespace {

using diagnosis::Bytes;

void Require(long nStatus) {
    if (nStatus != QMT_SUCCESS)
        throw std::runtime_error("status " + std::to_string(nStatus));
}

class ClHandle {
public:
    ClHandle() : m_pHandle(CalibrateCreate()) {}
    ~ClHandle() { CalibrateDelete(&m_pHandle); }
    ClHandle(const ClHandle&) = delete;
    ClHandle& operator=(const ClHandle&) = delete;
    operator void*() const { return m_pHandle; }

private:
    void* m_pHandle;
};

} // namespace

Bytes Generated(const Bytes& Capture) {
    Bytes aCapture = Capture;
    const ClHandle Handle;
    Require(CalibrateGenerateData(Handle, aCapture.data(), aCapture.size()));
    unsigned long nSize = 0;
    CalibrateGetData(Handle, nullptr, &nSize);
    Bytes aBlock(nSize);
    Require(CalibrateGetData(Handle, aBlock.data(), &nSize));
    return aBlock;
}

Bytes Corrected(const Bytes& Calibration, const Bytes& Capture) {
    Bytes aData = Calibration;
    Bytes aCapture = Capture;
    Bytes aOut(40 + 1024 + sim::g_nFrameWidth * sim::g_nFrameHeight);
    unsigned long nSize = aOut.size();
    const ClHandle Handle;
    Require(CalibrateSetOption(Handle, "DynamicFingerMask=false"));
    Require(CalibrateSetData(Handle, aData.data(), aData.size()));
    Require(Calibrate(Handle, aCapture.data(), aCapture.size(), aOut.data(), &nSize));
    return aOut;
}

} // namespace TestSupport
