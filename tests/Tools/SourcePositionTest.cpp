#include "Tools/SourcePosition.h"

#include "Tools/FpImage.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

using Vek::SourcePath;

TEST(SourcePosition, EndsBeforeTheExtension) {
    EXPECT_STREQ(SourcePath("Tools/Bitmap.cpp").m_szPath, "Tools/Bitmap");
    EXPECT_STREQ(SourcePath("Tools/Bitmap.test.h").m_szPath, "Tools/Bitmap.test");
    EXPECT_STREQ(SourcePath("Tools/Bitmap").m_szPath, "Tools/Bitmap");
    EXPECT_STREQ(SourcePath("Tools.d/Bitmap").m_szPath, "Tools.d/Bitmap");
    EXPECT_STREQ(SourcePath("").m_szPath, "");
}

TEST(SourcePosition, BeginsBehindTheSourceRoot) {
    EXPECT_STREQ(SourcePath("src/Tools/Bitmap.cpp").m_szPath, "Tools/Bitmap");
    EXPECT_STREQ(SourcePath("/any/where/src/Tools/Bitmap.cpp").m_szPath, "Tools/Bitmap");
    EXPECT_STREQ(SourcePath("/src/project/src/Tools/Bitmap.cpp").m_szPath, "Tools/Bitmap");
    EXPECT_STREQ(SourcePath("../src/Bitmap.cpp").m_szPath, "Bitmap");
    EXPECT_STREQ(SourcePath("mysrc/Bitmap.cpp").m_szPath, "mysrc/Bitmap");
    EXPECT_STREQ(SourcePath("Tools/src.cpp").m_szPath, "Tools/src");
}

TEST(SourcePosition, IsComputedByTheCompiler) {
    constexpr SourcePath path("src/a.cpp");
    static_assert(path.m_szPath[0] == 'a' && path.m_szPath[1] == '\0');
    EXPECT_STREQ(path.m_szPath, "a");
}

TEST(SourcePosition, NamesTheFileOfTheThrow) {
    ClImage image;
    try {
        image.NewWithType(image, ClImage::eUInt8);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Tools/FpImage");
        EXPECT_GT(e.Line(), 0);
    }
}

TEST(SourcePosition, NamesTheLineOfTheThrow) {
    const int nLine = __LINE__ + 1;
    const ClExTessarin e(-35, VEK_HERE);
    EXPECT_EQ(e.Line(), nLine);
}

TEST(SourcePosition, HasAStaticText) {
    const char* const szFirst = VEK_FILE;
    EXPECT_STREQ(szFirst, VEK_FILE);
    const std::string text = szFirst;
    const std::string tail = "Tools/SourcePositionTest";
    ASSERT_GE(text.size(), tail.size());
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}
