// A calibration block and the precalculated block that carries its digest, whatever both say, and a
// capture through them: the table belongs to the record by its digest alone.

#include "ByteOrder.h"
#include "Formats.h"
#include "Harness.h"

namespace {

const Fuzz::ClFormat s_Format(Fuzz::RepairPair);
Fuzz::ClMilestone s_Accepted("a table is accepted by its digest");
Fuzz::ClMilestone s_Corrected("a capture is corrected");

const Fuzz::ClBlock& Capture() {
    static const Fuzz::ClBlock s_Capture(
        Fuzz::GreyBlock(64, 64, std::string(std::size_t{64} * 64, '\x60'), 19685));
    return s_Capture;
}

void Use(const Fuzz::ClHandle& handle) {
    for (const char* szOption : {"DynamicFingerMask=false", "DynamicFingerMask=true"}) {
        handle.Set(szOption);
        if (!Fuzz::Corrected(handle, Capture()).empty())
            s_Corrected.Reach();
    }
    const std::string Given = Fuzz::BlockFrom(handle, CalibrateGetPrecalculatedData);
    const Fuzz::ClBlock given(Given);
    Fuzz::Require(CalibrateSetPrecalculatedData(handle, given.Data(), given.Size()) == 0 &&
                      Fuzz::BlockFrom(handle, CalibrateGetPrecalculatedData) == Given,
                  "a table that is given loads again and stays the same");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    const std::string Bytes(reinterpret_cast<const char*>(pData), nSize);
    if (nSize < 2)
        return 0;
    const std::size_t nRecord =
        std::min<std::size_t>(Fuzz::Little<std::uint16_t>(Bytes, 0), nSize - 2);
    const Fuzz::ClBlock record(Bytes.substr(2, nRecord));
    const Fuzz::ClBlock table(Bytes.substr(2 + nRecord));
    const Fuzz::ClHandle handle;
    handle.Set("PrecalculatedData=true");
    Fuzz::RequireStatus(CalibrateSetData(handle, record.Data(), record.Size()));
    const long nTable = CalibrateSetPrecalculatedData(handle, table.Data(), table.Size());
    Fuzz::RequireStatus(nTable);
    if (nTable != 0)
        return 0;
    s_Accepted.Reach();
    Use(handle);
    return 0;
}
