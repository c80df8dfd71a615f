// Long runs of captures, through one handle and through handles that come and go.
//
//     soak [CAPTURES]     default 1000000
//
// In each round one handle that lives as long as the run corrects captures of its scanner, by one
// set of options after the other; then a new handle is loaded with the data of the next scanner,
// corrects as many and is deleted. Every result is compared with the first one of its kind.
// Memory is read at the end of every round: behind the first thousand captures what the heap has
// from the system and what is resident must not grow by more than 1 MiB, and what is allocated,
// which shows a leak that fills holes of the heap, by more than 16 KiB; and at the end three
// quarters of the heap must be allocated, since handles that come and go must not leave it in
// splinters. The exit status is 0 where all of it holds.
//
// The process goes without huge pages: with them the kernel makes memory resident that nobody has
// touched, at a time of its own. Other liberties of the kernel are seen in a short run but do not
// break it: resident memory is judged from 100,000 captures on. And malloc() maps large blocks from
// a fixed size on: by default that size moves with what is freed, until images lie in the heap and
// the holes between them depend on all that was allocated before, even on the length of a path.

#include "support/TestData.h"

#include <TessarinCalibrateSDK.h>

#include <malloc.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <utility>

namespace {

using TestSupport::Bytes;

constexpr long cnOfAHandle = 50; ///< captures of a round, by the old handle and by the new one
constexpr long cnWarm = 1000;    ///< captures until memory has to be flat
constexpr long cnLong = 100000;  ///< captures of a run whose resident memory is judged
constexpr long cnMorePages = 1 << 20;
constexpr long cnMoreAllocated = 1 << 14;
constexpr long cnAllocatedPercent = 75; ///< of the heap, at least

// Results

/// FNV-1a, 64 bits.
std::uint64_t DigestOf(const unsigned char* pData, std::size_t nSize, std::uint64_t nDigest) {
    for (std::size_t i = 0; i < nSize; ++i)
        nDigest = (nDigest ^ pData[i]) * 0x100000001B3ULL;
    return nDigest;
}

constexpr std::size_t cnScanners = 6;
constexpr std::size_t cnCaptures = 3; ///< of each scanner
constexpr std::size_t cnOptions = 8;  ///< sets of options

/// Counts results that differ from the first one of their kind. All its memory is there from the
/// beginning.
class ClResults {
public:
    void Compare(std::size_t nKind, std::uint64_t nDigest) {
        std::optional<std::uint64_t>& rFirst = m_aFirst[nKind];
        if (!rFirst)
            rFirst = nDigest;
        m_nDiffering += *rFirst != nDigest ? 1 : 0;
    }
    long Kinds() const {
        return std::count_if(m_aFirst.begin(), m_aFirst.end(),
                             [](const auto& First) { return First.has_value(); });
    }
    long Differing() const { return m_nDiffering; }

private:
    std::array<std::optional<std::uint64_t>, cnScanners * cnCaptures * cnOptions> m_aFirst;
    long m_nDiffering = 0;
};

// Memory

long ResidentBytes() {
    long nMapped = 0;
    long nResident = 0;
    std::FILE* pFile = std::fopen("/proc/self/statm", "r");
    if (pFile == nullptr || std::fscanf(pFile, "%ld %ld", &nMapped, &nResident) != 2)
        std::abort();
    std::fclose(pFile);
    return nResident * sysconf(_SC_PAGESIZE);
}

/// What the heap has from the system, in use or not.
long HeapBytes() {
    const struct mallinfo2 Info = mallinfo2();
    return static_cast<long>(Info.arena + Info.hblkhd);
}

long AllocatedBytes() {
    const struct mallinfo2 Info = mallinfo2();
    return static_cast<long>(Info.uordblks + Info.hblkhd);
}

/// A kind of memory: what it was behind the first thousand captures, and its ends since.
class ClMemory {
public:
    void Note(long nBytes, bool bWarm) {
        if (!bWarm)
            m_nFirst = m_nLeast = m_nMost = nBytes;
        m_nLast = nBytes;
        m_nLeast = std::min(m_nLeast, nBytes);
        m_nMost = std::max(m_nMost, nBytes);
    }

    long Last() const { return m_nLast; }

