// Any bytes as bitmap block: Calibrate() in every geometric mode, and the measuring calls.

#include "Harness.h"

namespace {

void Run(const Fuzz::ClHandle& handle, const Fuzz::ClBlock& block) {
    unsigned long nSize = 0;
    const long nQuery = Calibrate(handle, block.Data(), block.Size(), nullptr, &nSize);
    Fuzz::RequireStatus(nQuery);
    Fuzz::Require(nQuery != 0, "a query without room is no success");
    if (nQuery != QMT_ERROR_TEMPLATE_SIZE || nSize == 0)
        return;
    const auto pOut = std::make_unique<unsigned char[]>(nSize);
    const unsigned long nNeeded = nSize;
    const long nStatus = Calibrate(handle, block.Data(), block.Size(), pOut.get(), &nSize);
    Fuzz::Require(nStatus == 0, "the size that was told is enough");
    Fuzz::Require(nSize == nNeeded, "the size does not change between two calls");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    static const std::string Scanner = Fuzz::SmallScanner(64);
    const Fuzz::ClBlock block(pData, nSize);
    const Fuzz::ClBlock scanner(reinterpret_cast<const std::uint8_t*>(Scanner.data()),
                                Scanner.size());
    const Fuzz::ClHandle handle;
    Fuzz::Require(CalibrateSetData(handle, scanner.Data(), scanner.Size()) == 0, "a scanner loads");
    handle.Set("DynamicFingerMask=false");
    for (const char* szMode : {"GeometricCalibrate=off", "GeometricCalibrate=oddLines",
                               "GeometricCalibrate=ThinPlateSpline"}) {
        handle.Set(szMode);
        Run(handle, block);
    }
    double dResult = 0.0;
    const long nMeasured = ContaminationDetection(handle, block.Data(), block.Size(), &dResult);
    Fuzz::RequireStatus(nMeasured);
    Fuzz::Require(nMeasured == 0 ? dResult >= 0.0 && dResult <= 100.0 : dResult == 101.0,
                  "a contamination is a level, or told as not measured");
    Fuzz::RequireStatus(CalibrateCheckEfts(handle, block.Data(), block.Size(), &dResult));
    Fuzz::RequireStatus(CalibrateGenerateData(handle, block.Data(), block.Size()));
    return 0;
}
