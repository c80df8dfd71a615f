/**
 * TessarinCalibrateSDK.hpp - the calibration library for C++17 and later, over its C interface and
 * nothing else: there is no library to link but the one of TessarinCalibrateSDK.h.
 *
 *     tessarin::Calibrator       calibrator;
 *     std::vector<unsigned char> corrected;
 *     calibrator.setData(block);
 *     for (const auto& capture : captures) {
 *         calibrator.correct(capture, corrected);      throws std::system_error
 *         show(corrected, calibrator.levels());
 *     }
 *
 * Rules that hold for every call:
 *
 * - What a call does, its arguments, its statuses and their order stand in TessarinCalibrateSDK.h
 *   under the name of the C function that the comment tells.
 * - Failures. Each call has two forms. The one with a std::error_code as its last argument sets it,
 *   on success to no error; the other one throws a std::system_error with the same code, and is not
 *   there where exceptions are switched off. The code's value is the status of the C interface, so
 *   that error.value() == QMT_ERROR_BITMAP_DIMENSION asks for one; its category is category().
 * - Ending threads. No call is noexcept: a thread that is cancelled unwinds through a call.
 *   Ending a Calibrator, or assigning to one, is noexcept and no call: cancelling waits, and a log
 *   of the application must not end the thread itself there.
 * - Blocks are spans of bytes: std::span in C++20, a small class of the same shape in C++17. The
 *   caller owns them; they are used during the call only. Blocks that go in are never written to.
 * - Memory. A call that takes a span allocates nothing beyond what the library does. One that gives
 *   or takes a std::vector says so; where there is no memory for that, it fails as where there is
 *   none for the library.
 * - Threads. A Calibrator belongs to one thread at a time; different ones run in parallel. That
 *   holds for the calls that only read, too, and none of them is const.
 */
#ifndef TESSARIN_CALIBRATE_SDK_HPP
#define TESSARIN_CALIBRATE_SDK_HPP

#include "TessarinCalibrateSDK.h"

#include <pthread.h>

#include <cstddef>
#include <exception>
#include <string>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

#if __cplusplus >= 202002L
#include <version>
#endif
#if defined(__cpp_lib_span)
#include <span>
#else
#include <iterator>
#endif

namespace tessarin {

/* Spans. */

#if defined(__cpp_lib_span)
using std::span;
#else
/// What C++20 has as std::span, as far as it is needed here: a pointer and a number of elements.
template <class T>
class span {
public:
    using element_type = T;
    using value_type = std::remove_cv_t<T>;
    using size_type = std::size_t;
    using iterator = T*;

    constexpr span() noexcept = default;
    constexpr span(T* pFirst, std::size_t nSize) noexcept : m_pFirst(pFirst), m_nSize(nSize) {}

    /// Arrays and everything that has data() and size(). What is about to die can be read only.
    template <
        class Container,
        class Element = std::remove_pointer_t<decltype(std::data(std::declval<Container&>()))>,
        std::enable_if_t<!std::is_same_v<std::decay_t<Container>, span> &&
                             std::is_convertible_v<Element (*)[], T (*)[]> &&
                             (std::is_lvalue_reference_v<Container> || std::is_const_v<T>),
                         int> = 0>
    constexpr span(Container&& rContainer) noexcept
        : m_pFirst(std::data(rContainer)), m_nSize(std::size(rContainer)) {}

    constexpr T* data() const noexcept { return m_pFirst; }
    constexpr std::size_t size() const noexcept { return m_nSize; }
    constexpr bool empty() const noexcept { return m_nSize == 0; }
    constexpr T& operator[](std::size_t nIndex) const { return m_pFirst[nIndex]; }
    constexpr T* begin() const noexcept { return m_pFirst; }
    constexpr T* end() const noexcept { return m_pFirst + m_nSize; }

    /// The first elements, and those behind the first; there have to be as many.
    constexpr span first(std::size_t nCount) const { return {m_pFirst, nCount}; }
    constexpr span subspan(std::size_t nOffset) const {
        return {m_pFirst + nOffset, m_nSize - nOffset};
    }

private:
    T* m_pFirst = nullptr;
    std::size_t m_nSize = 0;
};
#endif

using ConstBytes = span<const unsigned char>;
using Bytes = span<unsigned char>;

/* Statuses. */

namespace detail {

class StatusCategory final : public std::error_category {
public:
    const char* name() const noexcept override { return "TessarinCalibrateSDK"; }

