#pragma once

/// The admission of pixel types: a processor lists what it accepts in its constructor, and its
/// images are compared with the list before anything runs.

#include "Tools/Array.h"
#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

#include <iterator>

namespace NewIpBase {

class ClImageDataTypeCheck {
public:
    /// For operators that take every pixel type.
    static constexpr ClImage::EDataType m_caAllTypes[] = {
        ClImage::eUInt8,  ClImage::eInt8,  ClImage::eUInt16,  ClImage::eInt16,
        ClImage::eUInt32, ClImage::eInt32, ClImage::eFloat32, ClImage::eDouble64};

    virtual ~ClImageDataTypeCheck();

    /// Throws where an image is missing or its type is not admitted, usually by
    /// CheckTypeAllowed() on each.
    virtual void CheckInOutImageTypes() = 0;

    /// Admits a type, once. Throws `ClExBadAlloc` (-102).
    void EnableDataType(ClImage::EDataType eType);
    void EnableDataType(const ClImage::EDataType* pTypes, unsigned long nCount);
    void EnableAllTypes() { EnableDataType(m_caAllTypes, std::size(m_caAllTypes)); }

    /// An empty list admits nothing.
    bool CheckIfTypeAllowed(ClImage::EDataType eType) const;
    /// Returns true, or throws with the type's text (-33), and -701 for a null image.
    bool CheckTypeAllowed(const ClImage* pImage) const;

private:
    TpArrayDynamic<ClImage::EDataType, 8> m_aEnabledTypes;
};

/// A processor that checks its pixel types at the start of each run.
class ClIpProcessorBase : public ClProcessorBase, public ClImageDataTypeCheck {
public:
    /// Runs CheckInOutImageTypes(), whose exceptions pass, and returns 0.
    long Initialize() override;
    /// Whether the same check passes.
    bool CanApply() override;
};

} // namespace NewIpBase
