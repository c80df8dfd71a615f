#pragma once

/// Several planes, one by one, for operators whose work knows one plane.

#include "ImageProcessing/IpJoinPlanes.h"
#include "ImageProcessing/IpSplitPlanes.h"
#include "Tools/FpImage.h"

/// Runs `work(Plane, PlaneOut)` on each plane of `In` and joins the results; `Out`, which may be
/// `In`, changes when all is done. Content and attribute are the input's, the range that of the
/// type. Returns the first result of `work` that is not 0. Throws "Image has more than 4 planes."
/// (-35) and `ClExBadAlloc` (-102).
template <class Work>
long ProcessPlaneByPlane(ClImage& In, ClImage& Out, Work work) {
    ClImage aIn[ClIpSplitPlanes::cnMaxPlanes];
    ClImage aOut[ClIpSplitPlanes::cnMaxPlanes];
    ClIpSplitPlanes Split;
    long nResult = Split.ApplyParam(In, &aIn[0], &aIn[1], &aIn[2], &aIn[3]);
    for (int p = 0; p < In.Planes() && nResult == 0; ++p) {
        nResult = work(static_cast<const ClImage&>(aIn[p]), aOut[p]);
        aIn[p].Delete();
    }
    if (nResult != 0)
        return nResult;

    ClImage Joined;
    ClIpJoinPlanes Join;
    Join.m_nPlanes = In.Planes();
    nResult = Join.ApplyParam(Joined, &aOut[0], &aOut[1], &aOut[2], &aOut[3]);
    if (nResult != 0)
        return nResult;
    Joined.SetContent(In.Content());
    Joined.SetAttribute(In.Attribute());
    Out.Swap(Joined);
    return 0;
}
