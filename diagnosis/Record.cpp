#include "diagnosis/Record.h"

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/DotPattern.h"
#include "TessarinCalibrateSDK/BitmapBlock.h"
#include "Tools/Bitmap.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"

#include <stdexcept>
#include <string>

namespace diagnosis {

namespace {

static_assert(cnDots == cnPatternPoints);

constexpr double cdMillimetresPerMetre = 1000.0;

[[noreturn]] void Refuse(const ClException& Error) {
    throw std::invalid_argument(Error.What() != nullptr ? Error.What() : "cannot be read");
}

StDensity Density(std::uint32_t nPelsX, std::uint32_t nPelsY) {
    if (nPelsX == 0 || nPelsY == 0)
        throw std::invalid_argument("tells no resolution");
    return {nPelsX / cdMillimetresPerMetre, nPelsY / cdMillimetresPerMetre};
}

Points PointsOf(const ClCalibrateGeometricData::PointList& List) {
    if (List.Entries() != cnDots)
        throw std::invalid_argument("has not the points of the pattern");
    Points aPoints;
    for (unsigned long i = 0; i < List.Entries(); ++i)
        aPoints.push_back({List[i].x, List[i].y});
    return aPoints;
}

ClCalibrateGeometricData Loaded(const Bytes& Calibration) {
    ClCalibrateGeometricData Data;
    try {
        ClMemStream Stream(Calibration.data(), Calibration.size());
        static_cast<ClCalibrateDataBase&>(Data).Read(Stream);
    } catch (const ClException& Error) {
        Refuse(Error);
    }
    return Data;
}

Bytes SamplesOf(const ClImage& Image) {
    Bytes aSamples;
    for (int y = 0; y < Image.Height(); ++y) {
        const unsigned char* pLine = Image.LineData(y);
        for (int x = 0; x < Image.Width(); ++x)
            aSamples.push_back(pLine[static_cast<std::ptrdiff_t>(x) * Image.Planes()]);
    }
    return aSamples;
}

} // namespace

StRecord ReadRecord(const Bytes& Calibration) {
    const ClCalibrateGeometricData Data = Loaded(Calibration);
    StRecord Record;
    Record.m_aTarget = PointsOf(Data.m_aTarget);
    Record.m_aFound = PointsOf(Data.m_aActual[0]);
    Record.m_Target = Density(Data.m_nTargetPelsX, Data.m_nTargetPelsY);
    Record.m_Source = Density(Data.m_nSourcePelsX, Data.m_nSourcePelsY);
    Record.m_nTargetWidth = static_cast<int>(Data.m_nTargetWidth);
    Record.m_nTargetHeight = static_cast<int>(Data.m_nTargetHeight);
    return Record;
}

StGrey ReadGrey(const Bytes& Bitmap) {
    try {
        ClBitmap Copy;
        if (BitmapBlock::Copy(Bitmap.data(), Bitmap.size(), Copy) != 0)
            throw std::invalid_argument("is not the size that its header tells");
        ClImage Image;
        BitmapBlock::Attach(Copy, Image);
        return {Image.Width(), Image.Height(), SamplesOf(Image)};
    } catch (const ClException& Error) {
        Refuse(Error);
    }
}

StPatternPlace PatternPlace(std::size_t nDot) {
    int nRow = static_cast<int>(nDot);
    int nColumn = 0;
    for (; nRow >= DotPattern::canColumnLengths[nColumn]; ++nColumn)
        nRow -= DotPattern::canColumnLengths[nColumn];
    return {nColumn + 1, nRow + 1};
}

} // namespace diagnosis
