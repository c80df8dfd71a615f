#include "ImageProcessing/Kernels/LookUp.h"

#include "ImageProcessing/Kernels/RandomBytes.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using TestSupport::Bytes;
using TestSupport::RandomBytes;

TEST(LookUpKernel, ReplacesEverySampleByItsEntry) {
    const Bytes aTable = RandomBytes(256, 1);
    for (std::size_t nSamples = 0; nSamples < 70; ++nSamples) {
        const Bytes aIn = RandomBytes(nSamples, 2);
        Bytes aExpected;
        for (unsigned char n : aIn)
            aExpected.push_back(aTable[n]);
        Bytes aOut(nSamples + 1, 77);
        Kernels::LookUpLine(aIn.data(), static_cast<long>(nSamples), aTable.data(), aOut.data());
        EXPECT_EQ(aOut.back(), 77);
        aOut.pop_back();
        EXPECT_EQ(aOut, aExpected);
    }
}

TEST(LookUpKernel, WorksInPlace) {
    const Bytes aTable = RandomBytes(256, 3);
    Bytes aLine;
    for (int i = 0; i < 256; ++i)
        aLine.push_back(static_cast<unsigned char>(i));
    Kernels::LookUpLine(aLine.data(), 256, aTable.data(), aLine.data());
    EXPECT_EQ(aLine, aTable);
}

} // namespace
