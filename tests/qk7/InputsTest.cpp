#include "apps/qk7/Inputs.h"

#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace qk7;
using namespace TestSupport;

namespace {

/// A folder of empty files; paths are told relative to it.
class Qk7Inputs : public testing::Test {
protected:
    void SetUp() override {
        for (const char* szFolder : {"in/b/c", "in/a", "empty", "in/.hidden"})
            std::filesystem::create_directories(m_Folder / szFolder);
        for (const char* szFile : {"in/2.bmp", "in/10.PNG", "in/1.dib", "in/notes.txt", "in/.3.bmp",
                                   "in/x.cal", "in/x.pre", "in/b/4.bmp", "in/b/c/5.png",
                                   "in/a/6.bmp", "in/.hidden/7.bmp", "a[1].bmp"})
            Put(m_Folder / szFile, {});
    }

    using Paths = std::vector<std::string>;

    StInputs Expand(const Paths& arguments, const StInputRules& Rules = {}) {
        Paths paths;
        for (const std::string& argument : arguments)
            paths.push_back(m_Folder / argument);
        return ExpandInputs(paths, Rules);
    }

    Paths PathsIn(const StInputs& Inputs) {
        Paths paths;
        for (const StInput& file : Inputs.m_aFiles)
            paths.push_back(file.m_Path.substr(m_Folder.Path().size() + 1));
        return paths;
    }

    ClTestFolder m_Folder;
};

} // namespace

TEST_F(Qk7Inputs, AreTheFilesThatAreNamedInTheirOrder) {
    const StInputs inputs = Expand({"in/2.bmp", "none", "in/1.dib"});

    EXPECT_EQ(PathsIn(inputs), (Paths{"in/2.bmp", "none", "in/1.dib"}));
    EXPECT_EQ(inputs.m_aFiles[0].m_Name, "2.bmp");
    EXPECT_EQ(inputs.m_aFiles[1].m_Fault, "") << "who reads it tells why it cannot be read";
    EXPECT_TRUE(inputs.m_bSeveral);
    EXPECT_FALSE(Expand({"in/2.bmp"}).m_bSeveral);
}

TEST_F(Qk7Inputs, AreThePicturesOfAFolderSorted) {
    const StInputs inputs = Expand({"in"});

    EXPECT_EQ(PathsIn(inputs), (Paths{"in/1.dib", "in/10.PNG", "in/2.bmp"}));
    EXPECT_EQ(inputs.m_aFiles[1].m_Name, "10.PNG");
    EXPECT_TRUE(inputs.m_bSeveral);
}

TEST_F(Qk7Inputs, AreBlocksWhereTheyAreWanted) {
    EXPECT_EQ(PathsIn(Expand({"in"}, {false, false, true, ""})), (Paths{"in/x.cal", "in/x.pre"}));
    EXPECT_EQ(PathsIn(Expand({"in"}, {false, true, true, ""})),
              (Paths{"in/1.dib", "in/10.PNG", "in/2.bmp", "in/x.cal", "in/x.pre"}));
}

TEST_F(Qk7Inputs, GoIntoFoldersWhenAsked) {
    const StInputs inputs = Expand({"in"}, {true, true, false, ""});

    EXPECT_EQ(PathsIn(inputs), (Paths{"in/1.dib", "in/10.PNG", "in/2.bmp", "in/a/6.bmp",
                                      "in/b/4.bmp", "in/b/c/5.png"}));
    EXPECT_EQ(inputs.m_aFiles[5].m_Name, "b/c/5.png");
}

TEST_F(Qk7Inputs, LeaveOutTheFolderOfTheResults) {
    EXPECT_EQ(PathsIn(Expand({"in"}, {true, true, false, m_Folder / "in/b"})),
              (Paths{"in/1.dib", "in/10.PNG", "in/2.bmp", "in/a/6.bmp"}));
    EXPECT_EQ(PathsIn(Expand({"in/[ab]"}, {true, true, false, m_Folder / "in/b"})),
              (Paths{"in/a/6.bmp"}));
}

TEST_F(Qk7Inputs, DoNotFollowALinkInCircles) {
    std::filesystem::create_directory_symlink(m_Folder / "in", m_Folder / "in/b/back");

    EXPECT_EQ(Expand({"in"}, {true, true, false, ""}).m_aFiles.size(), 6U);
}

TEST_F(Qk7Inputs, AreWhatAPatternMatchesSorted) {
    const StInputs inputs = Expand({"in/*.[bdP]*"});

    EXPECT_EQ(PathsIn(inputs), (Paths{"in/1.dib", "in/10.PNG", "in/2.bmp"}));
    EXPECT_TRUE(inputs.m_bSeveral);
    EXPECT_EQ(PathsIn(Expand({"in/?"})), (Paths{"in/a/6.bmp", "in/b/4.bmp"})) << "folders too";
}

TEST_F(Qk7Inputs, AreAFileWithANameLikeAPattern) {
    const StInputs inputs = Expand({"a[1].bmp"});

    EXPECT_EQ(PathsIn(inputs), (Paths{"a[1].bmp"}));
    EXPECT_FALSE(inputs.m_bSeveral);
}

TEST_F(Qk7Inputs, TellWhatStandsForNothing) {
    const StInputs inputs = Expand({"none*", "in/2.bmp", "empty"});

    EXPECT_EQ(PathsIn(inputs), (Paths{"none*", "in/2.bmp", "empty"}));
    EXPECT_EQ(inputs.m_aFiles[0].m_Fault, "No file has this name or matches this pattern.");
    EXPECT_EQ(inputs.m_aFiles[1].m_Fault, "");
    EXPECT_EQ(inputs.m_aFiles[2].m_Fault, "is a folder without pictures (.bmp, .dib, .png); "
                                          "--recursive looks into its folders too.");
    EXPECT_EQ(Expand({"empty"}, {true, true, true, ""}).m_aFiles[0].m_Fault,
              "is a folder without pictures (.bmp, .dib, .png) and blocks (.cal, .pre).");
}
