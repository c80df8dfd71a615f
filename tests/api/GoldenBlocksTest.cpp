// Blocks that every version has to take and to give alike, made once from the description of the
// formats.

#include "api/Api.h"
#include "support/TestData.h"

#include <algorithm>

using TestSupport::Bytes;
using TestSupport::ClApiHandle;
using TestSupport::DataFile;
using TestSupport::Line;

namespace {

Bytes Golden(const std::string& Name) {
    return DataFile("golden/" + Name);
}

/// Gives what it was given in the newest layout.
Bytes Rewritten(ClApiHandle& rHandle, const std::string& Name) {
    EXPECT_EQ(rHandle.SetData(Golden(Name)), 0) << Name;
    return rHandle.Data();
}

Bytes CaptureOfGrey(int nGrey) {
    TestSupport::StHead Head;
    Head.m_nWidth = 30;
    Head.m_nHeight = 80;
    return Block(Head, TestSupport::GreyPalette(),
                 Bytes(32 * 80, static_cast<unsigned char>(nGrey)));
}

/// Sharpened, a flat capture is brighter by one: twice its value less its mean, whose taps do not
/// quite add up to 1 and which is cut.
int Sharpened(int nGrey) {
    return nGrey > 0 ? std::min(nGrey + 1, 255) : 0;
}

/// What the golden table makes of a capture of one grey value: the weights of an entry add up to
/// 1024 and a multiple of 512, from -3 to 3 times.
unsigned char CorrectedGrey(int nGrey, int nIndex) {
    if (nIndex % 5 == 4)
        return 17;
    const int nWeights = 1024 + 512 * (nIndex % 7 - 3);
    return static_cast<unsigned char>(
        std::clamp((nWeights * Sharpened(nGrey) + 1023) >> 10, 0, 255));
}

} // namespace

TEST(GoldenBlocks, OfOlderLayoutsAreGivenBackInTheNewest) {
    ClApiHandle Handle; // one after the other: nothing of a block stays for the next one
    Handle.Set("PrecalculatedData=true");
    EXPECT_EQ(Rewritten(Handle, "layout6.cal"), Golden("layout6.cal"));
    for (const char* szLayout : {"5", "4", "3", "2", "1", "0"}) {
        const std::string Name = std::string("layout") + szLayout;
        EXPECT_EQ(Rewritten(Handle, Name + ".cal"), Golden(Name + "_as_newest.cal")) << szLayout;
    }
    EXPECT_EQ(Rewritten(Handle, "old_tags.cal"), Golden("layout0_as_newest.cal"));
}

TEST(GoldenBlocks, OfATableAreGivenBackAsTheyAre) {
    ClApiHandle Handle;
    Handle.Set("PrecalculatedData=true");
    ASSERT_EQ(Handle.SetData(Golden("table.cal")), 0);
    ASSERT_EQ(Handle.SetPrecalculatedData(Golden("table.pre")), 0);
    EXPECT_EQ(Handle.PrecalculatedData(), Golden("table.pre"));
    EXPECT_EQ(Handle.Data(), Golden("table.cal"));
}

TEST(GoldenBlocks, OfATableCorrectCaptures) {
    ClApiHandle Handle;
    Handle.Set("PrecalculatedData=true");
    ASSERT_EQ(Handle.SetData(Golden("table.cal")), 0);
    ASSERT_EQ(Handle.SetPrecalculatedData(Golden("table.pre")), 0);
    for (const int nGrey : {0, 100, 201, 255}) {
        const Bytes aCorrected = Handle.Corrected(CaptureOfGrey(nGrey));
        ASSERT_EQ(TestSupport::Width(aCorrected), 24);
        ASSERT_EQ(TestSupport::Height(aCorrected), 36);
        for (int i = 0; i < 24 * 36; ++i)
            ASSERT_EQ(Line(aCorrected, i / 24)[static_cast<std::size_t>(i % 24)],
                      CorrectedGrey(nGrey, i))
                << nGrey << ": " << i;
    }
}
