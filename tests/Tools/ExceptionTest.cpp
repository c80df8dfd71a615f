#include "Tools/Exception.h"

#include "Tools/Allocate.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <type_traits>

using namespace TestSupport;

namespace {

const std::string cszRangeWords = "One of the parameters is out of range.";
const std::string cszMemoryWords = "Memory allocation failed or given mem-block too small.";

/// A comment that is a text of its own, so that copies of it can be told apart from it.
ClException WithText(const char* szText = "words") {
    return {szText, -35, true, "Tools/Somewhere", 42};
}

/// A comment that is the catalogue's text itself.
ClException Pointing() {
    return {-37, false, "Tools/Elsewhere", 43};
}

std::string Comment(const ClException& e) {
    return e.What() != nullptr ? e.What() : "(null)";
}

void ExpectOwnedContent(const ClException& e, const std::string& Words) {
    EXPECT_EQ(Comment(e), cszRangeWords + "\n" + Words);
    EXPECT_EQ(e.Number(), -35);
    EXPECT_STREQ(e.File(), "Tools/Somewhere");
    EXPECT_EQ(e.Line(), 42);
}

} // namespace

// Family

TEST(Exception, FormsOneFamily) {
    static_assert(std::is_base_of_v<std::exception, Vek::ClTessarinException>);
    static_assert(std::is_base_of_v<Vek::ClTessarinException, ClException>);
    static_assert(std::is_base_of_v<ClException, ClExTessarin>);
    static_assert(std::is_base_of_v<ClException, ClExBadAlloc>);
    static_assert(std::is_base_of_v<ClException, ClExRange>);
    static_assert(std::is_base_of_v<ClException, ClExInvalid>);
    static_assert(std::is_base_of_v<ClException, ClExStack>);
    static_assert(std::is_base_of_v<ClException, ClCodingException>);
    static_assert(std::is_base_of_v<ClException, ClExStream>);
    static_assert(std::is_base_of_v<ClExStream, ClExStreamUnexpectedEnd>);
    static_assert(std::is_base_of_v<ClExStream, ClExStreamFailToWrite>);
    static_assert(std::is_base_of_v<ClExStream, ClExStreamFailToRead>);
    static_assert(std::is_base_of_v<ClExStream, ClExStreamOpen>);
    static_assert(std::is_base_of_v<ClException, ClExSystem>);
    static_assert(std::is_base_of_v<ClExSystem, ClExFilesystem>);
    EXPECT_THROW(throw ClExStreamOpen("words", -204, true, VEK_HERE), Vek::ClTessarinException);
    EXPECT_THROW(throw ClExStreamOpen("words", -204, true, VEK_HERE), std::exception);
}

// Comments

TEST(Exception, JoinsDescriptionAndWords) {
    const ClException e("words", -35, true, "Tools/Somewhere", 42);
    ExpectOwnedContent(e, "words");
}

TEST(Exception, OwnsWordsWhateverTheFlagSays) {
    std::string text = "words";
    const ClException e(text.c_str(), -35, false, "Tools/Somewhere", 42);
    text = "other";
    const ClException copy(e);
    ExpectOwnedContent(e, "words");
    EXPECT_NE(copy.What(), e.What());
}

TEST(Exception, PointsAtTheCataloguesTextWhenItDoesNotOwnIt) {
    const ClException e(-37, false, "a", 1);
    EXPECT_EQ(e.What(), GetErrorDescriptionIntern(-37));
}

TEST(Exception, CopiesTheCataloguesTextWhenItOwnsIt) {
    const ClException e(-37, true, "a", 1);
    EXPECT_NE(e.What(), GetErrorDescriptionIntern(-37));
    EXPECT_EQ(Comment(e), "One of the required parameter is missing.");
}

TEST(Exception, RepeatsTheDescriptionForAPlainNumber) {
    const ClExTessarin e(-37, "a", 1);
    EXPECT_EQ(Comment(e), "One of the required parameter is missing.\n"
                          "One of the required parameter is missing.");
    EXPECT_EQ(e.Number(), -37);
    EXPECT_STREQ(e.File(), "a");
    EXPECT_EQ(e.Line(), 1);
}

TEST(Exception, CarriesANumberWithoutARow) {
    const ClExTessarin e(-6, "a", 1);
    EXPECT_EQ(Comment(e), "Unknown error code.\nUnknown error code.");
    EXPECT_EQ(e.Number(), -6);
}

