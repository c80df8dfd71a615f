#pragma once

/// The walk over the samples of two images at once.
///
/// Images of equally many planes are paired sample by sample. A grey image pairs with each plane of
/// an image of three. Other counts pair nothing.

#include "ImageProcessing/Kernels/Arithmetic.h"
#include "ImageProcessing/PixelTypeDispatch.h"
#include "ImageProcessing/Walks/SampleBlocks.h"
#include "Tools/FpImage.h"

#include <algorithm>

/// Whether each has one of the eight pixel types.
inline bool ArePixelTypes(const ClImage& In1, const ClImage& In2, const ClImage& Out) {
    return IsPixelType(In1.DataType()) && IsPixelType(In2.DataType()) &&
           IsPixelType(Out.DataType());
}

/// Planes of an image of `nPlanes1` that one sample of an image of `nPlanes2` is paired with.
inline long PlanesPerSample(long nPlanes1, long nPlanes2) {
    if (nPlanes1 == nPlanes2)
        return 1;
    return nPlanes1 == 3 && nPlanes2 == 1 ? 3 : 0;
}

/// What a two-image operator walks, in the order of the arguments of `ClIp2to1Base::DoProcess`.
/// Sizes are in pixels, offsets and strides in samples. Outside the area nothing is touched.
struct StPairArea {
    ClImage& m_rIn1;
    ClImage& m_rIn2;
    ClImage& m_rOut;
    long m_nWidth;
    long m_nHeight;
    long m_nPlanes1;
    long m_nPlanes2;
    long m_nIn1Offset;
    long m_nIn1Stride;
    long m_nIn2Offset;
    long m_nIn2Stride;
    long m_nOutOffset;
    long m_nOutStride;

    bool IsEightBit() const {
        return m_rIn1.DataType() == ClImage::eUInt8 && m_rIn2.DataType() == ClImage::eUInt8 &&
               m_rOut.DataType() == ClImage::eUInt8;
    }
    bool IsEmpty() const { return m_nWidth < 1 || m_nHeight < 1 || m_nPlanes1 < 1; }
    /// Of image 1 and of the output.
    long SamplesPerLine() const { return m_nWidth * m_nPlanes1; }
};

/// `function(pIn1, pIn2, pOut, n)` for blocks of at most `cnSampleBlock` samples of image 1 and of
/// the output, with the first byte of each.
template <class Function>
void WalkPairBlocks(const StPairArea& Area, Function&& function) {
    const long nSpread = PlanesPerSample(Area.m_nPlanes1, Area.m_nPlanes2);
    if (nSpread == 0 || Area.IsEmpty())
        return;
    const auto at = [](const ClImage& Image, long nSample) {
        return Image.Data() + nSample * Image.BytesPerSample();
    };
    for (long y = 0; y < Area.m_nHeight; ++y)
        for (long i = 0; i < Area.SamplesPerLine(); i += cnSampleBlock)
            function(at(Area.m_rIn1, Area.m_nIn1Offset + y * Area.m_nIn1Stride + i),
                     at(Area.m_rIn2, Area.m_nIn2Offset + y * Area.m_nIn2Stride + i / nSpread),
                     at(Area.m_rOut, Area.m_nOutOffset + y * Area.m_nOutStride + i),
                     std::min(cnSampleBlock, Area.SamplesPerLine() - i));
}

/// `kernel(planes)` for images of 8 bits and equally many planes.
template <class Kernel>
void WalkPairPlanes(const StPairArea& Area, Kernel kernel) {
    if (Area.IsEmpty())
        return;
    kernel(Kernels::StPairOfPlanes{Area.m_rIn1.Data() + Area.m_nIn1Offset, Area.m_nIn1Stride,
                                   Area.m_rIn2.Data() + Area.m_nIn2Offset, Area.m_nIn2Stride,
                                   Area.SamplesPerLine(), Area.m_nHeight,
                                   Area.m_rOut.Data() + Area.m_nOutOffset, Area.m_nOutStride});
}

/// `Out = function(In1, In2)` for every pair of samples, in double, of images that have pixel
/// types; the result is converted as SampleFromDouble().
template <class Function>
void WalkPairs(const StPairArea& Area, Function&& function) {
    const long nSpread = PlanesPerSample(Area.m_nPlanes1, Area.m_nPlanes2);
    const LoadSamples load1 = LoadSamplesOf(Area.m_rIn1.DataType());
    const LoadSamples load2 = LoadSamplesOf(Area.m_rIn2.DataType());
    const StoreSamples store = StoreSamplesOf(Area.m_rOut.DataType());
    double a[cnSampleBlock];
    double b[cnSampleBlock];
    WalkPairBlocks(Area, [&](const unsigned char* pIn1, const unsigned char* pIn2,
                             unsigned char* pOut, long nSamples) {
        load1(pIn1, nSamples, a);
        load2(pIn2, nSamples / nSpread, b);
        SpreadSamples(b, nSamples / nSpread, nSpread);
        for (long i = 0; i < nSamples; ++i)
            a[i] = function(a[i], b[i]);
        store(a, nSamples, pOut);
    });
}