    /// Tells it. Returns whether it grew by no more than `nMore` bytes.
    bool Tell(const char* szName, long nMore) const {
        const bool bFlat = m_nMost - m_nFirst <= nMore;
        std::printf("%-20s%.3f MiB behind %ld captures, then %.3f to %.3f: %s\n", szName,
                    Mebibytes(m_nFirst), cnWarm, Mebibytes(m_nLeast), Mebibytes(m_nMost),
                    bFlat ? "good" : "BROKEN");
        return bFlat;
    }

private:
    static double Mebibytes(long nBytes) { return static_cast<double>(nBytes) / (1 << 20); }

    long m_nFirst = 0;
    long m_nLast = 0;
    long m_nLeast = 0;
    long m_nMost = 0;
};

// Time

/// Milliseconds that the calls of Calibrate() took, a thousand of them at a time.
class ClTimes {
public:
    void Add(double dMilliseconds) {
        if (m_nCount < cnWarm)
            m_dFirst += dMilliseconds;
        m_dPresent += dMilliseconds;
        if (++m_nCount % cnWarm == 0)
            m_dLast = std::exchange(m_dPresent, 0.0);
    }
    double First() const { return m_dFirst / static_cast<double>(std::min(m_nCount, cnWarm)); }
    /// Of the last thousand that is whole.
    double Last() const { return m_dLast / static_cast<double>(cnWarm); }

private:
    long m_nCount = 0;
    double m_dFirst = 0.0;
    double m_dPresent = 0.0;
    double m_dLast = 0.0;
};

// Captures

struct StScanner {
    Bytes m_aData;
    std::vector<Bytes> m_aCaptures;
};

/// A capture, the same turned, and the same in weak light.
std::vector<Bytes> CapturesOf(const Bytes& aBlock) {
    constexpr std::ptrdiff_t nPixelsAt = 40 + 1024;
    std::vector<Bytes> aCaptures(cnCaptures, aBlock);
    std::reverse(aCaptures[1].begin() + nPixelsAt, aCaptures[1].end());
    std::for_each(aCaptures[2].begin() + nPixelsAt, aCaptures[2].end(),
                  [](unsigned char& rGrey) { rGrey = static_cast<unsigned char>(rGrey / 2); });
    return aCaptures;
}

std::vector<StScanner> AllScanners() {
    std::vector<StScanner> aScanners;
    for (const std::string Name : {"loop", "wet", "dry", "empty", "two_fingers", "dirty"})
        aScanners.push_back({TestSupport::DataFile("dynamic/" + Name + ".cal"),
                             CapturesOf(TestSupport::DataBlock("dynamic/" + Name + "_raw.bmp"))});
    return aScanners;
}

/// Most captures are corrected as an application does by default.
const std::vector<std::vector<const char*>>& AllOptions() {
    static const std::vector<std::vector<const char*>> aSets = {
        {"DynamicFingerMask=true", "GeometricCalibrate=ThinPlateSpline", "SensitiveMode=false",
         "MaskIsOutput=false"},
        {},
        {},
        {"SensitiveMode=true"},
        {"MaskIsOutput=true"},
        {"GeometricCalibrate=oddLines", "MaskIsOutput=false"},
        {"DynamicFingerMask=false"},
        {"GeometricCalibrate=off"},
    };
    return aSets;
}

class ClHandle {
public:
    explicit ClHandle(Bytes aData) : m_pHandle(CalibrateCreate()) {
        Require(CalibrateSetData(m_pHandle, aData.data(), aData.size()));
    }
    ClHandle(const ClHandle&) = delete;
    ClHandle& operator=(const ClHandle&) = delete;
    ~ClHandle() { CalibrateDelete(&m_pHandle); }

    operator void*() const { return m_pHandle; }

    void Set(std::size_t nOptions) const {
        for (const char* szOption : AllOptions()[nOptions])
            Require(CalibrateSetOption(m_pHandle, szOption));
    }

    static void Require(long nStatus) {
        if (nStatus == QMT_SUCCESS)
            return;
        std::fprintf(stderr, "soak: %ld %s\n", nStatus, CalibrateGetErrorDescription(nStatus));
        std::exit(1);
    }

private:
    void* m_pHandle;
};

class ClSoak {
public:
    void Run(long nCaptures) {
        const ClHandle Old(m_aScanners[0].m_aData);
        for (std::size_t nRound = 0; m_nMade < nCaptures; ++nRound) {
            Correct(Old, 0);
            const std::size_t nScanner = nRound % cnScanners;
            Correct(ClHandle(m_aScanners[nScanner].m_aData), nScanner);
            NoteMemory();
        }
    }

