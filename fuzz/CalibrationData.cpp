// CalibrateSetData() and CalibrateSetReferenceData() with any bytes. The checksum of the latest
// layout is made right first: a harness that stops at the checksum tests nothing behind it.

#include "Harness.h"

#include "Tools/CRC32.h"

namespace {

/// The bytes with their last four replaced by the checksum of the others.
std::string WithChecksum(const std::uint8_t* pData, std::size_t nSize) {
    std::string Block(reinterpret_cast<const char*>(pData), nSize);
    if (nSize < 16)
        return Block;
    const std::uint32_t nChecksum = ClCRC32().Get_CRC(const_cast<std::uint8_t*>(pData), nSize - 4);
    for (std::size_t i = 0; i < 4; ++i)
        Block[nSize - 4 + i] = static_cast<char>(nChecksum >> (24 - 8 * i));
    return Block;
}

void Load(const std::string& Bytes) {
    const Fuzz::ClBlock block(reinterpret_cast<const std::uint8_t*>(Bytes.data()), Bytes.size());
    const Fuzz::ClHandle handle;
    handle.Set("PrecalculatedData=true"); // hostile sizes are tested, not splines
    Fuzz::RequireStatus(CalibrateSetReferenceData(handle, block.Data(), block.Size()));
    const long nStatus = CalibrateSetData(handle, block.Data(), block.Size());
    Fuzz::RequireStatus(nStatus);
    unsigned long nSize = 0;
    const long nQuery = CalibrateGetData(handle, nullptr, &nSize);
    Fuzz::Require(nStatus == 0 || nQuery == QMT_ERROR_NOT_INITIALIZED,
                  "after a refusal there is no calibration data");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Load(std::string(reinterpret_cast<const char*>(pData), nSize));
    Load(WithChecksum(pData, nSize));
    return 0;
}
