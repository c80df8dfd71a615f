#pragma once

/// The histograms of an image's planes, one after the other.

#include "ImageProcessing/Histogram.h"

/// `function(const ClHistogram&)` for each plane of an 8-bit image. Throws as
/// `ClHistogram::Create`, and `ClExBadAlloc` (-102).
template <class Function>
void ForEachPlaneHistogram(const ClImage& Image, Function&& function) {
    ClHistogram Histogram;
    if (Image.Planes() == 1) {
        Histogram.Create(Image);
        function(static_cast<const ClHistogram&>(Histogram));
        return;
    }
    ClImage Plane;
    for (int p = 0; p < Image.Planes(); ++p) {
        Image.GetPlane(p, Plane);
        Histogram.Create(Plane);
        function(static_cast<const ClHistogram&>(Histogram));
    }
}
