#pragma once

/// What the harnesses share. A harness takes any bytes, drives one entry of the library with them
/// and ends the process where the library breaks a promise.

#include <TessarinCalibrateSDK.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize);

namespace Fuzz {

/// Ends the process: a promise does not hold.
inline void Require(bool bHolds, const char* szPromise) {
    if (bHolds)
        return;
    std::fprintf(stderr, "broken: %s\n", szPromise);
    std::abort();
}

/// A status is 0 or has a row in the catalogue.
inline void RequireStatus(long nStatus) {
    Require(nStatus == 0 || (nStatus < 0 && std::strcmp(GetErrorDescriptionIntern(nStatus),
                                                        "Unknown error code.") != 0),
            "every status is 0 or a known negative number");
}

/// A copy that ends where its block ends, so that a sanitizer sees every read behind it.
class ClBlock {
public:
    ClBlock(const std::uint8_t* pData, std::size_t nSize)
        : m_pData(std::make_unique<unsigned char[]>(nSize)), m_nSize(nSize) {
        if (nSize > 0)
            std::memcpy(m_pData.get(), pData, nSize);
    }
    unsigned char* Data() const { return m_pData.get(); }
    unsigned long Size() const { return m_nSize; }

private:
    std::unique_ptr<unsigned char[]> m_pData;
    std::size_t m_nSize;
};

/// A handle with its owner.
class ClHandle {
public:
    ClHandle() : m_pHandle(CalibrateCreate()) { Require(m_pHandle != nullptr, "a handle"); }
    ClHandle(const ClHandle&) = delete;
    ClHandle& operator=(const ClHandle&) = delete;
    ~ClHandle() { Require(CalibrateDelete(&m_pHandle) == 0, "a handle is deleted"); }

    operator void*() const { return m_pHandle; }
    void Set(const char* szOption) const {
        Require(CalibrateSetOption(m_pHandle, szOption) == 0, "an option is set");
    }

private:
    void* m_pHandle;
};

/// A calibration block of a scanner with captures of `nSide` x `nSide` pixels, whose corrected
/// images have 24 x 32: small enough for many runs a second.
std::string SmallScanner(unsigned int nSide);

} // namespace Fuzz
