#include "sim/Capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

using sim::CaptureKind;
using sim::ClCapture;
using sim::ClKindEntry;
using sim::ClRaster;
using sim::ClScanner;
using sim::EKind;

namespace {

const ClScanner& TheScanner() {
    static const ClScanner Scanner(34);
    return Scanner;
}

/// One capture of a kind by the scanner above, made once.
const ClCapture& OfKind(EKind eKind) {
    static const std::vector<ClCapture> aCaptures = [] {
        std::vector<ClCapture> aAll;
        for (const ClKindEntry& Entry : sim::g_aKinds)
            aAll.push_back(CaptureKind(TheScanner(), Entry.m_eKind, 1));
        return aAll;
    }();
    return aCaptures[static_cast<std::size_t>(eKind)];
}

int Covered(const ClCapture& Capture) {
    const auto& aPixels = Capture.m_FingerArea.m_aPixels;
    return static_cast<int>(std::count(aPixels.begin(), aPixels.end(), 0));
}

int CoveredInLine(const ClRaster& Area, int y) {
    return static_cast<int>(std::count(Area.Line(y), Area.Line(y) + Area.m_nWidth, 0));
}

int DarkPixels(const ClRaster& Raster, int nLimit) {
    return static_cast<int>(std::count_if(Raster.m_aPixels.begin(), Raster.m_aPixels.end(),
                                          [&](unsigned char n) { return n < nLimit; }));
}

} // namespace

TEST(SimCapture, SameSeedGivesTheSameBytes) {
    const ClCapture First = CaptureKind(ClScanner(31), EKind::eWhorl, 5);
    const ClCapture Second = CaptureKind(ClScanner(31), EKind::eWhorl, 5);

    EXPECT_EQ(First.m_Raw.m_aPixels, Second.m_Raw.m_aPixels);
    EXPECT_EQ(First.m_Ideal.m_aPixels, Second.m_Ideal.m_aPixels);
    EXPECT_EQ(First.m_FingerArea.m_aPixels, Second.m_FingerArea.m_aPixels);
}

TEST(SimCapture, OtherSeedsGiveOtherBytes) {
    const ClCapture First = CaptureKind(ClScanner(31), EKind::eTarget, 5);

    EXPECT_NE(First.m_Raw.m_aPixels, CaptureKind(ClScanner(31), EKind::eTarget, 6).m_Raw.m_aPixels);
    EXPECT_NE(First.m_Raw.m_aPixels, CaptureKind(ClScanner(32), EKind::eTarget, 5).m_Raw.m_aPixels);
}

// What one scanner has seen does not depend on the scanner: only its geometry does.
TEST(SimCapture, SceneIsTheSameForEveryScanner) {
    const ClCapture First = CaptureKind(ClScanner(1, {}), EKind::eLoop, 9);
    sim::ClScannerSettings Bent;
    Bent.m_Distortion.m_dBarrel = -0.0002;
    const ClCapture Second = CaptureKind(ClScanner(2, Bent), EKind::eLoop, 9);

    EXPECT_NE(First.m_Raw.m_aPixels, Second.m_Raw.m_aPixels);
    EXPECT_EQ(First.m_Ideal.m_aPixels, Second.m_Ideal.m_aPixels);
}

TEST(SimCapture, EveryKindHasTheScannersSizesAndResolutions) {
    const ClScanner& Scanner = TheScanner();
    for (const ClKindEntry& Entry : sim::g_aKinds) {
        const ClCapture& Capture = OfKind(Entry.m_eKind);
        EXPECT_EQ(Capture.m_Raw.m_nWidth, Scanner.Settings().m_nRawWidth) << Entry.m_szName;
        EXPECT_EQ(Capture.m_Raw.m_nHeight, Scanner.Settings().m_nRawHeight);
        EXPECT_EQ(Capture.m_Raw.m_nPelsX, 19397);
        EXPECT_EQ(Capture.m_Raw.m_nPelsY, 39735);
        EXPECT_EQ(Capture.m_Ideal.m_nWidth, 320);
        EXPECT_EQ(Capture.m_FingerArea.m_nHeight, 480);
        EXPECT_EQ(Capture.m_aDots.size(), Entry.m_eKind == EKind::eTarget ? 75U : 0U);
        EXPECT_EQ(Capture.m_aLines.empty(), Entry.m_eKind != EKind::eRuled);
    }
}

