#pragma once

/// Streams and byte lists for tests of everything that is stored.

#include "Tools/MemStream.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport {

/// What `Seek` answers where it does not go.
inline constexpr unsigned int cnRefused = 0xFFFFFFFFu;

using Bytes = std::vector<unsigned char>;

inline Bytes Content(const ClMemStream& Stream) {
    const unsigned char* pData = Stream.GetData();
    return pData == nullptr ? Bytes() : Bytes(pData, pData + Stream.Size());
}

inline Bytes BytesOf(const std::string& Text) {
    return Bytes(Text.begin(), Text.end());
}

/// A stream that cannot seek: reads take `m_aIn` from `m_nTaken` on, writes go to `m_aOut` until it
/// holds `m_nRoom` bytes. Counts the transfers.
class ClPipeStream : public ClStream {
public:
    explicit ClPipeStream(Bytes aIn = {}, unsigned long nRoom = ~0UL)
        : m_aIn(std::move(aIn)), m_nRoom(nRoom) {}

    bool IsSeekable() const override { return false; }

    unsigned long ReadRaw(void* pData, unsigned long nSize) override {
        ++m_nReads;
        const unsigned long nDone = std::min<unsigned long>(nSize, m_aIn.size() - m_nTaken);
        std::copy_n(m_aIn.data() + m_nTaken, nDone, static_cast<unsigned char*>(pData));
        m_nTaken += nDone;
        return nDone;
    }

    unsigned long WriteRaw(const void* pData, unsigned long nSize) override {
        ++m_nWrites;
        const unsigned long nDone = std::min<unsigned long>(nSize, m_nRoom - m_aOut.size());
        const auto* pBytes = static_cast<const unsigned char*>(pData);
        m_aOut.insert(m_aOut.end(), pBytes, pBytes + nDone);
        return nDone;
    }

    Bytes m_aIn;
    unsigned long m_nTaken = 0;
    Bytes m_aOut;
    unsigned long m_nRoom;
    int m_nReads = 0;
    int m_nWrites = 0;
};

} // namespace TestSupport
