#pragma once

/// In which direction the ridges are crossed, from the gradients around a sample.
///
/// Gradients on the two flanks of a ridge point against each other, and their mean is nothing.
/// With their angles doubled they agree; so the squares are averaged, and the angle of the mean is
/// halved. Neither step needs an angle: the products of the components do, and a square root.

#include "measures/BoxSums.h"
#include "measures/GreyView.h"

namespace measures {

struct ClStep {
    double x = 0.0;
    double y = 0.0;
};

struct ClGradient {
    int x = 0; ///< 8 times the change of grey from a sample to the next one to the right
    int y = 0; ///< the same downward
};

/// The weights 1, 2, 1 across the direction; 0 where one of the nine samples is not on the finger.
ClGradient GradientAt(const ClGreyView& Image, const ClGreyView& Mask, int x, int y);

class ClRidgeDirections {
public:
    /// `nReach` columns and lines to each side are averaged. Both views are of one size and are
    /// read by the constructor only.
    ClRidgeDirections(const ClGreyView& Image, const ClGreyView& Mask, int nReach);

    /// Of length 1, toward the right, or straight down; to the right where there is no direction.
    ClStep Across(int x, int y) const;

private:
    int m_nReach;
    ClBoxSums m_Squares;  ///< of the gradients' x^2 - y^2
    ClBoxSums m_Products; ///< of 2 x y
};

} // namespace measures
