#include "ImageProcessing/Kernels/Sharpen.h"

// With an amplification of 1.0 and no threshold, the settings of the scanner, everything is an
// integer: 2 p - l in 16 bits, which the compiler turns into vectors.

#include <cstdlib>

namespace Kernels {

namespace {

void SharpenPlain(const unsigned char* pIn, const unsigned char* pLowPass, long nSamples,
                  unsigned char* pOut) {
    for (long i = 0; i < nSamples; ++i) {
        const short nValue = static_cast<short>(2 * pIn[i] - pLowPass[i]);
        const short nFloor = nValue < 0 ? short{0} : nValue;
        pOut[i] = static_cast<unsigned char>(nFloor > 255 ? short{255} : nFloor);
    }
}

unsigned char Amplify(int nSample, int nDifference, double dAmplification) {
    const double dValue = nSample + nDifference * dAmplification;
    if (!(dValue > 0.0))
        return 0;
    return dValue < 255.0 ? static_cast<unsigned char>(dValue) : 255;
}

} // namespace

void SharpenLine(const unsigned char* pIn, const unsigned char* pLowPass, long nSamples,
                 double dAmplification, long nThreshold, unsigned char* pOut) {
    if (dAmplification == 1.0 && nThreshold == 0) {
        SharpenPlain(pIn, pLowPass, nSamples, pOut);
        return;
    }
    for (long i = 0; i < nSamples; ++i) {
        const int nDifference = pIn[i] - pLowPass[i];
        const bool bNoise = nThreshold != 0 && std::abs(nDifference) <= nThreshold;
        pOut[i] = bNoise ? pIn[i] : Amplify(pIn[i], nDifference, dAmplification);
    }
}

} // namespace Kernels
