/// Points against what the others predict, with the wrong ones left out.

#include "diagnosis/LeftOut.h"

#include "diagnosis/Patterns.h"
#include "sim/Random.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace diagnosis;
using namespace TestSupport;

namespace {

constexpr StPoint cUnit{1.0, 1.0};

Points WithMoved(Points aFound, std::size_t nDot, const StPoint& By) {
    aFound[nDot] = aFound[nDot] + By;
    return aFound;
}

template <class Tp>
std::vector<Tp> Without(const std::vector<Tp>& aAll, const std::vector<std::size_t>& aOut) {
    std::vector<Tp> aKept;
    for (std::size_t i = 0; i < aAll.size(); ++i)
        if (std::find(aOut.begin(), aOut.end(), i) == aOut.end())
            aKept.push_back(aAll[i]);
    return aKept;
}

/// A point less what a system of all points but those left out and itself predicts.
StPoint OffAnew(const Points& aPlaces, const Points& aFound, std::vector<std::size_t> aOut,
                std::size_t nDot) {
    if (std::find(aOut.begin(), aOut.end(), nDot) == aOut.end())
        aOut.push_back(nDot);
    const ClSplineSystem Others(Without(aPlaces, aOut), 3);
    const Values aCounts = Others.KnowledgeAt(aPlaces[nDot]).m_aCounts;
    const Points aKept = Without(aFound, aOut);
    StPoint Predicted;
    for (std::size_t i = 0; i < aKept.size(); ++i)
        Predicted = Predicted + StPoint{aCounts[i] * aKept[i].m_dX, aCounts[i] * aKept[i].m_dY};
    return aFound[nDot] - Predicted;
}

} // namespace

TEST(DiagnosisLeftOut, TellsWhatASystemWithoutThePointsWould) {
    const Points aPlaces = PatternPlaces();
    const Points aFound = FoundBy(aPlaces, 7);
    const ClSplineSystem System(aPlaces, 3);
    ClLeftOut Others(System, aFound);
    const std::vector<std::size_t> aOut{0, 30, 31, 74};
    for (const std::size_t nDot : aOut)
        Others.LeaveOut(nDot);

    for (std::size_t i = 0; i < aPlaces.size(); ++i) {
        const StPoint Anew = OffAnew(aPlaces, aFound, aOut, i);
        EXPECT_NEAR(Others.Off(i).m_dX, Anew.m_dX, 1e-7) << i;
        EXPECT_NEAR(Others.Off(i).m_dY, Anew.m_dY, 1e-7) << i;
    }
    EXPECT_EQ(Others.Out(), aOut);
    EXPECT_TRUE(Others.IsLeftOut(74));
    EXPECT_FALSE(Others.IsLeftOut(73));
}

// On a smooth grid each of the 75 is named where it alone is moved, at the border too, and moved by
// what it was moved by.
TEST(DiagnosisLeftOut, NamesTheOneDotThatIsMoved) {
    const Points aPlaces = PatternPlaces();
    const Points aSmooth = FoundBy(aPlaces, 0);
    for (const int nDegree : {1, 3}) {
        const ClSplineSystem System(aPlaces, nDegree);
        for (std::size_t nDot = 0; nDot < aPlaces.size(); ++nDot) {
            ClLeftOut Others(System, WithMoved(aSmooth, nDot, {2.0, -1.0}));
            EXPECT_EQ(Others.MostSuspicious(cUnit), nDot) << nDegree;
            if (nDegree == 3) {
                EXPECT_NEAR(Others.Off(nDot).m_dX, 2.0, 0.1) << nDot;
                EXPECT_NEAR(Others.Off(nDot).m_dY, -1.0, 0.1) << nDot;
            }
        }
    }
}

TEST(DiagnosisLeftOut, MeasuresEachDirectionInItsOwnUnit) {
    const Points aPlaces = PatternPlaces();
    const ClSplineSystem System(aPlaces, 3);
    const Points aFound = WithMoved(WithMoved(FoundBy(aPlaces, 0), 14, {1.0, 0.0}), 50, {0.0, 1.5});
    const ClLeftOut Others(System, aFound);

    EXPECT_EQ(Others.MostSuspicious({1.0, 1.0}), 50U);
    EXPECT_EQ(Others.MostSuspicious({1.0, 2.0}), 14U);
}

// Two neighbours that are wrong bend the prediction of each other; with both out, both are told.
TEST(DiagnosisLeftOut, FindsNeighboursThatAreBothWrong) {
    const Points aPlaces = PatternPlaces();
    const ClSplineSystem System(aPlaces, 3);
    const Points aFound = WithMoved(WithMoved(FoundBy(aPlaces, 0), 36, {3.0, 0.0}), 37, {2.0, 2.0});
    ClLeftOut Others(System, aFound);
    const std::size_t nFirst = Others.MostSuspicious(cUnit);
    Others.LeaveOut(nFirst);
    const std::size_t nSecond = Others.MostSuspicious(cUnit);
    Others.LeaveOut(nSecond);

    EXPECT_EQ(std::min(nFirst, nSecond), 36U);
    EXPECT_EQ(std::max(nFirst, nSecond), 37U);
    EXPECT_NEAR(Others.Off(36).m_dX, 3.0, 0.05);
    EXPECT_NEAR(Others.Off(37).m_dX, 2.0, 0.05);
    EXPECT_NEAR(Others.Off(37).m_dY, 2.0, 0.05);
    for (const std::size_t nDot : {25U, 26U, 35U, 38U, 47U, 48U})
        EXPECT_LT(std::fabs(Others.Off(nDot).m_dX), 0.05) << nDot;
}
