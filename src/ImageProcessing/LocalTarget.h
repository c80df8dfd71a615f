#pragma once

/// The output of an operator that reads an image while it writes another.

#include "Tools/FpImage.h"

/// Runs `work(In, Target)`, whose result it returns. The target is `Out` itself, or, where that is
/// the input, a local image that takes its place when the result is 0: an image never changes
/// while it is read, and not at all by a failure. The local image begins with the attribute of
/// `Out`, as does the target where it is `Out` itself.
template <class Work>
long ProcessInto(ClImage& In, ClImage& Out, Work work) {
    ClImage Local;
    Local.SetAttribute(Out.Attribute());
    const bool bSame = &In == &Out;
    const long nResult = work(static_cast<const ClImage&>(In), bSame ? Local : Out);
    if (bSame && nResult == 0)
        Out.Swap(Local);
    return nResult;
}
