#pragma once

/// `ClIpCalibrateGeometricBuildRefPointsBase` turns a capture of the dot target into calibration
/// data: it finds the dots, decides which of them are the pattern's, places the ideal pattern in
/// the corrected image and fills the record. Derived classes know the pattern and its limits. This
/// class holds the settings and the order of the steps; the steps' work is done in files of their
/// own, by functions that see the settings and the dots only.
///
///     capture -> local threshold -> regions -> dots with neighbours   LocatePoints, BuildGrid
///             -> dots of the pattern, in its order                    AssociatePoints, GridToArray
///     pattern -> target points, centred on what the capture shows     BuildTarget, CenterTarget
///
/// It also judges stored records, whose points must look like those of such a pattern. Lengths are
/// millimetres, resolutions dots per inch, positions pixels with y downward.

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/DotSettings.h"
#include "ImageProcessing/IpConnectedComponent2.h"
#include "Math/ThinPlateSplines.h"
#include "Math/Vector.h"
#include "Tools/Array.h"
#include "Tools/ProcessorBase.h"

#include <cstdint>

class ClImage;

class ClIpCalibrateGeometricBuildRefPointsBase : public ClProcessorBase,
                                                 public StDotRun,
                                                 public StDotSettings {
public:
    /// A candidate for a dot of the pattern.
    class ClDot {
    public:
        /// Why a dot is out.
        enum EStatus : std::uint32_t {
            eClean = 0,
            eEccentricityTooSmall = 1,
            eEccentricityTooBig = 2,
            eAreaTooSmall = 3,
            eAreaTooBig = 4,
            eTooFewNeighbours = 5,
            eNoIdealPoint = 6,
            eOutsideColumn = 7,
        };

        explicit ClDot(const ClIpConnectedComponent2::ClComponent& rComponent);
        explicit ClDot(const ClVector& rPos);
        ClDot(const ClDot& Other);
        ClDot& operator=(const ClDot& Other);

        /// Links a dot, unless it is linked, and with `bBoth` this dot to that one.
        void AddDot(ClDot* pDot, bool bBoth);
        /// Unlinks a dot here; its own list stays.
        void Remove(ClDot* pDot);
        /// The sector, 0 to 7 from the right clockwise, in which neighbour `n` lies; 8 exactly
        /// between two sectors.
        long GetNeighbourDirection(long n) const;
        /// The neighbour nearest to a direction, by less than `dTolerance` radians, or null.
        ClDot* GetNeighbourInDirection(long nDirection, double dTolerance) const;

        ClVector m_vPos;       ///< centre
        ClVector m_vGrid;      ///< column and row in the pattern, (-1, -1) if not known
        ClVector m_vTarget;    ///< the ideal point matched to it, or (-1, -1)
        ClVector m_vBoxCentre; ///< centre of the bounding box
        double m_dWeight = 1.0;
        std::uint32_t m_nStatus = eClean;
        bool m_bValid = true; ///< still in the grid
        double m_dEccentricity = -1.0;
        double m_dArea = -1.0;                    ///< pixels
        double m_dGrey = -1.0;                    ///< mean grey value
        std::int32_t m_nIndex = 0;                ///< in the array of components
        TpArrayDynamic<ClDot*, 10> m_aNeighbours; ///< not owned

    private:
        void Initialize(const ClVector& rPos);
    };

    using DotGrid = TpArrayDynamic<ClDot*, 10>; ///< owns its dots, see ReleaseDots()
    using PointList = TpArrayDynamic<ClVector, 10>;
    using ComponentsArray_t = ClIpConnectedComponent2::ComponentsArray_t;
    using Spline = TpThinPlateSplines<float>;

    ClIpCalibrateGeometricBuildRefPointsBase();

    void PublishParameters(ClParameterContainer& Container) override;

    /// Locates the dots in `*m_pInImage`, plane by plane and in three planes at most, and fills
    /// `*m_pOutData`, which is cleared first. Returns 0. Throws "... m_pInImage is NULL" and
    /// "... m_pOutData is NULL" (-37) before anything changes, "Image has more than 4 planes."
    /// (-35), and what the steps throw; the record is then partly filled. No dot outlives it.
    long Process() override;

    /// The ideal pattern at a resolution, offsets in millimetres.
    virtual void BuildTargetPoints(PointList& rTarget, double dDpiX, double dDpiY, double dOffsetX,
                                   double dOffsetY) = 0;
    /// The ideal pattern, or the reference record's points at a resolution; for those the offsets
    /// are pixels. Throws "Target data is corrupt" (-39) for a reference record that has not the
    /// pattern's number of points, a coordinate that is not finite, or a resolution of 0.
    virtual void BuildTarget(PointList& rTarget, double dDpiX, double dDpiY, double dOffsetX,
                             double dOffsetY);
    /// Finds the candidates in one plane; the grid's former dots go. A dot's pixels differ from
    /// the mean of a window of 1.1 pitches about them by more than `m_dBinarizeOffset` (bright
    /// dots), or lie that much below it (dark ones). Throws -10 for an image without pixels, -35
    /// where pitch and resolution give no window, "Image Type is not the assigned type" (-101)
    /// for other types than `eUInt8`, -11 for several planes.
    virtual void LocatePoints(ClImage& rImage, DotGrid& rGrid);
    /// Leaves the dots of the pattern in the grid and writes their positions in its order.
    virtual void AssociatePoints(DotGrid& rGrid, PointList& rActual);
    /// Writes the dots in pattern order; throws (-600) unless all are there and stand straight.
    virtual void GridToArray(DotGrid& rGrid, PointList& rPoints) = 0;
    /// A grid from the lists of a record. Throws "Target and Source arrays must have same size!"
    /// (-39).
    virtual void ArrayToGrid(const PointList& rSource, const PointList& rTarget, DotGrid& rGrid);
    /// Dots per column of the pattern, from the left.
    virtual void GetGridColumnLengths(TpArrayStatic<int>& rLengths) = 0;
    /// Moves a list by one pitch in x and in y at the target resolution.
    virtual void MoveTarget(PointList& rTarget, PointList& rOther) = 0;

    // Linking and pruning
    void BuildGrid(DotGrid& rGrid, const ComponentsArray_t& rComponents);
    void RemoveLessNeighbours(DotGrid& rGrid);
    void ReduceToFittingNeighbours(DotGrid& rGrid);
    void GridRemoveBadPoints(DotGrid& rGrid);
    /// Takes a dot out: nobody links it any more, and it is no longer valid.
    void RemoveGridPoint(DotGrid& rGrid, long n);
    /// Unlinks neighbours that do not stand at a multiple of 45 degrees to their dot's rotation.
    void RemoveWrongAngleNeighbours(DotGrid& rGrid);
    /// Sorts into columns from the left, each from the top. A column holds what lies less than half
    /// a pitch to the right of its centre: the mean x of those clean dots that are that near to its
    /// first one. Dots at one place keep the order of the components.
    void SortXY(DotGrid& rGrid);

    // Looking up
    /// The first dot at a place of the pattern, or null.
    static ClDot* RetrieveDot(const DotGrid& rGrid, int nX, int nY);
    /// The valid dot nearest to the image's origin, or null.
    ClDot* GetBottumLeftDot(const DotGrid& rGrid) const;
    /// Mean of the clean valid dots; not a number without any.
    ClVector GetCentreOfGrid(const DotGrid& rGrid) const;
    /// Mean of all points; not a number without any.
    ClVector GetCentreOfVectorArray(const PointList& rArray) const;
    /// The middle of `nCount` values once sorted, at index nCount / 2; sorts them in place.
    double GetMedian(double* pValues, long nCount) const;

    // Placing the pattern
    void MoveArray(PointList& rArray, const ClVector& rMove) const;
    /// Moves the target points, which lie as BuildTarget() gives them at the target resolution.
    /// With `m_bCenterByBorders` the borders of the corrected image come to lie evenly about the
    /// middle of the capture `*m_pInImage`; else the pattern, half a pitch around it and
    /// `m_dBottomMargin` come to lie in the middle of the corrected image. Only the first actual
    /// list is used. Throws "Target and Source arrays must have same size!" (-39) for lists of
    /// different length, -37 where the capture is needed and not set, and what the spline throws.
    void CenterTarget(PointList& rTarget, PointList* pActual, unsigned int nPlanes);
    /// Mean coordinate in the capture of a border of the corrected image that starts at (nX, nY)
    /// and has `nLength` pixels: x of a vertical border, y of a horizontal one; 0 without pixels.
    /// Sum and mean are floats, as the spline's are. Throws -1 for a spline that was not set up.
    double GetBorderDelta(Spline& rSpline, int nX, int nY, int nLength, bool bVertical) const;

    // Judging records
    /// The target points have to be the pattern at the target's resolution, moved as a whole and
    /// within 10 pixels, of a size that a table may have. Throws "Target data is corrupt" (-39).
    void ValidateTargetPoints(const ClCalibrateGeometricData& rData);
    /// The points of the capture have to step to the right and down by the mean step, within 30
    /// percent; those of plane 0 are looked at. Throws, in this order, as ValidateTargetPoints(),
    /// "Target and Source arrays must have same size!" and "Source data is corrupt" (-39), the
    /// latter for coordinates of any plane that are not finite, too.
    void ValidateCalibrationData(const ClCalibrateGeometricData& rData);

    /// Throws (-600), in this order, "The Angle(x) of the Dot Grid is too big.", "There are Dots
    /// are too far a way from a Grid(x) line." and the same for y, where rows or columns of the
    /// pattern's points lean or bend too much; -35 for a list of another length.
    void CheckGridLines(const PointList& rPoints);

    // For developers
    /// Draws the valid dots and the directions of their neighbours.
    void GridToDebugImage(const DotGrid& rGrid, ClImage& rImage) const;
    void TraceGrid(const DotGrid& rGrid) const;
    void LogGrid(const DotGrid& rGrid) const;
    /// Writes an image to a bitmap file named `szPath`, "Calibrate[" build date and time "] ",
    /// `szName`, time and ".bmp"; `szPath` ends with its separator. A name is cut to 2047
    /// characters and still ends with ".bmp"; its colons from the fifth character on become
    /// points. Null texts count as empty. Throws -37 without image, and what ClBitmap throws.
    void StoreDebug(ClImage* pImage, const char* szName, const char* szPath) const;
    /// The centre of what is darker than `nRef` in the first plane, no farther from (nX, nY) than
    /// the dot diameter, in whole pixels of the capture, in either direction. A pixel weighs what
    /// it is darker by; where none weighs anything the centre is not a number. Throws "Image Type
    /// is not the assigned type" (-101) for other types than `eUInt8`.
    void CheckDot(const ClImage& rImage, long nX, long nY, long nRef, ClVector& rCentre) const;
    /// Takes loose pixels together and appends the centres of the clusters of a dot's size. A
    /// cluster is a point with all later ones nearer to it than 1.5; the x of these becomes -1,
    /// and points with a negative x are passed over.
    void RemoveSmallPoints(PointList& rIn, PointList& rOut) const;

    /// Deletes all dots and empties the grid.
    static void ReleaseDots(DotGrid& rGrid);

protected:
    // What the models of the target have in common
    /// What becomes of a dot that stands in no column where one is expected.
    using Reject_t = void (*)(ClDot& rDot);

    /// BuildTargetPoints() by the lengths of GetGridColumnLengths().
    void BuildPatternPoints(PointList& rTarget, double dDpiX, double dDpiY, double dOffsetX,
                            double dOffsetY);
    /// Writes the valid dots that stand in the column of the ideal point whose turn it is, and
    /// rejects the others. Throws `szCountMessage` (-600) unless the pattern's count comes out;
    /// the list then has what was accepted.
    void TakeDots(DotGrid& rGrid, PointList& rPoints, Reject_t pReject, const char* szCountMessage);
    /// One pitch in x and in y at the target resolution.
    void MoveByPitch(PointList& rTarget) const;

private:
    void LocateDots(std::uint32_t nPlanes);
    void FillRecord(std::uint32_t nPlanes);
    ClVector MoveByBorders(Spline& rSpline) const;
};
