#pragma once

/// The checksum of the calibration records: CRC-32/BZIP2, most significant bit first, polynomial
/// 0x04C11DB7, initial value 0xFFFFFFFF, complemented at the end. It detects damage and protects
/// against nothing else.

#include <cstdint>

class ClCRC32 {
public:
    ClCRC32();
    virtual ~ClCRC32();

    /// The checksum of `nSize` bytes; 0 for none.
    std::uint32_t Get_CRC(const unsigned char* pData, unsigned long nSize) const;

private:
    void Generate_CRC_Table();

    std::uint32_t m_aTable[256]; ///< what each first byte leaves behind, eight steps on
};
