#include "calls/RecordRules.h"

#include "calls/BlockReader.h"

#include <TessarinCalibrateSDK.h>

#include <cmath>
#include <vector>

namespace Calls {

using TestSupport::StPoint;

namespace {

constexpr int canLengths[] = {10, 11, 11, 11, 11, 11, 10};
constexpr std::size_t cnPoints = 75;

/// Reads one list; false where it claims more points than follow.
bool ReadPoints(ClBlockReader& rReader, std::vector<StPoint>& rPoints) {
    const std::uint32_t nCount = rReader.Number();
    if (rReader.HasEnded() || nCount > rReader.Rest() / 8)
        return false;
    rPoints.clear();
    for (std::uint32_t i = 0; i < nCount; ++i) {
        const float x = rReader.Coordinate();
        rPoints.push_back({x, rReader.Coordinate()});
    }
    return true;
}

/// Reads the two tags, either as they are now or as they were.
long ReadTags(ClBlockReader& rReader, bool& rbOld) {
    const std::string Type = rReader.Tag();
    if (!rReader.HasEnded() && Type != "CAL" && Type != "Cal")
        return QMT_ERROR_UNEXPECTED_SIGNATURE;
    const std::string SubType = rReader.Tag();
    rbOld = SubType == "Lmv";
    if (!rReader.HasEnded() && SubType != "GEO" && !rbOld)
        return QMT_ERROR_UNEXPECTED_SIGNATURE;
    return rReader.HasEnded() ? QMT_ERROR_UNEXPECTED_EOF : QMT_SUCCESS;
}

/// Reads tags and version. Returns the layout, or a negative status.
long ReadLayout(ClBlockReader& rReader) {
    bool bOld = false;
    if (const long nStatus = ReadTags(rReader, bOld))
        return nStatus;
    const std::string Version = rReader.Tag();
    if (rReader.HasEnded())
        return QMT_ERROR_UNEXPECTED_EOF;
    if (bOld && Version == "001")
        return QMT_ERROR_UNEXPECTED_SIGNATURE;
    const int nLayout = bOld && Version == "002" ? 0 : std::atoi(Version.c_str());
    return std::clamp(nLayout, 0, 6);
}

void ReadNumbers(ClBlockReader& rReader, long nLayout, StRecord& rRecord) {
    rRecord.m_nSourceWidth = rReader.Number();
    rRecord.m_nSourceHeight = rReader.Number();
    if (nLayout >= 5) {
        rRecord.m_nSourcePelsX = rReader.Number();
        rRecord.m_nSourcePelsY = rReader.Number();
    }
    rRecord.m_nTargetWidth = rReader.Number();
    rRecord.m_nTargetHeight = rReader.Number();
    rRecord.m_nTargetPelsX = nLayout >= 2 ? rReader.Number() : 19685;
    rRecord.m_nTargetPelsY = nLayout >= 2 ? rReader.Number() : 19685;
    rRecord.m_nPlanes = nLayout >= 3 ? rReader.Number() : 1;
}

bool ReadLists(ClBlockReader& rReader, long nLayout, StRecord& rRecord) {
    if (nLayout < 3)
        return ReadPoints(rReader, rRecord.m_aActual[0]) && ReadPoints(rReader, rRecord.m_aTarget);
    if (!ReadPoints(rReader, rRecord.m_aTarget))
        return false;
    for (std::uint32_t p = 0; p < rRecord.m_nPlanes; ++p)
        if (!ReadPoints(rReader, rRecord.m_aActual[p]))
            return false;
    return true;
}

long ReadContent(ClBlockReader& rReader, const Bytes& aBlock, long nLayout, StRecord& rRecord) {
    ReadNumbers(rReader, nLayout, rRecord);
    if (rReader.HasEnded())
        return QMT_ERROR_UNEXPECTED_EOF;
    if (rRecord.m_nPlanes > 3)
        return QMT_ERROR_CURRUPT_DATA;
    if (nLayout >= 4)
        rRecord.m_nBackground = static_cast<std::uint8_t>(rReader.Number(1));
    if (rReader.HasEnded() || !ReadLists(rReader, nLayout, rRecord))
        return QMT_ERROR_UNEXPECTED_EOF;
    if (nLayout < 6)
        return QMT_SUCCESS;
    const std::size_t nEnd = rReader.Pos();
    const std::uint32_t nStored = rReader.Number();
    if (rReader.HasEnded())
        return QMT_ERROR_UNEXPECTED_EOF;
    const Bytes aChecked(aBlock.begin(), aBlock.begin() + static_cast<std::ptrdiff_t>(nEnd));
    return TestSupport::Crc32(aChecked) == nStored ? QMT_SUCCESS : QMT_ERROR_CURRUPT_DATA;
}

bool IsFinite(const std::vector<StPoint>& aPoints) {
    return std::all_of(aPoints.begin(), aPoints.end(), [](const StPoint& Point) {
        return std::isfinite(Point.x) && std::isfinite(Point.y);
    });
}

bool IsSizeAllowed(const StRecord& Record) {
    return Record.m_nTargetWidth <= 16384 && Record.m_nTargetHeight <= 16384 &&
           std::uint64_t{Record.m_nTargetWidth} * Record.m_nTargetHeight * Record.m_nPlanes * 36 <=
               std::uint64_t{512} << 20;
}

/// The index of a dot of the pattern, or of none.
std::size_t IndexOf(int nColumn, int nRow) {
    if (nColumn > 6 || nRow >= canLengths[nColumn])
        return cnPoints;
    std::size_t nIndex = static_cast<std::size_t>(nRow);
    for (int c = 0; c < nColumn; ++c)
        nIndex += static_cast<std::size_t>(canLengths[c]);
    return nIndex;
}

template <class Visit>
void ForEachDot(Visit visit) {
    for (int c = 0; c < 7; ++c)
        for (int r = 0; r < canLengths[c]; ++r)
            visit(c, r);
}

/// Within 10 pixels of the pattern at the target's resolution, when both begin at one point.
bool IsPattern(const StRecord& Record) {
    const double dPitchX = 2.0 * (Record.m_nTargetPelsX / 39.37) / 25.4;
    const double dPitchY = 2.0 * (Record.m_nTargetPelsY / 39.37) / 25.4;
    const std::vector<StPoint>& aPoints = Record.m_aTarget;
    bool bPattern = true;
    ForEachDot([&](int c, int r) {
        const StPoint& Point = aPoints[IndexOf(c, r)];
        const double dX = static_cast<double>(Point.x) - static_cast<double>(aPoints[0].x);
        const double dY = static_cast<double>(Point.y) - static_cast<double>(aPoints[0].y);
        bPattern &= std::fabs(c * dPitchX - dX) <= 10.0 && std::fabs(r * dPitchY - dY) <= 10.0;
    });
    return bPattern;
}

/// Whether all steps from dot to neighbour along one axis are within 30 percent of their mean.
bool AreStepsAlike(const std::vector<StPoint>& aPoints, bool bDown) {
    std::vector<double> adSteps;
    ForEachDot([&](int c, int r) {
        const std::size_t nNext = bDown ? IndexOf(c, r + 1) : IndexOf(c + 1, r);
        if (nNext == cnPoints)
            return;
        const StPoint& From = aPoints[IndexOf(c, r)];
        const StPoint& To = aPoints[nNext];
        adSteps.push_back(static_cast<double>(bDown ? To.y : To.x) -
                          static_cast<double>(bDown ? From.y : From.x));
    });
    double dSum = 0.0;
    for (const double dStep : adSteps)
        dSum += std::fabs(dStep);
    const double dMean = dSum / static_cast<double>(adSteps.size());
    return std::all_of(adSteps.begin(), adSteps.end(), [&](double dStep) {
        return dStep >= dMean - 0.3 * dMean && dStep <= dMean + 0.3 * dMean;
    });
}

} // namespace

StReadRecord ReadRecord(const Bytes& aBlock) {
    ClBlockReader Reader(aBlock);
    StReadRecord Read{ReadLayout(Reader), {}};
    if (Read.m_nStatus >= 0)
        Read.m_nStatus = ReadContent(Reader, aBlock, Read.m_nStatus, Read.m_Record);
    return Read;
}

bool IsPlausible(const StRecord& Record) {
    const std::uint32_t nLists = std::max(Record.m_nPlanes, 1u);
    if (Record.m_aTarget.size() != cnPoints || !IsFinite(Record.m_aTarget) ||
        !IsSizeAllowed(Record) || !IsPattern(Record))
        return false;
    for (std::uint32_t p = 0; p < nLists; ++p)
        if (Record.m_aActual[p].size() != cnPoints || !IsFinite(Record.m_aActual[p]))
            return false;
    return AreStepsAlike(Record.m_aActual[0], true) && AreStepsAlike(Record.m_aActual[0], false);
}

bool IsReference(const StRecord& Record) {
    return Record.m_aTarget.size() == cnPoints && IsFinite(Record.m_aTarget) &&
           Record.m_nTargetPelsX != 0 && Record.m_nTargetPelsY != 0;
}

bool HasTwinPoints(const StRecord& Record) {
    const std::vector<StPoint>& aPoints = Record.m_aTarget;
    for (std::size_t i = 0; i < aPoints.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (!(aPoints[i].x < aPoints[j].x) && !(aPoints[i].x > aPoints[j].x) &&
                !(aPoints[i].y < aPoints[j].y) && !(aPoints[i].y > aPoints[j].y))
                return true;
    return false;
}

} // namespace Calls
