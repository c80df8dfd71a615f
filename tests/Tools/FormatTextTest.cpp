#include "Tools/FormatText.h"

#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <string>

namespace {

TEST(FormatText, MakesATextOfAnyLength) {
    const std::string Long(5000, 'n');
    EXPECT_STREQ(Vek::FormatText("%d [%s]", -7, "text").get(), "-7 [text]");
    EXPECT_EQ(Vek::FormatText("<%s>", Long.c_str()).get(), "<" + Long + ">");
    EXPECT_STREQ(Vek::FormatText("%s", "").get(), "");
}

TEST(FormatText, AnswersAMissingAllocation) {
    TestSupport::ClFailAllocation fail(0);
    EXPECT_THROWS(Vek::FormatText("text"), ClExBadAlloc, -102, "Memory allocation failed");
}

} // namespace
