#include "Tools/MemStream.h"

#include "Tools/Allocate.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

constexpr unsigned int cnRefused = 0xFFFFFFFFu;

/// What a buffer grows to, truncated. `nBytes` does not exceed `LONG_MAX + 8`, so that the product
/// has room; it may still be more than there is memory for.
unsigned long WithMargin(unsigned long nBytes) {
    return static_cast<unsigned long>(static_cast<double>(nBytes) * 1.2);
}

} // namespace

ClMemStream::ClMemStream() = default;

ClMemStream::ClMemStream(unsigned long nSize, bool bWritable) : m_bWritable(bWritable) {
    m_pData = Vek::NewArray<unsigned char>(nSize);
    m_nSize = m_nCapacity = nSize;
}

ClMemStream::ClMemStream(unsigned char* pData, unsigned long nSize, bool bWritable) {
    Take(pData, nSize, bWritable);
}

ClMemStream::ClMemStream(const unsigned char* pData, unsigned long nSize) {
    Take(const_cast<unsigned char*>(pData), nSize, false); // never written: not writable
}

ClMemStream::~ClMemStream() {
    try {
        ClMemStream::Close();
    } catch (...) { // pending bits that could not be written; the buffer is released
    }
}

void ClMemStream::Attach(unsigned char* pData, unsigned long nSize, bool bWritable) {
    Close();
    Take(pData, nSize, bWritable);
}

void ClMemStream::Attach(const unsigned char* pData, unsigned long nSize) {
    Close();
    Take(const_cast<unsigned char*>(pData), nSize, false);
}

void ClMemStream::Take(unsigned char* pData, unsigned long nSize, bool bWritable) noexcept {
    m_pData = pData;
    m_nSize = m_nCapacity = pData != nullptr ? nSize : 0;
    m_nPos = 0;
    m_bAttached = true;
    m_bWritable = bWritable;
}

bool ClMemStream::Open() {
    m_nPos = 0;
    return true;
}

void ClMemStream::Close() {
    try {
        ClStream::Close();
    } catch (...) {
        Release();
        throw;
    }
    Release();
}

void ClMemStream::Release() noexcept {
    if (!m_bAttached)
        delete[] m_pData;
    m_pData = nullptr;
    m_nSize = m_nCapacity = m_nPos = 0;
    ResetBits();
}

unsigned long ClMemStream::Pos() const {
    return m_nPos;
}

unsigned long ClMemStream::Size() const {
    return m_nSize;
}

const char* ClMemStream::Name() const {
    return "Mem Stream";
}

bool ClMemStream::IsSeekable() const {
    return true;
}

const unsigned char* ClMemStream::GetData() const {
    return m_nSize > 0 ? m_pData : nullptr;
}

unsigned long ClMemStream::ReadRaw(void* pData, unsigned long nSize) {
    if (m_nPos >= m_nSize || nSize == 0)
        return 0;
    const unsigned long nDone = std::min(nSize, m_nSize - m_nPos);
    std::memcpy(pData, m_pData + m_nPos, nDone);
    m_nPos += nDone;
    return nDone;
}

unsigned long ClMemStream::WriteRaw(const void* pData, unsigned long nSize) {
    if (!m_bWritable)
        throw ClExStream("ClMemStream::WriteRaw. Stream is not open for write", QMT_ERROR_IO, false,
                         VEK_NOWHERE);
    if (nSize > m_nCapacity - m_nPos) { // the position is never behind the capacity
        unsigned long nNeeded = 0;
        if (__builtin_add_overflow(m_nCapacity, nSize, &nNeeded) || nNeeded > LONG_MAX)
            nNeeded = LONG_MAX;
        ExpandData(WithMargin(nNeeded + 8));
    }
    if (nSize > 0)
        std::memcpy(m_pData + m_nPos, pData, nSize);
    m_nPos += nSize;
    m_nSize = std::max(m_nSize, m_nPos);
    return nSize;
}

void ClMemStream::ExpandData(unsigned long nNewCapacity) {
    if (m_bAttached)
        throw ClExStream("ClMemStream::ExpandData. Stream too small", QMT_ERROR_IO, false,
                         VEK_NOWHERE);
    if (nNewCapacity == ~0UL)
        nNewCapacity = m_nCapacity * 2;
    if (nNewCapacity <= m_nCapacity)
        return;
    auto pGrown = Vek::NewArrayPtr<unsigned char>(nNewCapacity);
    if (m_nSize > 0)
        std::memcpy(pGrown.get(), m_pData, m_nSize);
    if (m_nPos > m_nSize) // a gap that the next write closes
        std::memset(pGrown.get() + m_nSize, 0, m_nPos - m_nSize);
    delete[] m_pData;
    m_pData = pGrown.release();
    m_nCapacity = nNewCapacity;
}

unsigned int ClMemStream::Seek(long nOffset, int nWhence) {
    if (nWhence < 0 || nWhence > 2)
        return cnRefused;
    const unsigned long anOrigin[] = {0, m_nPos, m_nSize};
    long nTarget = 0;
    if (__builtin_add_overflow(anOrigin[nWhence], nOffset, &nTarget) || nTarget < 0)
        return cnRefused;
    return SetReadPos(static_cast<unsigned long>(nTarget));
}

unsigned int ClMemStream::SetReadPos(unsigned long nPos) {
    if (nPos > LONG_MAX)
        return cnRefused;
    if (m_bWritable && nPos > m_nSize)
        ExpandData(WithMargin(nPos));
    if (nPos > m_nSize) {
        if (!m_bWritable || nPos >= m_nCapacity)
            return cnRefused;
        std::memset(m_pData + m_nSize, 0, nPos - m_nSize);
    }
    m_nPos = nPos;
    return 0;
}
