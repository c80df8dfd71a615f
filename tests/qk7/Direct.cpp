#include "qk7/Direct.h"

#include "apps/qk7/BlockInfo.h"
#include "qk7/TestFiles.h"

#include "TessarinCalibrateSDK.h"

#include <gtest/gtest.h>

#include <memory>

namespace TestSupport {

namespace {

struct StDeleter {
    void operator()(void* pHandle) const { CalibrateDelete(&pHandle); }
};
using Handle = std::unique_ptr<void, StDeleter>;

Handle HandleWith(qk7::Bytes Calibration, const std::vector<std::string>& options) {
    Handle handle(CalibrateCreate());
    for (const std::string& option : options)
        EXPECT_EQ(CalibrateSetOption(handle.get(), option.c_str()), QMT_SUCCESS) << option;
    EXPECT_EQ(CalibrateSetData(handle.get(), Calibration.data(), Calibration.size()), QMT_SUCCESS);
    return handle;
}

/// The block that a call gives by the size protocol.
qk7::Bytes Fetched(const Handle& handle, long (*get)(void*, unsigned char*, unsigned long*)) {
    unsigned long nSize = 0;
    EXPECT_EQ(get(handle.get(), nullptr, &nSize), QMT_ERROR_TEMPLATE_SIZE);
    qk7::Bytes result(nSize);
    EXPECT_EQ(get(handle.get(), result.data(), &nSize), QMT_SUCCESS);
    return result;
}

} // namespace

long DirectStatus(const qk7::Bytes& Calibration, const qk7::Bytes& Capture,
                  const std::vector<std::string>& options) {
    const Handle handle = HandleWith(Calibration, options);
    qk7::Bytes input = Capture;
    qk7::Bytes result(Capture.size() + 1000000);
    unsigned long nSize = result.size();
    return ::Calibrate(handle.get(), input.data(), input.size(), result.data(), &nSize);
}

long DirectLoadStatus(const qk7::Bytes& Calibration) {
    const Handle handle(CalibrateCreate());
    EXPECT_EQ(CalibrateSetOption(handle.get(), "PrecalculatedData=true"), QMT_SUCCESS);
    qk7::Bytes block = Calibration;
    return CalibrateSetData(handle.get(), block.data(), block.size());
}

qk7::Bytes DirectlyCalibrated(const qk7::Bytes& Calibration, const qk7::Bytes& Capture,
                              const std::vector<std::string>& options) {
    const Handle handle = HandleWith(Calibration, options);
    qk7::Bytes input = Capture;
    unsigned long nSize = 0;
    EXPECT_EQ(::Calibrate(handle.get(), input.data(), input.size(), nullptr, &nSize),
              QMT_ERROR_TEMPLATE_SIZE);
    qk7::Bytes result(nSize);
    EXPECT_EQ(::Calibrate(handle.get(), input.data(), input.size(), result.data(), &nSize),
              QMT_SUCCESS);
    return result;
}

qk7::Bytes DirectlyPrecalculated(const qk7::Bytes& Calibration) {
    return Fetched(HandleWith(Calibration, {}), CalibrateGetPrecalculatedData);
}

qk7::Bytes DirectlyGenerated(const qk7::Bytes& Target, const qk7::Bytes& Reference) {
    const Handle handle(CalibrateCreate());
    qk7::Bytes target = Target;
    qk7::Bytes reference = Reference;
    if (!reference.empty()) {
        EXPECT_EQ(CalibrateSetReferenceData(handle.get(), reference.data(), reference.size()),
                  QMT_SUCCESS);
    }
    EXPECT_EQ(CalibrateGenerateData(handle.get(), target.data(), target.size()), QMT_SUCCESS);
    return Fetched(handle, CalibrateGetData);
}

double DirectPercent(const qk7::Bytes& Calibration, const qk7::Bytes& Corrected) {
    const Handle handle = HandleWith(Calibration, {});
    qk7::Bytes image = Corrected;
    double dPercent = -1.0;
    EXPECT_EQ(CalibrateCheckEfts(handle.get(), image.data(), image.size(), &dPercent), QMT_SUCCESS);
    return dPercent;
}

double DirectContamination(const qk7::Bytes& Capture) {
    const Handle handle(CalibrateCreate());
    qk7::Bytes image = Capture;
    double dLevel = -1.0;
    EXPECT_EQ(ContaminationDetection(handle.get(), image.data(), image.size(), &dLevel),
              QMT_SUCCESS);
    return dLevel;
}

std::pair<double, double> DirectLevels(const qk7::Bytes& Calibration, const qk7::Bytes& Capture) {
    const Handle handle = HandleWith(Calibration, {});
    qk7::Bytes image = Capture;
    qk7::Bytes result(Capture.size() + 1000000);
    unsigned long nSize = result.size();
    EXPECT_EQ(::Calibrate(handle.get(), image.data(), image.size(), result.data(), &nSize),
              QMT_SUCCESS);
    std::pair<double, double> levels(-1.0, -1.0);
    EXPECT_EQ(GetCalibrationWarningLevels(handle.get(), &levels.first, &levels.second),
              QMT_SUCCESS);
    return levels;
}

std::string RecordPath() {
    return DataPath("records/scanner900_layout6.cal");
}

qk7::Bytes Record() {
    return Get(RecordPath());
}

qk7::Bytes OtherRecord() {
    constexpr std::size_t cnFirstPoint = 53;
    constexpr std::size_t cnChecksum = 4;
    qk7::Bytes record = Record();
    record[cnFirstPoint + 2] ^= 1;
    record.resize(record.size() - cnChecksum);
    AppendBig32(record, qk7::Checksum(record.data(), record.size()));
    return record;
}

qk7::Bytes Capture() {
    return GreyBlock(384, 1057);
}

} // namespace TestSupport
