#include "FingerCoding/Quick/Spans.h"

#include "FingerCoding/Quick/PlaneCases.h"

#include <random>

using namespace TestSupport;
using Quick::ClSpans;
using Quick::StSpan;

namespace {

/// Spans with memory of their own.
class ClOwnSpans {
public:
    explicit ClOwnSpans(const Naive::Grid& Grid)
        : m_nMost(ClSpans::Most(Grid.m_nWidth, Grid.m_nHeight)), m_aSpans(2 * m_nMost),
          m_aNumbers(2 * m_nMost), m_Frame(Grid),
          m_Spans(m_aSpans.data(),
                  {m_aSpans.data() + m_nMost, m_aNumbers.data(), m_aNumbers.data() + m_nMost}) {
        m_Spans.Find(m_Frame.Plane());
    }

    ClSpans& operator*() { return m_Spans; }
    Naive::Grid Painted() const {
        const Quick::StPlane& Plane = m_Frame.Plane();
        Naive::Grid Out(static_cast<int>(Plane.m_nWidth), static_cast<int>(Plane.m_nHeight));
        for (const StSpan& Span : m_Spans)
            for (int x = Span.m_nFirst; x <= Span.m_nLast; ++x)
                Out.At(x, Span.m_nLine) = 1;
        return Out;
    }

private:
    std::size_t m_nMost;
    std::vector<StSpan> m_aSpans;
    std::vector<int> m_aNumbers;
    ClOwnPlane m_Frame;
    ClSpans m_Spans;
};

Naive::Grid Noise(std::mt19937& rRandom, int nPercent) {
    const int nWidth = 1 + static_cast<int>(rRandom() % 20);
    const int nHeight = 1 + static_cast<int>(rRandom() % 20);
    return Naive::Made(nWidth, nHeight, [&](int, int) {
        return rRandom() % 100 < static_cast<unsigned>(nPercent) ? 1 : 0;
    });
}

template <class Work>
void ForEachNoise(Work work) {
    std::mt19937 Random(5);
    for (int nRun = 0; nRun < 600; ++nRun) {
        SCOPED_TRACE(nRun);
        work(Noise(Random, 5 + nRun % 95));
    }
}

long NaiveBlobs(Naive::Grid Region) {
    long nBlobs = 0;
    for (int y = 0; y < Region.m_nHeight; ++y)
        for (int x = 0; x < Region.m_nWidth; ++x)
            if (Region.At(x, y) == 1) {
                Naive::TakeBlob(Region, x, y);
                ++nBlobs;
            }
    return nBlobs;
}

} // namespace

TEST(QuickSpans, StandForTheBytesOfOne) {
    ForEachNoise([](const Naive::Grid& Region) {
        ClOwnSpans Spans(Region);
        ExpectGrid(Spans.Painted(), Region);
        EXPECT_EQ((*Spans).IsEmpty(), Naive::IsEmpty(Region));
    });
}

TEST(QuickSpans, HaveTheSmallestBoxAroundThem) {
    Naive::Grid Region(9, 7);
    EXPECT_TRUE((*ClOwnSpans(Region)).Box().IsEmpty());
    Region.At(5, 2) = Region.At(6, 2) = Region.At(3, 4) = 1;
    const Quick::StBox Box = (*ClOwnSpans(Region)).Box();
    EXPECT_EQ(Box.m_nLeft, 3);
    EXPECT_EQ(Box.m_nTop, 2);
    EXPECT_EQ(Box.m_nRight, 7);
    EXPECT_EQ(Box.m_nBottom, 5);
}

TEST(QuickSpans, CountTheBlobsThatJoinInColumnsOfNeighbouringLines) {
    ForEachNoise([](const Naive::Grid& Region) {
        EXPECT_EQ((*ClOwnSpans(Region)).CountBlobs(), NaiveBlobs(Region));
    });
}

TEST(QuickSpans, DropSmallBlobsButNotOneOfTheLastSpan) {
    ForEachNoise([](const Naive::Grid& Region) {
        for (const long nLeast : {1, 2, 5, 30}) {
            ClOwnSpans Spans(Region);
            (*Spans).DropSmall(nLeast);
            ExpectGrid(Spans.Painted(), Naive::WithoutSmall(Region, nLeast));
        }
    });
}

TEST(QuickSpans, CountEachBlobAnew) {
    ForEachNoise([](const Naive::Grid& Region) {
        ClOwnSpans Spans(Region);
        (*Spans).DropSmall(1); // none is, but all are counted
        (*Spans).DropSmall(5);
        ExpectGrid(Spans.Painted(), Naive::WithoutSmall(Region, 5));
    });
}

TEST(QuickSpans, FillHolesButNotOneOfTheLastSpanOfTheGround) {
    ForEachNoise([](const Naive::Grid& Region) {
        ClOwnSpans Spans(Region);
        (*Spans).FillHoles(Region.m_nWidth, Region.m_nHeight);
        ExpectGrid(Spans.Painted(), Naive::WithoutHoles(Region));
    });
}
