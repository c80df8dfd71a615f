#include "ImageProcessing/ImagePyramid.h"

#include "Tools/Allocate.h"

#include <algorithm>
#include <utility>

ClImagePyramid& ClImagePyramid::operator=(const ClImagePyramid& Other) {
    if (this == &Other)
        return *this;
    ClImagePyramid Copy(Other.m_nLayers);
    for (long i = 0; i < Other.m_nLayers; ++i)
        Copy.m_pLayers[static_cast<std::size_t>(i)] = Other.m_pLayers[static_cast<std::size_t>(i)];
    Swap(Copy);
    return *this;
}

void ClImagePyramid::Create(long nLayers) {
    Clear();
    if (nLayers > 0)
        m_pLayers = Vek::NewArrayPtr<ClImage>(static_cast<std::size_t>(nLayers));
    m_nLayers = nLayers;
}

void ClImagePyramid::Create(const ClImage& Image) {
    long nLayers = 0;
    for (int nSide = std::min(Image.Width(), Image.Height()); nSide > 1; nSide >>= 1)
        ++nLayers;
    Create(std::max(nLayers, 1L));
}

void ClImagePyramid::Clear() {
    m_pLayers.reset();
    m_nLayers = 0;
}

void ClImagePyramid::Swap(ClImagePyramid& Other) noexcept {
    std::swap(m_pLayers, Other.m_pLayers);
    std::swap(m_nLayers, Other.m_nLayers);
}

const ClImage& ClImagePyramid::At(long nIdx) const {
    if (m_pLayers == nullptr)
        throw ClException("no pyramid is given", QMT_ERROR_BAD_POINTER, true, VEK_HERE);
    if (nIdx < 0 || nIdx >= m_nLayers)
        throw ClException("Pyramid layer out of range", QMT_ERROR_PARAM_OUT_OF_RANGE, true,
                          VEK_HERE);
    return m_pLayers[static_cast<std::size_t>(nIdx)];
}

const ClImage& ClImagePyramid::operator[](long nIdx) const {
    return At(nIdx);
}

ClImage& ClImagePyramid::operator[](long nIdx) {
    return const_cast<ClImage&>(At(nIdx));
}
