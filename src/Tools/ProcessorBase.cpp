#include "Tools/ProcessorBase.h"

#include "Tools/ClassCallProfile.h"
#include "Tools/Exception.h"
#include "Tools/ProfileTimer.h"
#include "Tools/StopWatch.h"

#include <TessarinCalibrateSDK.h>

#include <typeinfo>

ClProcessorBase::ClProcessorBase() : m_pTimer(g_pProfileTimer) {}

ClProcessorBase::~ClProcessorBase() = default;

const char* ClProcessorBase::Name() const {
    return "ProcessorBase";
}

bool ClProcessorBase::CanApply() {
    return false;
}

long ClProcessorBase::ParameterString(char* pBuffer, unsigned long nSize) {
    if (pBuffer == nullptr || nSize == 0)
        throw ClException("Unexpected zero-length string", QMT_ERROR_INTERNAL, true, VEK_HERE);
    pBuffer[0] = '\0';
    return 0;
}

void ClProcessorBase::QueryParameters(ClParameterContainer& Container) {
    ClParameterProvider::QueryParameters(Container);
}

void ClProcessorBase::Timer(bool bEnable) {
    m_pTimer = bEnable ? g_pProfileTimer : nullptr;
}

long ClProcessorBase::Initialize() {
    return 0;
}

long ClProcessorBase::Finalize(long) {
    return 0;
}

long ClProcessorBase::Apply() {
    TimerStart(nullptr);
    Vek::CXStopWatch watch;
    watch.Start();

    const long nInit = Initialize();
    if (nInit != 0)
        return nInit;
    const long nResult = Process();
    const long nFinal = Finalize(nResult);
    if (nFinal != 0)
        throw ClException("Finalization failed", nFinal, true, VEK_HERE);

    if (g_pClassCallProfile != nullptr)
        g_pClassCallProfile->AddCall(typeid(*this), watch.Seconds());
    TimerStop(nullptr);
    return nResult;
}

void ClProcessorBase::TimerStart(const char* pText) {
    if (m_pTimer != nullptr)
        m_pTimer->TimerStart(pText);
}

void ClProcessorBase::TimerStop(const char* pText) {
    if (m_pTimer == nullptr)
        return;
    if (pText != nullptr) {
        m_pTimer->TimerStop(pText);
        return;
    }
    char szSettings[512];
    ParameterString(szSettings, sizeof szSettings);
    m_pTimer->TimerStop("%s %s", Name(), szSettings);
}
