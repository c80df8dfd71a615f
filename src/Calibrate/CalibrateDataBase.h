#pragma once

/// `ClCalibrateDataBase`, the base of calibration records: three tags of 4 bytes and the entry
/// points that set a stream up for a record.

#include "Calibrate/BlockTags.h"

class ClCalibrateDataBase {
public:
    ClCalibrateDataBase();
    ClCalibrateDataBase(const ClCalibrateDataBase&) = default;
    virtual ~ClCalibrateDataBase();

    virtual bool IsValid() const = 0;
    virtual void Clear() = 0;
    /// The tags alone. Throws -40 for tags that are not this record's.
    virtual void ReadStream(ClStream& rStream);
    virtual void WriteStream(ClStream& rStream);

    /// One record at the stream's position, big endian and strict whatever the stream's settings,
    /// which are restored unless an exception passes.
    void Write(ClStream& rStream);
    void Read(ClStream& rStream);
    void Write(const char* szFile);
    void Read(const char* szFile);

    /// Whether all four tags are equal as texts.
    bool operator==(const ClCalibrateDataBase& rOther) const;
    /// Copies the first 3 bytes of each tag; the fourth is its terminator.
    ClCalibrateDataBase& operator=(const ClCalibrateDataBase& rOther);

    /// The version text last read, as it stands in the stream.
    const char* ReadVersion() const { return m_acReadVersion; }

protected:
    /// Reads a version and keeps its text where the stream still holds one.
    BlockTags::StTag ReadVersionTag(ClStream& rStream);

    static constexpr unsigned long cnTagSize = BlockTags::cnSize;

    char m_acType[cnTagSize];
    char m_acSubType[cnTagSize];
    char m_acVersion[cnTagSize];     ///< the version that this build writes
    char m_acReadVersion[cnTagSize]; ///< may lack a terminator: it comes from a stream
};