    /// The catalogue's words; to ask for them leaves no line in the log.
    std::string message(int nStatus) const override { return GetErrorDescriptionIntern(nStatus); }

    std::error_condition default_error_condition(int nStatus) const noexcept override {
        if (nStatus == QMT_ERROR_OUT_OF_MEMORY)
            return std::errc::not_enough_memory;
        return {nStatus, *this};
    }
};

} // namespace detail

/// The category of the library's statuses. Codes are equal when their categories are one object:
/// it is the same in all parts of a process that are linked with each other, whatever their default
/// visibility. A plugin that is opened with RTLD_LOCAL may have one of its own: compare values
/// there.
TESSARIN_CALIBRATE_API inline const std::error_category& category() noexcept {
    static const detail::StatusCategory instance;
    return instance;
}

/// A status of the C interface as an error code; QMT_SUCCESS is no error.
inline std::error_code statusCode(long nStatus) noexcept {
    if (nStatus == QMT_SUCCESS)
        return {};
    return {static_cast<int>(nStatus), category()};
}

/* Options and levels. */

/// The options that are either enabled or not.
enum class Switch { dynamicFingerMask, sensitiveMode, maskIsOutput, precalculatedData };

/// The values of the option GeometricCalibrate.
enum class Geometry { off, oddLines, thinPlateSpline };

/// What the last dynamic calibration found; both 0.0 before the first one.
struct Levels {
    double dirt = 0.0;
    double dryFinger = 0.0;
};

namespace detail {

inline const char* keyOf(Switch eSwitch) noexcept {
    constexpr const char* aszKeys[] = {"DynamicFingerMask", "SensitiveMode", "MaskIsOutput",
                                       "PrecalculatedData"};
    return aszKeys[static_cast<std::size_t>(eSwitch)];
}

inline const char* textOf(Switch eSwitch, bool bEnable) noexcept {
    constexpr const char* aszTexts[][2] = {
        {"DynamicFingerMask=disable", "DynamicFingerMask=enable"},
        {"SensitiveMode=disable", "SensitiveMode=enable"},
        {"MaskIsOutput=disable", "MaskIsOutput=enable"},
        {"PrecalculatedData=disable", "PrecalculatedData=enable"}};
    return aszTexts[static_cast<std::size_t>(eSwitch)][bEnable ? 1 : 0];
}

inline const char* textOf(Geometry eGeometry) noexcept {
    constexpr const char* aszTexts[] = {"GeometricCalibrate=off", "GeometricCalibrate=oddLines",
                                        "GeometricCalibrate=ThinPlateSpline"};
    return aszTexts[static_cast<std::size_t>(eGeometry)];
}

} // namespace detail

/* The handle. */

namespace detail {

/// While it lives, the thread is not cancelled.
class CancelLater {
public:
    CancelLater() noexcept { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_nFormer); }
    CancelLater(const CancelLater&) = delete;
    CancelLater& operator=(const CancelLater&) = delete;
    ~CancelLater() { pthread_setcancelstate(m_nFormer, nullptr); }

private:
    int m_nFormer = PTHREAD_CANCEL_ENABLE;
};

/// Whether there was memory for a vector of this size.
inline bool resized(std::vector<unsigned char>& rBlock, std::size_t nSize) {
#if defined(__cpp_exceptions)
    try {
        rBlock.resize(nSize);
    } catch (const std::exception&) {
        return false;
    }
#else
    rBlock.resize(nSize);
#endif
    return true;
}

} // namespace detail

/// One scanner with its options and its calibration data. It moves and does not copy. One that was
/// moved from, or could not be made, holds no handle: every call answers QMT_ERROR_NO_HANDLE.
class Calibrator {
public:
    /// CalibrateCreate(): default options, no calibration data. Where the allocator of the process
    /// throws, its exception passes.
    explicit Calibrator(std::error_code& rError) : m_pHandle(CalibrateCreate()) {
        rError = statusCode(m_pHandle != nullptr ? QMT_SUCCESS : QMT_ERROR_OUT_OF_MEMORY);
    }
    Calibrator(Calibrator&& rOther) noexcept
        : m_pHandle(std::exchange(rOther.m_pHandle, nullptr)) {}
    Calibrator& operator=(Calibrator&& rOther) noexcept {
        Calibrator(std::move(rOther)).swap(*this);
        return *this;
    }
    Calibrator(const Calibrator&) = delete;
    Calibrator& operator=(const Calibrator&) = delete;
    ~Calibrator() {
        if (m_pHandle == nullptr)
            return;
        const detail::CancelLater later;
        CalibrateDelete(&m_pHandle);
    }

