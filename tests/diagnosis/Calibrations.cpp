#include "diagnosis/Calibrations.h"

#include "sim/Scanner.h"
#include "support/OwnedHandle.h"

#include <TessarinCalibrateSDK.h>

namespace TestSupport {

using diagnosis::Bytes;

Bytes Generated(const Bytes& Capture) {
    Bytes aCapture = Capture;
    const ClOwnedHandle Handle;
    RequireSuccess(CalibrateGenerateData(Handle, aCapture.data(), aCapture.size()));
    unsigned long nSize = 0;
    CalibrateGetData(Handle, nullptr, &nSize);
    Bytes aBlock(nSize);
    RequireSuccess(CalibrateGetData(Handle, aBlock.data(), &nSize));
    return aBlock;
}

Bytes Corrected(const Bytes& Calibration, const Bytes& Capture) {
    Bytes aData = Calibration;
    Bytes aCapture = Capture;
    Bytes aOut(40 + 1024 + sim::g_nFrameWidth * sim::g_nFrameHeight);
    unsigned long nSize = aOut.size();
    const ClOwnedHandle Handle;
    RequireSuccess(CalibrateSetOption(Handle, "DynamicFingerMask=false"));
    RequireSuccess(CalibrateSetData(Handle, aData.data(), aData.size()));
    RequireSuccess(Calibrate(Handle, aCapture.data(), aCapture.size(), aOut.data(), &nSize));
    return aOut;
}

} // namespace TestSupport
