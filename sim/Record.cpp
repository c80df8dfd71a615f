#include "sim/Record.h"

#include "Calibrate/CalibrateGeometricData.h"
#include "Tools/MemStream.h"
#include "sim/Target.h"

namespace sim {

namespace {

constexpr unsigned char g_nBackground = 255;
constexpr double g_dFramePerMm = g_dFrameDpi / 25.4;

/// What is left of a coordinate in a stream.
ClPoint Rounded(const ClPoint& Point) {
    return {static_cast<double>(static_cast<float>(Point.x)),
            static_cast<double>(static_cast<float>(Point.y))};
}

void FillSizes(const ClScanner& Scanner, ClCalibrateGeometricData& Data) {
    Data.m_nSourceWidth = static_cast<std::uint32_t>(Scanner.Settings().m_nRawWidth);
    Data.m_nSourceHeight = static_cast<std::uint32_t>(Scanner.Settings().m_nRawHeight);
    Data.m_nSourcePelsX = g_nRawPelsX;
    Data.m_nSourcePelsY = g_nRawPelsY;
    Data.m_nTargetWidth = g_nFrameWidth;
    Data.m_nTargetHeight = g_nFrameHeight;
    Data.m_nTargetPelsX = g_nFramePels;
    Data.m_nTargetPelsY = g_nFramePels;
    Data.m_nPlanes = 1;
    Data.m_nBackground = g_nBackground;
}

} // namespace

void FillRecord(const ClScanner& Scanner, ClCalibrateGeometricData& Data) {
    Data.Clear();
    FillSizes(Scanner, Data);
    for (const ClPoint& Dot : DotPattern()) {
        const ClPoint Target = Rounded({0.5 * g_nFrameWidth + Dot.x * g_dFramePerMm,
                                        0.5 * g_nFrameHeight + Dot.y * g_dFramePerMm});
        const ClPoint Actual = Rounded(Scanner.RawFromFrame(Target));
        Data.m_aTarget.Append(ClVector(Target.x, Target.y));
        Data.m_aActual[0].Append(ClVector(Actual.x, Actual.y));
    }
}

std::vector<unsigned char> RecordBlock(const ClScanner& Scanner) {
    ClCalibrateGeometricData Data;
    FillRecord(Scanner, Data);
    ClMemStream Stream;
    Data.Write(Stream);
    return {Stream.GetData(), Stream.GetData() + Stream.Size()};
}

} // namespace sim
