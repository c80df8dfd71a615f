// CalibrateSetData() and CalibrateSetReferenceData() with any bytes. The checksum of most is made
// right by the mutation: a harness that stops at the checksum tests nothing behind it.

#include "ByteOrder.h"
#include "Formats.h"
#include "Harness.h"

namespace {

const Fuzz::ClFormat s_Format(Fuzz::RepairRecord);
Fuzz::ClMilestone s_Loaded("a record is loaded");
Fuzz::ClMilestone s_Reference("a reference is loaded");

/// A record for captures without a pixel loads, and counts as none.
bool HasCaptureSize(const Fuzz::ClBlock& block) {
    const std::string Bytes(reinterpret_cast<const char*>(block.Data()), block.Size());
    return Fuzz::Big<std::uint32_t>(Bytes, 12) != 0 && Fuzz::Big<std::uint32_t>(Bytes, 16) != 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const Fuzz::ClBlock block(pData, nSize);
    const Fuzz::ClHandle handle;
    handle.Set("PrecalculatedData=true"); // hostile sizes are tested, not splines
    const long nReference = CalibrateSetReferenceData(handle, block.Data(), block.Size());
    Fuzz::RequireStatus(nReference);
    const long nStatus = CalibrateSetData(handle, block.Data(), block.Size());
    Fuzz::RequireStatus(nStatus);
    const std::string Kept = Fuzz::BlockFrom(handle, CalibrateGetData);
    Fuzz::Require((nStatus == 0 && HasCaptureSize(block)) == !Kept.empty(),
                  "there is calibration data where it was loaded, and none after a refusal");
    if (nReference == 0)
        s_Reference.Reach();
    if (Kept.empty())
        return 0;
    s_Loaded.Reach();
    const Fuzz::ClBlock kept(Kept);
    Fuzz::Require(CalibrateSetData(handle, kept.Data(), kept.Size()) == 0 &&
                      Fuzz::BlockFrom(handle, CalibrateGetData) == Kept,
                  "what is given loads again and stays the same");
    return 0;
}
