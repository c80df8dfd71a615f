#include "ImageProcessing/Kernels/Arithmetic.h"

#include "support/InstructionLevels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <vector>

namespace {

using Line = std::vector<unsigned char>;
using PlaneKernel = void (*)(const Kernels::StPairOfPlanes&);
using Definition = int (*)(int, int);

struct StPairKernel {
    const char* m_szName;
    PlaneKernel m_pKernel;
    Definition m_pDefinition;

    void Run(const unsigned char* pA, const unsigned char* pB, long nSamples,
             unsigned char* pOut) const {
        m_pKernel({pA, nSamples, pB, nSamples, nSamples, 1, pOut, nSamples});
    }
};

constexpr StPairKernel caPairKernels[] = {
    {"AddCut", Kernels::AddCut, [](int a, int b) { return std::min(255, a + b); }},
    {"AddHalf", Kernels::AddHalf, [](int a, int b) { return (a + b) / 2; }},
    {"Subtract", Kernels::Subtract, [](int a, int b) { return std::max(0, a - b); }},
    {"Max", Kernels::Max, [](int a, int b) { return std::max(a, b); }}};

Line Defined(const StPairKernel& Kernel, const Line& a, const Line& b) {
    Line out(a.size());
    for (std::size_t i = 0; i < a.size(); ++i)
        out[i] = static_cast<unsigned char>(Kernel.m_pDefinition(a[i], b[i]));
    return out;
}

Line RandomLine(long nSamples, unsigned nSeed) {
    std::mt19937 random(nSeed);
    Line line(static_cast<std::size_t>(nSamples));
    std::generate(line.begin(), line.end(), [&] { return static_cast<unsigned char>(random()); });
    return line;
}

TEST(Arithmetic, EqualsItsDefinitionForEveryPairOfSamples) {
    Line a;
    Line b;
    for (int i = 0; i < 65536; ++i) {
        a.push_back(static_cast<unsigned char>(i >> 8));
        b.push_back(static_cast<unsigned char>(i));
    }
    for (const StPairKernel& Kernel : caPairKernels) {
        Line out(a.size());
        Kernel.Run(a.data(), b.data(), 65536, out.data());
        EXPECT_EQ(out, Defined(Kernel, a, b)) << Kernel.m_szName;
    }
}

TEST(Arithmetic, EqualsItsDefinitionOnLinesOfEveryLength) {
    for (const StPairKernel& Kernel : caPairKernels)
        for (long nSamples = 0; nSamples < 70; ++nSamples) {
            const Line a = RandomLine(nSamples, 1);
            const Line b = RandomLine(nSamples, 2);
            Line out(a.size() + 1, 77);
            Kernel.Run(a.data(), b.data(), nSamples, out.data());
            EXPECT_EQ(out.back(), 77) << Kernel.m_szName;
            out.pop_back();
            EXPECT_EQ(out, Defined(Kernel, a, b)) << Kernel.m_szName << " of " << nSamples;
        }
}

TEST(Arithmetic, ReadsAndWritesAtEveryAlignment) {
    const Line a = RandomLine(50, 1);
    const Line b = RandomLine(50, 2);
    const auto part = [](const Line& From, long n) {
        return Line(From.begin() + n, From.begin() + n + 40);
    };
    for (const StPairKernel& Kernel : caPairKernels)
        for (long nA = 0; nA < 4; ++nA)
            for (long nB = 0; nB < 4; ++nB) {
                Line out(50, 77);
                Kernel.Run(a.data() + nA, b.data() + nB, 40, out.data() + 1);
                EXPECT_EQ(part(out, 1), Defined(Kernel, part(a, nA), part(b, nB)))
                    << Kernel.m_szName;
                EXPECT_EQ(out[0], 77);
                EXPECT_EQ(out[41], 77);
            }
}

TEST(Arithmetic, WritesOverEitherOfItsLines) {
    for (const StPairKernel& Kernel : caPairKernels) {
        const Line a = RandomLine(50, 1);
        const Line b = RandomLine(50, 2);
        Line first = a;
        Kernel.Run(first.data(), b.data(), 50, first.data());
        EXPECT_EQ(first, Defined(Kernel, a, b)) << Kernel.m_szName;
        Line second = b;
        Kernel.Run(a.data(), second.data(), 50, second.data());
        EXPECT_EQ(second, Defined(Kernel, a, b)) << Kernel.m_szName;
    }
}

// Planes

constexpr long cnLines = 3;

/// Samples behind each line.
struct StGaps {
    long m_nA;
    long m_nB;
    long m_nOut;
};

/// The kernel on lines of `nSamples`, by the definition of that kernel.
void ExpectPlane(std::size_t nKernel, long nSamples, StGaps Gaps) {
    const long nStrideA = nSamples + Gaps.m_nA;
    const long nStrideB = nSamples + Gaps.m_nB;
    const long nStrideOut = nSamples + Gaps.m_nOut;
    const Line a = RandomLine(nStrideA * cnLines, 1);
    const Line b = RandomLine(nStrideB * cnLines, 2);
    Line out(static_cast<std::size_t>(nStrideOut * cnLines), 77);
    Line expected = out;
    for (long y = 0; y < cnLines; ++y)
        for (long x = 0; x < nSamples; ++x)
            expected[static_cast<std::size_t>(y * nStrideOut + x)] =
                static_cast<unsigned char>(caPairKernels[nKernel].m_pDefinition(
                    a[static_cast<std::size_t>(y * nStrideA + x)],
                    b[static_cast<std::size_t>(y * nStrideB + x)]));
    caPairKernels[nKernel].m_pKernel(
        {a.data(), nStrideA, b.data(), nStrideB, nSamples, cnLines, out.data(), nStrideOut});
    EXPECT_EQ(out, expected) << caPairKernels[nKernel].m_szName << " of " << nSamples;
}

TEST(Arithmetic, EqualsItsDefinitionOnPlanesOfEveryWidth) {
    TestSupport::AtEveryLevel([] {
        for (std::size_t nKernel = 0; nKernel < std::size(caPairKernels); ++nKernel)
            for (long nSamples = 0; nSamples < 140; ++nSamples)
                ExpectPlane(nKernel, nSamples, {3, 1, 2});
    });
}

TEST(Arithmetic, EqualsItsDefinitionOnPlanesWithGapsBehindSomeOfTheirLines) {
    constexpr StGaps caGaps[] = {{0, 0, 0}, {3, 0, 0}, {0, 3, 0}, {0, 0, 3}, {3, 3, 0}};
    TestSupport::AtEveryLevel([&] {
        for (const StGaps& Gaps : caGaps)
            for (long nSamples : {1L, 20L, 64L, 90L})
                ExpectPlane(0, nSamples, Gaps);
    });
}

TEST(Arithmetic, EqualsItsDefinitionForEveryPairOfSamplesInPlace) {
    TestSupport::AtEveryLevel([] {
        for (std::size_t nKernel = 0; nKernel < std::size(caPairKernels); ++nKernel) {
            Line a;
            Line b;
            for (int i = 0; i < 65536; ++i) {
                a.push_back(static_cast<unsigned char>(i >> 8));
                b.push_back(static_cast<unsigned char>(i));
            }
            const Line expected = Defined(caPairKernels[nKernel], a, b);
            Line first = a;
            caPairKernels[nKernel].m_pKernel(
                {first.data(), 256, b.data(), 256, 256, 256, first.data(), 256});
            EXPECT_EQ(first, expected) << caPairKernels[nKernel].m_szName;
            caPairKernels[nKernel].m_pKernel(
                {a.data(), 256, b.data(), 256, 256, 256, b.data(), 256});
            EXPECT_EQ(b, expected) << caPairKernels[nKernel].m_szName;
        }
    });
}

} // namespace