    void swap(Calibrator& rOther) noexcept { std::swap(m_pHandle, rOther.m_pHandle); }

    /// Whether there is a handle.
    explicit operator bool() const noexcept { return m_pHandle != nullptr; }

    /// The handle for the functions of the C interface; it stays this object's.
    void* handle() const noexcept { return m_pHandle; }

    /* Options: CalibrateSetOption(), CalibrateGetOption(). */

    /// One option as text, "key=value", ended by a zero.
    void setOption(const char* szOption, std::error_code& rError) {
        rError = statusCode(CalibrateSetOption(m_pHandle, szOption));
    }
    void setOption(Switch eSwitch, bool bEnable, std::error_code& rError) {
        setOption(detail::textOf(eSwitch, bEnable), rError);
    }
    void setOption(Geometry eGeometry, std::error_code& rError) {
        setOption(detail::textOf(eGeometry), rError);
    }
    /// A text is no bool: "disable" would enable the switch.
    void setOption(Switch eSwitch, const char* szText, std::error_code& rError) = delete;
    void setOption(Switch eSwitch, const char* szText) = delete;

    /// The value of an option as text with its terminating zero.
    ///
    /// @return characters written, or needed with QMT_ERROR_TEMPLATE_SIZE, the terminating zero
    ///         included; 0 for every other failure
    std::size_t getOption(const char* szKey, span<char> value, std::error_code& rError) {
        unsigned long nSize = value.size();
        const long nStatus = CalibrateGetOption(m_pHandle, szKey, value.data(), &nSize);
        rError = statusCode(nStatus);
        return sizeTold(nStatus, value.size(), nSize);
    }
    /// @return false for a failure, too
    bool isEnabled(Switch eSwitch, std::error_code& rError) {
        return readOption(detail::keyOf(eSwitch), rError).szText[0] == 'E';
    }
    /// @return Geometry::off for a failure, too
    Geometry geometry(std::error_code& rError) {
        switch (readOption("GeometricCalibrate", rError).szText[1]) {
        case 'd': // oddLines
            return Geometry::oddLines;
        case 'h': // ThinPlateSpline
            return Geometry::thinPlateSpline;
        default:
            return Geometry::off;
        }
    }

    /* Calibration data. */

    /// CalibrateSetData(): loads the calibration block of the scanner.
    void setData(ConstBytes block, std::error_code& rError) {
        rError = statusCode(CalibrateSetData(m_pHandle, bytesOf(block), block.size()));
    }
    /// CalibrateSetPrecalculatedData(): loads the table that belongs to the calibration block. Set
    /// Switch::precalculatedData and load the calibration block first.
    void setPrecalculatedData(ConstBytes block, std::error_code& rError) {
        rError = statusCode(CalibrateSetPrecalculatedData(m_pHandle, bytesOf(block), block.size()));
    }
    /// CalibrateSetReferenceData(): the measured geometry of a target plate, for generateData().
    /// Drops the calibration data.
    void setReferenceData(ConstBytes block, std::error_code& rError) {
        rError = statusCode(CalibrateSetReferenceData(m_pHandle, bytesOf(block), block.size()));
    }
    /// CalibrateGenerateData(): derives the calibration data from a capture of the dot target.
    void generateData(ConstBytes capture, std::error_code& rError) {
        rError = statusCode(CalibrateGenerateData(m_pHandle, bytesOf(capture), capture.size()));
    }

    /// CalibrateGetData(): the calibration block, a little more than 1 KiB, to keep with the
    /// scanner.
    ///
    /// @param out bytes of the caller; none to ask for the size
    /// @return bytes written, or needed with QMT_ERROR_TEMPLATE_SIZE; 0 for every other failure
    std::size_t getData(Bytes out, std::error_code& rError) {
        return get(CalibrateGetData, out, rError);
    }
    /// The same in a vector of its own; empty after a failure.
    std::vector<unsigned char> getData(std::error_code& rError) {
        return get(CalibrateGetData, rError);
    }
    /// CalibrateGetPrecalculatedData(): the prepared table, about 5.3 MiB, as for getData().
    std::size_t getPrecalculatedData(Bytes out, std::error_code& rError) {
        return get(CalibrateGetPrecalculatedData, out, rError);
    }
    std::vector<unsigned char> getPrecalculatedData(std::error_code& rError) {
        return get(CalibrateGetPrecalculatedData, rError);
    }

    /* Images. */

