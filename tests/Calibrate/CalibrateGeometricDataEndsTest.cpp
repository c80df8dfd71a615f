// What a record holds after a stream has ended too early, and what of a stream is read at all.

#include "Calibrate/CalibrateGeometricData.h"

#include "support/Records.h"
#include "support/TestStreams.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <string>

#include <sys/mman.h>
#include <unistd.h>

using TestSupport::Bytes;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;
using TestSupport::StPoint;
using TestSupport::StRecord;

namespace {

/// The content of a record, to be compared whole.
struct StState {
    std::vector<std::uint32_t> m_anNumbers;
    std::vector<std::vector<double>> m_aLists; ///< target, then the actual lists
    std::string m_Version;
};

bool operator==(const StState& A, const StState& B) {
    return A.m_anNumbers == B.m_anNumbers && A.m_aLists == B.m_aLists && A.m_Version == B.m_Version;
}

std::ostream& operator<<(std::ostream& rTo, const StState& State) {
    rTo << State.m_Version << ':';
    for (const std::uint32_t n : State.m_anNumbers)
        rTo << ' ' << n;
    for (const auto& aList : State.m_aLists)
        rTo << ", " << aList.size() / 2 << " points";
    return rTo;
}

template <class List>
std::vector<double> Coordinates(const List& Points) {
    std::vector<double> adAll;
    for (unsigned long i = 0; i < Points.Entries(); ++i) {
        adAll.push_back(Points[i].x);
        adAll.push_back(Points[i].y);
    }
    return adAll;
}

std::vector<double> Coordinates(const std::vector<StPoint>& aPoints) {
    std::vector<double> adAll;
    for (const StPoint& Point : aPoints) {
        adAll.push_back(static_cast<double>(Point.x));
        adAll.push_back(static_cast<double>(Point.y));
    }
    return adAll;
}

StState StateOf(const ClCalibrateGeometricData& Data) {
    return {{Data.m_nSourceWidth, Data.m_nSourceHeight, Data.m_nSourcePelsX, Data.m_nSourcePelsY,
             Data.m_nTargetWidth, Data.m_nTargetHeight, Data.m_nTargetPelsX, Data.m_nTargetPelsY,
             Data.m_nPlanes, Data.m_nBackground},
            {Coordinates(Data.m_aTarget), Coordinates(Data.m_aActual[0]),
             Coordinates(Data.m_aActual[1]), Coordinates(Data.m_aActual[2])},
            std::string(Data.ReadVersion(), 4)};
}

StState StateOf(const StRecord& Record, const std::string& Version) {
    return {{Record.m_nSourceWidth, Record.m_nSourceHeight, Record.m_nSourcePelsX,
             Record.m_nSourcePelsY, Record.m_nTargetWidth, Record.m_nTargetHeight,
             Record.m_nTargetPelsX, Record.m_nTargetPelsY, Record.m_nPlanes, Record.m_nBackground},
            {Coordinates(Record.m_aTarget), Coordinates(Record.m_aActual[0]),
             Coordinates(Record.m_aActual[1]), Coordinates(Record.m_aActual[2])},
            Version};
}

/// The record that stands before: it has nothing in common with the one that is read.
StRecord Former() {
    StRecord Record;
    Record.m_nSourceWidth = 901;
    Record.m_nSourceHeight = 902;
    Record.m_nSourcePelsX = 903;
    Record.m_nSourcePelsY = 904;
    Record.m_nTargetWidth = 905;
    Record.m_nTargetHeight = 906;
    Record.m_nTargetPelsX = 907;
    Record.m_nTargetPelsY = 908;
    Record.m_nPlanes = 2;
    Record.m_nBackground = 77;
    Record.m_aTarget = {{-1, -2}, {-3, -4}};
    Record.m_aActual[0] = {{-5, -6}};
    Record.m_aActual[1] = {{-7, -8}, {-9, -10}};
    return Record;
}

StRecord Newer() {
    StRecord Record = PlausibleRecord();
    Record.m_nTargetPelsY = 2462;
    Record.m_aTarget.resize(5);
    Record.m_aActual[0].resize(4);
    Record.m_aActual[1] = {{1.5f, 2.5f}, {3.5f, 4.5f}, {5.5f, 6.5f}};
    Record.m_nPlanes = 2;
    return Record;
}

/// What reading the first `nSize` bytes of a block leaves, told field by field in the order of the
/// stream: a field whose bytes are there is new, one that the layout lacks gets its default when
/// its turn comes, and where the bytes end everything stays as it was.
class ClExpectation {
public:
    ClExpectation(int nLayout, unsigned long nSize)
        : m_nSize(nSize), m_State(StateOf(Former(), std::string("006\0", 4))),
          m_New(StateOf(Newer(), "")) {
        Pass(8);
        if (Pass(4))
            m_State.m_Version = std::string("00") + std::to_string(nLayout) + '\0';
        const int anSince[] = {0, 0, 5, 5, 0, 0, 2, 2, 3};
        const std::uint32_t anDefaults[] = {0, 0, 0, 0, 0, 0, 19685, 19685, 1};
        for (std::size_t i = 0; i < 9; ++i)
            Number(i, nLayout >= anSince[i], anDefaults[i]);
        if (nLayout >= 4 && Pass(1))
            m_State.m_anNumbers[9] = m_New.m_anNumbers[9];
        if (nLayout < 3)
            List(1);
        List(0);
        if (nLayout >= 3) {
            List(1);
            List(2);
        }
    }