    /// Tells what was seen. Returns whether all is well.
    bool Tell() const {
        const bool bSame = m_Results.Differing() == 0;
        std::printf("captures            %ld, of %ld kinds\n", m_nMade, m_Results.Kinds());
        std::printf("other bytes         in %ld results: %s\n", m_Results.Differing(),
                    bSame ? "good" : "BROKEN");
        const bool bResident = m_Resident.Tell("resident memory", cnMorePages);
        const bool bHeap = m_Heap.Tell("memory of the heap", cnMorePages);
        const bool bAllocated = m_Allocated.Tell("allocated memory", cnMoreAllocated);
        const bool bWhole = TellWhole();
        std::printf("time of a capture   %.3f ms in the first thousand, %.3f ms in the last\n",
                    m_Times.First(), m_Times.Last());
        return bSame && bHeap && bAllocated && bWhole && (bResident || m_nMade < cnLong);
    }

private:
    bool TellWhole() const {
        const long nPercent = 100 * m_Allocated.Last() / m_Heap.Last();
        const bool bWhole = nPercent >= cnAllocatedPercent;
        std::printf("heap                %ld percent of it allocated: %s\n", nPercent,
                    bWhole ? "good" : "BROKEN");
        return bWhole;
    }

    void Correct(const ClHandle& Handle, std::size_t nScanner) {
        for (long i = 0; i < cnOfAHandle; ++i, ++m_nMade) {
            const std::size_t nOptions = static_cast<std::size_t>(i) % cnOptions;
            const std::size_t nCapture = static_cast<std::size_t>(i) / cnOptions % cnCaptures;
            Handle.Set(nOptions);
            const std::size_t nTold = nOptions < 3 ? 0 : nOptions; // the first three are the same
            m_Results.Compare((nScanner * cnCaptures + nCapture) * cnOptions + nTold,
                              CorrectOne(Handle, m_aScanners[nScanner].m_aCaptures[nCapture]));
        }
    }

    std::uint64_t CorrectOne(const ClHandle& Handle, Bytes& rIn) {
        unsigned long nSize = m_aOut.size();
        const auto Start = std::chrono::steady_clock::now();
        ClHandle::Require(Calibrate(Handle, rIn.data(), rIn.size(), m_aOut.data(), &nSize));
        const std::chrono::duration<double, std::milli> Taken =
            std::chrono::steady_clock::now() - Start;
        m_Times.Add(Taken.count());
        double adLevels[2] = {};
        ClHandle::Require(GetCalibrationWarningLevels(Handle, &adLevels[0], &adLevels[1]));
        return DigestOf(m_aOut.data(), nSize,
                        DigestOf(reinterpret_cast<const unsigned char*>(adLevels), sizeof adLevels,
                                 0xCBF29CE484222325ULL));
    }

    void NoteMemory() {
        const bool bWarm = m_nMade > cnWarm;
        m_Resident.Note(ResidentBytes(), bWarm);
        m_Heap.Note(HeapBytes(), bWarm);
        m_Allocated.Note(AllocatedBytes(), bWarm);
    }

    std::vector<StScanner> m_aScanners = AllScanners();
    Bytes m_aOut = Bytes(std::size_t{1} << 20);
    ClResults m_Results;
    ClTimes m_Times;
    long m_nMade = 0;
    ClMemory m_Resident;
    ClMemory m_Heap;
    ClMemory m_Allocated;
};

} // namespace

int main(int argc, char** argv) {
    const long nCaptures = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 1000000;
    if (argc > 2 || nCaptures < 2 * cnWarm) {
        std::fprintf(stderr, "usage: soak [CAPTURES], at least %ld\n", 2 * cnWarm);
        return 2;
    }
    prctl(PR_SET_THP_DISABLE, 1L, 0L, 0L, 0L);
    mallopt(M_MMAP_THRESHOLD, 128 << 10);
    ClSoak Soak;
    Soak.Run(nCaptures);
    const bool bGood = Soak.Tell();
    std::puts(bGood ? "good" : "BROKEN");
    return bGood ? 0 : 1;
}
