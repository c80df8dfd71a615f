// The precalculated record of `ClIpCalibrateGeometricBase`. Its inner part has the shape of the
// raw image format: the table is kept as an image whose pixel is one table entry. Loading trusts
// nothing: the record comes from wherever the application kept it.

#include "Calibrate/IpCalibrateGeometricBase.h"

#include "Calibrate/WarpTable.h"
#include "Tools/Allocate.h"
#include "Tools/FpImage.h"
#include "Tools/LoggingFacility.h"
#include "Tools/RawImage.h"
#include "Tools/Stream.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr char cacType[4] = {'P', 'R', 'E', 0};
constexpr char cacSubType[4] = {'G', 'E', 'O', 0};
constexpr char cacVersion[4] = {'0', '0', '1', 0};

constexpr std::uint32_t cnImageVersion = 1;
constexpr std::uint8_t cnImageType = ClImage::eUInt8;
constexpr std::uint32_t cnContent = ClImage::eUnknown;

[[noreturn]] void ThrowSignature(const char* szText, long nLine) {
    throw ClException(szText, QMT_ERROR_UNEXPECTED_SIGNATURE, true, VEK_FILE, nLine);
}

[[noreturn]] void ThrowCorrupt(const char* szText, long nLine) {
    throw ClException(szText, QMT_ERROR_CURRUPT_DATA, true, VEK_FILE, nLine);
}

/// Reads one number. A record that ends before its end magic answers as one without it.
template <class T>
T ReadNumber(ClStream& rStream) {
    T nValue{};
    if (rStream.ReadAutoSwap(nValue) < sizeof(T))
        ThrowSignature("KPF end Magic is missing", __LINE__);
    return nValue;
}

void CheckTag(ClStream& rStream, const char (&acExpected)[4]) {
    char acTag[4] = {};
    if (rStream.Read(acTag, sizeof acTag) < sizeof acTag ||
        std::memcmp(acTag, acExpected, sizeof acTag) != 0)
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
}

} // namespace

void ClIpCalibrateGeometricBase::Store(ClStream& rStream) const {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateGeometricBase::Store() Enter");
    rStream.Write(cacType, sizeof cacType);
    rStream.Write(cacSubType, sizeof cacSubType);
    rStream.Write(cacVersion, sizeof cacVersion);
    for (const std::uint32_t nNumber : {m_nSourceWidth, m_nSourceHeight, m_nTargetWidth,
                                        m_nTargetHeight, m_nTargetPelsX, m_nTargetPelsY, m_nPlanes})
        rStream.WriteAutoSwap(nNumber);
    rStream.WriteAutoSwap(m_nBackground);

    rStream.WriteAutoSwap(RawImage::cnMagic);
    rStream.WriteAutoSwap(cnImageVersion);
    rStream.WriteAutoSwap(cnImageType);
    rStream.WriteAutoSwap(m_nTargetWidth);
    rStream.WriteAutoSwap(m_nTargetHeight);
    rStream.WriteAutoSwap(static_cast<std::uint32_t>(m_nPlanes * m_nEntrySize));
    rStream.WriteAutoSwap(m_nTargetPelsX);
    rStream.WriteAutoSwap(m_nTargetPelsY);
    rStream.WriteAutoSwap(cnContent);
    rStream.WriteAutoSwap(0.0);
    rStream.WriteAutoSwap(255.0);
    rStream.WriteAutoSwap(std::uint32_t{0});
    if (m_pTable != nullptr)
        rStream.Write(m_pTable.get(), TableBytes(m_nEntrySize));
    rStream.WriteAutoSwap(RawImage::cnMagic);
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateGeometricBase::Store() Leaving");
}

void ClIpCalibrateGeometricBase::Load(ClStream& rStream) {
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateGeometricBase::Load() Enter");
    LoadTags(rStream);
    // The numbers change as they are read: from here on the old table does not fit them.
    m_pTable.reset();
    LoadNumbers(rStream);
    LoadImageHeader(rStream);
    LoadTable(rStream);
    VekLFLog(Vek::eLogTrace, "ClIpCalibrateGeometricBase::Load() Leaving");
}

void ClIpCalibrateGeometricBase::LoadTags(ClStream& rStream) const {
    CheckTag(rStream, cacType);
    CheckTag(rStream, cacSubType);
    char szVersion[5] = {};
    rStream.Read(szVersion, 4);
    if (std::atoi(szVersion) != 1) // NOLINT(cert-err34-c): 0 for what is no number
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
}

