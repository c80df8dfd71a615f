// Any bytes as bitmap block: Calibrate() in every geometric mode, and the measuring calls.

#include "Formats.h"
#include "Harness.h"

namespace {

const Fuzz::ClFormat s_Format(Fuzz::RepairCapture);
Fuzz::ClMilestone s_Corrected("a capture is corrected");
Fuzz::ClMilestone s_Measured("a contamination is measured");

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    static const std::string Scanner = Fuzz::SmallScanner(64);
    const Fuzz::ClBlock block(pData, nSize);
    const Fuzz::ClBlock scanner(Scanner);
    const Fuzz::ClHandle handle;
    Fuzz::Require(CalibrateSetData(handle, scanner.Data(), scanner.Size()) == 0, "a scanner loads");
    handle.Set("DynamicFingerMask=false");
    for (const char* szMode : {"GeometricCalibrate=off", "GeometricCalibrate=oddLines",
                               "GeometricCalibrate=ThinPlateSpline"}) {
        handle.Set(szMode);
        if (!Fuzz::Corrected(handle, block).empty())
            s_Corrected.Reach();
    }
    double dResult = 0.0;
    const long nMeasured = ContaminationDetection(handle, block.Data(), block.Size(), &dResult);
    Fuzz::RequireStatus(nMeasured);
    Fuzz::Require(nMeasured == 0 ? dResult >= 0.0 && dResult <= 100.0 : dResult == 101.0,
                  "a contamination is a level, or told as not measured");
    if (nMeasured == 0)
        s_Measured.Reach();
    Fuzz::RequireStatus(CalibrateCheckEfts(handle, block.Data(), block.Size(), &dResult));
    Fuzz::RequireStatus(CalibrateGenerateData(handle, block.Data(), block.Size()));
    return 0;
}
