#pragma once

/// A handle of the library with its owner, for programs that use the calls as they are.

#include <TessarinCalibrateSDK.h>

#include <stdexcept>
#include <string>

namespace TestSupport {

class ClOwnedHandle {
public:
    ClOwnedHandle() : m_pHandle(CalibrateCreate()) {}
    ClOwnedHandle(const ClOwnedHandle&) = delete;
    ClOwnedHandle& operator=(const ClOwnedHandle&) = delete;
    ~ClOwnedHandle() { CalibrateDelete(&m_pHandle); }

    operator void*() const { return m_pHandle; }

private:
    void* m_pHandle;
};

/// Throws a status that is a failure, with its words and `Further` ones.
inline void RequireSuccess(long nStatus, const std::string& Further = "") {
    if (nStatus != QMT_SUCCESS)
        throw std::runtime_error(std::to_string(nStatus) + " " +
                                 CalibrateGetErrorDescription(nStatus) + Further);
}

} // namespace TestSupport
