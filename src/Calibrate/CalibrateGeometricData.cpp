#include "Calibrate/CalibrateGeometricData.h"

#include "Tools/Allocate.h"
#include "Tools/CRC32.h"
#include "Tools/LoggingFacility.h"
#include "Tools/MD5.h"
#include "Tools/PlainLocale.h"
#include "Tools/Stream.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

/// The layouts of the record; each adds to the one before it.
enum ELayout : int {
    eLayoutFirst = 0,
    eLayoutTargetResolution = 2,
    eLayoutPlanes = 3, ///< from here on the target list stands before the actual lists
    eLayoutBackground = 4,
    eLayoutSourceResolution = 5,
    eLayoutChecksum = 6, ///< the latest
};

/// 500 dots per inch, the target resolution of layouts that do not tell one.
constexpr std::uint32_t cnDefaultPels = 19685;

/// One number of a record: since when it is stored, and what stands for it in earlier layouts.
struct StNumber {
    std::uint32_t ClCalibrateGeometricData::*m_pMember;
    ELayout m_eSince;
    std::uint32_t m_nDefault;
};

/// All of them, in the order in which streams hold and digests take them.
constexpr StNumber caNumbers[] = {
    {&ClCalibrateGeometricData::m_nSourceWidth, eLayoutFirst, 0},
    {&ClCalibrateGeometricData::m_nSourceHeight, eLayoutFirst, 0},
    {&ClCalibrateGeometricData::m_nSourcePelsX, eLayoutSourceResolution, 0},
    {&ClCalibrateGeometricData::m_nSourcePelsY, eLayoutSourceResolution, 0},
    {&ClCalibrateGeometricData::m_nTargetWidth, eLayoutFirst, 0},
    {&ClCalibrateGeometricData::m_nTargetHeight, eLayoutFirst, 0},
    {&ClCalibrateGeometricData::m_nTargetPelsX, eLayoutTargetResolution, cnDefaultPels},
    {&ClCalibrateGeometricData::m_nTargetPelsY, eLayoutTargetResolution, cnDefaultPels},
    {&ClCalibrateGeometricData::m_nPlanes, eLayoutPlanes, 1},
};

constexpr char cacOldType[4] = {'C', 'a', 'l', 0};
constexpr char cacOldSubType[4] = {'L', 'm', 'v', 0};

constexpr unsigned long cnPointSize = 8; // two 32-bit floats

/// A field of a stream that has ended stays as it was.
template <class T>
void ReadField(ClStream& rStream, T& rField) {
    T nRead{};
    if (rStream.ReadAutoSwap(nRead) == sizeof nRead)
        rField = nRead;
}

} // namespace

ClCalibrateGeometricData::ClCalibrateGeometricData() {
    std::memcpy(m_acSubType, "GEO", cnTagSize);
    std::memcpy(m_acVersion, "006", cnTagSize);
}

ClCalibrateGeometricData::~ClCalibrateGeometricData() = default;

bool ClCalibrateGeometricData::IsValid() const {
    return m_nPlanes != 0;
}

void ClCalibrateGeometricData::Clear() {
    for (const StNumber& Number : caNumbers)
        this->*Number.m_pMember = 0;
    m_nBackground = 0;
    m_aTarget.Clear();
    for (PointList& rList : m_aActual)
        rList.Clear();
}

// Writing

void ClCalibrateGeometricData::WriteStream(ClStream& rStream) {
    const unsigned long nStart = rStream.Pos();
    ClCalibrateDataBase::WriteStream(rStream);
    for (const StNumber& Number : caNumbers)
        rStream.WriteAutoSwap(this->*Number.m_pMember);
    rStream.WriteAutoSwap(m_nBackground);
    WriteArray(rStream, m_aTarget);
    for (std::uint32_t p = 0; p < std::min(m_nPlanes, cnMaxPlanes); ++p)
        WriteArray(rStream, m_aActual[p]);
    WriteCRC(rStream, nStart, rStream.Pos());
}

void ClCalibrateGeometricData::WriteArray(ClStream& rStream, const PointList& rArray) {
    rStream.WriteAutoSwap(static_cast<std::uint32_t>(rArray.Entries()));
    for (unsigned long i = 0; i < rArray.Entries(); ++i) {
        rStream.WriteAutoSwap(static_cast<float>(rArray[i].x));
        rStream.WriteAutoSwap(static_cast<float>(rArray[i].y));
    }
}

