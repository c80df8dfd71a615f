#pragma once

/// What an application does with the exported functions, for tests that see nothing else of the
/// library.

#include "support/BitmapBlocks.h"

#include <TessarinCalibrateSDK.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace TestSupport {

/// A handle of its own, with the dynamic calibration switched off.
class ClApiHandle {
public:
    ClApiHandle() : m_pHandle(CalibrateCreate()) { Set("DynamicFingerMask=false"); }
    ClApiHandle(const ClApiHandle&) = delete;
    ClApiHandle& operator=(const ClApiHandle&) = delete;
    ~ClApiHandle() { CalibrateDelete(&m_pHandle); }

    operator void*() const { return m_pHandle; }

    void Set(const char* szOption) { EXPECT_EQ(CalibrateSetOption(m_pHandle, szOption), 0); }

    long SetData(const Bytes& aBlock) {
        return CalibrateSetData(m_pHandle, Writable(aBlock), aBlock.size());
    }
    long SetReferenceData(const Bytes& aBlock) {
        return CalibrateSetReferenceData(m_pHandle, Writable(aBlock), aBlock.size());
    }
    long SetPrecalculatedData(const Bytes& aBlock) {
        return CalibrateSetPrecalculatedData(m_pHandle, Writable(aBlock), aBlock.size());
    }
    long GenerateData(const Bytes& aBlock) {
        return CalibrateGenerateData(m_pHandle, Writable(aBlock), aBlock.size());
    }

    Bytes Data() { return BlockOf(CalibrateGetData); }
    Bytes PrecalculatedData() { return BlockOf(CalibrateGetPrecalculatedData); }

    /// Whether calibration data is there.
    bool IsReady() {
        unsigned long nSize = 0;
        return CalibrateGetData(m_pHandle, nullptr, &nSize) != QMT_ERROR_NOT_INITIALIZED;
    }

    /// The corrected block, asked for in two calls; empty, with the status, after a failure.
    Bytes Corrected(const Bytes& aIn, long* pStatus = nullptr) {
        unsigned long nSize = 0;
        long nStatus = Calibrate(m_pHandle, Writable(aIn), aIn.size(), nullptr, &nSize);
        Bytes aOut;
        if (nStatus == QMT_ERROR_TEMPLATE_SIZE && nSize > 0) {
            aOut.resize(nSize);
            nStatus = Calibrate(m_pHandle, Writable(aIn), aIn.size(), aOut.data(), &nSize);
            EXPECT_EQ(nSize, aOut.size());
        }
        if (pStatus != nullptr)
            *pStatus = nStatus;
        else
            EXPECT_EQ(nStatus, 0);
        return aOut;
    }

    /// Input blocks are never written to.
    static unsigned char* Writable(const Bytes& aBlock) {
        return const_cast<unsigned char*>(aBlock.data());
    }

private:
    Bytes BlockOf(long (*get)(void*, unsigned char*, unsigned long*)) {
        unsigned long nSize = 0;
        EXPECT_EQ(get(m_pHandle, nullptr, &nSize), QMT_ERROR_TEMPLATE_SIZE);
        Bytes aBlock(nSize);
        EXPECT_EQ(get(m_pHandle, aBlock.data(), &nSize), QMT_SUCCESS);
        EXPECT_EQ(nSize, aBlock.size());
        return aBlock;
    }

    void* m_pHandle;
};

/// The block of a capture without any order in it.
inline Bytes Capture(int nWidth, int nHeight, int nBits = 8, unsigned int nSeed = 1) {
    StHead Head;
    Head.m_nWidth = nWidth;
    Head.m_nHeight = nHeight;
    Head.m_nBits = nBits;
    Head.m_nPelsX = 2425;
    Head.m_nPelsY = 4967;
    return Block(Head, nBits <= 8 ? GreyPalette(1u << nBits) : std::vector<std::uint32_t>(),
                 NoisePixels(Head, nSeed));
}

/// A field of a bitmap's header.
inline std::int32_t HeaderField(const Bytes& aBlock, std::size_t nOffset) {
    std::int32_t nField = 0;
    std::memcpy(&nField, aBlock.data() + nOffset, 4);
    return nField;
}
inline std::int32_t Width(const Bytes& aBlock) {
    return HeaderField(aBlock, 4);
}
inline std::int32_t Height(const Bytes& aBlock) {
    return HeaderField(aBlock, 8);
}

/// The pixels of a line of an 8-bit block with its full palette.
inline Bytes Line(const Bytes& aBlock, int y) {
    const int nStride = (Width(aBlock) + 3) & ~3;
    const auto First = aBlock.begin() + 40 + 1024 + y * nStride;
    return Bytes(First, First + Width(aBlock));
}

} // namespace TestSupport