    /// Calibrate(): corrects one raw capture into bytes of the caller. Nothing is allocated beyond
    /// what the library does.
    ///
    /// @param capture bitmap block of the capture, without file header
    /// @param out     receives the corrected bitmap block; other bytes than those of the capture.
    ///                None asks for the size, at the price of a full calibration.
    /// @return bytes written, or needed with QMT_ERROR_TEMPLATE_SIZE where `out` was too small; 0
    ///         for every other failure, that of a capture of the wrong size included
    std::size_t correct(ConstBytes capture, Bytes out, std::error_code& rError) {
        unsigned long nSize = 0;
        const long nStatus = calibrate(capture, out, nSize);
        rError = statusCode(nStatus);
        return sizeTold(nStatus, out.size(), nSize);
    }
    /// The same into a vector, which becomes as long as the corrected block. It grows when it is
    /// too short and never gives memory back: used again for the next capture it is not allocated
    /// again. An empty one begins as long as the capture, which saves asking for the size. What is
    /// in it after a failure is not told.
    void correct(ConstBytes capture, std::vector<unsigned char>& rOut, std::error_code& rError) {
        rError = statusCode(correctInto(capture, rOut));
    }

    /// GetCalibrationWarningLevels(): of the last capture that was corrected with
    /// Switch::dynamicFingerMask.
    Levels levels(std::error_code& rError) {
        Levels found;
        rError = statusCode(GetCalibrationWarningLevels(m_pHandle, &found.dirt, &found.dryFinger));
        return found;
    }

    /// ContaminationDetection(): how contaminated the sensor is, 0.0 to 100.0, on a raw capture of
    /// the empty platen.
    ///
    /// @return 101.0 for a failure
    double contamination(ConstBytes capture, std::error_code& rError) {
        double level = 0.0;
        rError =
            statusCode(ContaminationDetection(m_pHandle, bytesOf(capture), capture.size(), &level));
        return level;
    }

    /// CalibrateCheckEfts(): the percentage, 0.0 to 100.0, of distances that keep the EFTS limits,
    /// on an image of the dot target that was corrected without Switch::dynamicFingerMask.
    ///
    /// @return 0.0 for a failure
    double checkEfts(ConstBytes corrected, std::error_code& rError) {
        double percent = 0.0;
        rError = statusCode(
            CalibrateCheckEfts(m_pHandle, bytesOf(corrected), corrected.size(), &percent));
        return percent;
    }

#if defined(__cpp_exceptions)
    /* The same, a failure being a std::system_error. Its what() tells the C function, the number of
       the status and its words. */

    Calibrator() : m_pHandle(CalibrateCreate()) {
        require(m_pHandle != nullptr ? QMT_SUCCESS : QMT_ERROR_OUT_OF_MEMORY, "CalibrateCreate");
    }

    void setOption(const char* szOption) {
        require(CalibrateSetOption(m_pHandle, szOption), "CalibrateSetOption");
    }
    void setOption(Switch eSwitch, bool bEnable) {
        setOption(detail::textOf(eSwitch, bEnable));
    }
    void setOption(Geometry eGeometry) {
        setOption(detail::textOf(eGeometry));
    }

    std::string getOption(const char* szKey) {
        std::error_code error;
        const OptionText value = readOption(szKey, error);
        require(error.value(), "CalibrateGetOption");
        return value.szText;
    }
    bool isEnabled(Switch eSwitch) {
        std::error_code error;
        const bool bEnabled = isEnabled(eSwitch, error);
        require(error.value(), "CalibrateGetOption");
        return bEnabled;
    }
    Geometry geometry() {
        std::error_code error;
        const Geometry eGeometry = geometry(error);
        require(error.value(), "CalibrateGetOption");
        return eGeometry;
    }

    void setData(ConstBytes block) {
        require(CalibrateSetData(m_pHandle, bytesOf(block), block.size()), "CalibrateSetData");
    }
    void setPrecalculatedData(ConstBytes block) {
        require(CalibrateSetPrecalculatedData(m_pHandle, bytesOf(block), block.size()),
                "CalibrateSetPrecalculatedData");
    }
    void setReferenceData(ConstBytes block) {
        require(CalibrateSetReferenceData(m_pHandle, bytesOf(block), block.size()),
                "CalibrateSetReferenceData");
    }
    void generateData(ConstBytes capture) {
        require(CalibrateGenerateData(m_pHandle, bytesOf(capture), capture.size()),
                "CalibrateGenerateData");
    }

