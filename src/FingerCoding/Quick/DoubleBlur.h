#pragma once

/// A region blurred twice and cut at a threshold again: how regions are closed, rid of bridges and
/// smoothed. On an image that is 0 in the region and 255 on the ground, with "mean" over windows 23
/// wide that are cut at the edges,
///
///     grown  = 0 where mean(mean(image)) < 245, else 255
///     shrunk = 0 where mean(mean(image)) < 10, else 255
///
/// Planes hold a region as bytes of 1, on 0, inside a box; outside of it they hold anything and
/// count as ground.

#include "FingerCoding/Quick/Plane.h"

namespace Quick {

class ClDoubleBlur {
public:
    static constexpr long cnHalf = 11;
    static constexpr long cnWidth = 2 * cnHalf + 1;
    /// How far a region may grow.
    static constexpr long cnReach = 2 * cnHalf;

    /// Bytes of memory for boxes of at most `nWidth` columns.
    static std::size_t Bytes(long nWidth);

    /// Works in borrowed memory of Bytes().
    explicit ClDoubleBlur(unsigned char* pMemory) : m_pMemory(pMemory) {}

    /// Both write to `Out`, of the size of `In`, and return the box around the result. Regions have
    /// `cnReach` pixels of ground around them before the edges of the plane.
    StBox Grow(const StPlane& In, const StBox& Box, const StPlane& Out) const;
    StBox Shrink(const StPlane& In, const StBox& Box, const StPlane& Out) const;

private:
    unsigned char* m_pMemory;
};

} // namespace Quick
