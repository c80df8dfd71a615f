#pragma once

/// Streams for tests of bitmap files, and the shortest ways through them.

#include "Tools/Bitmap.h"
#include "Tools/MemStream.h"
#include "support/BitmapBlocks.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace TestSupport {

/// Gives its bytes once, and takes a limited number; knows neither position nor size.
class ClPipe : public ClStream {
public:
    explicit ClPipe(const Bytes& aBytes, std::size_t nRoom = 0)
        : m_aBytes(aBytes), m_nRoom(nRoom) {}

    bool IsSeekable() const override { return false; }

    unsigned long ReadRaw(void* pData, unsigned long nSize) override {
        const std::size_t nDone = std::min<std::size_t>(nSize, m_aBytes.size() - m_nRead);
        if (nDone > 0)
            std::memcpy(pData, m_aBytes.data() + m_nRead, nDone);
        m_nRead += nDone;
        return nDone;
    }

    unsigned long WriteRaw(const void* pData, unsigned long nSize) override {
        const std::size_t nDone = std::min<std::size_t>(nSize, m_nRoom - m_aWritten.size());
        const auto* p = static_cast<const unsigned char*>(pData);
        m_aWritten.insert(m_aWritten.end(), p, p + nDone);
        return nDone;
    }

    const Bytes& Written() const { return m_aWritten; }

private:
    Bytes m_aBytes;
    std::size_t m_nRead = 0;
    std::size_t m_nRoom;
    Bytes m_aWritten;
};

/// A head with unequal resolutions.
inline StHead Head(int nWidth, int nHeight, int nBits, std::uint32_t nCompression = 0) {
    StHead head;
    head.m_nWidth = nWidth;
    head.m_nHeight = nHeight;
    head.m_nBits = nBits;
    head.m_nCompression = nCompression;
    head.m_nPelsX = 19685;
    head.m_nPelsY = 9843;
    return head;
}

inline void Load(ClBitmap& bitmap, const Bytes& aFile) {
    const auto pFile = Exactly(aFile, aFile.size());
    ClMemStream stream(static_cast<const unsigned char*>(pFile.get()), aFile.size());
    bitmap.Load(stream);
}

inline Bytes Stored(const ClBitmap& bitmap) {
    ClMemStream stream;
    bitmap.Store(stream);
    return Bytes(stream.GetData(), stream.GetData() + stream.Size());
}

/// What CopyTo() writes, in memory of exactly that size.
inline Bytes Written(const ClBitmap& bitmap) {
    const auto nSize = static_cast<std::size_t>(ClBitmap::BlockBytes(*bitmap.Header()));
    const auto pOut = Exactly({}, nSize);
    bitmap.CopyTo(pOut.get());
    return Bytes(pOut.get(), pOut.get() + nSize);
}

} // namespace TestSupport