    std::vector<unsigned char> getData() {
        std::error_code error;
        std::vector<unsigned char> block = getData(error);
        require(error.value(), "CalibrateGetData");
        return block;
    }
    std::vector<unsigned char> getPrecalculatedData() {
        std::error_code error;
        std::vector<unsigned char> block = getPrecalculatedData(error);
        require(error.value(), "CalibrateGetPrecalculatedData");
        return block;
    }

    /// A span that is too small is a failure like any other: to learn the size, take the form with
    /// an error code or the one with a vector.
    std::size_t correct(ConstBytes capture, Bytes out) {
        unsigned long nSize = 0;
        require(calibrate(capture, out, nSize), "Calibrate");
        return nSize;
    }
    void correct(ConstBytes capture, std::vector<unsigned char>& rOut) {
        require(correctInto(capture, rOut), "Calibrate");
    }

    Levels levels() {
        std::error_code error;
        const Levels found = levels(error);
        require(error.value(), "GetCalibrationWarningLevels");
        return found;
    }
    double contamination(ConstBytes capture) {
        std::error_code error;
        const double level = contamination(capture, error);
        require(error.value(), "ContaminationDetection");
        return level;
    }
    double checkEfts(ConstBytes corrected) {
        std::error_code error;
        const double percent = checkEfts(corrected, error);
        require(error.value(), "CalibrateCheckEfts");
        return percent;
    }
#endif

private:
    /// Room for the longest value, "ThinPlateSpline"; all zeros after a failure.
    struct OptionText {
        char szText[16] = {};
    };

    OptionText readOption(const char* szKey, std::error_code& rError) {
        OptionText value;
        getOption(szKey, value.szText, rError);
        return value;
    }

    /// Blocks that go in are not const in C, and not written to either.
    static unsigned char* bytesOf(ConstBytes block) noexcept {
        return const_cast<unsigned char*>(block.data());
    }

    /// QMT_ERROR_TEMPLATE_SIZE is the status of an input of the wrong size, too: no size is told
    /// then, and what was passed stands as it was.
    static std::size_t sizeTold(long nStatus, std::size_t nPassed, unsigned long nSize) noexcept {
        const bool bTooSmall = nStatus == QMT_ERROR_TEMPLATE_SIZE && nSize > nPassed;
        return nStatus == QMT_SUCCESS || bTooSmall ? nSize : 0;
    }

    using GetBlock = long (*)(void*, unsigned char*, unsigned long*);

    std::size_t get(GetBlock getBlock, Bytes out, std::error_code& rError) {
        unsigned long nSize = out.size();
        const long nStatus = getBlock(m_pHandle, out.data(), &nSize);
        rError = statusCode(nStatus);
        return sizeTold(nStatus, out.size(), nSize);
    }
    std::vector<unsigned char> get(GetBlock getBlock, std::error_code& rError) {
        std::vector<unsigned char> block;
        if (!detail::resized(block, get(getBlock, Bytes(), rError)))
            rError = statusCode(QMT_ERROR_OUT_OF_MEMORY);
        else if (!block.empty())
            block.resize(get(getBlock, block, rError));
        return block;
    }

    long calibrate(ConstBytes capture, Bytes out, unsigned long& rSize) {
        rSize = out.size();
        return Calibrate(m_pHandle, bytesOf(capture), capture.size(), out.data(), &rSize);
    }
    long correctInto(ConstBytes capture, std::vector<unsigned char>& rOut) {
        if (rOut.empty() && !detail::resized(rOut, capture.size()))
            return QMT_ERROR_OUT_OF_MEMORY;
        unsigned long nSize = 0;
        long nStatus = calibrate(capture, Bytes(rOut), nSize);
        if (nStatus == QMT_ERROR_TEMPLATE_SIZE && nSize > rOut.size()) {
            if (!detail::resized(rOut, nSize))
                return QMT_ERROR_OUT_OF_MEMORY;
            nStatus = calibrate(capture, Bytes(rOut), nSize);
        }
        if (nStatus == QMT_SUCCESS)
            rOut.resize(nSize);
        return nStatus;
    }

#if defined(__cpp_exceptions)
    static void require(long nStatus, const char* szFunction) {
        if (nStatus != QMT_SUCCESS)
            throw std::system_error(statusCode(nStatus),
                                    std::string(szFunction) + " (" + std::to_string(nStatus) + ")");
    }
#endif

    void* m_pHandle;
};

inline void swap(Calibrator& rOne, Calibrator& rOther) noexcept {
    rOne.swap(rOther);
}

} // namespace tessarin

#endif /* TESSARIN_CALIBRATE_SDK_HPP */
