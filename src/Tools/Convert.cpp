#include "Tools/Convert.h"

#include "Tools/FpImage.h"

namespace {

/// Hundredths of a millimetre to a metre.
constexpr double cdMetre = 1e-5;

} // namespace

ClConvert::ClConvert(ClImage* pImage) {
    if (pImage != nullptr)
        SetRefImage(*pImage);
}

ClConvert::~ClConvert() = default;

void ClConvert::SetRefPels(long nPelsX, long nPelsY) {
    m_dPelsX = static_cast<double>(nPelsX) * cdMetre;
    m_dPelsY = static_cast<double>(nPelsY) * cdMetre;
}

void ClConvert::SetRefImage(ClImage& Image) {
    m_pImage = &Image;
    SetRefPels(Image.PelsX(), Image.PelsY());
}