TEST(Exception, TakesNullTextAsEmpty) {
    EXPECT_EQ(Comment(ClException(nullptr, -35, true, "a", 1)), cszRangeWords + "\n");
    EXPECT_EQ(Comment(ClExBadAlloc(nullptr, -102, true, "a", 1)), cszMemoryWords + "\n");
    EXPECT_EQ(Words(ClExSystem(nullptr, "a", 1)), "");
}

TEST(Exception, TakesANullFileAsUnknown) {
    EXPECT_STREQ(ClException("words", -35, true, nullptr, 1).File(), "Unknown");
    EXPECT_STREQ(ClException(-35, true, nullptr, 1).File(), "Unknown");
    EXPECT_STREQ(ClExTessarin(-35, nullptr, 1).File(), "Unknown");
    EXPECT_STREQ(ClExBadAlloc("words", -102, false, nullptr, 1).File(), "Unknown");
}

TEST(Exception, AnswersWhatThroughTheVirtualText) {
    class ClTranslated : public ClException {
    public:
        ClTranslated() : ClException(-35, false, "a", 1) {}
        const char* What() const override { return "translated"; }
    };
    const ClTranslated e;
    EXPECT_STREQ(static_cast<const std::exception&>(e).what(), "translated");
    EXPECT_STREQ(static_cast<const std::exception&>(Pointing()).what(),
                 "One of the required parameter is missing.");
    static_assert(noexcept(e.what()));
}

// Copies

TEST(Exception, CopiesAnOwnedComment) {
    const ClException e = WithText();
    const ClException copy(e);
    EXPECT_NE(copy.What(), e.What());
    ExpectOwnedContent(copy, "words");
}

TEST(Exception, SharesACommentThatIsNotOwned) {
    const ClException e = Pointing();
    const ClException copy(e);
    EXPECT_EQ(copy.What(), e.What());
    EXPECT_EQ(copy.Number(), -37);
}

TEST(Exception, CopiesAMissingComment) {
    ClException e = WithText();
    e.SetComment(nullptr);
    const ClException copy(e);
    EXPECT_EQ(copy.What(), nullptr);
}

TEST(Exception, AssignsBetweenAllOwnerships) {
    ClException owned = WithText();
    const ClException other = WithText("other");
    owned = other;
    EXPECT_NE(owned.What(), other.What());
    ExpectOwnedContent(owned, "other");

    owned = Pointing();
    EXPECT_EQ(owned.What(), GetErrorDescriptionIntern(-37));
    EXPECT_EQ(owned.Number(), -37);
    EXPECT_STREQ(owned.File(), "Tools/Elsewhere");
    EXPECT_EQ(owned.Line(), 43);

    owned = other; // takes the own flag back
    EXPECT_NE(owned.What(), other.What());
    ExpectOwnedContent(owned, "other");
}

TEST(Exception, ChangesNothingWhenAssignedToItself) {
    ClException e = WithText();
    const char* pComment = e.What();
    const ClException& same = e;
    e = same;
    EXPECT_EQ(e.What(), pComment);
    ExpectOwnedContent(e, "words");

    ClExBadAlloc memory("words", -102, false, "a", 1);
    pComment = memory.What();
    const ClExBadAlloc& sameMemory = memory;
    memory = sameMemory;
    EXPECT_EQ(memory.What(), pComment);
}

// Replaced comments

TEST(Exception, ReplacesAnOwnedCommentByACopy) {
    ClException e = WithText();
    std::string text = "other";
    e.SetComment(text.c_str());
    text = "OTHER";
    EXPECT_EQ(Comment(e), "other");
    e.SetComment(e.What() + 2); // a part of the old comment
    EXPECT_EQ(Comment(e), "her");
    e.SetComment(e.What());
    EXPECT_EQ(Comment(e), "her");
}

TEST(Exception, PointsAtTheNewTextWhenItDoesNotOwnTheOldOne) {
    ClException e = Pointing();
    const char* const szText = "other";
    e.SetComment(szText);
    EXPECT_EQ(e.What(), szText);
}

TEST(Exception, DropsItsCommentForNull) {
    ClException owned = WithText();
    owned.SetComment(nullptr);
    EXPECT_EQ(owned.What(), nullptr);
    EXPECT_EQ(owned.what(), nullptr);
    ClException pointing = Pointing();
    pointing.SetComment(nullptr);
    EXPECT_EQ(pointing.what(), nullptr);
}

