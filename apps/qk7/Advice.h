#pragma once

/// What a user can do about a status of the library: the end of a message.

#include "apps/qk7/Handle.h"

#include <string>

namespace qk7 {

/// What the library was handed when it answered with the status.
enum class EHanded { eOption, eCalibration, ePrecalculated, eBitmap };

/// A sentence with a blank in front, or nothing where there is nothing to do.
std::string Advice(EHanded eHanded, long nNumber);

/// The same for a bitmap, with what its own header says about the status.
std::string BitmapAdvice(long nNumber, const Bytes& Block);

/// Runs `work`, which hands the library what is named `Subject`. A status becomes a `ClFailure`
/// with a complete message: "x.cal: -39 The input is corrupt; ... It is damaged; restore it ...".
template <class Work>
auto Handing(EHanded eHanded, const std::string& Subject, Work work) {
    try {
        return work();
    } catch (const ClLibraryError& error) {
        throw ClFailure(Subject, error.what() + Advice(eHanded, error.Number()));
    }
}

/// The same for work on a bitmap block.
template <class Work>
auto HandingBitmap(const std::string& Subject, const Bytes& Block, Work work) {
    try {
        return work();
    } catch (const ClLibraryError& error) {
        throw ClFailure(Subject, error.what() + BitmapAdvice(error.Number(), Block));
    }
}

} // namespace qk7
