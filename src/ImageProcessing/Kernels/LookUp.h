#pragma once

/// A table applied to 8-bit samples.

namespace Kernels {

/// out[i] = table[in[i]], with 256 table entries. `pIn` and `pOut` may be one line.
void LookUpLine(const unsigned char* pIn, long nSamples, const unsigned char* pTable,
                unsigned char* pOut);

} // namespace Kernels