    const StState& State() const { return m_State; }

private:
    /// Whether the next bytes are there; behind missing ones none is.
    bool Pass(unsigned long nBytes) {
        m_nPos += nBytes;
        m_bGone = m_bGone || m_nPos > m_nSize;
        return !m_bGone;
    }
    void Number(std::size_t i, bool bStored, std::uint32_t nDefault) {
        if (bStored && Pass(4))
            m_State.m_anNumbers[i] = m_New.m_anNumbers[i];
        if (!bStored && !m_bGone)
            m_State.m_anNumbers[i] = nDefault;
    }
    void List(std::size_t i) {
        if (Pass(4 + m_New.m_aLists[i].size() * 4))
            m_State.m_aLists[i] = m_New.m_aLists[i];
    }

    unsigned long m_nSize;
    StState m_State;
    StState m_New;
    unsigned long m_nPos = 0;
    bool m_bGone = false;
};

/// A record of layout 6 that stands before.
ClCalibrateGeometricData FormerData() {
    const Bytes aBlock = RecordBlock(Former());
    ClMemStream Stream(aBlock.data(), aBlock.size());
    ClCalibrateGeometricData Data;
    static_cast<ClCalibrateDataBase&>(Data).Read(Stream);
    return Data;
}

/// Counts the bytes that are read.
class ClCountingStream : public ClMemStream {
public:
    using ClMemStream::ClMemStream;
    unsigned long ReadRaw(void* pData, unsigned long nSize) override {
        const unsigned long nRead = ClMemStream::ReadRaw(pData, nSize);
        m_nRead += nRead;
        return nRead;
    }

