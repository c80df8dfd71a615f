/// `qk7 precalculate`.

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

using namespace TestSupport;
using qk7::Bytes;

TEST(Qk7Precalculate, WritesTheBlockOfTheLibrary) {
    const ClTestFolder folder;

    const StEnded ended = Qk7({"precalculate", "-d", RecordPath(), "-o", folder / "scanner.pre"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Err, "");
    EXPECT_EQ(Get(folder / "scanner.pre"), DirectlyPrecalculated(Record()));
}

TEST(Qk7Precalculate, TakesTheOlderLayouts) {
    const ClTestFolder folder;
    const std::string old = DataPath("records/scanner900_old_tags.cal");

    EXPECT_EQ(Qk7({"precalculate", "-d", old, "-o", folder / "scanner.pre"}).m_nExit, 0);

    EXPECT_EQ(Get(folder / "scanner.pre"), DirectlyPrecalculated(Get(old)));
}

TEST(Qk7Precalculate, WritesNothingForADamagedBlock) {
    const ClTestFolder folder;
    Bytes damaged = Record();
    damaged[100] ^= 0x10;
    Put(folder / "scanner.cal", damaged);

    const StEnded ended =
        Qk7({"precalculate", "-d", "scanner.cal", "-o", "scanner.pre"}, folder.Path());

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Err, "qk7 precalculate: scanner.cal: -39 The input is corrupt; it can be a "
                           "memoryblock or a file. It is damaged; restore it, or generate the "
                           "calibration anew.\n");
    EXPECT_EQ(folder.Names(), std::set<std::string>{"scanner.cal"});
}

TEST(Qk7Precalculate, NamesFilesThatCannotBeReadOrWritten) {
    const ClTestFolder folder;
    Put(folder / "scanner.cal", Record());

    EXPECT_EQ(Qk7({"precalculate", "-d", "none", "-o", "scanner.pre"}, folder.Path()).m_Err,
              "qk7 precalculate: none: No such file or directory\n");
    const StEnded ended =
        Qk7({"precalculate", "-d", "scanner.cal", "-o", "/dev/full"}, folder.Path());
    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Err,
              "qk7 precalculate: /dev/full: cannot be written: No space left on device\n");
}

TEST(Qk7Precalculate, RefusesToReplaceItsBlock) {
    const ClTestFolder folder;
    Put(folder / "scanner.cal", Record());

    const StEnded ended =
        Qk7({"precalculate", "-d", "scanner.cal", "-o", "./scanner.cal", "--json"}, folder.Path());

    EXPECT_EQ(ended.m_nExit, 2);
    EXPECT_EQ(ended.m_Out, "");
    EXPECT_EQ(ended.m_Err, "qk7 precalculate: ./scanner.cal is an input; give another output\n");
    EXPECT_EQ(Get(folder / "scanner.cal"), Record());
}
