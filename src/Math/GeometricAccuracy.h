#pragma once

/// `ClGeometricAccuracy` compares the distances between measured points with those between the
/// points as they should be. Two points pass when their distances r (reference) and m (measured),
/// in pixels, satisfy
///
///     |r - m| <= absolute tolerance        for r below 35
///     |r - m| <= r x relative tolerance    from 35 on, where both limits of eEFTS meet
///
/// and the result is the share of all pairs that pass. Distances do not change under rotation and
/// shift, so that only the image is judged, not how the target lay. Every pair is tried: the
/// requirement is about any two places of an image, and a slow drift shows only in far pairs.

#include "Math/Vector.h"
#include "Tools/Array.h"

class ClGeometricAccuracy {
public:
    /// The limits of two image quality specifications for 500 pixels per inch.
    enum ERequirement : int {
        eEFTS = 0, ///< 0.35 pixels and 1 percent
        ePIV = 1,  ///< 0.65 pixels and 1.8 percent
    };

    /// No points, result 0.0, the limits of eEFTS.
    ClGeometricAccuracy();

    /// Sets both tolerances; a value that is neither leaves them.
    void setRequirements(ERequirement eRequirement);

    /// Adds a point. Without memory (-102) neither list changes.
    void appendPoint(const ClVector& reference, const ClVector& measured);
    void ClearPoints();

    /// Sets the result to the percentage of pairs that pass, 0.0 to 100.0. Throws "less than 2
    /// points!" (-101), and leaves the result then.
    void Calculate();
    double getTestResult() const { return m_dTestResult; }

    /// Whether two points with these distances pass. What is not a number passes.
    bool checkRequirements(double dReferenceDistance, double dMeasuredDistance) const;

    static double calculateDistance(const ClVector& first, const ClVector& second);

    TpArrayDynamic<ClVector, 10> m_aReference; ///< the points as they should be
    TpArrayDynamic<ClVector, 10> m_aMeasured;  ///< the same points as measured
    double m_dAbsoluteTolerance = 0.0;         ///< pixels
    double m_dRelativeTolerance = 0.0;         ///< as a fraction of the reference distance
    double m_dTestResult = 0.0;                ///< percent
};
