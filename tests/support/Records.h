#pragma once

/// Calibration records for tests, put together byte by byte without the class under test. A
/// coordinate is a 32-bit float here as it is in a stream, so that a record is the same before
/// and after one.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace TestSupport {

using Bytes = std::vector<unsigned char>;

struct StPoint {
    float x;
    float y;
};

/// The content of a record, in the order in which layout 6 stores it.
struct StRecord {
    std::uint32_t m_nSourceWidth = 0;
    std::uint32_t m_nSourceHeight = 0;
    std::uint32_t m_nSourcePelsX = 0;
    std::uint32_t m_nSourcePelsY = 0;
    std::uint32_t m_nTargetWidth = 0;
    std::uint32_t m_nTargetHeight = 0;
    std::uint32_t m_nTargetPelsX = 0;
    std::uint32_t m_nTargetPelsY = 0;
    std::uint32_t m_nPlanes = 1;
    std::uint8_t m_nBackground = 0;
    std::vector<StPoint> m_aTarget;
    std::vector<StPoint> m_aActual[3];
};

/// The dot pattern, 7 columns 2 mm apart, in the middle of a target of this size, and a capture
/// of `nSourceWidth` x `nSourceHeight` pixels over the same plate, slightly bent.
inline StRecord PlausibleRecord(std::uint32_t nSourceWidth = 48, std::uint32_t nSourceHeight = 132,
                                std::uint32_t nTargetWidth = 40, std::uint32_t nTargetHeight = 60,
                                std::uint32_t nTargetPels = 2461) {
    StRecord Record;
    Record.m_nSourceWidth = nSourceWidth;
    Record.m_nSourceHeight = nSourceHeight;
    Record.m_nSourcePelsX = 2425;
    Record.m_nSourcePelsY = 4967;
    Record.m_nTargetWidth = nTargetWidth;
    Record.m_nTargetHeight = nTargetHeight;
    Record.m_nTargetPelsX = Record.m_nTargetPelsY = nTargetPels;
    Record.m_nBackground = 255;
    const int anLengths[] = {10, 11, 11, 11, 11, 11, 10};
    const double dPitch = 0.002 * nTargetPels;
    for (int nColumn = 0; nColumn < 7; ++nColumn)
        for (int nRow = 0; nRow < anLengths[nColumn]; ++nRow) {
            const double x = 0.5 * nTargetWidth + (nColumn - 3) * dPitch;
            const double y = 0.5 * nTargetHeight + (nRow - 5) * dPitch;
            const double u = x / nTargetWidth;
            const double v = y / nTargetHeight;
            Record.m_aTarget.push_back({static_cast<float>(x), static_cast<float>(y)});
            Record.m_aActual[0].push_back(
                {static_cast<float>(nSourceWidth * (u + 0.02 * std::sin(3.0 * v))),
                 static_cast<float>(nSourceHeight * (v + 0.01 * u * u))});
        }
    return Record;
}

// Bytes

inline void AppendBig(Bytes& aTo, std::uint32_t nValue) {
    for (int nShift = 24; nShift >= 0; nShift -= 8)
        aTo.push_back(static_cast<unsigned char>(nValue >> nShift));
}

inline void AppendBig(Bytes& aTo, float fValue) {
    std::uint32_t nBits = 0;
    std::memcpy(&nBits, &fValue, sizeof nBits);
    AppendBig(aTo, nBits);
}

inline void AppendTag(Bytes& aTo, const std::string& Tag) {
    for (std::size_t i = 0; i < 4; ++i)
        aTo.push_back(i < Tag.size() ? static_cast<unsigned char>(Tag[i]) : 0);
}

inline void AppendPoints(Bytes& aTo, const std::vector<StPoint>& aPoints) {
    AppendBig(aTo, static_cast<std::uint32_t>(aPoints.size()));
    for (const StPoint& Point : aPoints) {
        AppendBig(aTo, Point.x);
        AppendBig(aTo, Point.y);
    }
}

