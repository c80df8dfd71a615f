#include "apps/qk7/Advice.h"

#include "apps/qk7/BitmapInfo.h"

#include "TessarinCalibrateSDK.h"

namespace qk7 {

namespace {

const char* ForOption(long nNumber) {
    if (nNumber != QMT_ERROR_PARAM_IS_MISSING)
        return "";
    return " Use DynamicFingerMask=true|false, SensitiveMode=true|false, MaskIsOutput=true|false, "
           "PrecalculatedData=true|false or GeometricCalibrate=ThinPlateSpline|oddLines|off.";
}

const char* ForCalibration(long nNumber) {
    switch (nNumber) {
    case QMT_ERROR_UNEXPECTED_SIGNATURE:
        return " It is no calibration block; \"qk7 info\" tells what it is.";
    case QMT_ERROR_UNEXPECTED_EOF:
        return " It is cut off; restore it, or generate the calibration anew.";
    case QMT_ERROR_CURRUPT_DATA:
        return " It is damaged; restore it, or generate the calibration anew.";
    case QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE:
        return " Its points allow no smooth mapping; generate the calibration anew.";
    default:
        return "";
    }
}

const char* ForPrecalculated(long nNumber) {
    switch (nNumber) {
    case QMT_ERROR_UNEXPECTED_SIGNATURE:
        return " It does not belong to this calibration block, or is cut off; make it with "
               "\"qk7 precalculate\".";
    case QMT_ERROR_CURRUPT_DATA:
        return " It is damaged; make it anew with \"qk7 precalculate\".";
    default:
        return "";
    }
}

const char* ForBitmap(long nNumber) {
    switch (nNumber) {
    case QMT_ERROR_BITMAP_PLANE:
    case QMT_ERROR_BITMAP_BITCOUNT:
        return " Save it as an 8-bit grey bitmap.";
    case QMT_ERROR_BITMAP_COMPRESSION:
        return " Save it without compression.";
    case QMT_ERROR_BITMAP_HEADERSIZE:
        return " It is no bitmap, or has another header than the one of 40 bytes; save it as a "
               "Windows 3 bitmap.";
    case QMT_ERROR_INVALID_OPTIONS_SETTING:
        return " Add -O DynamicFingerMask=false.";
    default:
        return "";
    }
}

std::string SizeAdvice(const StBitmapInfo& Info) {
    if (Info.m_nImpliedBytes)
        return " Its header asks for " + std::to_string(*Info.m_nImpliedBytes) +
               " bytes of header, palette and pixels; it has " +
               std::to_string(Info.m_nBlockBytes) + ".";
    return " Its header tells " + std::to_string(Info.m_nWidth) + " x " +
           std::to_string(Info.m_nHeight) +
           " pixels, where both have to be positive. Save it with its lowest line first.";
}

/// Some calls say so, one only that something went wrong inside.
bool IsAboutDepth(long nNumber, const StBitmapInfo& Info) {
    return nNumber == QMT_ERROR_BITMAP_PLANE || nNumber == QMT_ERROR_BITMAP_BITCOUNT ||
           (nNumber == QMT_ERROR_INTERNAL && (Info.m_nBits != 8 || Info.m_nPlanes != 1));
}

} // namespace

std::string Advice(EHanded eHanded, long nNumber) {
    switch (eHanded) {
    case EHanded::eOption:
        return ForOption(nNumber);
    case EHanded::eCalibration:
        return ForCalibration(nNumber);
    case EHanded::ePrecalculated:
        return ForPrecalculated(nNumber);
    case EHanded::eBitmap:
        return ForBitmap(nNumber);
    }
    return "";
}

std::string BitmapAdvice(long nNumber, const Bytes& Block) {
    try {
        const StBitmapInfo info = ReadBitmapInfo(Block);
        if (nNumber == QMT_ERROR_TEMPLATE_SIZE)
            return SizeAdvice(info);
        if (IsAboutDepth(nNumber, info))
            return " It has " + std::to_string(info.m_nBits) + " bits in " +
                   std::to_string(info.m_nPlanes) + " plane(s)." +
                   ForBitmap(QMT_ERROR_BITMAP_PLANE);
    } catch (const ClFailure& cutOff) {
        if (nNumber == QMT_ERROR_TEMPLATE_SIZE)
            return std::string(" It ") + cutOff.what() + ".";
    }
    return Advice(EHanded::eBitmap, nNumber);
}

} // namespace qk7
