#pragma once

/// Lets an image pointer of a processor name another image while a part of its work runs on that
/// one; the pointer gets its own image back at the end, an exception included.

#include "Tools/FpImage.h"

class ClImageSwitch {
public:
    explicit ClImageSwitch(ClImage*& pImage) : m_rImage(pImage), m_pOwn(pImage) {}
    ClImageSwitch(ClImage*& pImage, ClImage& Other) : ClImageSwitch(pImage) { Set(Other); }
    ClImageSwitch(const ClImageSwitch&) = delete;
    ClImageSwitch& operator=(const ClImageSwitch&) = delete;
    ~ClImageSwitch() { m_rImage = m_pOwn; }

    void Set(ClImage& Other) { m_rImage = &Other; }
    /// The image that the pointer named before, and will name again; may be null.
    ClImage* Own() const { return m_pOwn; }

private:
    ClImage*& m_rImage;
    ClImage* m_pOwn;
};
