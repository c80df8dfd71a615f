#pragma once

/// An image that the bytes of an input shape and fill, and operators at every instruction level.

#include "Harness.h"

#include "Tools/InstructionLevel.h"
#include "support/Images.h"
#include "support/InstructionLevels.h"

namespace Fuzz {

/// A byte image, signed or not, up to `nMost` samples wide and high; samples that are not told
/// repeat those that are.
inline TestSupport::ClTestImage ImageFrom(ClBytes& rBytes, int nMost, bool bMaySign = true) {
    const int nWidth = 1 + rBytes.Below(nMost);
    const int nHeight = 1 + rBytes.Below(nMost);
    const bool bSigned = bMaySign && rBytes.Below(4) == 0;
    const std::string Samples = rBytes.Rest();
    TestSupport::ClTestImage Image =
        TestSupport::BlankImage(bSigned ? ClImage::eInt8 : ClImage::eUInt8, nWidth, nHeight);
    std::size_t nNext = 0;
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x, ++nNext)
            Image.LineData(y)[x] =
                Samples.empty() ? 0U : static_cast<unsigned char>(Samples[nNext % Samples.size()]);
    return Image;
}

/// Calls `work()` at every level of this processor that the compiler has made.
template <class Work>
void AtEveryLevel(Work work) {
    for (const EInstructionLevel eLevel : TestSupport::Levels()) {
        const TestSupport::ClLevelLimit limit(eLevel);
        work();
    }
}

} // namespace Fuzz
