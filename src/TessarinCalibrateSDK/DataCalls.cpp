// The exported functions that fill a handle with calibration data and get it out again.

#include "TessarinCalibrateSDK/BitmapBlock.h"
#include "TessarinCalibrateSDK/CallFrame.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"

#include <cstring>

namespace {

constexpr unsigned long cnVersionOffset = 8;
constexpr unsigned long cnVersionSize = 4;

/// Logs the version text of a block that was read.
void LogVersion(const char* szFormat, const unsigned char* data, unsigned long size) {
    if (size < cnVersionOffset + cnVersionSize)
        return;
    char szVersion[cnVersionSize + 1] = {};
    std::memcpy(szVersion, data + cnVersionOffset, cnVersionSize);
    VekLFLog(Vek::eLogTrace, szFormat, szVersion);
}

/// Copies what was written by the size protocol.
long AnswerBlock(const ClMemStream& Stream, const char* szFormat, unsigned char* data,
                 unsigned long* size) {
    const unsigned long nOldSize = *size;
    *size = Stream.Size();
    VekLFLog(Vek::eLogTrace, szFormat, static_cast<int>(nOldSize), static_cast<int>(*size));
    if (nOldSize < *size)
        return QMT_ERROR_TEMPLATE_SIZE;
    if (data == nullptr)
        return QMT_ERROR_TEMPLATE_PTR;
    std::memcpy(data, Stream.GetData(), *size);
    return QMT_SUCCESS;
}

/// The common course of the calls that take a data block. Whatever fails behind the argument
/// tests drops the calibration data.
template <class ReadBlock>
long SetBlock(const CallFrame::StTexts& Texts, void* handle, const unsigned char* data,
              unsigned long size, ReadBlock readBlock) {
    ClIpCalibrateLumivane2* pProcessor = nullptr;
    if (const long nCode = CheckHandle(handle, &pProcessor))
        return CallFrame::Leave(Texts, nCode);
    if (data == nullptr)
        return CallFrame::Leave(Texts, QMT_ERROR_TEMPLATE_PTR);
    return CallFrame::Run(
        Texts,
        [&] {
            ClMemStream Stream(data, size);
            readBlock(*pProcessor, Stream);
            return QMT_SUCCESS;
        },
        [&] { pProcessor->Clear(); });
}

/// The common course of the two calls that give a block.
template <class WriteBlock>
long GetBlock(const CallFrame::StTexts& Texts, const char* szSizesFormat, void* handle,
              unsigned char* data, unsigned long* size, WriteBlock writeBlock) {
    ClIpCalibrateLumivane2* pProcessor = nullptr;
    if (const long nCode = CheckHandle(handle, &pProcessor))
        return CallFrame::Leave(Texts, nCode);
    if (size == nullptr)
        return CallFrame::Leave(Texts, QMT_ERROR_TEMPLATE_SIZE_PTR);
    if (!pProcessor->IsInitialized())
        return CallFrame::Leave(Texts, QMT_ERROR_NOT_INITIALIZED);
    return CallFrame::Run(Texts, [&] {
        ClMemStream Stream;
        writeBlock(*pProcessor, Stream);
        return AnswerBlock(Stream, szSizesFormat, data, size);
    });
}

} // namespace

extern "C" {

long CalibrateSetReferenceData(void* handle, unsigned char* data, unsigned long size) {
    // The double f is what logs in the field are searched for.
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateSetRefferenceData");
    VekLFLog(Vek::eLogTrace, "CalibrateSetRefferenceData(0x%p, 0x%p, %d) Enter", handle,
             static_cast<void*>(data), static_cast<int>(size));
    return SetBlock(Texts, handle, data, size,
                    [](ClIpCalibrateLumivane2& rProcessor, ClStream& rStream) {
                        rProcessor.Clear();
                        rProcessor.ReadTarget(rStream);
                    });
}

long CalibrateGenerateData(void* handle, unsigned char* bitmap, unsigned long bitmapSize) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateGenerateData");
    VekLFLog(Vek::eLogTrace, "CalibrateGenerateData(0x%p, 0x%p, %d) Enter", handle,
             static_cast<void*>(bitmap), static_cast<int>(bitmapSize));
    ClIpCalibrateLumivane2* pProcessor = nullptr;
    if (const long nCode = CheckHandle(handle, &pProcessor))
        return CallFrame::Leave(Texts, nCode);
    if (bitmap == nullptr)
        return CallFrame::Leave(Texts, QMT_ERROR_BITMAP_PTR);
    return CallFrame::Run(
        Texts,
        [&] {
            pProcessor->Clear();
            ClBitmap Bitmap;
            if (const long nCode = BitmapBlock::Copy(bitmap, bitmapSize, Bitmap))
                return nCode;
            ClImage In;
            BitmapBlock::Attach(Bitmap, In);
            pProcessor->m_pInImage = &In;
            pProcessor->m_pOutImage = nullptr;
            pProcessor->Setup();
            return QMT_SUCCESS;
        },
        [&] { pProcessor->Clear(); });
}

long CalibrateSetData(void* handle, unsigned char* data, unsigned long size) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateSetData");
    VekLFLog(Vek::eLogTrace, "CalibrateSetData(0x%p, 0x%p, %d) Enter", handle,
             static_cast<void*>(data), static_cast<int>(size));
    return SetBlock(
        Texts, handle, data, size, [&](ClIpCalibrateLumivane2& rProcessor, ClStream& rStream) {
            rProcessor.Clear();
            rProcessor.Read(rStream);
            LogVersion("CalibrateSetData() Version of calibration data is %s", data, size);
        });
}

long CalibrateSetPrecalculatedData(void* handle, unsigned char* data, unsigned long size) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateSetPrecalculatedData");
    VekLFLog(Vek::eLogTrace, "CalibrateSetPrecalculatedData(0x%p, 0x%p, %d) Enter", handle,
             static_cast<void*>(data), static_cast<int>(size));
    return SetBlock(
        Texts, handle, data, size, [&](ClIpCalibrateLumivane2& rProcessor, ClStream& rStream) {
            rProcessor.ReadPrecalculatedData(rStream); // a data block loaded before stays
            LogVersion("CalibrateSetPrecalculatedData() Version of calibration data is %s", data,
                       size);
        });
}

long CalibrateGetData(void* handle, unsigned char* data, unsigned long* size) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateGetData");
    VekLFLog(Vek::eLogTrace, "CalibrateGetData(0x%p, 0x%p, 0x%p) Enter", handle,
             static_cast<void*>(data), static_cast<void*>(size));
    return GetBlock(
        Texts, "CalibrateGetData OldSize=%d NewSize=%d", handle, data, size,
        [](ClIpCalibrateLumivane2& rProcessor, ClStream& rStream) { rProcessor.Write(rStream); });
}

long CalibrateGetPrecalculatedData(void* handle, unsigned char* data, unsigned long* size) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateGetPrecalculatedData");
    VekLFLog(Vek::eLogTrace, "CalibrateGetPrecalculatedData(0x%p, 0x%p, 0x%p) Enter", handle,
             static_cast<void*>(data), static_cast<void*>(size));
    return GetBlock(Texts, "CalibrateGetPrecalculatedData OldSize=%d NewSize=%d", handle, data,
                    size, [](ClIpCalibrateLumivane2& rProcessor, ClStream& rStream) {
                        rProcessor.WritePrecalculatedData(rStream);
                    });
}

} // extern "C"
