#include "ImageProcessing/Kernels/Arithmetic.h"

#include "ImageProcessing/Kernels/SampleBySample.h"
#include "Tools/InstructionLevel.h"

// Each is one loop without a branch, in forms that stay within 8 bits, so that the compiler has an
// instruction per vector of samples for every step:
//
//     min(255, a + b)  =  min(a, 255 - b) + b
//     (a + b) / 2      =  (a & b) + ((a ^ b) >> 1)
//     max(0, a - b)    =  max(a, b) - b
//
// The half is that of the bits which both have, twice, and of the bits which only one has.

namespace Kernels {

namespace {

unsigned char Larger(unsigned char a, unsigned char b) {
    return a > b ? a : b;
}

unsigned char Smaller(unsigned char a, unsigned char b) {
    return a < b ? a : b;
}

// The definitions

struct StAddCut {
    static unsigned char Of(unsigned char a, unsigned char b) {
        return static_cast<unsigned char>(Smaller(a, static_cast<unsigned char>(~b)) + b);
    }
};

struct StAddHalf {
    static unsigned char Of(unsigned char a, unsigned char b) {
        return static_cast<unsigned char>((a & b) + ((a ^ b) >> 1));
    }
};

struct StSubtract {
    static unsigned char Of(unsigned char a, unsigned char b) {
        return static_cast<unsigned char>(Larger(a, b) - b);
    }
};

struct StMax {
    static unsigned char Of(unsigned char a, unsigned char b) { return Larger(a, b); }
};

template <class Definition>
void Line(const unsigned char* pA, const unsigned char* pB, long nSamples, unsigned char* pOut) {
    TESSARIN_SAMPLE_BY_SAMPLE
    for (long i = 0; i < nSamples; ++i)
        pOut[i] = Definition::Of(pA[i], pB[i]);
}

/// Lines that follow each other without a gap, in all planes, are one line.
StPairOfPlanes Joined(StPairOfPlanes P) {
    if (P.m_nStrideA == P.m_nSamples && P.m_nStrideB == P.m_nSamples &&
        P.m_nStrideOut == P.m_nSamples) {
        P.m_nSamples *= P.m_nLines;
        P.m_nLines = 1;
    }
    return P;
}

template <class Definition>
struct StPlanes {
    static void Run(const StPairOfPlanes* pPlanes) {
        const StPairOfPlanes P = Joined(*pPlanes);
        for (long y = 0; y < P.m_nLines; ++y)
            Line<Definition>(P.m_pA + y * P.m_nStrideA, P.m_pB + y * P.m_nStrideB, P.m_nSamples,
                             P.m_pOut + y * P.m_nStrideOut);
    }
};

} // namespace

void AddCut(const StPairOfPlanes& Planes) {
    RunAtLevel<StPlanes<StAddCut>>(&Planes);
}

void AddHalf(const StPairOfPlanes& Planes) {
    RunAtLevel<StPlanes<StAddHalf>>(&Planes);
}

void Subtract(const StPairOfPlanes& Planes) {
    RunAtLevel<StPlanes<StSubtract>>(&Planes);
}

void Max(const StPairOfPlanes& Planes) {
    RunAtLevel<StPlanes<StMax>>(&Planes);
}

} // namespace Kernels
