// CalibrateCheckEfts() with a corrected image of the dot target that the bytes spoil.

#include "DotTarget.h"

namespace {

Fuzz::ClMilestone s_Measured("an accuracy is measured");
Fuzz::ClMilestone s_Refused("an image is refused");

long Check(const Fuzz::ClHandle& handle, const Fuzz::ClBlock& block, double& rPercent) {
    rPercent = -1.0;
    const long nStatus = CalibrateCheckEfts(handle, block.Data(), block.Size(), &rPercent);
    Fuzz::Require(nStatus == 0 || nStatus == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE,
                  "a corrected target is measured or refused");
    Fuzz::Require(nStatus == 0 ? rPercent >= 0.0 && rPercent <= 100.0 : rPercent == -1.0,
                  "an accuracy is a percentage, or left alone");
    return nStatus;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    static const std::string Scanner = Fuzz::SmallScanner(64);
    const Fuzz::ClBlock scanner(Scanner);
    const Fuzz::ClBlock block(Fuzz::DotTarget(Fuzz::cCorrectedTarget, pData, nSize));
    const Fuzz::ClHandle handle;
    handle.Set("PrecalculatedData=true");
    Fuzz::Require(CalibrateSetData(handle, scanner.Data(), scanner.Size()) == 0, "a scanner loads");
    double dFirst = 0.0;
    double dSecond = 0.0;
    const long nFirst = Check(handle, block, dFirst);
    Fuzz::Require(Check(handle, block, dSecond) == nFirst && dSecond == dFirst,
                  "a second measurement gives the same");
    Fuzz::Require(Fuzz::BlockFrom(handle, CalibrateGetData) == Scanner,
                  "a measurement keeps the data");
    (nFirst == 0 ? s_Measured : s_Refused).Reach();
    return 0;
}