    unsigned long m_nRead = 0;
};

/// A block in front of two gibibytes that are mapped and cannot be read.
class ClVastBlock {
public:
    explicit ClVastBlock(const Bytes& aBlock) {
        const auto nPage = static_cast<unsigned long>(sysconf(_SC_PAGESIZE));
        const unsigned long nBody = (aBlock.size() + nPage - 1) / nPage * nPage;
        m_pMapped =
            mmap(nullptr, Size(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (m_pMapped == MAP_FAILED || mprotect(m_pMapped, nBody, PROT_READ | PROT_WRITE) != 0)
            throw std::runtime_error("no address space for a test");
        std::copy(aBlock.begin(), aBlock.end(), static_cast<unsigned char*>(m_pMapped));
    }
    ClVastBlock(const ClVastBlock&) = delete;
    ClVastBlock& operator=(const ClVastBlock&) = delete;
    ~ClVastBlock() { munmap(m_pMapped, Size()); }

    const unsigned char* Data() const { return static_cast<const unsigned char*>(m_pMapped); }
    static unsigned long Size() { return 1UL << 31; }

private:
    void* m_pMapped;
};

} // namespace

TEST(CalibrateGeometricDataEnds, AFieldChangesOnlyWhenItsBytesWereThere) {
    for (int nLayout = 0; nLayout <= 6; ++nLayout) {
        StRecord Record = Newer();
        const Bytes aBlock = RecordBlock(Record, nLayout);
        for (unsigned long nSize = 0; nSize < aBlock.size(); ++nSize) {
            ClCalibrateGeometricData Data = FormerData();
            ClMemStream Stream(aBlock.data(), nSize);
            EXPECT_THROWS(static_cast<ClCalibrateDataBase&>(Data).Read(Stream),
                          ClExStreamUnexpectedEnd, -201, "Unexpected end of stream");
            ASSERT_EQ(StateOf(Data), ClExpectation(nLayout, nSize).State())
                << "layout " << nLayout << ", " << nSize << " bytes";
        }
    }
}

TEST(CalibrateGeometricDataEnds, AFieldOfAStreamThatIsNotStrictStaysAsWell) {
    for (int nLayout = 0; nLayout <= 5; ++nLayout) {
        const Bytes aBlock = RecordBlock(Newer(), nLayout);
        const unsigned long nLists = aBlock.size() - (nLayout < 3 ? 80 : 108); // their first count
        for (unsigned long nSize = 12; nSize < nLists; ++nSize) {
            ClCalibrateGeometricData Data = FormerData();
            ClMemStream Stream(aBlock.data(), nSize);
            Data.ReadStream(Stream);
            StState Expected = ClExpectation(nLayout, nSize).State();
            if (nLayout < 5) // nothing ends the reading, so that every default has its turn
                Expected.m_anNumbers[2] = Expected.m_anNumbers[3] = 0;
            if (nLayout < 2)
                Expected.m_anNumbers[6] = Expected.m_anNumbers[7] = 19685;
            if (nLayout < 3)
                Expected.m_anNumbers[8] = 1;
            ASSERT_EQ(StateOf(Data), Expected) << "layout " << nLayout << ", " << nSize << " bytes";
        }
    }
}

TEST(CalibrateGeometricDataEnds, AWrongChecksumLeavesWhatWasRead) {
    Bytes aBlock = RecordBlock(Newer());
    aBlock.back() ^= 1;
    ClCalibrateGeometricData Data = FormerData();
    ClMemStream Stream(aBlock.data(), aBlock.size());
    EXPECT_THROWS(static_cast<ClCalibrateDataBase&>(Data).Read(Stream), ClException, -39,
                  "Calibration Data currupt");
    EXPECT_EQ(StateOf(Data), ClExpectation(6, aBlock.size()).State());
}

TEST(CalibrateGeometricDataEnds, TagsThatAreRefusedChangeNothing) {
    for (const std::size_t nByte : {0u, 5u}) {
        Bytes aBlock = RecordBlock(Newer());
        aBlock[nByte] ^= 1;
        ClCalibrateGeometricData Data = FormerData();
        ClMemStream Stream(aBlock.data(), aBlock.size());
        EXPECT_THROWS(static_cast<ClCalibrateDataBase&>(Data).Read(Stream), ClExTessarin, -40,
                      "The input signature is not expected here.");
        EXPECT_EQ(StateOf(Data), StateOf(Former(), std::string("006\0", 4)));
    }
}

// What follows a record

TEST(CalibrateGeometricDataEnds, ReadsItsOwnBytesTwiceAndNoneBehindThem) {
    const Bytes aBlock = RecordBlock(Newer());
    Bytes aFollowed = aBlock;
    aFollowed.resize(100000, 0xA5);
    ClCountingStream Stream(aFollowed.data(), aFollowed.size());
    ClCalibrateGeometricData Data;
    static_cast<ClCalibrateDataBase&>(Data).Read(Stream);
    EXPECT_EQ(Stream.m_nRead, 2 * (aBlock.size() - 4) + 4); // the fields, then the checksum's range
    EXPECT_EQ(Stream.Pos(), aBlock.size() - 4);
}

TEST(CalibrateGeometricDataEnds, TwoGibibytesBehindARecordCostNothing) {
    const ClVastBlock Block(RecordBlock(Newer()));
    ClMemStream Stream(Block.Data(), Block.Size());
    ClCalibrateGeometricData Data;
    static_cast<ClCalibrateDataBase&>(Data).Read(Stream);
    EXPECT_EQ(Data.m_nTargetPelsY, 2462u);
}
