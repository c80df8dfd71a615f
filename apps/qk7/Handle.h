#pragma once

/// The library behind its public header, with an owner for the handle and exceptions for statuses.

#include "apps/qk7/File.h"

#include <string>

namespace qk7 {

/// A status of the library. what() is "-14 The image is too small or too big.".
class ClLibraryError : public std::runtime_error {
public:
    explicit ClLibraryError(long nNumber);

    long Number() const { return m_nNumber; }

private:
    long m_nNumber;
};

/// One handle, for its lifetime. Every member throws `ClLibraryError` for a status other than 0.
class ClHandle {
public:
    ClHandle();
    ClHandle(const ClHandle&) = delete;
    ClHandle& operator=(const ClHandle&) = delete;
    ~ClHandle();

    /// One option as "key=value".
    void SetOption(const std::string& Option);
    void SetData(const Bytes& Block);
    void SetPrecalculatedData(const Bytes& Block);

    /// `nExpected`: a guess of the result's size. A right one, or a larger one, saves the work of
    /// a first call that would only tell the size.
    Bytes PrecalculatedData(std::size_t nExpected) const;
    /// The corrected bitmap block of a capture's; `nExpected` as above.
    Bytes Calibrate(const Bytes& Capture, std::size_t nExpected) const;

private:
    void* m_pHandle;
};

} // namespace qk7
