// CalibrateSetPrecalculatedData() with any bytes behind a right header, and a capture through
// whatever table was accepted.

#include "Formats.h"
#include "Harness.h"

namespace {

const Fuzz::ClFormat s_Format(Fuzz::RepairTable);
Fuzz::ClMilestone s_Accepted("a table is accepted");
Fuzz::ClMilestone s_Corrected("a capture is corrected by it");

constexpr unsigned int cnSide = 64;
constexpr std::size_t cnHeaderSize = 28;

/// A scanner that waits for its table.
void Prepare(const Fuzz::ClHandle& handle) {
    static const std::string Scanner = Fuzz::SmallScanner(cnSide);
    const Fuzz::ClBlock scanner(Scanner);
    handle.Set("PrecalculatedData=true");
    handle.Set("DynamicFingerMask=false");
    Fuzz::Require(CalibrateSetData(handle, scanner.Data(), scanner.Size()) == 0, "a scanner loads");
}

/// Header of the precalculated block of the scanner, digest included.
std::string Header() {
    const Fuzz::ClHandle handle;
    Prepare(handle);
    return Fuzz::BlockFrom(handle, CalibrateGetPrecalculatedData).substr(0, cnHeaderSize);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    static const std::string Right = Header();
    const Fuzz::ClHandle handle;
    Prepare(handle);
    const Fuzz::ClBlock block(Right + std::string(reinterpret_cast<const char*>(pData), nSize));
    const long nStatus = CalibrateSetPrecalculatedData(handle, block.Data(), block.Size());
    Fuzz::RequireStatus(nStatus);
    if (nStatus != 0)
        return 0;
    s_Accepted.Reach();
    static const std::string Image =
        Fuzz::GreyBlock(cnSide, cnSide, std::string(cnSide * cnSide, '\x7F'));
    const Fuzz::ClBlock image(Image);
    if (!Fuzz::Corrected(handle, image).empty())
        s_Corrected.Reach();
    return 0;
}
