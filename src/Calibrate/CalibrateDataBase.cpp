#include "Calibrate/CalibrateDataBase.h"

#include "Tools/Exception.h"
#include "Tools/FileStream.h"
#include "Tools/MemStream.h"

#include <cstring>

ClCalibrateDataBase::ClCalibrateDataBase()
    : m_acType{'C', 'A', 'L', 0}, m_acSubType{'N', 'O', 'T', 0}, m_acVersion{'S', 'E', 'T', 0},
      m_acReadVersion{0, 0, 0, 0} {}

ClCalibrateDataBase::~ClCalibrateDataBase() = default;

void ClCalibrateDataBase::Write(ClStream& rStream) {
    const bool bBigEndian = rStream.SetBigEndian4Write(true);
    const bool bStrict = rStream.SetThrowOnShort(true);
    WriteStream(rStream);
    rStream.SetThrowOnShort(bStrict);
    rStream.SetBigEndian4Write(bBigEndian);
}

void ClCalibrateDataBase::Read(ClStream& rStream) {
    const bool bBigEndian = rStream.SetBigEndian4Read(true);
    const bool bStrict = rStream.SetThrowOnShort(true);
    ReadStream(rStream);
    rStream.SetThrowOnShort(bStrict);
    rStream.SetBigEndian4Read(bBigEndian);
}

void ClCalibrateDataBase::Write(const char* szFile) {
    ClFileStream File(szFile, "wb");
    ClMemStream Record; // a record reads its bytes back for the checksum, which "wb" does not allow
    Write(Record);
    File.SetThrowOnShort(true);
    File.Write(Record.GetData(), Record.Size());
    File.Close();
}

void ClCalibrateDataBase::Read(const char* szFile) {
    ClFileStream Stream(szFile, "rb");
    Read(Stream);
    Stream.Close();
}

void ClCalibrateDataBase::ReadStream(ClStream& rStream) {
    if (!BlockTags::StTag(rStream).Is(m_acType))
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
    if (!BlockTags::StTag(rStream).Is(m_acSubType))
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
    ReadVersionTag(rStream);
}

BlockTags::StTag ClCalibrateDataBase::ReadVersionTag(ClStream& rStream) {
    const BlockTags::StTag Version(rStream);
    if (Version.m_bWhole)
        std::memcpy(m_acReadVersion, Version.m_acText, cnTagSize);
    return Version;
}

void ClCalibrateDataBase::WriteStream(ClStream& rStream) {
    rStream.Write(m_acType, cnTagSize);
    rStream.Write(m_acSubType, cnTagSize);
    rStream.Write(m_acVersion, cnTagSize);
}

bool ClCalibrateDataBase::operator==(const ClCalibrateDataBase& rOther) const {
    return std::strncmp(m_acType, rOther.m_acType, cnTagSize) == 0 &&
           std::strncmp(m_acSubType, rOther.m_acSubType, cnTagSize) == 0 &&
           std::strncmp(m_acVersion, rOther.m_acVersion, cnTagSize) == 0 &&
           std::strncmp(m_acReadVersion, rOther.m_acReadVersion, cnTagSize) == 0;
}

ClCalibrateDataBase& ClCalibrateDataBase::operator=(const ClCalibrateDataBase& rOther) {
    if (this == &rOther)
        return *this;
    std::memcpy(m_acType, rOther.m_acType, cnTagSize - 1);
    std::memcpy(m_acSubType, rOther.m_acSubType, cnTagSize - 1);
    std::memcpy(m_acVersion, rOther.m_acVersion, cnTagSize - 1);
    std::memcpy(m_acReadVersion, rOther.m_acReadVersion, cnTagSize - 1);
    return *this;
}
