#pragma once

/// `ClCalibrateGeometricData`, the record of a geometric calibration: where each dot of the
/// reference pattern ought to lie in the corrected image (target points) and where it really lay
/// in the raw capture (actual points, one list per colour plane). Entry i of every list is the
/// same physical dot.
///
/// Points are doubles in memory and 32-bit floats in a stream; docs/file-formats.md has the
/// layouts. All layouts ever written are read.

#include "Calibrate/CalibrateDataBase.h"
#include "Math/Vector.h"
#include "Tools/Array.h"

#include <cstdint>

class ClCalibrateGeometricData : public ClCalibrateDataBase {
public:
    using PointList = TpArrayDynamic<ClVector, 10>;

    static constexpr std::uint32_t cnMaxPlanes = 3;
    static constexpr unsigned long cnHashSize = 16;

    ClCalibrateGeometricData();
    ClCalibrateGeometricData(const ClCalibrateGeometricData&) = default;
    ~ClCalibrateGeometricData() override;

    /// Whether the record has planes.
    bool IsValid() const override;
    /// Empties numbers and lists; the tags stay.
    void Clear() override;

    /// Reads a record of any layout without clearing this one first. The position ends in front
    /// of the checksum, which is tested and not consumed. Throws -40 for tags or a version that
    /// are refused, -201 where the stream ends early or a count claims more than it holds, -39
    /// for more than 3 planes and, with "Calibration Data currupt", for a wrong checksum.
    void ReadStream(ClStream& rStream) override;
    /// Writes the present layout. The record has to begin at offset 0 of the stream.
    void WriteStream(ClStream& rStream) override;

    /// The MD5 digest of the content, 16 bytes, over coordinates rounded to 32-bit floats: the
    /// same before and after a stream.
    virtual void GenerateHash(unsigned char* pHash) const;

    void WriteArray(ClStream& rStream, const PointList& rArray);
    void ReadArray(ClStream& rStream, PointList& rArray);
    void WriteCRC(ClStream& rStream, unsigned long nStart, unsigned long nEnd);
    void CheckCRC(ClStream& rStream, unsigned long nStart, unsigned long nEnd);

    ClCalibrateGeometricData& operator=(const ClCalibrateGeometricData& rOther);
    /// Compares numbers exactly and points within ClVector::m_cdEpsilon. False at once when the
    /// tags are equal: callers compare records of different versions with it.
    bool operator==(const ClCalibrateGeometricData& rOther) const;

    /// Writes all point pairs to the log.
    void Log() const;
    /// A hook without effect.
    void TraceOut() const {}

    std::uint32_t m_nSourceWidth = 0; ///< raw capture, pixels
    std::uint32_t m_nSourceHeight = 0;
    std::uint32_t m_nSourcePelsX = 0; ///< raw capture, pixels per metre
    std::uint32_t m_nSourcePelsY = 0;
    std::uint32_t m_nTargetWidth = 0; ///< corrected image, pixels
    std::uint32_t m_nTargetHeight = 0;
    std::uint32_t m_nTargetPelsX = 0; ///< corrected image, pixels per metre
    std::uint32_t m_nTargetPelsY = 0;
    std::uint32_t m_nPlanes = 0;      ///< actual lists in use, 1 to 3
    std::uint8_t m_nBackground = 0;   ///< grey value of a corrected pixel without source
    PointList m_aTarget;              ///< corrected-image pixels
    PointList m_aActual[cnMaxPlanes]; ///< raw-capture pixels

private:
    int ReadTags(ClStream& rStream);
    void ReadContent(ClStream& rStream, int nLayout);
    bool SamePoints(const PointList& rA, const PointList& rB) const;
    static std::uint32_t ChecksumOf(ClStream& rStream, unsigned long nStart, unsigned long nEnd);
};
