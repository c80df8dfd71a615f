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
    ClCalibrateGeometricData Data;
    Data.m_nSourceWidth = Data.m_nSourceHeight = nSide;
    Data.m_nTargetWidth = 24;
    Data.m_nTargetHeight = 32;
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

} // namespace Fuzz