/// The polynomial 0x04C11DB7, the highest bit first, from all ones, inverted at the end.
inline std::uint32_t Crc32(const Bytes& aBytes) {
    std::uint32_t nRest = 0xFFFFFFFF;
    for (const unsigned char nByte : aBytes)
        for (int nBit = 7; nBit >= 0; --nBit) {
            const std::uint32_t nOut = (nRest >> 31) ^ ((nByte >> nBit) & 1u);
            nRest = (nRest << 1) ^ (nOut * 0x04C11DB7u);
        }
    return ~nRest;
}

/// Makes the last 4 bytes of a block the checksum of those in front of them.
inline void RenewCrc(Bytes& aBlock) {
    aBlock.resize(aBlock.size() - 4);
    AppendBig(aBlock, Crc32(aBlock));
}

/// The block of a record in one of the layouts 0 to 6, under the tags told.
inline Bytes RecordBlock(const StRecord& Record, int nLayout = 6, const std::string& Version = "",
                         const std::string& Type = "CAL", const std::string& SubType = "GEO") {
    Bytes aBlock;
    AppendTag(aBlock, Type);
    AppendTag(aBlock, SubType);
    AppendTag(aBlock, Version.empty() ? "00" + std::to_string(nLayout) : Version);
    AppendBig(aBlock, Record.m_nSourceWidth);
    AppendBig(aBlock, Record.m_nSourceHeight);
    if (nLayout >= 5) {
        AppendBig(aBlock, Record.m_nSourcePelsX);
        AppendBig(aBlock, Record.m_nSourcePelsY);
    }
    AppendBig(aBlock, Record.m_nTargetWidth);
    AppendBig(aBlock, Record.m_nTargetHeight);
    if (nLayout >= 2) {
        AppendBig(aBlock, Record.m_nTargetPelsX);
        AppendBig(aBlock, Record.m_nTargetPelsY);
    }
    if (nLayout >= 3)
        AppendBig(aBlock, Record.m_nPlanes);
    if (nLayout >= 4)
        aBlock.push_back(Record.m_nBackground);
    if (nLayout < 3)
        AppendPoints(aBlock, Record.m_aActual[0]);
    AppendPoints(aBlock, Record.m_aTarget);
    if (nLayout >= 3)
        for (std::uint32_t p = 0; p < std::min(Record.m_nPlanes, 3u); ++p)
            AppendPoints(aBlock, Record.m_aActual[p]);
    if (nLayout >= 6)
        AppendBig(aBlock, Crc32(aBlock));
    return aBlock;
}

// Objects

template <class List>
void FillPoints(const std::vector<StPoint>& aPoints, List& rList) {
    rList.SetEntries(aPoints.size());
    for (unsigned long i = 0; i < aPoints.size(); ++i) {
        rList[i].x = static_cast<double>(aPoints[i].x);
        rList[i].y = static_cast<double>(aPoints[i].y);
    }
}

/// Gives a `ClCalibrateGeometricData` this content.
template <class Data>
void Fill(const StRecord& Record, Data& rData) {
    rData.m_nSourceWidth = Record.m_nSourceWidth;
    rData.m_nSourceHeight = Record.m_nSourceHeight;
    rData.m_nSourcePelsX = Record.m_nSourcePelsX;
    rData.m_nSourcePelsY = Record.m_nSourcePelsY;
    rData.m_nTargetWidth = Record.m_nTargetWidth;
    rData.m_nTargetHeight = Record.m_nTargetHeight;
    rData.m_nTargetPelsX = Record.m_nTargetPelsX;
    rData.m_nTargetPelsY = Record.m_nTargetPelsY;
    rData.m_nPlanes = Record.m_nPlanes;
    rData.m_nBackground = Record.m_nBackground;
    FillPoints(Record.m_aTarget, rData.m_aTarget);
    for (int p = 0; p < 3; ++p)
        FillPoints(Record.m_aActual[p], rData.m_aActual[p]);
}

} // namespace TestSupport
