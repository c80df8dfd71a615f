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

/// What a dynamic calibration left behind.
struct StLevels {
    double m_dDirt = 0.0;
    double m_dDryFinger = 0.0;
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
    /// Whether one of the options that are on or off is on.
    bool IsEnabled(const std::string& Key) const;
    void SetData(const Bytes& Block);
    void SetPrecalculatedData(const Bytes& Block);
    void SetReferenceData(const Bytes& Block);
    /// Derives the calibration data from a capture of the target.
    void GenerateData(const Bytes& Capture);

    /// The calibration block.
    Bytes Data() const;
    /// `nExpected`: a guess of the result's size. A right one, or a larger one, saves the work of
    /// a first call that would only tell the size.
    Bytes PrecalculatedData(std::size_t nExpected) const;
    /// The corrected bitmap block of a capture's; `nExpected` as above.
    Bytes Calibrate(const Bytes& Capture, std::size_t nExpected) const;
    /// Of the last dynamic calibration on this handle; zeros before the first one.
    StLevels Levels() const;

    /// Percent of the dot distances in a corrected image of the target that are accurate.
    double CheckEfts(const Bytes& Corrected) const;
    /// The level of a raw capture; needs no calibration data.
    double Contamination(const Bytes& Capture) const;

private:
    void* m_pHandle;
};

} // namespace qk7
