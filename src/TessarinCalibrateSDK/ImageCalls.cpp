// The exported functions that take a bitmap and work on it.

#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "TessarinCalibrateSDK/BitmapBlock.h"
#include "TessarinCalibrateSDK/CallFrame.h"
#include "Tools/FpImage.h"

namespace {

/// The result of a contamination measurement that did not take place.
constexpr double cdNotMeasured = 101.0;

/// Argument tests of `Calibrate` behind that of the handle.
long CheckCalibrateArguments(const ClIpCalibrateLumivane2& rProcessor, const unsigned char* bitmap,
                             const unsigned char* outBitmap, const unsigned long* outBitmapSize) {
    if (bitmap == nullptr || bitmap == outBitmap)
        return QMT_ERROR_BITMAP_PTR;
    if (outBitmapSize == nullptr)
        return QMT_ERROR_TEMPLATE_SIZE_PTR;
    if (*outBitmapSize != 0 && outBitmap == nullptr)
        return QMT_ERROR_BITMAP_PTR;
    if (rProcessor.m_bDynamicFingerMask &&
        rProcessor.m_eGeometricMode == ClIpCalibrateLumivane2::eGeometricOff)
        return QMT_ERROR_INVALID_OPTIONS_SETTING;
    if (!rProcessor.IsInitialized())
        return QMT_ERROR_NOT_INITIALIZED;
    return QMT_SUCCESS;
}

/// Writes the image as a block by the size protocol.
long AnswerBlock(const ClImage& Image, ClBitmap& Bitmap, unsigned char* outBitmap,
                 unsigned long* outBitmapSize) {
    Bitmap.Attach(Image);
    if (Bitmap.Header() == nullptr) // of an empty image
        throw ClExTessarin(QMT_ERROR_BITMAP_PTR, VEK_HERE);
    const unsigned long nAvailable = *outBitmapSize;
    *outBitmapSize = BitmapBlock::SizeByRule(*Bitmap.Header());
    if (nAvailable < *outBitmapSize)
        return QMT_ERROR_TEMPLATE_SIZE;
    Bitmap.CopyTo(outBitmap);
    return QMT_SUCCESS;
}

} // namespace

extern "C" {

long Calibrate(void* handle, unsigned char* bitmap, unsigned long bitmapSize,
               unsigned char* outBitmap, unsigned long* outBitmapSize) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("Calibrate");
    VekLFLog(Vek::eLogTrace, "Calibrate(0x%p, 0x%p, %d, 0x%p, 0x%p) Enter", handle,
             static_cast<void*>(bitmap), static_cast<int>(bitmapSize),
             static_cast<void*>(outBitmap), static_cast<void*>(outBitmapSize));
    ClIpCalibrateLumivane2* pProcessor = nullptr;
    if (const long nCode = CheckHandle(handle, &pProcessor))
        return CallFrame::Leave(Texts, nCode);
    if (const long nCode = CheckCalibrateArguments(*pProcessor, bitmap, outBitmap, outBitmapSize))
        return CallFrame::Leave(Texts, nCode);
    return CallFrame::Run(Texts, [&] {
        ClBitmap Bitmap;
        if (const long nCode = BitmapBlock::Copy(bitmap, bitmapSize, Bitmap))
            return nCode;
        ClImage In;
        ClImage Out;
        BitmapBlock::Attach(Bitmap, In);
        pProcessor->m_pInImage = &In;
        pProcessor->m_pOutImage = &Out;
        if (const long nResult = pProcessor->Apply())
            throw ClExTessarin(nResult, VEK_HERE);
        return AnswerBlock(Out, Bitmap, outBitmap, outBitmapSize);
    });
}

long ContaminationDetection(void* handle, unsigned char* bitmap, unsigned long bitmapSize,
                            double* result) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("ContaminationDetection");
    VekLFLog(Vek::eLogTrace, "ContaminationDetection(0x%p, 0x%p, %d, 0x%p) Enter", handle,
             static_cast<void*>(bitmap), static_cast<int>(bitmapSize), static_cast<void*>(result));
    if (result == nullptr)
        return CallFrame::Leave(Texts, QMT_ERROR_TEMPLATE_SIZE_PTR);
    *result = cdNotMeasured;
    ClIpCalibrateLumivane2* pProcessor = nullptr;
    if (const long nCode = CheckHandle(handle, &pProcessor))
        return CallFrame::Leave(Texts, nCode);
    if (bitmap == nullptr)
        return CallFrame::Leave(Texts, QMT_ERROR_BITMAP_PTR);
    return CallFrame::Run(Texts, [&] {
        ClBitmap Bitmap;
        if (const long nCode = BitmapBlock::Copy(bitmap, bitmapSize, Bitmap))
            return nCode;
        ClImage In;
        ClImage Out;
        BitmapBlock::Attach(Bitmap, In);
        BitmapBlock::CheckArea(In);
        ClIpQK7FunctionalityCheck Check;
        Check.m_pInImage = &In;
        Check.m_pOutImage = &Out;
        Check.Apply(); // without pixels, of a compressed block, nothing is found
        *result = Check.m_dOutDefectWarningLevel;
        VekLFLog(Vek::eLogTrace, "Result of contamination detection is %6.2f", *result);
        return QMT_SUCCESS;
    });
}

long CalibrateCheckEfts(void* handle, unsigned char* bitmap, unsigned long bitmapSize,
                        double* result) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateCheckEfts");
    VekLFLog(Vek::eLogTrace, "CalibrateCheckEfts(0x%p, 0x%p, %d, 0x%p) Enter", handle,
             static_cast<void*>(bitmap), static_cast<int>(bitmapSize), static_cast<void*>(result));
    ClIpCalibrateLumivane2* pProcessor = nullptr;
    if (const long nCode = CheckHandle(handle, &pProcessor))
        return CallFrame::Leave(Texts, nCode);
    if (bitmap == nullptr)
        return CallFrame::Leave(Texts, QMT_ERROR_BITMAP_PTR);
    if (result == nullptr)
        return CallFrame::Leave(Texts, QMT_ERROR_TEMPLATE_PTR_NULL);
    return CallFrame::Run(Texts, [&] {
        ClBitmap Bitmap;
        if (const long nCode = BitmapBlock::Copy(bitmap, bitmapSize, Bitmap))
            return nCode;
        if (!pProcessor->IsInitialized())
            return QMT_ERROR_NOT_INITIALIZED;
        ClImage In;
        BitmapBlock::Attach(Bitmap, In);
        pProcessor->m_pInImage = &In;
        pProcessor->m_pOutImage = nullptr;
        *result = pProcessor->Compare();
        return QMT_SUCCESS;
    });
}

} // extern "C"
