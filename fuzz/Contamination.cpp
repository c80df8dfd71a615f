// ContaminationDetection() with painted captures, and with bitmap blocks of any shape and depth.

#include "FingerPicture.h"
#include "Formats.h"

namespace {

Fuzz::ClMilestone s_Clean("a clean sensor is measured");
Fuzz::ClMilestone s_Dirty("dirt is measured");

constexpr unsigned int cnSide = 192;

void Measure(const Fuzz::ClBlock& block) {
    static const Fuzz::ClHandle handle; // a measurement leaves nothing behind in its handle
    double dFirst = -1.0;
    double dSecond = -1.0;
    const long nFirst = ContaminationDetection(handle, block.Data(), block.Size(), &dFirst);
    const long nSecond = ContaminationDetection(handle, block.Data(), block.Size(), &dSecond);
    Fuzz::RequireStatus(nFirst);
    Fuzz::Require(nFirst == nSecond && dFirst == dSecond, "a second call gives the same");
    Fuzz::Require(nFirst == 0 ? dFirst >= 0.0 && dFirst <= 100.0 : dFirst == 101.0,
                  "a contamination is a level, or told as not measured");
    if (nFirst == 0)
        (dFirst > 0.0 ? s_Dirty : s_Clean).Reach();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    if (Bytes.Below(4) != 0) {
        Measure(Fuzz::ClBlock(
            Fuzz::GreyBlock(cnSide, cnSide, Fuzz::FingerPicture(cnSide, Bytes), 19685)));
        return 0;
    }
    std::string Block = Bytes.Rest();
    Fuzz::ClRandom Random(nSize);
    Fuzz::RepairBitmap(Block, Random);
    Measure(Fuzz::ClBlock(Block));
    return 0;
}
