#include "Tools/Stream.h"

#include "Tools/Allocate.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

// Texts with a length in front. The length is foreign: a stream that knows its rest is asked
// whether it holds as much, from any other the text is taken in blocks, so that memory is used for
// bytes that have come and not for bytes that are claimed.

void ClStream::WriteString(const char* pText) {
    if (pText == nullptr)
        pText = "";
    const std::size_t nLength = std::strlen(pText) + 1;
    if (nLength > UINT32_MAX)
        throw ClExTessarin(QMT_ERROR_INVALID_PARAMETER, VEK_HERE);
    WriteAutoSwap(static_cast<std::uint32_t>(nLength));
    Write(pText, nLength);
}

void ClStream::ReadString(char** ppText) {
    delete[] * ppText;
    *ppText = nullptr;
    std::uint32_t nLength = 0;
    ReadAutoSwap(nLength);
    if (nLength == 0)
        return;
    const unsigned long nRest = Rest().value_or(nLength);
    ThrowIfShort(nRest, nLength);
    if (nRest >= nLength)
        *ppText = ReadText(nLength);
}

/// `nLength` bytes, the last of them overwritten by 0; bytes that are missing are 0.
char* ClStream::ReadText(unsigned long nLength) {
    constexpr unsigned long nFirstBlock = 4096;
    unsigned long nRoom = Rest() ? nLength : std::min(nLength, nFirstBlock);
    auto pText = Vek::NewArrayPtr<char>(nRoom);
    unsigned long nDone = ReadRaw(pText.get(), nRoom);
    while (nDone == nRoom && nRoom < nLength) {
        const unsigned long nGrown = std::min(nLength, 2 * nRoom);
        auto pGrown = Vek::NewArrayPtr<char>(nGrown);
        std::memcpy(pGrown.get(), pText.get(), nRoom);
        nDone += ReadRaw(pGrown.get() + nRoom, nGrown - nRoom);
        pText = std::move(pGrown);
        nRoom = nGrown;
    }
    ThrowIfShort(nDone, nLength);
    std::memset(pText.get() + nDone, 0, nRoom - nDone);
    pText[nRoom - 1] = 0;
    return pText.release();
}

void ClStream::ReadString(char* pBuffer, unsigned long nSize) {
    if (nSize > 0)
        std::memset(pBuffer, 0, nSize);
    std::uint32_t nLength = 0;
    ReadAutoSwap(nLength);
    const unsigned long nKept = std::min<unsigned long>(nLength, nSize);
    if (nKept > 0) {
        const unsigned long nDone = ReadRaw(pBuffer, nKept);
        std::memset(pBuffer + nDone, 0, nKept - nDone);
        pBuffer[nSize - 1] = 0;
        ThrowIfShort(nDone, nKept);
    }
    DropBytes(nLength - nKept);
}

void ClStream::DropBytes(unsigned long nBytes) {
    char acBlock[256];
    while (nBytes > 0) {
        const unsigned long nDone = ReadRaw(acBlock, std::min(nBytes, sizeof acBlock));
        ThrowIfShort(nDone, 1);
        if (nDone == 0)
            return;
        nBytes -= nDone;
    }
}
