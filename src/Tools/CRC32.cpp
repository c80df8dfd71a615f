#include "Tools/CRC32.h"

// One table look-up per byte. Records have about a kilobyte, so that wider steps would not pay for
// their larger tables.

ClCRC32::ClCRC32() {
    Generate_CRC_Table();
}

ClCRC32::~ClCRC32() = default;

void ClCRC32::Generate_CRC_Table() {
    constexpr std::uint32_t nPolynomial = 0x04C11DB7;
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t nEntry = i << 24;
        for (int nStep = 0; nStep < 8; ++nStep)
            nEntry = (nEntry << 1) ^ ((nEntry >> 31) != 0 ? nPolynomial : 0);
        m_aTable[i] = nEntry;
    }
}

std::uint32_t ClCRC32::Get_CRC(const unsigned char* pData, unsigned long nSize) const {
    std::uint32_t nCrc = 0xFFFFFFFF;
    for (unsigned long i = 0; i < nSize; ++i)
        nCrc = (nCrc << 8) ^ m_aTable[(nCrc >> 24) ^ pData[i]];
    return ~nCrc;
}
