// The exported functions that take a bitmap and work on it.

#include "TessarinCalibrateSDK/BitmapBlock.h"
#include "TessarinCalibrateSDK/CallFrame.h"
#include "Tools/FpImage.h"
#include "Tools/ThrowIfFailed.h"

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
long AnswerBlock(const ClImage& Image, unsigned char* outBitmap, unsigned long* outBitmapSize) {
    ClBitmap Result;
    Result.Attach(Image);
    if (Result.Header() == nullptr) // of an empty image
        throw ClExTessarin(QMT_ERROR_BITMAP_PTR, VEK_HERE);
    const unsigned long nNeeded = BitmapBlock::SizeByRule(*Result.Header());
    const unsigned long nAvailable = *outBitmapSize;
    *outBitmapSize = nNeeded;
    if (nAvailable < nNeeded)
        return QMT_ERROR_TEMPLATE_SIZE;
    Result.CopyTo(outBitmap);
    return QMT_SUCCESS;
}

/// Corrects the capture in a block.
long Correct(ClIpCalibrateLumivane2& rProcessor, const unsigned char* pBlock, unsigned long nSize,
             unsigned char* outBitmap, unsigned long* outBitmapSize) {
    ClIpCalibrateLumivane2::StKept& rKept = rProcessor.m_Kept;
    if (const long nCode = BitmapBlock::CopyToImage(pBlock, nSize, rKept.m_Capture))
        return nCode;
    ClImage Out; // empty: what is answered is of this capture
    rProcessor.m_pInImage = &rKept.m_Capture;
    rProcessor.m_pOutImage = &Out;
    ThrowIfFailed(rProcessor.Apply(), VEK_HERE);
    const long nCode = AnswerBlock(Out, outBitmap, outBitmapSize);
    rKept.m_Result.Swap(Out);
    return nCode;
}

/// Measures the contamination that the capture in a block shows.
long Measure(ClIpCalibrateLumivane2::StKept& rKept, const unsigned char* pBlock,
             unsigned long nSize, double& rLevel) {
    if (const long nCode = BitmapBlock::CopyToImage(pBlock, nSize, rKept.m_Capture))
        return nCode;
    BitmapBlock::CheckArea(rKept.m_Capture);
    ClIpQK7FunctionalityCheck& Check =
        rKept.m_FunctionalityCheck; // as a new one, but for its memory
    Check.SetParametersToDefault();
    Check.Timer(true);
    Check.m_pInImage = &rKept.m_Capture;
    Check.m_pOutImage = &rKept.m_Result;
    Check.Apply(); // without pixels, of a compressed block, nothing is found
    rLevel = Check.m_dOutDefectWarningLevel;
    VekLFLog(Vek::eLogTrace, "Result of contamination detection is %6.2f", rLevel);
    return QMT_SUCCESS;
}

/// Compares the corrected image in a block with the target.
long CompareBlock(ClIpCalibrateLumivane2& rProcessor, const unsigned char* pBlock,
                  unsigned long nSize, double& rPercent) {
    ClBitmap Corrected;
    if (const long nCode = BitmapBlock::Copy(pBlock, nSize, Corrected))
        return nCode;
    if (!rProcessor.IsInitialized())
        return QMT_ERROR_NOT_INITIALIZED;
    ClImage In;
    BitmapBlock::Attach(Corrected, In);
    rProcessor.m_pInImage = &In;
    rProcessor.m_pOutImage = nullptr;
    rPercent = rProcessor.Compare();
    return QMT_SUCCESS;
}

} // namespace

extern "C" {

long Calibrate(void* handle, unsigned char* bitmap, unsigned long bitmapSize,
               unsigned char* outBitmap, unsigned long* outBitmapSize) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("Calibrate", "0x%p, 0x%p, %d, 0x%p, 0x%p");
    return CallFrame::WithHandle(
        Texts, std::tuple(handle, bitmap, bitmapSize, outBitmap, outBitmapSize),
        [&](const ClIpCalibrateLumivane2& rProcessor) {
            return CheckCalibrateArguments(rProcessor, bitmap, outBitmap, outBitmapSize);
        },
        [&](ClIpCalibrateLumivane2& rProcessor) {
            return Correct(rProcessor, bitmap, bitmapSize, outBitmap, outBitmapSize);
        });
}

long ContaminationDetection(void* handle, unsigned char* bitmap, unsigned long bitmapSize,
                            double* result) {
    static constexpr auto Texts =
        TESSARIN_CALL_TEXTS("ContaminationDetection", "0x%p, 0x%p, %d, 0x%p");
    CallFrame::Enter(Texts, handle, bitmap, bitmapSize, result);
    if (result == nullptr)
        return CallFrame::Leave(Texts, QMT_ERROR_TEMPLATE_SIZE_PTR);
    *result = cdNotMeasured;
    return CallFrame::OnHandle(
        Texts, handle,
        [&](const ClIpCalibrateLumivane2&) {
            return bitmap != nullptr ? QMT_SUCCESS : QMT_ERROR_BITMAP_PTR;
        },
        [&](ClIpCalibrateLumivane2& rProcessor) {
            return Measure(rProcessor.m_Kept, bitmap, bitmapSize, *result);
        });
}

long CalibrateCheckEfts(void* handle, unsigned char* bitmap, unsigned long bitmapSize,
                        double* result) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateCheckEfts", "0x%p, 0x%p, %d, 0x%p");
    return CallFrame::WithHandle(
        Texts, std::tuple(handle, bitmap, bitmapSize, result),
        [&](const ClIpCalibrateLumivane2&) {
            if (bitmap == nullptr)
                return QMT_ERROR_BITMAP_PTR;
            return result != nullptr ? QMT_SUCCESS : QMT_ERROR_TEMPLATE_PTR_NULL;
        },
        [&](ClIpCalibrateLumivane2& rProcessor) {
            return CompareBlock(rProcessor, bitmap, bitmapSize, *result);
        });
}

} // extern "C"
