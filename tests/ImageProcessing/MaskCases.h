#pragma once

/// Masks for tests, written and read as pictures: '#' is a pixel of the region.
///
///     ClMask2 mask = MaskOf({"..##", "#..#"});
///     EXPECT_EQ(PictureOf(mask, 4, 2), (Picture{"..##", "#..#"}));

#include "ImageProcessing/Mask2.h"
#include "support/Images.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace TestSupport {

inline constexpr const char* cszIndex = "The precut index 'nRefIdx' is out of range.";
inline constexpr const char* cszNoSize = "No image size given.";

using Picture = std::vector<std::string>;
/// First column, last column, line.
using RunList = std::vector<std::array<long, 3>>;
/// Offset and size.
using StepList = std::vector<std::array<double, 4>>;

inline constexpr unsigned char cnBackground = 255;

inline bool IsSet(const Picture& aPicture, int x, int y) {
    return aPicture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#';
}

inline int WidthOf(const Picture& aPicture) {
    return static_cast<int>(aPicture.at(0).size());
}

inline int HeightOf(const Picture& aPicture) {
    return static_cast<int>(aPicture.size());
}

/// The region is 0 on 255.
inline ClTestImage ImageOf(const Picture& aPicture) {
    ClTestImage image = BlankImage(ClImage::eUInt8, WidthOf(aPicture), HeightOf(aPicture));
    for (int y = 0; y < image.Height(); ++y)
        for (int x = 0; x < image.Width(); ++x)
            SetSample(image, x, y, 0, IsSet(aPicture, x, y) ? 0 : cnBackground);
    return image;
}

inline ClMask2 MaskOf(const Picture& aPicture) {
    ClMask2 mask;
    mask.BuildFromImage(ImageOf(aPicture), cnBackground);
    return mask;
}

/// The runs, put on a picture pixel by pixel; one outside it is a failure.
inline Picture PictureOf(const ClMask2& Mask, int nWidth, int nHeight) {
    Picture aPicture(static_cast<std::size_t>(nHeight),
                     std::string(static_cast<std::size_t>(nWidth), '.'));
    for (unsigned long i = 0; i < Mask.m_aEntries.Entries(); ++i) {
        const ClMask2::STEntry& Run = Mask.m_aEntries[i];
        for (std::int64_t x = Run.nFrom; x <= Run.nTo; ++x)
            aPicture.at(static_cast<std::size_t>(Run.nLine)).at(static_cast<std::size_t>(x)) = '#';
    }
    return aPicture;
}

inline RunList RunsOf(const ClMask2& Mask) {
    RunList aRuns;
    for (unsigned long i = 0; i < Mask.m_aEntries.Entries(); ++i)
        aRuns.push_back(
            {Mask.m_aEntries[i].nFrom, Mask.m_aEntries[i].nTo, Mask.m_aEntries[i].nLine});
    return aRuns;
}

inline StepList StepsOf(const ClMask2& Mask) {
    StepList aSteps;
    for (unsigned long i = 0; i < Mask.m_aPrecutSteps.Entries(); ++i) {
        const ClMask2::STPrecutStep& Step = Mask.m_aPrecutSteps[i];
        aSteps.push_back({Step.dX, Step.dY, Step.dWidth, Step.dHeight});
    }
    return aSteps;
}

inline void SetRuns(ClMask2& rMask, const RunList& aRuns) {
    rMask.m_aEntries.Clear();
    for (const auto& Run : aRuns)
        rMask.m_aEntries.Append({Run[0], Run[1], Run[2]});
}

/// A mask of 500 dpi with one step and the given runs.
inline ClMask2 MaskWithRuns(int nWidth, int nHeight, const RunList& aRuns) {
    ClMask2 mask;
    mask.AddPrecutStep(nWidth, nHeight, cnTestPels, cnTestPels, 0, 0, nWidth, nHeight, true);
    SetRuns(mask, aRuns);
    return mask;
}

/// Each pixel is set with the given probability.
inline Picture RandomPicture(std::mt19937& rRandom, int nWidth, int nHeight, double dShare) {
    Picture aPicture(static_cast<std::size_t>(nHeight));
    for (std::string& rLine : aPicture)
        for (int x = 0; x < nWidth; ++x)
            rLine += static_cast<double>(rRandom()) < dShare * 4294967296.0 ? '#' : '.';
    return aPicture;
}

inline int RandomInt(std::mt19937& rRandom, int nFirst, int nLast) {
    return nFirst + static_cast<int>(rRandom() % static_cast<unsigned>(nLast - nFirst + 1));
}

} // namespace TestSupport
