#pragma once

/// A table applied to 8-bit samples: out = table[in].

#include <cstddef>
#include <cstdint>

namespace Kernels {

/// A table of 256 entries, ready to be applied to whole planes. Tables of the forms that operators
/// have are computed rather than looked up, which vectors can do.
class ClLookUp {
public:
    /// Keeps no pointer to the table.
    explicit ClLookUp(const unsigned char* pTable);

    /// `nLines` lines of `nSamples`, which begin so many bytes apart. `pIn` and `pOut` may be one
    /// plane.
    void Run(const unsigned char* pIn, std::ptrdiff_t nInStride, long nSamples, long nLines,
             unsigned char* pOut, std::ptrdiff_t nOutStride) const;

    enum class EForm {
        eStep,  ///< one value below a threshold, another one from there on
        eShift, ///< in or 255 - in, plus or minus a constant, limited to 0 to 255
        eRay,   ///< (factor * (in - origin)) rounded down, limited to 0 and a largest value
        eTable,
    };
    EForm Form() const { return m_eForm; }

private:
    friend struct StStepLines;
    friend struct StShiftLines;
    friend struct StRayLines;
    friend struct StTableLines;

    bool IsStep(const unsigned char* pTable);
    bool IsShift(const unsigned char* pTable, unsigned char nFlip);
    bool IsRay(const unsigned char* pTable, int nOrigin);

    EForm m_eForm;
    unsigned char m_aTable[256];
    unsigned char m_nFirst = 0;    ///< step: the first sample of the upper value; ray: the origin
    unsigned char m_nLow = 0;      ///< step: the lower value
    unsigned char m_nChange = 0;   ///< step: the bits in which the upper value differs
    unsigned char m_nFlip = 0;     ///< shift: 255 where the sample counts downward
    unsigned char m_nUp = 0;       ///< shift: added
    unsigned char m_nDown = 0;     ///< shift: subtracted
    unsigned char m_nLargestX = 0; ///< ray: distances from the origin beyond are all the same
    unsigned char m_nTop = 0;      ///< ray: the largest value
    std::uint16_t m_nWhole = 0;    ///< ray: the factor in 1/2^7
    std::uint16_t m_nPart = 0;     ///< ray: what that lacks, in 1/2^23
};

/// out[i] = table[in[i]] without a look at the table. `pIn` and `pOut` may be one line.
void LookUpLine(const unsigned char* pIn, long nSamples, const unsigned char* pTable,
                unsigned char* pOut);

} // namespace Kernels
