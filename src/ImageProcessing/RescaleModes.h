#pragma once

/// The methods of `ClIpRescale`: functions from one plane to another, that read the destination and
/// the parameter of a run from the operator's public members. An output gets the input's type and
/// the destination's resolutions. The formulas stand in Rescale*.cpp.

#include "ImageProcessing/IpRescale.h"

namespace Rescale {

using Method = void (*)(ClIpRescale& rRun, const ClImage& In, ClImage& Out);

// The methods of the modes
void ProcessWholeNumbered(ClIpRescale& rRun, const ClImage& In, ClImage& Out);
void ProcessNearestNeighbour(ClIpRescale& rRun, const ClImage& In, ClImage& Out);
void ProcessModeBiLinear(ClIpRescale& rRun, const ClImage& In, ClImage& Out);
void ProcessBiCubic(ClIpRescale& rRun, const ClImage& In, ClImage& Out);
void ProcessBiLinearFant(ClIpRescale& rRun, const ClImage& In, ClImage& Out);

/// A mode, its name in parameters, and how it is done.
struct StMode {
    ClIpRescale::eProcessingMode m_eMode;
    const char* m_szName;
    Method m_pfnProcess;
};

inline constexpr StMode caModes[] = {
    {ClIpRescale::ModeWholeNumbered, "ModeWholeNumbered", ProcessWholeNumbered},
    {ClIpRescale::ModeNearestNeighbour, "ModeNearestNeighbour", ProcessNearestNeighbour},
    {ClIpRescale::ModeBiLinear, "ModeBiLinear", ProcessModeBiLinear},
    {ClIpRescale::ModeBiCubic, "ModeBiCubic", ProcessBiCubic},
    {ClIpRescale::ModeBiLinearFantMar, "ModeBiLinearFantMar", ProcessBiLinearFant},
};

// Shared by the methods

/// An output of the given size; throws "Image area must be positive" (-101) for one below 1 by 1.
void NewOutput(const ClIpRescale& Run, const ClImage& In, int nWidth, int nHeight, ClImage& Out);
/// Fills the output by the columns and lines given, 0 for those below 0.
void Gather(const ClImage& In, const int* pColumns, const int* pLines, ClImage& Out);

inline constexpr int cnOutside = -1; ///< a column or line that is none

} // namespace Rescale
