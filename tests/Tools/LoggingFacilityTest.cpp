#include "Tools/LoggingFacility.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

using namespace TestSupport;

TEST(LoggingFacility, KnowsTwoLevels) {
    EXPECT_EQ(static_cast<long>(Vek::eLogError), 3);
    EXPECT_EQ(static_cast<long>(Vek::eLogTrace), 7);
}

TEST(LoggingFacility, HasAFacilityAroundTheLog) {
    EXPECT_EQ(VekLFCreate(), 0);
    LoadLoggingFacility();
    ReleaseLoggingFacility();
}

TEST(LoggingFacility, LeavesItsPointersAlone) {
    EXPECT_EQ(g_VekLFCreate, nullptr);
    EXPECT_EQ(g_VekLFLog, nullptr);
    VekLFLog(Vek::eLogTrace, "a line");
    EXPECT_EQ(g_VekLFCreate, nullptr);
    EXPECT_EQ(g_VekLFLog, nullptr);
}

TEST(LoggingFacility, LetsAnApplicationPutItsOwnLogInFront) {
    ClLogCapture log; // this program's own
    EXPECT_EQ(VekLFLog(Vek::eLogTrace, "%s has %d of %.1f", "it", 3, 4.5), 0);
    EXPECT_EQ(VekLFLog(Vek::eLogError, "failed"), 0);
    const std::vector<StLogLine> aExpected = {{7, "it has 3 of 4.5"}, {3, "failed"}};
    EXPECT_EQ(log.Lines(), aExpected);
}
