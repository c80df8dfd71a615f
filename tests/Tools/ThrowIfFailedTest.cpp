#include "Tools/ThrowIfFailed.h"

#include "support/Throws.h"

#include <gtest/gtest.h>

TEST(ThrowIfFailed, ThrowsEveryNumberButZero) {
    for (const long nResult : {-101L, -35L, -1L, 1L, 7L})
        EXPECT_TESSARIN(ThrowIfFailed(nResult, VEK_HERE), nResult);
    EXPECT_NO_THROW(ThrowIfFailed(0, VEK_HERE));
}

TEST(ThrowIfFailed, TellsThePositionOfItsCaller) {
    try {
        ThrowIfFailed(-35, "Tools/Here", 12);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClExTessarin& e) {
        EXPECT_STREQ(e.File(), "Tools/Here");
        EXPECT_EQ(e.Line(), 12);
    }
}
