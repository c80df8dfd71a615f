// CalibrateGenerateData() with a dot target that the bytes spoil.

#include "DotTarget.h"

namespace {

Fuzz::ClMilestone s_Generated("data is generated");
Fuzz::ClMilestone s_Refused("a target is refused");

/// Dots that were moved far make steps that no stored record may have.
void Load(const std::string& Generated) {
    const Fuzz::ClHandle handle;
    handle.Set("PrecalculatedData=true");
    const Fuzz::ClBlock data(Generated);
    const long nLoaded = CalibrateSetData(handle, data.Data(), data.Size());
    Fuzz::Require(nLoaded == QMT_ERROR_CURRUPT_DATA ||
                      Fuzz::BlockFrom(handle, CalibrateGetData) == Generated,
                  "generated data loads and stays the same");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const Fuzz::ClBlock block(Fuzz::DotTarget(Fuzz::cRawTarget, pData, nSize));
    const Fuzz::ClHandle handle;
    const long nStatus = CalibrateGenerateData(handle, block.Data(), block.Size());
    Fuzz::Require(nStatus == 0 || nStatus == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE,
                  "a target is evaluated or refused");
    const std::string Generated = Fuzz::BlockFrom(handle, CalibrateGetData);
    Fuzz::Require((nStatus == 0) == !Generated.empty(), "there is data where it was generated");
    (nStatus == 0 ? s_Generated : s_Refused).Reach();
    if (nStatus == 0)
        Load(Generated);
    return 0;
}