TEST(SimCapture, KindsStandInTheirOwnOrderWithNamesOfTheirOwn) {
    std::set<std::string> aNames;
    int nIndex = 0;
    for (const ClKindEntry& Entry : sim::g_aKinds) {
        EXPECT_EQ(static_cast<int>(Entry.m_eKind), nIndex++);
        EXPECT_STREQ(sim::KindName(Entry.m_eKind), Entry.m_szName);
        aNames.insert(Entry.m_szName);
        EKind eFound = EKind::eTarget;
        EXPECT_TRUE(sim::KindFromName(Entry.m_szName, eFound));
        EXPECT_EQ(eFound, Entry.m_eKind);
    }
    EXPECT_EQ(aNames.size(), sim::g_aKinds.size());
}

TEST(SimCapture, UnknownNamesAreNoKind) {
    EKind eKind = EKind::eWet;

    EXPECT_FALSE(sim::KindFromName("thumb", eKind));
    EXPECT_FALSE(sim::KindFromName("", eKind));
    EXPECT_EQ(eKind, EKind::eWet);
}

TEST(SimCapture, OnlyFingersCoverThePlaten) {
    for (const EKind eKind : {EKind::eTarget, EKind::eRuled, EKind::eEmpty, EKind::eDirty})
        EXPECT_EQ(Covered(OfKind(eKind)), 0) << sim::KindName(eKind);
    for (const EKind eKind : {EKind::eLoop, EKind::eArch, EKind::eTwoFingers})
        EXPECT_GT(Covered(OfKind(eKind)), 30000) << sim::KindName(eKind);
}

TEST(SimCapture, LightFingerIsSmallerAndPalerThanALoop) {
    const ClCapture& Light = OfKind(EKind::eLight);
    const ClCapture& Loop = OfKind(EKind::eLoop);

    EXPECT_LT(Covered(Light), 0.75 * Covered(Loop));
    EXPECT_GT(Covered(Light), 15000);
    EXPECT_LT(20 * DarkPixels(Light.m_Raw, 90), DarkPixels(Loop.m_Raw, 90));
}

TEST(SimCapture, PartialFingerTouchesTheUpperOrLowerEdge) {
    for (std::uint64_t nSeed = 1; nSeed <= 3; ++nSeed) {
        const ClRaster Area = CaptureKind(ClScanner(36), EKind::ePartial, nSeed).m_FingerArea;
        const int nTop = CoveredInLine(Area, 0);
        const int nBottom = CoveredInLine(Area, 479);
        EXPECT_GT(std::max(nTop, nBottom), 100) << nSeed;
        EXPECT_EQ(std::min(nTop, nBottom), 0) << nSeed;
    }
}

TEST(SimCapture, DirtyPlatenIsDarkerInPlacesThanAnEmptyOne) {
    const int nEmpty = DarkPixels(OfKind(EKind::eEmpty).m_Raw, 170);
    const int nDirty = DarkPixels(OfKind(EKind::eDirty).m_Raw, 170);

    EXPECT_LT(nEmpty, 300);
    EXPECT_GT(nDirty, 600);
}

TEST(SimCapture, DirtSettingsAddDirt) {
    const ClScanner Scanner(1, {});
    sim::ClDirtSettings Dirt;
    const ClCapture Clean = sim::CaptureFingers(Scanner, {}, Dirt, 4);
    Dirt.m_nSpecks = 30;
    const ClCapture Specks = sim::CaptureFingers(Scanner, {}, Dirt, 4);

    EXPECT_EQ(DarkPixels(Clean.m_Raw, 230), 0);
    EXPECT_GT(DarkPixels(Specks.m_Raw, 200), 30);
    EXPECT_GT(DarkPixels(Specks.m_Ideal, 200), 10);
}
