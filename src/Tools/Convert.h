#pragma once

/// `ClConvert` turns physical widths into pixels: it holds a resolution as picture elements per
/// hundredth of a millimetre.

class ClImage;

class ClConvert {
public:
    /// One picture element per hundredth of a millimetre, and no image.
    ClConvert() = default;
    explicit ClConvert(ClImage& Image) { SetRefImage(Image); }
    /// Null leaves the default.
    explicit ClConvert(ClImage* pImage);
    /// See SetRefPels().
    ClConvert(long nPelsX, long nPelsY) { SetRefPels(nPelsX, nPelsY); }
    ClConvert(const ClConvert&) = default;
    ClConvert& operator=(const ClConvert&) = default;
    virtual ~ClConvert();

    /// Resolutions in picture elements per metre.
    void SetRefPels(long nPelsX, long nPelsY);
    /// Takes the image's resolutions as they are now, and remembers the image, which stays the
    /// caller's.
    void SetRefImage(ClImage& Image);

    ClImage* Image() const { return m_pImage; }
    double PelsX() const { return m_dPelsX; }
    double PelsY() const { return m_dPelsY; }

private:
    ClImage* m_pImage = nullptr;
    double m_dPelsX = 1.0;
    double m_dPelsY = 1.0;
};
