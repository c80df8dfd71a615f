#include "ImageProcessing/Kernels/RegionFill.h"

#include "../RegionShapes.h"
#include "ImageProcessing/Kernels/Labelling.h"
#include "support/AllocationFailures.h"

namespace {

using namespace TestSupport;

struct StSeed {
    long x;
    long y;
};
using Seeds = Kernels::TpSeeds<StSeed>;

// Seeds

TEST(Seeds, ComeBackLastInFirstOut) {
    Seeds seeds;
    EXPECT_TRUE(seeds.IsEmpty());
    for (long i = 0; i < 1000; ++i)
        seeds.Push({i, -i});
    for (long i = 999; i >= 0; --i) {
        ASSERT_FALSE(seeds.IsEmpty());
        const StSeed Place = seeds.Pop();
        EXPECT_EQ(Place.x, i);
        EXPECT_EQ(Place.y, -i);
    }
    EXPECT_TRUE(seeds.IsEmpty());
}

TEST(Seeds, GrowInStepsOfAHundredByAtLeastWhatIsThere) {
    Seeds seeds;
    EXPECT_EQ(seeds.Capacity(), 0u);
    const struct {
        int m_nSeeds;
        unsigned long m_nCapacity;
    } aRows[] = {{1, 100}, {100, 100}, {101, 200}, {200, 200}, {201, 400}, {401, 800}};
    int nSeeds = 0;
    for (const auto& Row : aRows) {
        for (; nSeeds < Row.m_nSeeds; ++nSeeds)
            seeds.Push({0, 0});
        EXPECT_EQ(seeds.Capacity(), Row.m_nCapacity) << Row.m_nSeeds;
    }
}

TEST(Seeds, HaveRoomForWhatIsTold) {
    Seeds seeds(200);
    EXPECT_EQ(seeds.Capacity(), 200u);
    EXPECT_TRUE(seeds.IsEmpty());
}

TEST(Seeds, KeepTheirStorageWhenTheyAreCleared) {
    Seeds seeds;
    for (int i = 0; i < 150; ++i)
        seeds.Push({1, 2});
    seeds.Clear();
    EXPECT_TRUE(seeds.IsEmpty());
    EXPECT_EQ(seeds.Capacity(), 200u);
}

TEST(Seeds, StayWhenMemoryIsMissing) {
    FailEachAllocation([] {
        Seeds seeds;
        int nSeeds = 0;
        try {
            for (; nSeeds < 1000; ++nSeeds)
                seeds.Push({nSeeds, 0});
        } catch (const ClExBadAlloc&) {
            while (nSeeds > 0)
                EXPECT_EQ(seeds.Pop().x, --nSeeds);
            EXPECT_TRUE(seeds.IsEmpty());
            throw;
        }
        EXPECT_EQ(nSeeds, 1000);
        EXPECT_EQ(seeds.Pop().x, 999);
    });
}

// Filling, on buffers that end with the last pixel and whose lines stand apart

class ClLabelCase {
public:
    explicit ClLabelCase(const ClImage& Image)
        : m_nWidth(Image.Width()), m_nLines(Image.Height()),
          m_aPixels(Size(m_nWidth + 3), std::uint8_t{0}), m_aLabels(Size(m_nWidth + 1), cnGuard) {
        for (long y = 0; y < m_nLines; ++y)
            for (long x = 0; x < m_nWidth; ++x) {
                m_aPixels[At(x, y, m_nWidth + 3)] = Image.LineData(y)[x];
                m_aLabels[At(x, y, m_nWidth + 1)] = 0;
            }
    }

    /// Labels from the last pixel on: each start finds its region whatever was done before.
    void FillBackward() {
        Kernels::ClLabelArea area(m_aPixels.data(), m_nWidth + 3, m_aLabels.data(), m_nWidth + 1,
                                  m_nWidth, m_nLines);
        Seeds seeds;
        for (long y = m_nLines; y-- > 0;)
            for (long x = m_nWidth; x-- > 0;)
                if (area.IsOpen(x, y)) {
                    area.SetLabel(++m_nRegions);
                    seeds.Push({x, y});
                    Kernels::FillRegion(area, seeds);
                    EXPECT_TRUE(seeds.IsEmpty());
                }
    }

    /// The labels are a renumbering of these.
    void ExpectPartition(const Rows& aLabels, int nRegions) const {
        EXPECT_EQ(m_nRegions, nRegions);
        std::vector<int> anOther(static_cast<std::size_t>(nRegions) + 1, -1);
        anOther[0] = 0;
        for (long y = 0; y < m_nLines; ++y)
            for (long x = 0; x < m_nWidth + 1 && At(x, y, m_nWidth + 1) < m_aLabels.size(); ++x) {
                const int nLabel = m_aLabels[At(x, y, m_nWidth + 1)];
                if (x == m_nWidth) {
                    EXPECT_EQ(nLabel, cnGuard) << "behind line " << y;
                    continue;
                }
                int& rOther = anOther[static_cast<std::size_t>(
                    aLabels[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)])];
                if (rOther < 0)
                    rOther = nLabel;
                EXPECT_EQ(nLabel, rOther) << x << ' ' << y;
            }
    }

private:
    static constexpr std::int32_t cnGuard = -77;

    static std::size_t At(long x, long y, long nStride) {
        return static_cast<std::size_t>(y * nStride + x);
    }
    std::size_t Size(long nStride) const { return At(m_nWidth, m_nLines - 1, nStride); }

    long m_nWidth;
    long m_nLines;
    int m_nRegions = 0;
    std::vector<std::uint8_t> m_aPixels; ///< 0, the value of objects, behind the lines too
    std::vector<std::int32_t> m_aLabels;
};

TEST(RegionFillKernel, FillsEveryRegionOfEveryShape) {
    for (int w : {1, 2, 3, 7, 8, 9, 17, 33})
        for (int h : {1, 2, 5, 16})
            for (double dShare : {0.0, 0.3, 0.6, 0.9, 1.0}) {
                const ClTestImage image = RandomShape(w, h, dShare, 5);
                const ClNaiveLabels naive(image);
                ClLabelCase labels(image);
                labels.FillBackward();
                labels.ExpectPartition(naive.Labels(), naive.Regions());
            }
}

TEST(RegionFillKernel, FillsPathsAndCombs) {
    for (const ClTestImage& image :
         {Spiral(31), Comb(30, 9, true), Comb(31, 9, false), Lattice(29)}) {
        const ClNaiveLabels naive(image);
        ClLabelCase labels(image);
        labels.FillBackward();
        labels.ExpectPartition(naive.Labels(), naive.Regions());
    }
}

} // namespace
