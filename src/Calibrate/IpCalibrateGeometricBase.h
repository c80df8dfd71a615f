#pragma once

/// `ClIpCalibrateGeometricBase`, a geometric correction by a precalculated table: one entry per
/// pixel and plane of the corrected image tells where its samples lie in the capture and how they
/// are weighted. Making the table takes splines and logarithms, applying it takes none. The table
/// can be stored and loaded, so that a device need not make it at each start.

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/IpCalibrateBase.h"
#include "Calibrate/WarpTable.h"

class ClStream;

class ClIpCalibrateGeometricBase : public ClIpCalibrateBase, protected StWarp {
public:
    using PointList = ClCalibrateGeometricData::PointList;

    /// Drops numbers and table; the entry size stays.
    void Reset() override;

    /// Takes the numbers of the record over and makes the table; keeps a table that is there
    /// already. Throws "The calibrations data is not set" (-37), and what the splines throw; after
    /// a failure there is neither number nor table, and the next run tries again.
    void Initiate() override;

    /// Corrects `*m_pInImage` into `*m_pOutImage`; without an input it does nothing. Throws -2
    /// where nothing is prepared, -14 for an input of another size or plane count, -35 where in
    /// and out are one object, -37 without output.
    void Calibrate() override;

    using StWarp::HasTable;

    /// The precalculated record at the stream's position, numbers in the stream's byte order, the
    /// table in that of the host. A block is foreign data: Load() throws -40 for wrong tags,
    /// magics and versions and for a block that ends early, -39 for content that is inconsistent
    /// or names samples outside the capture. A failure behind the tags leaves neither number nor
    /// table.
    void Store(ClStream& rStream) const;
    void Load(ClStream& rStream);

protected:
    /// Makes the table for `nPlanes` point lists; called with the numbers in place.
    virtual void InitiateParams(PointList& rTarget, PointList* pActual, unsigned int nPlanes) = 0;
    /// Applies the table.
    virtual void CalibrateGeo(ClImage& rIn, ClImage& rOut) = 0;

private:
    void Prepare();
    void CheckInput() const;
    void PrepareOutput();
};
