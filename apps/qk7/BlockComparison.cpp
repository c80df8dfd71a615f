#include "apps/qk7/BlockComparison.h"

#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/ByteReader.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace qk7 {

namespace {

constexpr int cnLayoutToday = 6;
constexpr std::size_t cnPointsAt = 49;     // of a calibration block of that layout
constexpr std::size_t cnTableAt = 28 + 94; // of a precalculated block

std::string Size(const StFrame& Frame) {
    return std::to_string(Frame.m_nWidth) + " x " + std::to_string(Frame.m_nHeight);
}

std::string Pels(const StFrame& Frame) {
    return std::to_string(Frame.m_nPelsX) + " x " + std::to_string(Frame.m_nPelsY);
}

std::string Behind(std::size_t nBytes) {
    return std::to_string(nBytes) + (nBytes == 1 ? " byte stands" : " bytes stand") +
           " behind it, without meaning.";
}

/// Adds a sentence where two values that are told as text differ.
void Expect(StComparison& rComparison, const std::string& What, const std::string& Stored,
            const std::string& Made) {
    if (Stored != Made)
        rComparison.m_aDifferences.push_back("The " + What + " is " + Stored + ", this version " +
                                             "makes " + Made + ".");
}

template <class Info>
void ExpectFrames(StComparison& rComparison, const Info& Stored, const Info& Made) {
    Expect(rComparison, "source size", Size(Stored.m_Source), Size(Made.m_Source));
    Expect(rComparison, "source resolution", Pels(Stored.m_Source), Pels(Made.m_Source));
    Expect(rComparison, "target size", Size(Stored.m_Target), Size(Made.m_Target));
    Expect(rComparison, "target resolution", Pels(Stored.m_Target), Pels(Made.m_Target));
    Expect(rComparison, "number of planes", std::to_string(Stored.m_nPlanes),
           std::to_string(Made.m_nPlanes));
}

struct StPoint {
    float m_fX;
    float m_fY;
};

using Points = std::vector<StPoint>;

/// Target points, then the actual ones of the first plane.
std::pair<Points, Points> PointsOf(const Bytes& Block) {
    ClByteReader reader(Block);
    reader.Take(cnPointsAt, "the head");
    std::pair<Points, Points> lists;
    for (Points* pList : {&lists.first, &lists.second}) {
        const std::uint32_t nCount = reader.Big32("the number of points");
        for (std::uint32_t i = 0; i < nCount; ++i) {
            const float fX = reader.BigFloat("a point");
            pList->push_back({fX, reader.BigFloat("a point")});
        }
    }
    return lists;
}

/// The greatest distance between points of the same number.
void ExpectPoints(StComparison& rComparison, const std::string& Which, const Points& Stored,
                  const Points& Made) {
    Expect(rComparison, "number of " + Which + " points", std::to_string(Stored.size()),
           std::to_string(Made.size()));
    if (Stored.size() != Made.size())
        return;
    std::size_t nMoved = 0;
    std::size_t nFurthest = 0;
    double dFurthest = 0.0;
    for (std::size_t i = 0; i < Stored.size(); ++i) {
        const double dDistance = std::hypot(double{Stored[i].m_fX} - double{Made[i].m_fX},
                                            double{Stored[i].m_fY} - double{Made[i].m_fY});
        nMoved += dDistance > 0.0 ? 1 : 0;
        if (dDistance > dFurthest) {
            dFurthest = dDistance;
            nFurthest = i;
        }
    }
    if (nMoved == 0)
        return;
    char szText[256];
    std::snprintf(szText, sizeof szText,
                  "%zu of %zu %s points lie elsewhere, number %zu furthest: at (%.3f, %.3f), this "
                  "version makes (%.3f, %.3f).",
                  nMoved, Stored.size(), Which.c_str(), nFurthest + 1,
                  double{Stored[nFurthest].m_fX}, double{Stored[nFurthest].m_fY},
                  double{Made[nFurthest].m_fX}, double{Made[nFurthest].m_fY});
    rComparison.m_aDifferences.push_back(szText);
}

/// Where nothing else was found, and the bytes differ all the same.
void ExpectBytes(StComparison& rComparison, const Bytes& Stored, const Bytes& Made) {
    if (!rComparison.m_aDifferences.empty() || Stored == Made)
        return;
    const std::size_t nCommon = std::min(Stored.size(), Made.size());
    const auto first =
        std::mismatch(Stored.begin(), Stored.begin() + static_cast<std::ptrdiff_t>(nCommon),
                      Made.begin())
            .first;
    rComparison.m_aDifferences.push_back("It differs from byte " +
                                         std::to_string(first - Stored.begin()) + " on.");
}

/// The table has an entry for each pixel and plane, planes within pixels, pixels within lines.
void ExpectTable(StComparison& rComparison, const Bytes& Stored, const Bytes& Made,
                 const StPrecalculatedInfo& Info) {
    std::uint64_t nOther = 0;
    std::uint64_t nFirst = 0;
    for (std::uint64_t i = 0; i < Info.m_nEntries; ++i) {
        const auto nAt = static_cast<std::ptrdiff_t>(cnTableAt + i * cnEntrySize);
        if (std::equal(Stored.begin() + nAt, Stored.begin() + nAt + cnEntrySize,
                       Made.begin() + nAt))
            continue;
        nFirst = nOther == 0 ? i : nFirst;
        ++nOther;
    }
    if (nOther == 0)
        return;
    const std::uint64_t nPixel = nFirst / Info.m_nPlanes;
    rComparison.m_aDifferences.push_back(
        std::to_string(nOther) + " of " + std::to_string(Info.m_nEntries) +
        " entries of the table are others, the first at (" +
        std::to_string(nPixel % Info.m_Target.m_nWidth) + ", " +
        std::to_string(nPixel / Info.m_Target.m_nWidth) + ") of the corrected image.");
}

} // namespace

