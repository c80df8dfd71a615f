#pragma once

/// How a processor runs the operators that it is made of:
///
///     Timed(*this, ClIpFilterMid()).ApplyParam(In, Out, nWidth);

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

#include <utility>

/// The operator itself, timed or not.
template <class Processor>
Processor&& Timed(bool bTimed, Processor&& Operator) {
    Operator.Timer(bTimed);
    return std::forward<Processor>(Operator);
}

/// The operator itself, timed where its owner is.
template <class Processor>
Processor&& Timed(const ClProcessorBase& Owner, Processor&& Operator) {
    return Timed(Owner.IsTimerEnabled(), std::forward<Processor>(Operator));
}

/// Operators name their inputs by pointers to images that could be changed. Through this view of
/// the same samples they read an image that must not be. It is never an output.
class ClInputView : public ClImage {
public:
    explicit ClInputView(const ClImage& Image) { Attach(Image); }
};
