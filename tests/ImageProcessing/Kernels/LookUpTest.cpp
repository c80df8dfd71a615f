#include "ImageProcessing/Kernels/LookUp.h"

#include "ImageProcessing/Kernels/RandomBytes.h"
#include "support/InstructionLevels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>
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

// Forms

using Kernels::ClLookUp;
using EForm = ClLookUp::EForm;

template <class Function>
Bytes TableOf(Function function) {
    Bytes aTable;
    for (int i = 0; i < 256; ++i)
        aTable.push_back(static_cast<unsigned char>(function(i)));
    return aTable;
}

/// Every sample there is, in lines of every width, at every level.
void ExpectTable(const Bytes& aTable) {
    const ClLookUp LookUp(aTable.data());
    Bytes aAll = TableOf([](int i) { return i; });
    TestSupport::AtEveryLevel([&] {
        Bytes aInPlace = aAll;
        LookUp.Run(aInPlace.data(), 16, 16, 16, aInPlace.data(), 16);
        EXPECT_EQ(aInPlace, aTable);
        Bytes aOut(256);
        LookUp.Run(aAll.data(), 256, 256, 1, aOut.data(), 256);
        EXPECT_EQ(aOut, aTable);
    });
}

void ExpectForm(const Bytes& aTable, EForm eForm) {
    EXPECT_EQ(ClLookUp(aTable.data()).Form(), eForm);
    ExpectTable(aTable);
}

TEST(LookUp, ComparesWithEveryThreshold) {
    for (int nThreshold = -1; nThreshold <= 256; ++nThreshold) {
        SCOPED_TRACE(nThreshold);
        ExpectForm(TableOf([=](int i) { return i >= nThreshold ? 255 : 0; }), EForm::eStep);
        ExpectForm(TableOf([=](int i) { return i >= nThreshold ? 3 : 200; }), EForm::eStep);
    }
}

TEST(LookUp, AddsEveryConstant) {
    for (int nOffset = -254; nOffset <= 254; ++nOffset) {
        SCOPED_TRACE(nOffset);
        ExpectTable(TableOf([=](int i) { return std::clamp(i + nOffset, 0, 255); }));
        ExpectTable(TableOf([=](int i) { return std::clamp(255 - i + nOffset, 0, 255); }));
    }
    ExpectForm(TableOf([](int i) { return i; }), EForm::eShift);
    ExpectForm(TableOf([](int i) { return 255 - i; }), EForm::eShift);
    ExpectForm(TableOf([](int i) { return std::min(i + 50, 255); }), EForm::eShift);
}

TEST(LookUp, MultipliesByEveryFactor) {
    for (double dFactor = 0.01; dFactor < 300.0; dFactor *= 1.0173) {
        SCOPED_TRACE(dFactor);
        ExpectForm(TableOf([=](int i) { return std::min(i * dFactor, 255.0); }),
                   dFactor * 255 < 2.0 || dFactor > 255.0 ? EForm::eStep : EForm::eRay);
    }
}

/// In fixed point, as the stretch over a range has it.
TEST(LookUp, StretchesEveryRange) {
    for (int nFrom = 0; nFrom < 255; nFrom += 3)
        for (int nTo = nFrom + 1; nTo <= 255; nTo += 2) {
            const long nStep = static_cast<long>(255.9 * 4096.0 / (nTo - nFrom));
            const Bytes aTable =
                TableOf([=](int i) { return std::clamp(((i - nFrom) * nStep) >> 12, 0L, 255L); });
            EXPECT_NE(ClLookUp(aTable.data()).Form(), EForm::eTable) << nFrom << " to " << nTo;
            ExpectTable(aTable);
        }
}

/// Each form with one entry changed is another table.
TEST(LookUp, LooksUpWhatIsNoForm) {
    const Bytes aForms[] = {TableOf([](int i) { return i >= 100 ? 255 : 0; }),
                            TableOf([](int i) { return std::min(i + 20, 255); }),
                            TableOf([](int i) { return 255 - i; }),
                            TableOf([](int i) { return std::min(i * 22 / 10, 255); })};
    for (Bytes aTable : aForms)
        for (std::size_t i = 0; i < 256; ++i)
            for (const int nChange : {1, 2, 128}) {
                SCOPED_TRACE(i);
                const unsigned char nBefore = aTable[i];
                aTable[i] = static_cast<unsigned char>(aTable[i] ^ nChange);
                ExpectTable(aTable);
                aTable[i] = nBefore;
            }
    ExpectForm(RandomBytes(256, 5), EForm::eTable);
    ExpectForm(TableOf([](int i) { return i * i / 255; }), EForm::eTable);
    ExpectForm(TableOf([](int i) { return 2 * i; }), EForm::eTable);
}

/// Two lines of `nWidth`, with so many bytes behind each.
void ExpectLines(const Bytes& aTable, std::size_t nWidth, std::size_t nInGap, std::size_t nOutGap) {
    const std::size_t nInStride = nWidth + nInGap;
    const std::size_t nOutStride = nWidth + nOutGap;
    const Bytes aIn = RandomBytes(nInStride + nWidth, 7);
    Bytes aExpected(nOutStride + nWidth, 77);
    for (std::size_t x = 0; x < nWidth; ++x) {
        aExpected[x] = aTable[aIn[x]];
        aExpected[nOutStride + x] = aTable[aIn[nInStride + x]];
    }
    TestSupport::AtEveryLevel([&] {
        Bytes aOut(aExpected.size(), 77);
        ClLookUp(aTable.data())
            .Run(aIn.data(), static_cast<long>(nInStride), static_cast<long>(nWidth), 2,
                 aOut.data(), static_cast<long>(nOutStride));
        EXPECT_EQ(aOut, aExpected) << nWidth << " and " << nInGap << ", " << nOutGap;
    });
}

TEST(LookUp, TakesLinesOfEveryWidthAndStride) {
    const Bytes aTables[] = {
        TableOf([](int i) { return i >= 100 ? 255 : 0; }), TableOf([](int i) { return 255 - i; }),
        TableOf([](int i) { return std::min(i * 22 / 10, 255); }), RandomBytes(256, 6)};
    for (const Bytes& aTable : aTables)
        for (std::size_t nWidth = 0; nWidth < 140; ++nWidth)
            for (const auto& [nInGap, nOutGap] : {std::pair{3U, 2U}, {0U, 2U}, {3U, 0U}, {0U, 0U}})
                ExpectLines(aTable, nWidth, nInGap, nOutGap);
}

} // namespace
