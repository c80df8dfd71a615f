#include "ByteOrder.h"
#include "Formats.h"
#include "Harness.h"

#include "Tools/CRC32.h"
#include "Tools/MD5.h"

#include <cmath>

namespace Fuzz {

namespace {

constexpr std::size_t cnPoints = 75;
constexpr std::size_t cnListBytes = 4 + 8 * cnPoints;
constexpr std::size_t cnNewestHead = 49;

/// Where the fields of a layout stand; 0 for those that it lacks.
struct StLayout {
    explicit StLayout(int nNumber) : m_nNumber(nNumber) {
        std::size_t nNext = 20 + (nNumber >= 5 ? 8 : 0);
        m_nTargetSides = nNext;
        nNext += 8 + (nNumber >= 2 ? 8 : 0);
        if (nNumber >= 3) {
            m_nPlanes = nNext;
            nNext += 4;
        }
        m_nHead = nNext + (nNumber >= 4 ? 1 : 0);
    }

    int m_nNumber;
    std::size_t m_nTargetSides = 0;
    std::size_t m_nPlanes = 0;
    std::size_t m_nHead = 0;
};

std::string Tag(const std::string& Text) {
    return Text + '\0';
}

float Float(std::uint32_t nBits) {
    float fValue = 0;
    std::memcpy(&fValue, &nBits, sizeof fValue);
    return fValue;
}

bool IsPlausible(const std::string& Bytes, std::size_t nAt) {
    const float fValue = Float(Big<std::uint32_t>(Bytes, nAt));
    return std::isfinite(fValue) && std::fabs(fValue) < 1e6F;
}

/// The list of good points that stands at this place.
std::string GoodList(bool bTarget) {
    static const std::string Good = SmallScanner(64);
    return Good.substr(cnNewestHead + (bTarget ? 0 : cnListBytes), cnListBytes);
}

void RepairList(std::string& rBytes, std::size_t nAt, bool bTarget, ClRandom& rRandom) {
    const std::string Good = GoodList(bTarget);
    if (rBytes.size() < nAt + cnListBytes)
        rBytes += Good.substr(rBytes.size() > nAt ? rBytes.size() - nAt : 0);
    if (!rRandom.OneIn(32))
        PutBig<std::uint32_t>(rBytes, nAt, cnPoints);
    for (std::size_t i = 4; i < cnListBytes; i += 4)
        if (!IsPlausible(rBytes, nAt + i) && !rRandom.OneIn(256))
            PutBig(rBytes, nAt + i, Big<std::uint32_t>(Good, i));
    if (rRandom.OneIn(8)) // shifted bytes are plausible now and then, and never good
        rBytes.replace(nAt, cnListBytes, Good);
}

void RepairTags(std::string& rBytes, ClRandom& rRandom) {
    if (rRandom.OneIn(32))
        return;
    const bool bDigit = rBytes[10] >= '0' && rBytes[10] <= '6';
    const char nDigit = bDigit ? rBytes[10] : '6';
    rBytes.replace(0, 12, Tag("CAL") + Tag("GEO") + Tag("00" + std::string(1, nDigit)));
}

/// Corrected images of many pixels take long and show nothing new.
void RepairSide(std::string& rBytes, std::size_t nAt, ClRandom& rRandom) {
    const auto nSide = Big<std::uint32_t>(rBytes, nAt);
    if ((nSide == 0 || nSide > 96) && !rRandom.OneIn(64))
        PutBig<std::uint32_t>(rBytes, nAt, 1 + nSide % 96);
}

std::uint32_t RepairPlanes(std::string& rBytes, const StLayout& Layout) {
    if (Layout.m_nPlanes == 0)
        return 1;
    const auto nPlanes = Big<std::uint32_t>(rBytes, Layout.m_nPlanes);
    const std::uint32_t nRight = nPlanes >= 1 && nPlanes <= 3 ? nPlanes : 1;
    PutBig(rBytes, Layout.m_nPlanes, nRight);
    return nRight;
}

void AppendChecksum(std::string& rBytes) {
    const std::uint32_t nChecksum =
        ClCRC32().Get_CRC(reinterpret_cast<unsigned char*>(rBytes.data()), rBytes.size());
    rBytes.resize(rBytes.size() + 4);
    PutBig(rBytes, rBytes.size() - 4, nChecksum);
}

void AppendLittle(std::string& rBytes, std::uint32_t nValue) {
    rBytes.resize(rBytes.size() + 4);
    PutLittle(rBytes, rBytes.size() - 4, nValue);
}

/// What the digest of a record of the newest layout is formed over.
std::string DigestInput(const std::string& Record) {
    std::string Input;
    for (std::size_t nAt = 12; nAt < 48; nAt += 4)
        AppendLittle(Input, Big<std::uint32_t>(Record, nAt));
    Input += Record[48];
    const std::size_t nLists = 1 + Big<std::uint32_t>(Record, 44);
    for (std::size_t nPoint = 0; nPoint < cnPoints; ++nPoint)
        for (std::size_t nList = 0; nList < nLists; ++nList)
            for (std::size_t nAxis = 0; nAxis < 2; ++nAxis)
                AppendLittle(Input, Big<std::uint32_t>(Record, cnNewestHead + nList * cnListBytes +
                                                                   4 + 8 * nPoint + 4 * nAxis));
    return Input;
}

std::string Digest(const std::string& Record) {
    const std::string Input = DigestInput(Record);
    unsigned char acDigest[16] = {};
    ClMD5::Make(reinterpret_cast<const unsigned char*>(Input.data()), Input.size(), acDigest);
    return {reinterpret_cast<const char*>(acDigest), sizeof acDigest};
}

} // namespace

void RepairRecord(std::string& rBytes, ClRandom& rRandom) {
    if (rBytes.size() < cnNewestHead)
        rBytes += SmallScanner(64).substr(rBytes.size(), cnNewestHead - rBytes.size());
    RepairTags(rBytes, rRandom);
    const bool bDigit = rBytes[10] >= '0' && rBytes[10] <= '6';
    const StLayout Layout(bDigit ? rBytes[10] - '0' : 6);
    RepairSide(rBytes, Layout.m_nTargetSides, rRandom);
    RepairSide(rBytes, Layout.m_nTargetSides + 4, rRandom);
    const std::uint32_t nPlanes = RepairPlanes(rBytes, Layout);
    const bool bTargetFirst = Layout.m_nNumber >= 3;
    std::size_t nAt = Layout.m_nHead;
    for (std::uint32_t nList = 0; nList <= nPlanes; ++nList, nAt += cnListBytes)
        RepairList(rBytes, nAt, bTargetFirst ? nList == 0 : nList == nPlanes, rRandom);
    rBytes.resize(nAt);
    if (Layout.m_nNumber >= 6)
        AppendChecksum(rBytes);
}

void RepairPair(std::string& rBytes, ClRandom& rRandom) {
    rBytes.resize(std::max<std::size_t>(rBytes.size(), 2));
    const std::size_t nRecord = Little<std::uint16_t>(rBytes, 0);
    std::string Record = rBytes.substr(2, nRecord);
    std::string Table = rBytes.size() > 2 + nRecord + 28 ? rBytes.substr(2 + nRecord + 28) : "";
    Record.resize(std::max<std::size_t>(Record.size(), 12));
    Record[10] = '6';
    for (const std::size_t nAt : {12U, 16U}) // as the table that RepairTable() makes
        if (!rRandom.OneIn(16))
            PutBig<std::uint32_t>(Record, nAt, 64);
    RepairRecord(Record, rRandom);
    RepairTable(Table, rRandom);
    rBytes.assign(2, '\0');
    PutLittle(rBytes, 0, static_cast<std::uint16_t>(Record.size()));
    rBytes += Record + Tag("CAL") + Tag("PRE") + Tag("001") + Digest(Record) + Table;
}

} // namespace Fuzz
