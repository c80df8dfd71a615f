#pragma once

/// `ClImagePyramid`, a small array of images, meant as layers of falling resolution.

#include "Tools/FpImage.h"

#include <memory>

class ClImagePyramid {
public:
    ClImagePyramid() = default;
    explicit ClImagePyramid(long nLayers) { Create(nLayers); }
    explicit ClImagePyramid(const ClImage& Image) { Create(Image); }
    ClImagePyramid(const ClImagePyramid& Other) { *this = Other; }
    virtual ~ClImagePyramid() = default;

    /// A deep copy of all layers; on failure this pyramid is as before.
    ClImagePyramid& operator=(const ClImagePyramid& Other);

    /// `nLayers` empty layers; a count below 1 is stored and makes none.
    void Create(long nLayers);
    /// As many as the shorter side can be halved, at least one; all empty.
    void Create(const ClImage& Image);
    void Clear();
    /// Exchanges all layers; cannot fail.
    void Swap(ClImagePyramid& Other) noexcept;

    long Layers() const { return m_nLayers; }
    /// Throws "no pyramid is given" (-701), "Pyramid layer out of range" (-35).
    ClImage& operator[](long nIdx);
    const ClImage& operator[](long nIdx) const;

private:
    const ClImage& At(long nIdx) const;

    std::unique_ptr<ClImage[]> m_pLayers;
    long m_nLayers = 0;
};
