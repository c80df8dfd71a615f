// What all harnesses give libFuzzer beside their entry. An input is changed in libFuzzer's own
// ways; then most of what a reader would stop at is repaired, where the harness has told the format
// of its bytes.

#include "Formats.h"
#include "Harness.h"

#include <cstring>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* pData, std::size_t nSize, std::size_t nMost);

/// What a harness does once, such as loading a scanner, is the merit of no input. libFuzzer tries
/// the harness without bytes before it counts, but not where it chooses among inputs.
extern "C" int LLVMFuzzerInitialize(int* /*pCount*/, char*** /*pArguments*/) {
    const std::uint8_t nNone = 0;
    return LLVMFuzzerTestOneInput(&nNone, 0);
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* pData, std::size_t nSize,
                                               std::size_t nMost, unsigned int nSeed) {
    const std::size_t nMutated = LLVMFuzzerMutate(pData, nSize, nMost);
    Fuzz::ClRandom random(nSeed);
    if (Fuzz::ClFormat::Repair() == nullptr || random.OneIn(4))
        return nMutated;
    std::string Bytes(reinterpret_cast<const char*>(pData), nMutated);
    Fuzz::ClFormat::Repair()(Bytes, random);
    if (Bytes.size() > nMost)
        return nMutated;
    std::memcpy(pData, Bytes.data(), Bytes.size());
    return Bytes.size();
}
