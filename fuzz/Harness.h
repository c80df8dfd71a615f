#pragma once

/// What the harnesses share. A harness takes any bytes, drives one entry of the library with them
/// and ends the process where the library breaks a promise.

#include <TessarinCalibrateSDK.h>

#include <algorithm>
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

/// Something that inputs are meant to get to. The ordinary tests fail where no input of a corpus
/// does: a corpus that is turned away at the door tests nothing behind it.
class ClMilestone {
public:
    explicit ClMilestone(const char* szWhat) noexcept : m_szWhat(szWhat), m_pNext(s_pFirst) {
        s_pFirst = this;
    }
    ClMilestone(const ClMilestone&) = delete;
    ClMilestone& operator=(const ClMilestone&) = delete;

    void Reach() noexcept { m_bReached = true; }

    const char* What() const { return m_szWhat; }
    bool IsReached() const { return m_bReached; }
    const ClMilestone* Next() const { return m_pNext; }
    static const ClMilestone* First() { return s_pFirst; }

private:
    inline static ClMilestone* s_pFirst = nullptr;

    const char* m_szWhat;
    ClMilestone* m_pNext;
    bool m_bReached = false;
};

/// The bytes of an input one after the other, zeros behind them.
class ClBytes {
public:
    ClBytes(const std::uint8_t* pData, std::size_t nSize) : m_pData(pData), m_nSize(nSize) {}
    bool IsEmpty() const { return m_nNext >= m_nSize; }
    int Next() { return IsEmpty() ? 0 : m_pData[m_nNext++]; }
    int NextSigned() { return static_cast<signed char>(Next()); }
    int Below(int nEnd) { return Next() % nEnd; }
    std::uint32_t Next32() {
        std::uint32_t nValue = 0;
        for (int i = 0; i < 4; ++i)
            nValue = nValue << 8 | static_cast<std::uint32_t>(Next());
        return nValue;
    }
    /// Up to `nMost` bytes, as many as the next byte says.
    std::string Text(std::size_t nMost) {
        std::string Taken;
        for (std::size_t n = static_cast<std::size_t>(Next()) % (nMost + 1); n > 0 && !IsEmpty();
             --n)
            Taken += static_cast<char>(Next());
        return Taken;
    }
    std::string Rest() {
        const std::string All(reinterpret_cast<const char*>(m_pData), m_nSize);
        const std::string Left = All.substr(std::min(m_nNext, m_nSize));
        m_nNext = m_nSize;
        return Left;
    }

private:
    const std::uint8_t* m_pData;
    std::size_t m_nSize;
    std::size_t m_nNext = 0;
};

/// A copy that ends where its block ends, so that a sanitizer sees every read behind it.
class ClBlock {
public:
    ClBlock(const std::uint8_t* pData, std::size_t nSize)
        : m_pData(std::make_unique<unsigned char[]>(nSize)), m_nSize(nSize) {
        if (nSize > 0)
            std::memcpy(m_pData.get(), pData, nSize);
    }
    explicit ClBlock(const std::string& Bytes)
        : ClBlock(reinterpret_cast<const std::uint8_t*>(Bytes.data()), Bytes.size()) {}
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
/// The same with corrected images of another size.
std::string SmallScanner(unsigned int nSide, unsigned int nWidth, unsigned int nHeight);

/// An 8-bit grey bitmap block of these lines, whose width is a multiple of 4.
std::string GreyBlock(unsigned int nWidth, unsigned int nHeight, const std::string& Pixels,
                      unsigned int nPelsPerMetre = 0);

/// The block that `get` gives; empty where the handle has none.
std::string BlockFrom(const ClHandle& handle, long (*get)(void*, unsigned char*, unsigned long*));

/// What a call writes to a caller's room of the size that a first call told.
std::string Corrected(const ClHandle& handle, const ClBlock& capture);

} // namespace Fuzz
