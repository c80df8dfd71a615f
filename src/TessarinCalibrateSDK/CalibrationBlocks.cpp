// The two persistent blocks of `ClIpCalibrateLumivane2`. The precalculated block is tied to one
// calibration block by the hash of its content.

#include "TessarinCalibrateSDK/IpCalibrateLumivane2.h"

#include "Calibrate/BlockTags.h"
#include "Tools/LoggingFacility.h"
#include "Tools/Stream.h"

#include <cstring>

namespace {

constexpr char cacType[4] = {'C', 'A', 'L', 0};
constexpr char cacSubType[4] = {'P', 'R', 'E', 0};
constexpr int cnHeaderVersion = 1;

void CheckTags(ClStream& stream) {
    if (!BlockTags::StTag(stream).Is(cacType))
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
    if (!BlockTags::StTag(stream).Is(cacSubType))
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
    if (BlockTags::StTag(stream).Number() != cnHeaderVersion)
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
}

/// Whether bytes follow is not asked for: a block may end here or go on.
void PeekBehindRecord(ClStream& stream) {
    unsigned char acBytes[4];
    const bool bStrict = stream.SetThrowOnShort(false);
    const unsigned long nRead = stream.Read(acBytes, sizeof acBytes);
    stream.SetThrowOnShort(bStrict);
    stream.Seek(-static_cast<long>(nRead), 1);
}

} // namespace

void ClIpCalibrateLumivane2::Write(ClStream& stream) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Write() Enter");
    static_cast<ClCalibrateDataBase&>(m_CalibrationData).Write(stream);
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Write() Leaving");
}

void ClIpCalibrateLumivane2::ReadTarget(ClStream& stream) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::ReadTarget() Enter");
    static_cast<ClCalibrateDataBase&>(m_TargetData).Read(stream);
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::ReadTarget() Leaving");
}

void ClIpCalibrateLumivane2::Read(ClStream& stream) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Read() Enter");
    m_GeometricBicubic.Reset();
    static_cast<ClCalibrateDataBase&>(m_CalibrationData).Read(stream);
    PeekBehindRecord(stream);
    CheckGeometricDataTarget(m_CalibrationData);
    m_GeometricBicubic.m_pData = &m_CalibrationData;
    m_GeometricBicubic.m_pInImage = nullptr;
    m_GeometricBicubic.m_pOutImage = nullptr;
    if (!m_bPrecalculatedData)
        ApplyWarp(nullptr, nullptr); // without images it prepares the table
    RescaleToTarget();
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::Read() Leaving");
}

void ClIpCalibrateLumivane2::WritePrecalculatedData(ClStream& stream) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::WritePrecalculatedData() Enter");
    stream.Write(cacType, sizeof cacType);
    stream.Write(cacSubType, sizeof cacSubType);
    stream.Write("001", 4);
    unsigned char acHash[ClCalibrateGeometricData::cnHashSize] = {};
    m_CalibrationData.GenerateHash(acHash);
    stream.Write(acHash, sizeof acHash);
    m_GeometricBicubic.Store(stream);
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::WritePrecalculatedData() Leaving");
}

void ClIpCalibrateLumivane2::ReadPrecalculatedData(ClStream& stream) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::ReadPrecalculatedData() Enter");
    if (m_GeometricBicubic.m_pData == nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
    CheckTags(stream);
    CheckHash(stream);
    m_GeometricBicubic.Load(stream);
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateQK7::ReadPrecalculatedData() Leaving");
}

/// Without data there is nothing that a table could belong to, an empty record's digest or not.
void ClIpCalibrateLumivane2::CheckHash(ClStream& stream) const {
    unsigned char acStored[ClCalibrateGeometricData::cnHashSize] = {};
    unsigned char acOwn[ClCalibrateGeometricData::cnHashSize] = {};
    stream.Read(acStored, sizeof acStored);
    m_CalibrationData.GenerateHash(acOwn);
    if (!HasData() || std::memcmp(acStored, acOwn, sizeof acOwn) != 0)
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
}