void StComparison::Add(const StComparison& Other) {
    m_aDifferences.insert(m_aDifferences.end(), Other.m_aDifferences.begin(),
                          Other.m_aDifferences.end());
    m_aNotes.insert(m_aNotes.end(), Other.m_aNotes.begin(), Other.m_aNotes.end());
}

StComparison CompareCalibration(const Bytes& Stored, const Bytes& Rewritten) {
    const StCalibrationInfo info = ReadCalibrationInfo(Stored);
    StComparison comparison;
    if (info.m_nBytesBehind > 0)
        comparison.m_aNotes.push_back(Behind(info.m_nBytesBehind));
    if (info.m_nLayout < cnLayoutToday) {
        comparison.m_aNotes.push_back("Its layout is " + std::to_string(info.m_nLayout) +
                                      ", this version writes " + std::to_string(cnLayoutToday) +
                                      " and reads both.");
        return comparison;
    }
    const Bytes record(Stored.begin(),
                       Stored.end() - static_cast<std::ptrdiff_t>(info.m_nBytesBehind));
    ExpectBytes(comparison, record, Rewritten);
    return comparison;
}

StComparison CompareRecords(const Bytes& Stored, const Bytes& Generated) {
    StComparison comparison;
    ExpectFrames(comparison, ReadCalibrationInfo(Stored), ReadCalibrationInfo(Generated));
    const auto [storedTarget, storedActual] = PointsOf(Stored);
    const auto [madeTarget, madeActual] = PointsOf(Generated);
    ExpectPoints(comparison, "target", storedTarget, madeTarget);
    ExpectPoints(comparison, "actual", storedActual, madeActual);
    ExpectBytes(comparison, Stored, Generated);
    return comparison;
}

StComparison ComparePrecalculated(const Bytes& Stored, const Bytes& Made) {
    const StPrecalculatedInfo stored = ReadPrecalculatedInfo(Stored);
    const StPrecalculatedInfo made = ReadPrecalculatedInfo(Made);
    StComparison comparison;
    if (stored.m_Hash != made.m_Hash)
        comparison.m_aDifferences.push_back(
            "It belongs to another calibration block: its hash is " + stored.m_Hash +
            ", the block given has " + made.m_Hash + ".");
    ExpectFrames(comparison, stored, made);
    Expect(comparison, "background", std::to_string(stored.m_nBackground),
           std::to_string(made.m_nBackground));
    if (stored.m_nEntries == made.m_nEntries && stored.m_Target.m_nWidth == made.m_Target.m_nWidth)
        ExpectTable(comparison, Stored, Made, stored);
    if (stored.m_nBytesBehind > 0)
        comparison.m_aNotes.push_back(Behind(stored.m_nBytesBehind));
    ExpectBytes(
        comparison,
        Bytes(Stored.begin(), Stored.end() - static_cast<std::ptrdiff_t>(stored.m_nBytesBehind)),
        Made);
    return comparison;
}

} // namespace qk7
