/// Which file of a scanner's folder is what.

#include "apps/qk7/ReportBatch.h"

#include "apps/qk7/Handle.h"
#include "qk7/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using namespace TestSupport;
using qk7::FilesInFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// A folder with files of these names.
class Qk7FilesInFolder : public testing::Test {
protected:
    void Add(const std::vector<std::string>& aNames) {
        for (const std::string& name : aNames)
            Put(m_Folder / name, {});
    }
    qk7::StScannerFiles Files() { return FilesInFolder(m_Folder.Path()); }
    std::string Fault() {
        try {
            Files();
        } catch (const qk7::ClFailure& failure) {
            return failure.what();
        }
        return "";
    }

    ClTestFolder m_Folder;
};

} // namespace

TEST_F(Qk7FilesInFolder, AreWhatTheirNamesBeginWith) {
    Add({"target_1.bmp", "second-b.png", "empty.dib", "plate.cal", "whorl.bmp", "arch.bmp",
         "scanner.cal", "notes.txt"});
    const qk7::StScannerFiles files = Files();
    EXPECT_EQ(files.m_Target, m_Folder / "target_1.bmp");
    EXPECT_EQ(files.m_Second, m_Folder / "second-b.png");
    EXPECT_EQ(files.m_Empty, m_Folder / "empty.dib");
    EXPECT_EQ(files.m_Reference, m_Folder / "plate.cal");
    EXPECT_EQ(files.m_Calibration, "");
    EXPECT_THAT(files.m_aFingers, ElementsAre(m_Folder / "arch.bmp", m_Folder / "whorl.bmp"));
}

TEST_F(Qk7FilesInFolder, NeedNoMoreThanATarget) {
    Add({"target.png"});
    const qk7::StScannerFiles files = Files();
    EXPECT_EQ(files.m_Target, m_Folder / "target.png");
    EXPECT_EQ(files.m_Second + files.m_Empty + files.m_Reference, "");
    EXPECT_THAT(files.m_aFingers, IsEmpty());
}

TEST_F(Qk7FilesInFolder, CountByJustTheNameAmongSeveralThatBeginAlike) {
    Add({"target-a.bmp", "target.png", "target_b.bmp", "second.bmp", "second_0.bmp", "second_1.bmp",
         "empty 1.bmp", "empty.bmp", "empty_2.bmp"});
    const qk7::StScannerFiles files = Files();
    EXPECT_EQ(files.m_Target, m_Folder / "target.png");
    EXPECT_EQ(files.m_Second, m_Folder / "second.bmp");
    EXPECT_EQ(files.m_Empty, m_Folder / "empty.bmp");
    EXPECT_THAT(files.m_aFingers, IsEmpty());
}

TEST_F(Qk7FilesInFolder, AreAFaultWhereSeveralAreAsGood) {
    Add({"target.bmp", "empty_1.bmp", "empty_2.bmp", "empty_3.bmp"});
    EXPECT_THAT(Fault(), HasSubstr(m_Folder.Path() + ": has several pictures of one kind: "
                                                     "empty_1.bmp and empty_2.bmp; leave one"));
    Add({"empty.bmp", "target.png"});
    EXPECT_THAT(Fault(), HasSubstr("several pictures of one kind: target.bmp and target.png"));
}

// Without it the scanner would be judged by another plate, in silence.
TEST_F(Qk7FilesInFolder, CountAPlateThatLeadsNowhere) {
    Add({"target.bmp"});
    std::filesystem::create_symlink("nowhere/plate.cal", m_Folder / "plate.cal");
    EXPECT_EQ(Files().m_Reference, m_Folder / "plate.cal");
}

TEST(Qk7FilesInAFolder, ThatCannotBeReadAreToldInTheSystemsWords) {
    const ClTestFolder folder;
    try {
        FilesInFolder(folder / "none");
        FAIL() << "nothing was thrown";
    } catch (const qk7::ClFailure& failure) {
        EXPECT_STREQ(failure.what(), (folder / "none" + ": No such file or directory").c_str());
    }
}

TEST_F(Qk7FilesInFolder, LeaveOutAllRuledOnes) {
    Add({"ruled_1.bmp", "ruled_2.bmp", "target.bmp"});
    EXPECT_EQ(Files().m_Target, m_Folder / "target.bmp");
    EXPECT_THAT(Files().m_aFingers, IsEmpty());
}

TEST_F(Qk7FilesInFolder, AreNoScannersWithoutATarget) {
    EXPECT_THAT(Fault(), HasSubstr(": has no pictures"));
    Add({"plate.cal", "my_target.bmp"});
    EXPECT_THAT(Fault(), HasSubstr(": has no capture of the target"));
}
