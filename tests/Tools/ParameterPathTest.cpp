#include "Tools/ParameterContainer.h"
#include "support/Throws.h"

#include <string>

namespace {

/// The tree a -> { b -> { c, d }, x }, with the numbers c, d and x.
class ParameterPath : public testing::Test {
protected:
    ParameterPath() : m_Root("a") {
        m_pB = m_Root.AddContainer("b");
        m_pC = m_pB->AddNumeric("c", &m_nValue);
        m_pD = m_pB->AddNumeric("d", &m_nValue);
        m_pX = m_Root.AddNumeric("x", &m_nValue);
    }

    long m_nValue = 0;
    ClParameterContainer m_Root;
    ClParameterContainer* m_pB;
    ClParameter* m_pC;
    ClParameter* m_pD;
    ClParameter* m_pX;
};

TEST_F(ParameterPath, FollowsNamesJoinedByDots) {
    EXPECT_EQ(m_Root.Find("x"), m_pX);
    EXPECT_EQ(m_Root.Find("b"), m_pB);
    EXPECT_EQ(m_Root.Find("b.c"), m_pC);
    EXPECT_EQ(m_pB->Find("d"), m_pD);
}

TEST_F(ParameterPath, ComparesNamesWithoutRegardToCase) {
    EXPECT_EQ(m_Root.Find("B.C"), m_pC);
    EXPECT_EQ(m_Root.FindLocal("X"), m_pX);
}

TEST_F(ParameterPath, FindsNothingForUnknownNames) {
    EXPECT_EQ(m_Root.Find("y"), nullptr);
    EXPECT_EQ(m_Root.Find("b.y"), nullptr);
    EXPECT_EQ(m_Root.Find("y.c"), nullptr);
    EXPECT_EQ(m_pB->Find("x"), nullptr);
}

TEST_F(ParameterPath, FindsNothingForNoPath) {
    EXPECT_EQ(m_Root.Find(nullptr), nullptr);
    EXPECT_EQ(m_Root.Find(""), nullptr);
    EXPECT_EQ(m_Root.Find("b."), nullptr);
}

TEST_F(ParameterPath, SkipsTheNameOfTheRoot) {
    EXPECT_EQ(m_Root.Find("a.b"), m_pB);
    EXPECT_EQ(m_Root.Find("a.b.c"), m_pC);
    EXPECT_EQ(m_Root.Find("a"), &m_Root);
}

TEST_F(ParameterPath, SkipsTheNameOfTheRootOnlyWhenExact) {
    EXPECT_EQ(m_Root.Find("A.b"), nullptr);
    ClParameterContainer* pInner = m_Root.AddContainer("A");
    ClParameter* pY = pInner->AddNumeric("y", &m_nValue);
    EXPECT_EQ(m_Root.Find("A.y"), pY);
    EXPECT_EQ(m_Root.Find("A"), pInner);
    EXPECT_EQ(m_Root.Find("a.y"), nullptr);
}

TEST_F(ParameterPath, SkipsTheNameOfTheRootOnceAndOnlyThere) {
    EXPECT_EQ(m_Root.Find("a.a.b"), nullptr);
    EXPECT_EQ(m_pB->Find("b.c"), nullptr);
    EXPECT_EQ(m_pB->Find("a.x"), nullptr);
}

TEST_F(ParameterPath, GivesTheRootForADot) {
    EXPECT_EQ(m_Root.Find("."), &m_Root);
    EXPECT_EQ(m_pB->Find("."), &m_Root);
}

TEST_F(ParameterPath, StartsAtTheRootForALeadingDot) {
    EXPECT_EQ(m_pB->Find(".x"), m_pX);
    EXPECT_EQ(m_pB->Find(".b.d"), m_pD);
    EXPECT_EQ(m_pB->Find(".a.b.d"), m_pD);
    EXPECT_EQ(m_pB->Find("..x"), m_pX);
    EXPECT_EQ(m_Root.Find("b..x"), m_pX);
}

TEST_F(ParameterPath, EndsAtAParameterThatIsNoContainer) {
    EXPECT_EQ(m_Root.Find("x.y"), m_pX);
    EXPECT_EQ(m_Root.Find("x."), m_pX);
    EXPECT_EQ(m_Root.Find("b.c.y.z"), m_pC);
}

TEST_F(ParameterPath, GoesOnBehindAFoundPart) {
    EXPECT_EQ(ClParameterContainer::FindNamePart(m_pB, ".c"), m_pC);
    EXPECT_EQ(ClParameterContainer::FindNamePart(m_pB, ""), m_pB);
    EXPECT_EQ(ClParameterContainer::FindNamePart(m_pB, "rest"), m_pB);
    EXPECT_EQ(ClParameterContainer::FindNamePart(m_pB, nullptr), m_pB);
    EXPECT_EQ(ClParameterContainer::FindNamePart(m_pX, ".y"), m_pX);
    EXPECT_EQ(ClParameterContainer::FindNamePart(nullptr, ".y"), nullptr);
}

TEST_F(ParameterPath, WorksWithoutANameOfTheRoot) {
    ClParameterContainer root;
    ClParameter* pY = root.AddNumeric("y", &m_nValue);
    EXPECT_EQ(root.Find("y"), pY);
    EXPECT_EQ(root.Find(".y"), pY);
}

TEST_F(ParameterPath, RefusesAPartOf255Characters) {
    const std::string Longest(254, 'n');
    ClParameter* pLong = m_Root.AddNumeric(Longest.c_str(), &m_nValue);
    EXPECT_EQ(m_Root.Find(Longest.c_str()), pLong);
    EXPECT_EQ(m_Root.Find(("a." + Longest).c_str()), pLong);
    const std::string TooLong(255, 'n');
    constexpr const char* cszWords = "Parameter path part was to long max len is 255";
    EXPECT_THROWS(m_Root.Find(TooLong.c_str()), ClException, -101, cszWords);
    EXPECT_THROWS(m_Root.Find(("b." + TooLong).c_str()), ClException, -101, cszWords);
    EXPECT_THROWS(m_Root.Find(("a." + TooLong).c_str()), ClException, -101, cszWords);
}

TEST_F(ParameterPath, FollowsEndlessPathsWithoutAStack) {
    std::string Path(1000000, '.');
    EXPECT_EQ(m_Root.Find(Path.c_str()), &m_Root);
    Path.clear();
    for (int i = 0; i < 100000; ++i)
        Path += "b..";
    EXPECT_EQ(m_Root.Find((Path + "x").c_str()), m_pX);
}

} // namespace