TEST(Exception, FormatsAComment) {
    ClException e = Pointing();
    EXPECT_EQ(e.SetCommentV("%s has %d of %.1f", "it", 3, 4.5), 15);
    EXPECT_EQ(Comment(e), "it has 3 of 4.5");
    EXPECT_EQ(e.SetCommentV("[%s]", e.What()), 17); // its own comment as an argument
    EXPECT_EQ(Comment(e), "[it has 3 of 4.5]");
}

TEST(Exception, FormatsLongCommentsCompletely) {
    const std::string text(100000, 'x');
    ClException e = WithText();
    EXPECT_EQ(e.SetCommentV("%s!", text.c_str()), 100001);
    EXPECT_EQ(Comment(e), text + "!");
}

TEST(Exception, OwnsAFormattedComment) {
    ClException e = Pointing();
    e.SetCommentV("formatted");
    const ClException copy(e);
    EXPECT_NE(copy.What(), e.What());
    e.SetComment("other"); // and copies from now on
    EXPECT_EQ(Comment(copy), "formatted");
}

TEST(Exception, LeavesNoCommentForAnEmptyFormat) {
    for (ClException e : {WithText(), Pointing()}) {
        EXPECT_EQ(e.SetCommentV("%s", ""), 0);
        EXPECT_EQ(e.What(), nullptr);
        EXPECT_EQ(e.what(), nullptr);
    }
}

// The classes of the family

template <class T>
class ExceptionClass : public testing::Test {};

using PlainClasses = testing::Types<ClExBadAlloc, ClExRange, ClExInvalid, ClExStack,
                                    ClCodingException, ClExStream, ClExStreamUnexpectedEnd,
                                    ClExStreamFailToWrite, ClExStreamFailToRead, ClExStreamOpen>;
TYPED_TEST_SUITE(ExceptionClass, PlainClasses);

TYPED_TEST(ExceptionClass, AddsNothingToTheCommonClass) {
    const TypeParam e("words", -35, false, "Tools/Somewhere", 42);
    ExpectOwnedContent(e, "words");
}

TYPED_TEST(ExceptionClass, IsMadeFromAnyOfTheFamily) {
    const TypeParam copied(WithText());
    ExpectOwnedContent(copied, "words");
    const TypeParam pointing(Pointing());
    EXPECT_EQ(pointing.What(), GetErrorDescriptionIntern(-37));
    EXPECT_EQ(pointing.Number(), -37);
    EXPECT_STREQ(pointing.File(), "Tools/Elsewhere");
    EXPECT_EQ(pointing.Line(), 43);
}

TYPED_TEST(ExceptionClass, IsThrownByValueAndCaughtByReference) {
    try {
        throw TypeParam("words", -35, true, "Tools/Somewhere", 42);
    } catch (const ClException& e) {
        EXPECT_NE(dynamic_cast<const TypeParam*>(&e), nullptr);
        ExpectOwnedContent(e, "words");
    }
}

TYPED_TEST(ExceptionClass, IsCopiedAndAssigned) {
    const TypeParam e("words", -35, true, "Tools/Somewhere", 42);
    const TypeParam copy(e);
    TypeParam assigned("other", -1, true, "a", 1);
    assigned = e;
    ExpectOwnedContent(copy, "words");
    ExpectOwnedContent(assigned, "words");
    EXPECT_NE(copy.What(), e.What());
    EXPECT_NE(assigned.What(), e.What());
}

TEST(ExTessarin, IsMadeFromAnyOfTheFamily) {
    ExpectOwnedContent(ClExTessarin(WithText()), "words");
}

TEST(ExSystem, SaysWhyTheSystemFailed) {
    errno = ENOENT;
    const ClExSystem e("no such thing", "Tools/Somewhere", 42);
    EXPECT_EQ(e.Number(), -105);
    EXPECT_EQ(Comment(e), std::string(std::strerror(ENOENT)) + "\nno such thing");
    EXPECT_STREQ(e.File(), "Tools/Somewhere");
    EXPECT_EQ(e.Line(), 42);
    ExpectOwnedContent(ClExSystem(WithText()), "words");
}

TEST(ExFilesystem, SaysWhyTheFileFailedUnderItsOwnNumber) {
    errno = EACCES;
    const ClExFilesystem e("no entry", -200, "Tools/Somewhere", 42);
    EXPECT_EQ(e.Number(), -200);
    EXPECT_EQ(Comment(e), std::string(std::strerror(EACCES)) + "\nno entry");
    EXPECT_STREQ(e.File(), "Tools/Somewhere");
    EXPECT_EQ(e.Line(), 42);
    ExpectOwnedContent(ClExFilesystem(WithText()), "words");
}
