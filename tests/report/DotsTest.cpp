#include "report/Dots.h"

#include "report/CaptureOutline.h"
#include "report/DotMarks.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace report;

namespace {

diagnosis::StDiagnosis ThreeReadings() {
    diagnosis::StDiagnosis Diagnosis;
    for (int n = 1; n <= 3; ++n) {
        diagnosis::StDotReading Reading;
        Reading.m_Place = {n, 2 * n};
        Reading.m_Found = {10.0 * n, 20.0 * n};
        Reading.m_LeaveOneOut = {0.1 * n, -0.2 * n};
        Diagnosis.m_aDots.push_back(Reading);
    }
    return Diagnosis;
}

StDot Named(int nColumn, int nRow, bool bDoubtful) {
    return {{nColumn, nRow}, {}, {}, bDoubtful};
}

} // namespace

TEST(ReportDots, AreThoseOfADiagnosis) {
    const Dots aDots = DotsOf(ThreeReadings());
    ASSERT_EQ(aDots.size(), 3U);
    EXPECT_EQ(aDots[1].m_Place.m_nRow, 4);
    EXPECT_EQ(aDots[1].m_At.m_dX, 20.0);
    EXPECT_EQ(aDots[1].m_Residual.m_dY, -0.4);
    EXPECT_FALSE(aDots[1].m_bDoubtful);
}

TEST(ReportDots, AreDoubtfulWhereAReasonNamesThem) {
    diagnosis::StDiagnosis Diagnosis = ThreeReadings();
    Diagnosis.m_aReasons = {{diagnosis::EReason::eDot, 2, ""},
                            {diagnosis::EReason::eSecond, 0, ""},
                            {diagnosis::EReason::eDot, diagnosis::cnDots, ""}};
    const Dots aDots = DotsOf(Diagnosis);
    EXPECT_FALSE(aDots[0].m_bDoubtful);
    EXPECT_TRUE(aDots[2].m_bDoubtful);
}

TEST(ReportDots, AreNamedByColumnAndRow) {
    EXPECT_EQ(NameOf({3, 7}), "column 3, row 7");
    EXPECT_EQ(NameOf({0, 0}), "dot");
}

// 3 columns of 20 per millimetre and 8 lines of 40: 150 and 200 micrometres, 250 together.
TEST(ReportDots, HaveResidualsInMicrometres) {
    EXPECT_DOUBLE_EQ(Micrometres({3.0, -8.0}, {20.0, 40.0}), 250.0);
    const auto aLengths = ResidualLengths({{{1, 1}, {}, {3.0, 8.0}, false}}, {20.0, 40.0});
    ASSERT_EQ(aLengths.size(), 1U);
    EXPECT_DOUBLE_EQ(aLengths[0], 250.0);
}

TEST(ReportDots, AreToldInWords) {
    EXPECT_EQ(DotWords({}), "no dots");
    EXPECT_EQ(DotWords({Named(1, 1, false)}), "one dot, none of them doubtful");
    EXPECT_EQ(DotWords({Named(1, 1, false), Named(1, 2, true)}),
              "2 dots, one of them doubtful: column 1, row 2");
    EXPECT_EQ(DotWords({Named(1, 1, true), Named(1, 2, true)}),
              "2 dots, 2 of them doubtful: column 1, row 1; column 1, row 2");
    const std::string sMany = DotWords(Dots(12, Named(4, 4, true)));
    EXPECT_NE(sMany.find("12 of them doubtful"), std::string::npos);
    EXPECT_NE(sMany.find("; and others"), std::string::npos);
}

// The corrected image at a tenth of a millimetre, the capture at 20 and 40 pixels per millimetre
// with its first pixel at (-10, 30) of it.
TEST(ReportCaptureOutline, IsWhereTheMappingMeetsTheBorder) {
    const Mapping rawOf = [](const StPoint& p) {
        return StPoint{2.0 * (p.m_dX + 10.0), 4.0 * (p.m_dY - 30.0)};
    };
    const StFrame Capture{200, 400, {20.0, 40.0}, false};
    const StFrame Corrected{100, 200, {10.0, 10.0}, false};
    const Points aOutline = CaptureOutline(rawOf, Capture, Corrected);
    ASSERT_EQ(aOutline.size(), 96U);
    const Points aCorners{{-10.0, 30.0}, {89.5, 30.0}, {89.5, 129.75}, {-10.0, 129.75}};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(aOutline[24 * i].m_dX, aCorners[i].m_dX, 0.01);
        EXPECT_NEAR(aOutline[24 * i].m_dY, aCorners[i].m_dY, 0.01);
    }
    // Columns 0 to 89 of 100, lines 30 to 129 of 200: 90 x 100 pixels.
    EXPECT_DOUBLE_EQ(CoveredPercent(rawOf, Capture, Corrected), 45.0);
}

TEST(ReportCaptureOutline, IsFoundThroughABend) {
    const Mapping rawOf = [](const StPoint& p) {
        return StPoint{p.m_dX + 3.0 * std::sin(p.m_dY / 40.0),
                       p.m_dY - 2.0 * std::cos(p.m_dX / 30.0)};
    };
    const StFrame Frame{120, 160, {10.0, 10.0}, false};
    const Points aOutline = CaptureOutline(rawOf, Frame, Frame);
    ASSERT_EQ(aOutline.size(), 96U);
    for (std::size_t i = 0; i < 24; ++i)
        EXPECT_NEAR(rawOf(aOutline[i]).m_dY, 0.0, 0.1);
}

TEST(ReportCaptureOutline, LeavesOutWhatIsNeverMet) {
    const Mapping nowhere = [](const StPoint&) { return StPoint{std::nan(""), 0.0}; };
    const Mapping still = [](const StPoint&) { return StPoint{5.0, 5.0}; };
    const StFrame Frame{10, 10, {1.0, 1.0}, false};
    EXPECT_TRUE(CaptureOutline(nowhere, Frame, Frame).empty());
    EXPECT_TRUE(CaptureOutline(still, Frame, Frame).empty());
    EXPECT_EQ(CoveredPercent(nowhere, Frame, Frame), 0.0);
    EXPECT_EQ(CoveredPercent(still, Frame, {}), 0.0);
}
