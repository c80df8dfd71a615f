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
    const unsigned long nNeeded = Stream.Size();
    const unsigned long nOldSize = *size;
    *size = nNeeded;
    VekLFLog(Vek::eLogTrace, szFormat, static_cast<int>(nOldSize), static_cast<int>(nNeeded));
    if (nOldSize < nNeeded)
        return QMT_ERROR_TEMPLATE_SIZE;
    if (data == nullptr)
        return QMT_ERROR_TEMPLATE_PTR;
    std::memcpy(data, Stream.GetData(), nNeeded);
    return QMT_SUCCESS;
}

/// Known exceptions of the calls that replace calibration data drop what there is.
void DropData(ClIpCalibrateLumivane2& rProcessor) {
    rProcessor.Clear();
}

/// The common course of the calls that take a data block.
template <class ReadBlock>
long SetBlock(const CallFrame::StTexts& Texts, void* handle, unsigned char* data,
              unsigned long size, ReadBlock readBlock) {
    return CallFrame::WithHandle(
        Texts, std::tuple(handle, data, size),
        [&](const ClIpCalibrateLumivane2&) {
            return data != nullptr ? QMT_SUCCESS : QMT_ERROR_TEMPLATE_PTR;
        },
        [&](ClIpCalibrateLumivane2& rProcessor) {
            ClMemStream Stream(static_cast<const unsigned char*>(data), size);
            readBlock(rProcessor, Stream);
            return QMT_SUCCESS;
        },
        DropData);
}

/// The common course of the two calls that give a block.
template <class WriteBlock>
long GetBlock(const CallFrame::StTexts& Texts, const char* szSizesFormat, void* handle,
              unsigned char* data, unsigned long* size, WriteBlock writeBlock) {
    return CallFrame::WithHandle(
        Texts, std::tuple(handle, data, size),
        [&](const ClIpCalibrateLumivane2& rProcessor) {
            if (size == nullptr)
                return QMT_ERROR_TEMPLATE_SIZE_PTR;
            return rProcessor.IsInitialized() ? QMT_SUCCESS : QMT_ERROR_NOT_INITIALIZED;
        },
        [&](ClIpCalibrateLumivane2& rProcessor) {
            ClMemStream Stream;
            writeBlock(rProcessor, Stream);
            return AnswerBlock(Stream, szSizesFormat, data, size);
        });
}

/// Derives calibration data from a block with a capture of the target.
long Generate(ClIpCalibrateLumivane2& rProcessor, const unsigned char* pBlock,
              unsigned long nSize) {
    rProcessor.Clear();
    ClBitmap Capture;
    if (const long nCode = BitmapBlock::Copy(pBlock, nSize, Capture))
        return nCode;
    ClImage In;
    BitmapBlock::Attach(Capture, In);
    rProcessor.m_pInImage = &In;
    rProcessor.m_pOutImage = nullptr;
    rProcessor.Setup();
    return QMT_SUCCESS;
}

} // namespace

extern "C" {

long CalibrateSetReferenceData(void* handle, unsigned char* data, unsigned long size) {
    // The double f is what logs in the field are searched for.
    static constexpr auto Texts =
        TESSARIN_CALL_TEXTS("CalibrateSetRefferenceData", "0x%p, 0x%p, %d");
    return SetBlock(Texts, handle, data, size,
                    [](ClIpCalibrateLumivane2& rProcessor, ClStream& rStream) {
                        rProcessor.Clear();
                        rProcessor.ReadTarget(rStream);
                    });
}

long CalibrateGenerateData(void* handle, unsigned char* bitmap, unsigned long bitmapSize) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateGenerateData", "0x%p, 0x%p, %d");
    return CallFrame::WithHandle(
        Texts, std::tuple(handle, bitmap, bitmapSize),
        [&](const ClIpCalibrateLumivane2&) {
            return bitmap != nullptr ? QMT_SUCCESS : QMT_ERROR_BITMAP_PTR;
        },
        [&](ClIpCalibrateLumivane2& rProcessor) {
            return Generate(rProcessor, bitmap, bitmapSize);
        },
        DropData);
}

long CalibrateSetData(void* handle, unsigned char* data, unsigned long size) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateSetData", "0x%p, 0x%p, %d");
    return SetBlock(
        Texts, handle, data, size, [&](ClIpCalibrateLumivane2& rProcessor, ClStream& rStream) {
            rProcessor.Clear();
            rProcessor.Read(rStream);
            LogVersion("CalibrateSetData() Version of calibration data is %s", data, size);
        });
}

long CalibrateSetPrecalculatedData(void* handle, unsigned char* data, unsigned long size) {
    static constexpr auto Texts =
        TESSARIN_CALL_TEXTS("CalibrateSetPrecalculatedData", "0x%p, 0x%p, %d");
    return SetBlock(
        Texts, handle, data, size, [&](ClIpCalibrateLumivane2& rProcessor, ClStream& rStream) {
            rProcessor.ReadPrecalculatedData(rStream); // a data block loaded before stays
            LogVersion("CalibrateSetPrecalculatedData() Version of calibration data is %s", data,
                       size);
        });
}

long CalibrateGetData(void* handle, unsigned char* data, unsigned long* size) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateGetData", "0x%p, 0x%p, 0x%p");
    return GetBlock(
        Texts, "CalibrateGetData OldSize=%d NewSize=%d", handle, data, size,
        [](ClIpCalibrateLumivane2& rProcessor, ClStream& rStream) { rProcessor.Write(rStream); });
}

long CalibrateGetPrecalculatedData(void* handle, unsigned char* data, unsigned long* size) {
    static constexpr auto Texts =
        TESSARIN_CALL_TEXTS("CalibrateGetPrecalculatedData", "0x%p, 0x%p, 0x%p");
    return GetBlock(Texts, "CalibrateGetPrecalculatedData OldSize=%d NewSize=%d", handle, data,
                    size, [](ClIpCalibrateLumivane2& rProcessor, ClStream& rStream) {
                        rProcessor.WritePrecalculatedData(rStream);
                    });
}

} // extern "C"
