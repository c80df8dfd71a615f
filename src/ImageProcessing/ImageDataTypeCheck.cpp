#include "ImageProcessing/ImageDataTypeCheck.h"

#include "Tools/Exception.h"
#include "Tools/FormatText.h"

#include <TessarinCalibrateSDK.h>

namespace NewIpBase {

namespace {

[[noreturn]] void ThrowNotSupported(unsigned char nType) {
    const auto pWords = Vek::FormatText("Input pixel type \"%s\" not supported by processor.",
                                        ClImage::TypeText(nType));
    throw ClException(pWords.get(), QMT_ERROR_FORMAT_NOTSUPPORTED, true, VEK_HERE);
}

} // namespace

ClImageDataTypeCheck::~ClImageDataTypeCheck() = default;

void ClImageDataTypeCheck::EnableDataType(ClImage::EDataType eType) {
    if (!CheckIfTypeAllowed(eType))
        m_aEnabledTypes.Append(eType);
}

void ClImageDataTypeCheck::EnableDataType(const ClImage::EDataType* pTypes, unsigned long nCount) {
    if (pTypes == nullptr)
        return;
    for (unsigned long i = 0; i < nCount; ++i)
        EnableDataType(pTypes[i]);
}

bool ClImageDataTypeCheck::CheckIfTypeAllowed(ClImage::EDataType eType) const {
    for (unsigned long i = 0; i < m_aEnabledTypes.Entries(); ++i)
        if (m_aEnabledTypes[i] == eType)
            return true;
    return false;
}

bool ClImageDataTypeCheck::CheckTypeAllowed(const ClImage* pImage) const {
    if (pImage == nullptr)
        throw ClException("Input image not assigned", QMT_ERROR_BAD_POINTER, true, VEK_HERE);
    if (!CheckIfTypeAllowed(static_cast<ClImage::EDataType>(pImage->DataType())))
        ThrowNotSupported(pImage->DataType());
    return true;
}

long ClIpProcessorBase::Initialize() {
    CheckInOutImageTypes();
    return 0;
}

bool ClIpProcessorBase::CanApply() {
    try {
        CheckInOutImageTypes();
        return true;
    } catch (const ClException&) {
        return false;
    }
}

} // namespace NewIpBase