void ClCalibrateGeometricData::WriteCRC(ClStream& rStream, unsigned long nStart,
                                        unsigned long nEnd) {
    const std::uint32_t nChecksum = ChecksumOf(rStream, nStart, nEnd);
    rStream.WriteAutoSwap(nChecksum);
}

/// The checksum of the bytes from `nStart` to `nEnd`; leaves the position at `nEnd`. What stands
/// behind them is not looked at. On a strict stream a record can only stand at offset 0.
std::uint32_t ClCalibrateGeometricData::ChecksumOf(ClStream& rStream, unsigned long nStart,
                                                   unsigned long nEnd) {
    if (nEnd < nStart || nEnd > rStream.Size() || (nStart > 0 && rStream.GetThrowOnShort()))
        Vek::ThrowUnexpectedEnd();
    const unsigned long nBytes = nEnd - nStart;
    const auto pBytes = Vek::NewArrayPtr<unsigned char>(nBytes);
    rStream.Seek(static_cast<long>(nStart), 0);
    rStream.Read(pBytes.get(), nBytes);
    rStream.Seek(static_cast<long>(nEnd), 0); // a file is not written behind a read without it
    return ClCRC32().Get_CRC(pBytes.get(), nBytes);
}

// Reading

void ClCalibrateGeometricData::ReadStream(ClStream& rStream) {
    const unsigned long nStart = rStream.Pos();
    const int nLayout = ReadTags(rStream);
    ReadContent(rStream, nLayout);
    if (nLayout >= eLayoutChecksum)
        CheckCRC(rStream, nStart, rStream.Pos());
}

/// Reads the three tags, which may be those of the older records, and returns the layout.
int ClCalibrateGeometricData::ReadTags(ClStream& rStream) {
    const BlockTags::StTag Type(rStream);
    if (!Type.Is(m_acType) && !Type.Is(cacOldType))
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
    const BlockTags::StTag SubType(rStream);
    const bool bOld = SubType.Is(cacOldSubType);
    if (!bOld && !SubType.Is(m_acSubType))
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
    const BlockTags::StTag Version = ReadVersionTag(rStream);
    if (bOld && std::strcmp(Version.m_acText, "001") == 0)
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
    if (bOld && std::strcmp(Version.m_acText, "002") == 0)
        return eLayoutFirst;
    // What is no number reads as the first layout, as it always has.
    return std::clamp(Version.Number(), int{eLayoutFirst}, int{eLayoutChecksum});
}

void ClCalibrateGeometricData::ReadContent(ClStream& rStream, int nLayout) {
    for (const StNumber& Number : caNumbers)
        if (nLayout >= Number.m_eSince)
            ReadField(rStream, this->*Number.m_pMember);
        else
            this->*Number.m_pMember = Number.m_nDefault;
    if (m_nPlanes > cnMaxPlanes)
        throw ClExTessarin(QMT_ERROR_CURRUPT_DATA, VEK_HERE);
    if (nLayout >= eLayoutBackground)
        ReadField(rStream, m_nBackground);

    if (nLayout < eLayoutPlanes)
        ReadArray(rStream, m_aActual[0]);
    ReadArray(rStream, m_aTarget);
    if (nLayout >= eLayoutPlanes)
        for (std::uint32_t p = 0; p < m_nPlanes; ++p)
            ReadArray(rStream, m_aActual[p]);
}

void ClCalibrateGeometricData::ReadArray(ClStream& rStream, PointList& rArray) {
    std::uint32_t nCount = 0;
    if (rStream.ReadAutoSwap(nCount) < sizeof nCount)
        return;
    if (nCount > rStream.Rest().value_or(0) / cnPointSize)
        Vek::ThrowUnexpectedEnd();
    rArray.SetEntries(nCount);
    for (unsigned long i = 0; i < nCount; ++i) {
        float fX = 0;
        float fY = 0;
        rStream.ReadAutoSwap(fX);
        rStream.ReadAutoSwap(fY);
        rArray[i] = ClVector(static_cast<double>(fX), static_cast<double>(fY));
    }
}

void ClCalibrateGeometricData::CheckCRC(ClStream& rStream, unsigned long nStart,
                                        unsigned long nEnd) {
    const unsigned long nEntry = rStream.Pos();
    const std::uint32_t nComputed = ChecksumOf(rStream, nStart, nEnd);
    std::uint32_t nStored = 0;
    rStream.ReadAutoSwap(nStored);
    rStream.Seek(static_cast<long>(nEntry), 0);
    if (nComputed != nStored)
        throw ClException("Calibration Data currupt", QMT_ERROR_CURRUPT_DATA, true, VEK_HERE);
}

