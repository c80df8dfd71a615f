// CalibrateSetPrecalculatedData() with any bytes behind a right header, and a capture through
// whatever table was accepted.

#include "Harness.h"

namespace {

constexpr unsigned int cnSide = 64;
constexpr std::size_t cnHeaderSize = 28;

/// Header of the precalculated block of the scanner, hash included.
std::string Header(const Fuzz::ClHandle& handle) {
    unsigned long nSize = 0;
    CalibrateGetPrecalculatedData(handle, nullptr, &nSize);
    std::string Block(nSize, '\0');
    Fuzz::Require(CalibrateGetPrecalculatedData(
                      handle, reinterpret_cast<unsigned char*>(Block.data()), &nSize) == 0,
                  "a precalculated block is given");
    return Block.substr(0, cnHeaderSize);
}

/// A grey block of the scanner's size.
std::string Capture() {
    const std::uint32_t anHeader[] = {40, cnSide, cnSide, 1 | (8U << 16), 0, 0, 0, 0, 0, 0};
    std::string Block(reinterpret_cast<const char*>(anHeader), sizeof anHeader);
    return Block + std::string(1024 + cnSide * cnSide, '\x7F');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    static const std::string Scanner = Fuzz::SmallScanner(cnSide);
    const Fuzz::ClBlock scanner(reinterpret_cast<const std::uint8_t*>(Scanner.data()),
                                Scanner.size());
    const Fuzz::ClHandle handle;
    handle.Set("PrecalculatedData=true");
    Fuzz::Require(CalibrateSetData(handle, scanner.Data(), scanner.Size()) == 0, "a scanner loads");
    const std::string Bytes =
        Header(handle) + std::string(reinterpret_cast<const char*>(pData), nSize);
    const Fuzz::ClBlock block(reinterpret_cast<const std::uint8_t*>(Bytes.data()), Bytes.size());
    const long nStatus = CalibrateSetPrecalculatedData(handle, block.Data(), block.Size());
    Fuzz::RequireStatus(nStatus);
    if (nStatus != 0)
        return 0;
    handle.Set("DynamicFingerMask=false");
    static const std::string Image = Capture();
    const Fuzz::ClBlock image(reinterpret_cast<const std::uint8_t*>(Image.data()), Image.size());
    unsigned long nOut = 0;
    Fuzz::RequireStatus(Calibrate(handle, image.Data(), image.Size(), nullptr, &nOut));
    return 0;
}
