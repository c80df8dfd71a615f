// What a developer looks at when dots are missing: the grid as a picture and as lines of the log.

#include "Calibrate/DotGridPicture.h"

#include "Calibrate/DotDirection.h"
#include "Tools/FpImage.h"
#include "Tools/LoggingFacility.h"

#include <cstdio>

namespace {

using ClDot = ClIpCalibrateGeometricBuildRefPointsBase::ClDot;

constexpr unsigned char cnLinked = 128;
constexpr unsigned char cnNotLinked = 0;
constexpr unsigned char cnCentreBit = 64;

struct StStep {
    int m_nX;
    int m_nY;
};

/// From a pixel to the next one in the direction of each sector.
constexpr StStep caSteps[DotDirection::cnSectors] = {{1, 0},  {1, 1},   {0, 1},  {-1, 1},
                                                     {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};

/// Whether the eight pixels around a place are pixels of the image.
bool IsInside(const ClVector& rPos, const ClImage& rImage) {
    return rPos.x >= 1.0 && rPos.y >= 1.0 && rPos.x < rImage.Width() - 1.0 &&
           rPos.y < rImage.Height() - 1.0;
}

/// The samples of a pixel, as many as the image has planes.
unsigned char* Pixel(const ClImage& rImage, int nX, int nY) {
    return rImage.LineData(nY) + std::ptrdiff_t{nX} * rImage.Planes();
}

void SetPixel(const ClImage& rImage, int nX, int nY, unsigned char nValue) {
    for (int p = 0; p < rImage.Planes(); ++p)
        Pixel(rImage, nX, nY)[p] = nValue;
}

void DrawDot(const ClDot& rDot, const ClImage& rImage) {
    const int nX = static_cast<int>(rDot.m_vPos.x);
    const int nY = static_cast<int>(rDot.m_vPos.y);
    for (long k = 0; k < DotDirection::cnSectors; ++k) {
        const ClDot* pNeighbour = rDot.GetNeighbourInDirection(k, DotDirection::cdHalfSector);
        SetPixel(rImage, nX + caSteps[k].m_nX, nY + caSteps[k].m_nY,
                 pNeighbour != nullptr ? cnLinked : cnNotLinked);
    }
    for (int p = 0; p < rImage.Planes(); ++p)
        Pixel(rImage, nX, nY)[p] |= cnCentreBit;
}

/// A line's worth of a list; a longer one is cut.
struct StNeighbourText {
    explicit StNeighbourText(const ClDot& rDot) {
        std::size_t nLength = 0;
        for (unsigned long i = 0; i < rDot.m_aNeighbours.Entries(); ++i) {
            const std::size_t nLeft = sizeof m_acText - nLength;
            const int nAdded = std::snprintf(m_acText + nLength, nLeft, " %d",
                                             static_cast<int>(rDot.m_aNeighbours[i]->m_nIndex));
            if (nAdded < 0 || static_cast<std::size_t>(nAdded) >= nLeft)
                break;
            nLength += static_cast<std::size_t>(nAdded);
        }
    }

    char m_acText[160] = "";
};

} // namespace

void DotGridPicture::Draw(const DotGrid& rGrid, ClImage& rImage) {
    if (rImage.DataType() != ClImage::eUInt8)
        throw ClException("Image Type is not the assigned type", QMT_ERROR_INTERNAL, true,
                          VEK_HERE);
    rImage = 0;
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        if (rGrid[i]->m_bValid && IsInside(rGrid[i]->m_vPos, rImage))
            DrawDot(*rGrid[i], rImage);
}

void DotGridPicture::LogStates(const DotGrid& rGrid) {
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        VekLFLog(Vek::eLogTrace, "%d: (%.3f, %.3f) status %u, %d neighbours",
                 static_cast<int>(rGrid[i]->m_nIndex), rGrid[i]->m_vPos.x, rGrid[i]->m_vPos.y,
                 static_cast<unsigned>(rGrid[i]->m_nStatus),
                 static_cast<int>(rGrid[i]->m_aNeighbours.Entries()));
}

void DotGridPicture::LogShapes(const DotGrid& rGrid) {
    for (unsigned long i = 0; i < rGrid.Entries(); ++i)
        VekLFLog(Vek::eLogTrace,
                 "%d: (%.3f, %.3f) status %u, eccentricity %.3f, area %.0f, neighbours%s",
                 static_cast<int>(rGrid[i]->m_nIndex), rGrid[i]->m_vPos.x, rGrid[i]->m_vPos.y,
                 static_cast<unsigned>(rGrid[i]->m_nStatus), rGrid[i]->m_dEccentricity,
                 rGrid[i]->m_dArea, StNeighbourText(*rGrid[i]).m_acText);
}
