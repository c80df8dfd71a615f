#include "TessarinCalibrateSDK/CallFrame.h"

namespace CallFrame {

long Leave(const StTexts& Texts, long nCode, long nLevel) {
    VekLFLog(nLevel, Texts.m_szLeaving, static_cast<int>(nCode), GetErrorDescriptionIntern(nCode));
    return nCode;
}

long LeaveWith(const StTexts& Texts, const ClException& e) {
    // A target that cannot be evaluated is an expected outcome.
    const long nLevel =
        e.Number() == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE ? Vek::eLogTrace : Vek::eLogError;
    VekLFLog(nLevel, Texts.m_szError, e.What() != nullptr ? e.What() : "");
    VekLFLog(nLevel, Texts.m_szFile, e.File(), static_cast<int>(e.Line()));
    return Leave(Texts, e.Number(), nLevel);
}

long LeaveWith(const StTexts& Texts, const std::exception& e) {
    VekLFLog(Vek::eLogError, Texts.m_szError, e.what() != nullptr ? e.what() : "");
    return Leave(Texts, QMT_ERROR_INTERNAL, Vek::eLogError);
}

} // namespace CallFrame
