#pragma once

/// `ClIpCalibrateGeometricBase`, a geometric correction by a precalculated table: one entry per
/// pixel and plane of the corrected image tells where its samples lie in the capture and how they
/// are weighted. Making the table takes splines and logarithms, applying it takes none. The table
/// can be stored and loaded, so that a device need not make it at each start.

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/IpCalibrateBase.h"

#include <cstdint>
#include <memory>

class ClStream;

class ClIpCalibrateGeometricBase : public ClIpCalibrateBase {
public:
    using PointList = ClCalibrateGeometricData::PointList;

    /// Drops numbers and table; the entry size stays.
    void Reset() override;

    /// Takes the numbers of the record over and makes the table; keeps what is there already.
    /// Throws "The calibrations data is not set" (-37), and what the splines throw; after a
    /// failure the owner calls Reset().
    void Initiate() override;

    /// Corrects `*m_pInImage` into `*m_pOutImage`; without an input it does nothing. Throws -2
    /// where nothing is prepared, -14 for an input of another size or plane count, -35 where in
    /// and out are one object, -37 without output.
    void Calibrate() override;

    bool HasTable() const { return m_pTable != nullptr; }
    /// Whether a preparation or a loading has begun and not come to its end: numbers without a
    /// table, which a run would take for prepared ones. Reset() ends that state.
    bool IsUnfinished() const { return m_nSourceWidth != 0 && !HasTable(); }

    /// The precalculated record at the stream's position, numbers in the stream's byte order, the
    /// table in that of the host. A block is foreign data: Load() throws -40 for wrong tags,
    /// magics and versions and for a block that ends early, -39 for content that is inconsistent
    /// or names samples outside the capture. After a failure there is no table.
    void Store(ClStream& rStream) const;
    void Load(ClStream& rStream);

protected:
    /// Makes the table for `nPlanes` point lists.
    virtual void InitiateParams(PointList& rTarget, PointList* pActual, unsigned int nPlanes) = 0;
    /// Applies the table.
    virtual void CalibrateGeo(ClImage& rIn, ClImage& rOut) = 0;

    /// Bytes of a table of `nEntrySize` bytes an entry for the present target size.
    std::uint64_t TableBytes(unsigned long nEntrySize) const;

    std::uint32_t m_nSourceWidth = 0;
    std::uint32_t m_nSourceHeight = 0;
    std::uint32_t m_nTargetWidth = 0;
    std::uint32_t m_nTargetHeight = 0;
    std::uint32_t m_nTargetPelsX = 0; ///< pixels per metre
    std::uint32_t m_nTargetPelsY = 0;
    std::uint32_t m_nPlanes = 0;
    std::uint8_t m_nBackground = 0;            ///< value of a pixel without source
    std::unique_ptr<unsigned char[]> m_pTable; ///< null until it is made or loaded
    unsigned long m_nEntrySize = 0;            ///< bytes per entry

private:
    void CheckInput() const;
    void PrepareOutput();
    void LoadTags(ClStream& rStream) const;
    void LoadNumbers(ClStream& rStream);
    void LoadImageHeader(ClStream& rStream);
    void LoadTable(ClStream& rStream);
};
