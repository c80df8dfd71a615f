#include "report/CaptureOutline.h"
#include "report/Coverage.h"
#include "report/DistortionField.h"
#include "report/DotsOverCapture.h"
#include "report/DrawingStyle.h"
#include "report/EftsPairs.h"
#include "report/ErrorMap.h"
#include "report/ResidualHistogram.h"
#include "report/ResidualVectors.h"
#include "report/Trend.h"

namespace report {

namespace {
std::string Empty(const std::string& sPrefix, const char* szTitle) {
    return ClSvg(sPrefix, 400.0, 100.0, szTitle, "To be drawn.").Document();
}
} // namespace

std::string DrawDotsOverCapture(const StCaptureView&, const std::string& sPrefix) {
    return Empty(sPrefix, "Dots over the capture");
}
std::string DrawResidualVectors(const StFrame&, const Dots&, const std::string& sPrefix) {
    return Empty(sPrefix, "Residual vectors");
}
std::string DrawResidualHistogram(const std::vector<double>&, const std::string& sPrefix) {
    return Empty(sPrefix, "Residuals by length");
}
std::string DrawErrorMap(const StErrorView&, const std::string& sPrefix) {
    return Empty(sPrefix, "Expected error");
}
std::string DrawDistortionField(const StWarpGrid&, const std::string& sPrefix) {
    return Empty(sPrefix, "Distortion");
}
std::string DrawCoverage(const StCoverage&, const std::string& sPrefix) {
    return Empty(sPrefix, "Coverage");
}
std::string DrawEftsPairs(const StEftsPairs&, const std::string& sPrefix) {
    return Empty(sPrefix, "Failing pairs");
}
std::string DrawTrend(const StTrend& Trend, const std::string& sPrefix) {
    return Empty(sPrefix, Trend.m_sFigure.c_str());
}
std::string DrawingStyle() {
    return {};
}

} // namespace report
