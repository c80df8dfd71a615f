// The precalculated record of `ClIpCalibrateGeometricBase`. Its inner part has the shape of the
// raw image format: the table is kept as an image whose pixel is one table entry. Loading trusts
// nothing: the record comes from wherever the application kept it.

#include "Calibrate/IpCalibrateGeometricBase.h"

#include "Calibrate/BlockTags.h"
#include "Tools/Allocate.h"
#include "Tools/CallTrace.h"
#include "Tools/FpImage.h"
#include "Tools/RawImage.h"
#include "Tools/Stream.h"

#include <cstring>
#include <utility>

namespace {

constexpr char cacType[4] = {'P', 'R', 'E', 0};
constexpr char cacSubType[4] = {'G', 'E', 'O', 0};
constexpr char cacVersion[4] = {'0', '0', '1', 0};

constexpr std::uint32_t cnImageVersion = 1;
constexpr std::uint8_t cnImageType = ClImage::eUInt8;
constexpr std::uint32_t cnContent = ClImage::eUnknown;

[[noreturn]] void ThrowSignature(const char* szText, long nLine) {
    throw ClException(szText, QMT_ERROR_UNEXPECTED_SIGNATURE, true, VEK_FILE, nLine);
}

[[noreturn]] void ThrowCorrupt(const char* szText, long nLine) {
    throw ClException(szText, QMT_ERROR_CURRUPT_DATA, true, VEK_FILE, nLine);
}

/// Reads one number. A record that ends before its end magic answers as one without it.
template <class T>
T ReadNumber(ClStream& rStream) {
    T nValue{};
    if (rStream.ReadAutoSwap(nValue) < sizeof(T))
        ThrowSignature("KPF end Magic is missing", __LINE__);
    return nValue;
}

void CheckTags(ClStream& rStream) {
    if (!BlockTags::StTag(rStream).Is(cacType))
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
    if (!BlockTags::StTag(rStream).Is(cacSubType))
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
    if (BlockTags::StTag(rStream).Number() != 1)
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
}

void ReadNumbers(ClStream& rStream, StWarp& rWarp) {
    rWarp.m_nSourceWidth = ReadNumber<std::uint32_t>(rStream);
    rWarp.m_nSourceHeight = ReadNumber<std::uint32_t>(rStream);
    rWarp.m_nTargetWidth = ReadNumber<std::uint32_t>(rStream);
    rWarp.m_nTargetHeight = ReadNumber<std::uint32_t>(rStream);
    rWarp.m_nTargetPelsX = ReadNumber<std::uint32_t>(rStream);
    rWarp.m_nTargetPelsY = ReadNumber<std::uint32_t>(rStream);
    rWarp.m_nPlanes = ReadNumber<std::uint32_t>(rStream);
    if (rWarp.m_nPlanes == 0) // written while there was no table
        throw ClExTessarin(QMT_ERROR_UNEXPECTED_SIGNATURE, VEK_HERE);
    if (rWarp.m_nPlanes > ClCalibrateGeometricData::cnMaxPlanes)
        ThrowCorrupt("m_nPlanes is not the expected.", __LINE__);
    rWarp.m_nBackground = ReadNumber<std::uint8_t>(rStream);
}

bool IsWidthRight(const StWarp& Loaded, std::uint32_t nImageWidth) {
    return nImageWidth == Loaded.m_nTargetWidth && nImageWidth <= Warp::cnMaxTargetSide &&
           nImageWidth != 0 && Loaded.m_nSourceWidth != 0;
}

bool IsHeightRight(const StWarp& Loaded, std::uint32_t nImageHeight) {
    return nImageHeight == Loaded.m_nTargetHeight &&
           Warp::IsSizeAllowed(Loaded.m_nTargetWidth, nImageHeight, Loaded.m_nPlanes) &&
           nImageHeight != 0 && Loaded.m_nSourceHeight != 0;
}

void ReadImageHeader(ClStream& rStream, StWarp& rWarp) {
    std::uint32_t nMagic = 0;
    rStream.ReadAutoSwap(nMagic);
    if (nMagic != RawImage::cnMagic)
        ThrowSignature("KPF Magic is missing", __LINE__);
    if (ReadNumber<std::uint32_t>(rStream) >= 2)
        ThrowSignature("Wrong KPF version", __LINE__);
    if (ReadNumber<std::uint8_t>(rStream) != cnImageType)
        ThrowCorrupt("nDataType is not the expected.", __LINE__);
    if (!IsWidthRight(rWarp, ReadNumber<std::uint32_t>(rStream)))
        ThrowCorrupt("m_nTargetWidth is not the expected.", __LINE__);
    if (!IsHeightRight(rWarp, ReadNumber<std::uint32_t>(rStream)))
        ThrowCorrupt("m_nTargetHeight is not the expected.", __LINE__);
    if (ReadNumber<std::uint32_t>(rStream) != rWarp.m_nPlanes * Warp::cnEntrySize)
        ThrowCorrupt("m_nEntrySize is not the expected.", __LINE__);
    rWarp.m_nEntrySize = Warp::cnEntrySize;
    if (ReadNumber<std::uint32_t>(rStream) != rWarp.m_nTargetPelsX)
        ThrowCorrupt("m_nTargetPelsX is not the expected.", __LINE__);
    if (ReadNumber<std::uint32_t>(rStream) != rWarp.m_nTargetPelsY)
        ThrowCorrupt("m_nTargetPelsY is not the expected.", __LINE__);
    if (ReadNumber<std::uint32_t>(rStream) != cnContent)
        ThrowCorrupt("eContent is not the expected.", __LINE__);
    ReadNumber<double>(rStream); // range and attribute of an image: a table has none
    ReadNumber<double>(rStream);
    ReadNumber<std::uint32_t>(rStream);
}

/// Tests offsets that stand in the order of a table. One often lies in the line of the one before,
/// where no division is needed to tell.
class ClOffsetCheck {
public:
    explicit ClOffsetCheck(const StWarp& Loaded)
        : m_nWidth(Loaded.m_nSourceWidth), m_nHeight(Loaded.m_nSourceHeight) {}

