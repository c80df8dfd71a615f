// Lets libFuzzer change an input in its own ways, and then repairs most of what a reader would stop
// at, where the harness has told the format of its bytes.

#include "Formats.h"

#include <cstring>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* pData, std::size_t nSize, std::size_t nMost);

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
