// Scanners, blocks and calls that several harnesses use.

#include "Harness.h"

#include "Calibrate/CalibrateGeometricData.h"
#include "Tools/MemStream.h"

namespace Fuzz {

namespace {

/// Lengths of the pattern's columns.
constexpr int canColumns[] = {10, 11, 11, 11, 11, 11, 10};
/// 2.0 mm at 500 dots per inch.
constexpr double cdPitch = 39.37007874015748;

} // namespace

std::string SmallScanner(unsigned int nSide) {
    return SmallScanner(nSide, 24, 32);
}

std::string SmallScanner(unsigned int nSide, unsigned int nWidth, unsigned int nHeight) {
    ClCalibrateGeometricData Data;
    Data.m_nSourceWidth = Data.m_nSourceHeight = nSide;
    Data.m_nTargetWidth = nWidth;
    Data.m_nTargetHeight = nHeight;
    Data.m_nTargetPelsX = Data.m_nTargetPelsY = 19685;
    Data.m_nPlanes = 1;
    Data.m_nBackground = 255;
    for (int c = 0; c < 7; ++c)
        for (int r = 0; r < canColumns[c]; ++r) {
            Data.m_aTarget.Append({c * cdPitch, r * cdPitch});
            Data.m_aActual[0].Append({2.0 + c * cdPitch, 3.0 + 2.0 * r * cdPitch});
        }
    ClMemStream Stream;
    static_cast<ClCalibrateDataBase&>(Data).Write(Stream);
    return {reinterpret_cast<const char*>(Stream.GetData()), Stream.Size()};
}

std::string GreyBlock(unsigned int nWidth, unsigned int nHeight, const std::string& Pixels,
                      unsigned int nPelsPerMetre) {
    const std::uint32_t anHeader[] = {
        40, nWidth, nHeight, 1 | (8U << 16), 0, 0, nPelsPerMetre, nPelsPerMetre, 0, 0};
    return std::string(reinterpret_cast<const char*>(anHeader), sizeof anHeader) +
           std::string(1024, '\0') + Pixels;
}

std::string BlockFrom(const ClHandle& handle, long (*get)(void*, unsigned char*, unsigned long*)) {
    unsigned long nSize = 0;
    if (get(handle, nullptr, &nSize) == QMT_ERROR_NOT_INITIALIZED)
        return {};
    std::string Block(nSize, '\0');
    Require(get(handle, reinterpret_cast<unsigned char*>(Block.data()), &nSize) == 0,
            "a block is given in the room that it told");
    return Block;
}

std::string Corrected(const ClHandle& handle, const ClBlock& capture) {
    unsigned long nSize = 0;
    const long nQuery = Calibrate(handle, capture.Data(), capture.Size(), nullptr, &nSize);
    RequireStatus(nQuery);
    Require(nQuery != 0, "a query without room is no success");
    if (nQuery != QMT_ERROR_TEMPLATE_SIZE || nSize == 0)
        return {};
    const auto pOut = std::make_unique<unsigned char[]>(nSize); // ends where the room ends
    const unsigned long nNeeded = nSize;
    const long nStatus = Calibrate(handle, capture.Data(), capture.Size(), pOut.get(), &nSize);
    Require(nStatus == 0, "the size that was told is enough");
    Require(nSize == nNeeded, "the size does not change between two calls");
    return {reinterpret_cast<const char*>(pOut.get()), nSize};
}

} // namespace Fuzz
