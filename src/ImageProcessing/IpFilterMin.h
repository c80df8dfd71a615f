#pragma once

/// `ClIpFilterMin`, the minimum over a window: dark areas grow.
///
///     out[x] = min(in[x - h], ..., in[x + h])      h = width / 2, cut at the image edge
///
/// along lines (mode 1), along columns (2) or along both (3), which is the minimum over a square:
/// lines first, then columns of that result. Every pixel type; see Walks/RankWalk.h for the way.

#include "ImageProcessing/IpFilterExtreme.h"

class ClIpFilterMin : public TpIpFilterExtreme<EExtreme::eMin> {
public:
    ClProcessorBase* Create() override;
    const char* Name() const override;
};