    bool IsRight(std::int32_t nOffset) {
        const std::int64_t nColumn = nOffset - m_nLine;
        return nOffset == Warp::cnNoSource || (nColumn >= 0 && nColumn < m_nColumns) ||
               IsInAnotherLine(nOffset);
    }

private:
    bool IsInAnotherLine(std::int32_t nOffset) {
        if (!Warp::IsOffsetInside(nOffset, m_nWidth, m_nHeight))
            return false;
        m_nLine = nOffset - nOffset % static_cast<std::int64_t>(Warp::LineStride(m_nWidth));
        m_nColumns = std::int64_t{m_nWidth} - 3;
        return true;
    }

    std::uint32_t m_nWidth;
    std::uint32_t m_nHeight;
    std::int64_t m_nLine = 0;    ///< offset of the first column of the line found last
    std::int64_t m_nColumns = 0; ///< of that line, from which 4 samples begin; 0 before any
};

bool AreOffsetsRight(const unsigned char* pEntries, std::uint64_t nBytes, unsigned long nEntrySize,
                     ClOffsetCheck& rCheck) {
    for (std::uint64_t nEntry = 0; nEntry < nBytes; nEntry += nEntrySize) {
        std::int32_t nOffset = 0;
        std::memcpy(&nOffset, pEntries + nEntry, sizeof nOffset);
        if (!rCheck.IsRight(nOffset))
            return false;
    }
    return true;
}

/// Copies the table, and answers whether all its offsets are right: each line is looked at while
/// the copying has it at hand.
bool CopyTable(ClStream& rStream, StWarp& rWarp) {
    const std::uint64_t nLineBytes = rWarp.TableBytes() / rWarp.m_nTargetHeight;
    ClOffsetCheck check(rWarp);
    bool bRight = true;
    unsigned char* pLine = rWarp.m_pTable.get();
    for (std::uint32_t y = 0; y < rWarp.m_nTargetHeight; ++y, pLine += nLineBytes) {
        rStream.Read(pLine, nLineBytes);
        bRight = bRight && AreOffsetsRight(pLine, nLineBytes, rWarp.m_nEntrySize, check);
    }
    return bRight;
}

void ReadTable(ClStream& rStream, StWarp& rWarp) {
    const std::uint64_t nBytes = rWarp.TableBytes();
    const unsigned long nPos = rStream.Pos();
    const unsigned long nSize = rStream.Size();
    if (nPos > nSize || nSize - nPos < nBytes + sizeof RawImage::cnMagic)
        ThrowSignature("KPF end Magic is missing", __LINE__);
    rWarp.m_pTable = Vek::NewArrayPtr<unsigned char>(nBytes);
    const bool bRight = CopyTable(rStream, rWarp);
    if (ReadNumber<std::uint32_t>(rStream) != RawImage::cnMagic)
        ThrowSignature("KPF end Magic is missing", __LINE__);
    if (!bRight)
        throw ClExTessarin(QMT_ERROR_CURRUPT_DATA, VEK_HERE);
}

} // namespace

void ClIpCalibrateGeometricBase::Store(ClStream& rStream) const {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBase::Store()");
    rStream.Write(cacType, sizeof cacType);
    rStream.Write(cacSubType, sizeof cacSubType);
    rStream.Write(cacVersion, sizeof cacVersion);
    for (const std::uint32_t nNumber : {m_nSourceWidth, m_nSourceHeight, m_nTargetWidth,
                                        m_nTargetHeight, m_nTargetPelsX, m_nTargetPelsY, m_nPlanes})
        rStream.WriteAutoSwap(nNumber);
    rStream.WriteAutoSwap(m_nBackground);

    rStream.WriteAutoSwap(RawImage::cnMagic);
    rStream.WriteAutoSwap(cnImageVersion);
    rStream.WriteAutoSwap(cnImageType);
    rStream.WriteAutoSwap(m_nTargetWidth);
    rStream.WriteAutoSwap(m_nTargetHeight);
    rStream.WriteAutoSwap(static_cast<std::uint32_t>(m_nPlanes * m_nEntrySize));
    rStream.WriteAutoSwap(m_nTargetPelsX);
    rStream.WriteAutoSwap(m_nTargetPelsY);
    rStream.WriteAutoSwap(cnContent);
    rStream.WriteAutoSwap(0.0);
    rStream.WriteAutoSwap(255.0);
    rStream.WriteAutoSwap(std::uint32_t{0});
    if (m_pTable != nullptr)
        rStream.Write(m_pTable.get(), TableBytes());
    rStream.WriteAutoSwap(RawImage::cnMagic);
}

void ClIpCalibrateGeometricBase::Load(ClStream& rStream) {
    const Vek::ClCallTrace Trace("ClIpCalibrateGeometricBase::Load()");
    CheckTags(rStream);
    Drop(); // two tables would not fit into every device
    StWarp Loaded;
    ReadNumbers(rStream, Loaded);
    ReadImageHeader(rStream, Loaded);
    ReadTable(rStream, Loaded);
    static_cast<StWarp&>(*this) = std::move(Loaded);
}