// Hash

namespace {

template <class T>
void Digest(ClMD5::MD5_CTX& rContext, T value) {
    unsigned char acBytes[sizeof(T)];
    std::memcpy(acBytes, &value, sizeof(T));
    ClMD5::Update(&rContext, acBytes, sizeof(T));
}

void Digest(ClMD5::MD5_CTX& rContext, const ClVector& rPoint) {
    Digest(rContext, static_cast<float>(rPoint.x));
    Digest(rContext, static_cast<float>(rPoint.y));
}

} // namespace

void ClCalibrateGeometricData::GenerateHash(unsigned char* pHash) const {
    ClMD5::MD5_CTX Context;
    ClMD5::Init(&Context);
    for (const StNumber& Number : caNumbers)
        Digest(Context, this->*Number.m_pMember);
    Digest(Context, m_nBackground);
    for (unsigned long i = 0; i < m_aTarget.Entries(); ++i) {
        Digest(Context, m_aTarget[i]);
        for (std::uint32_t p = 0; p < std::min(m_nPlanes, cnMaxPlanes); ++p)
            if (i < m_aActual[p].Entries())
                Digest(Context, m_aActual[p][i]);
    }
    ClMD5::Final(pHash, &Context);
}

// Copy, comparison, log

ClCalibrateGeometricData&
ClCalibrateGeometricData::operator=(const ClCalibrateGeometricData& rOther) {
    if (this == &rOther)
        return *this;
    ClCalibrateDataBase::operator=(rOther);
    for (const StNumber& Number : caNumbers)
        this->*Number.m_pMember = rOther.*Number.m_pMember;
    m_nBackground = rOther.m_nBackground;
    m_aTarget = rOther.m_aTarget;
    for (std::uint32_t p = 0; p < cnMaxPlanes; ++p)
        m_aActual[p] = rOther.m_aActual[p];
    return *this;
}

bool ClCalibrateGeometricData::operator==(const ClCalibrateGeometricData& rOther) const {
    if (ClCalibrateDataBase::operator==(rOther))
        return false;
    for (const StNumber& Number : caNumbers)
        if (this->*Number.m_pMember != rOther.*Number.m_pMember)
            return false;
    if (m_nBackground != rOther.m_nBackground)
        return false;
    if (!SamePoints(m_aTarget, rOther.m_aTarget))
        return false;
    for (std::uint32_t p = 0; p < std::min(m_nPlanes, cnMaxPlanes); ++p)
        if (!SamePoints(m_aActual[p], rOther.m_aActual[p]))
            return false;
    return true;
}

bool ClCalibrateGeometricData::SamePoints(const PointList& rA, const PointList& rB) const {
    if (rA.Entries() != rB.Entries())
        return false;
    for (unsigned long i = 0; i < rA.Entries(); ++i)
        if (!(std::fabs(rA[i].x - rB[i].x) < ClVector::m_cdEpsilon) ||
            !(std::fabs(rA[i].y - rB[i].y) < ClVector::m_cdEpsilon))
            return false;
    return true;
}

void ClCalibrateGeometricData::Log() const {
    const Vek::ClPlainLocale plain;
    const unsigned long nCount = std::min(m_aTarget.Entries(), m_aActual[0].Entries());
    for (unsigned long i = 0; i < nCount; ++i) {
        char szLine[1024];
        std::size_t nUsed = 0;
        const auto Append = [&](int nWritten) {
            if (nWritten > 0)
                nUsed = std::min(nUsed + static_cast<std::size_t>(nWritten), sizeof szLine - 1);
        };
        Append(std::snprintf(szLine, sizeof szLine,
                             "%d: Target(%7.3f, %7.3f) Actual0(%7.3f, %7.3f)", static_cast<int>(i),
                             m_aTarget[i].x, m_aTarget[i].y, m_aActual[0][i].x, m_aActual[0][i].y));
        if (i < m_aActual[1].Entries())
            Append(std::snprintf(szLine + nUsed, sizeof szLine - nUsed, " Actual1(%7.3f, %7.3f)",
                                 m_aActual[1][i].x, m_aActual[1][i].y));
        if (i < m_aActual[2].Entries())
            Append(std::snprintf(szLine + nUsed, sizeof szLine - nUsed, " Actual2(%7.3f, %7.3f)",
                                 m_aActual[2][i].x, m_aActual[2][i].y));
        VekLFLog(Vek::eLogTrace, "%s", szLine);
    }
}