void ClIpCalibrateGeometricBase::LoadNumbers(ClStream& rStream) {
    m_nSourceWidth = ReadNumber<std::uint32_t>(rStream);
    m_nSourceHeight = ReadNumber<std::uint32_t>(rStream);
    m_nTargetWidth = ReadNumber<std::uint32_t>(rStream);
    m_nTargetHeight = ReadNumber<std::uint32_t>(rStream);
    m_nTargetPelsX = ReadNumber<std::uint32_t>(rStream);
    m_nTargetPelsY = ReadNumber<std::uint32_t>(rStream);
    m_nPlanes = ReadNumber<std::uint32_t>(rStream);
    if (m_nPlanes == 0) // written while there was no table
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
    if (m_nPlanes > ClCalibrateGeometricData::cnMaxPlanes)
        ThrowCorrupt("m_nPlanes is not the expected.", __LINE__);
    m_nBackground = ReadNumber<std::uint8_t>(rStream);
}

void ClIpCalibrateGeometricBase::LoadImageHeader(ClStream& rStream) {
    std::uint32_t nMagic = 0;
    rStream.ReadAutoSwap(nMagic);
    if (nMagic != RawImage::cnMagic)
        ThrowSignature("KPF Magic is missing", __LINE__);
    if (ReadNumber<std::uint32_t>(rStream) >= 2)
        ThrowSignature("Wrong KPF version", __LINE__);
    if (ReadNumber<std::uint8_t>(rStream) != cnImageType)
        ThrowCorrupt("nDataType is not the expected.", __LINE__);
    if (ReadNumber<std::uint32_t>(rStream) != m_nTargetWidth ||
        m_nTargetWidth > Warp::cnMaxTargetSide)
        ThrowCorrupt("m_nTargetWidth is not the expected.", __LINE__);
    if (ReadNumber<std::uint32_t>(rStream) != m_nTargetHeight ||
        !Warp::IsSizeAllowed(m_nTargetWidth, m_nTargetHeight, m_nPlanes))
        ThrowCorrupt("m_nTargetHeight is not the expected.", __LINE__);
    if (ReadNumber<std::uint32_t>(rStream) != m_nPlanes * Warp::cnEntrySize)
        ThrowCorrupt("m_nEntrySize is not the expected.", __LINE__);
    m_nEntrySize = Warp::cnEntrySize;
    if (ReadNumber<std::uint32_t>(rStream) != m_nTargetPelsX)
        ThrowCorrupt("m_nTargetPelsX is not the expected.", __LINE__);
    if (ReadNumber<std::uint32_t>(rStream) != m_nTargetPelsY)
        ThrowCorrupt("m_nTargetPelsY is not the expected.", __LINE__);
    if (ReadNumber<std::uint32_t>(rStream) != cnContent)
        ThrowCorrupt("eContent is not the expected.", __LINE__);
    ReadNumber<double>(rStream); // range and attribute of an image: a table has none
    ReadNumber<double>(rStream);
    ReadNumber<std::uint32_t>(rStream);
}

void ClIpCalibrateGeometricBase::LoadTable(ClStream& rStream) {
    const std::uint64_t nBytes = TableBytes(m_nEntrySize);
    const unsigned long nPos = rStream.Pos();
    const unsigned long nSize = rStream.Size();
    if (nPos > nSize || nSize - nPos < nBytes + sizeof RawImage::cnMagic)
        ThrowSignature("KPF end Magic is missing", __LINE__);
    auto pTable = Vek::NewArrayPtr<unsigned char>(nBytes);
    rStream.Read(pTable.get(), nBytes);
    if (ReadNumber<std::uint32_t>(rStream) != RawImage::cnMagic)
        ThrowSignature("KPF end Magic is missing", __LINE__);

    for (std::uint64_t nEntry = 0; nEntry < nBytes; nEntry += m_nEntrySize) {
        std::int32_t nOffset = 0;
        std::memcpy(&nOffset, pTable.get() + nEntry, sizeof nOffset);
        if (nOffset != Warp::cnNoSource &&
            !Warp::IsOffsetInside(nOffset, m_nSourceWidth, m_nSourceHeight))
            throw ClExTessarin(QMT_ERROR_CURRUPT_DATA, VEK_HERE);
    }
    m_pTable = std::move(pTable);
}
