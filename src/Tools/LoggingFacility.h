#pragma once

/// The log entry points. Every line of the library goes through `VekLFLog`, which the public
/// header declares; the version that ships here drops them. An application that wants the trace
/// puts its own `VekLFLog` in front, by preloading it or by linking it.

#include <TessarinCalibrateSDK.h>

namespace Vek {

/// Levels of `VekLFLog` that the library uses.
enum ELogLevel : long {
    eLogError = 3, ///< failures
    eLogTrace = 7, ///< the trace of every call, and expected outcomes
};

} // namespace Vek
