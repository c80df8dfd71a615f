// Many handles at once: captures, generation, loading and deleting on several threads give the
// bytes that one thread gets. Under the thread sanitizer nothing may be shared between them without
// order.

#include "api/Api.h"
#include "calls/CallMaterial.h"
#include "support/TestData.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

using TestSupport::Bytes;
using TestSupport::DataBlock;
using TestSupport::DataFile;

namespace {

/// A handle of its own, without the expectations of the tests: they belong to one thread.
class ClQuietHandle {
public:
    ClQuietHandle() : m_pHandle(CalibrateCreate()) {}
    ClQuietHandle(const ClQuietHandle&) = delete;
    ClQuietHandle& operator=(const ClQuietHandle&) = delete;
    ~ClQuietHandle() { CalibrateDelete(&m_pHandle); }

    operator void*() const { return m_pHandle; }

private:
    void* m_pHandle;
};

/// What a piece of work writes down: statuses, blocks, levels.
class ClProtocol {
public:
    void Note(long nStatus) { NoteBytes(&nStatus, sizeof nStatus); }
    void Note(double dLevel) { NoteBytes(&dLevel, sizeof dLevel); }
    void Note(const Bytes& aBlock) { NoteBytes(aBlock.data(), aBlock.size()); }

    bool operator==(const ClProtocol& Other) const { return m_aNoted == Other.m_aNoted; }
    bool operator!=(const ClProtocol& Other) const { return !(*this == Other); }

private:
    void NoteBytes(const void* pFrom, std::size_t nSize) {
        const auto* pFirst = static_cast<const unsigned char*>(pFrom);
        m_aNoted.insert(m_aNoted.end(), pFirst, pFirst + nSize);
    }

    Bytes m_aNoted;
};

unsigned char* Writable(const Bytes& aBlock) {
    return const_cast<unsigned char*>(aBlock.data()); // input blocks are never written to
}

void Correct(void* pHandle, const Bytes& aIn, ClProtocol& rProtocol) {
    Bytes aOut(500000);
    unsigned long nSize = aOut.size();
    rProtocol.Note(Calibrate(pHandle, Writable(aIn), aIn.size(), aOut.data(), &nSize));
    aOut.resize(nSize);
    rProtocol.Note(aOut);
    double dDirt = 0.0;
    double dDryFinger = 0.0;
    rProtocol.Note(GetCalibrationWarningLevels(pHandle, &dDirt, &dDryFinger));
    rProtocol.Note(dDirt);
    rProtocol.Note(dDryFinger);
}

void Load(void* pHandle, const Bytes& aData, ClProtocol& rProtocol) {
    rProtocol.Note(CalibrateSetData(pHandle, Writable(aData), aData.size()));
}

Bytes BlockOf(void* pHandle, long (*get)(void*, unsigned char*, unsigned long*),
              ClProtocol& rProtocol) {
    unsigned long nSize = 0;
    rProtocol.Note(get(pHandle, nullptr, &nSize));
    Bytes aBlock(nSize);
    rProtocol.Note(get(pHandle, aBlock.data(), &nSize));
    rProtocol.Note(aBlock);
    return aBlock;
}

/// A scanner with its captures.
struct StScanner {
    Bytes m_aData;
    Bytes m_aCapture;
};

using Work = std::function<void(ClProtocol&)>;

/// Two captures on one handle, the second one by other options.
Work Captures(const StScanner& Scanner, const char* szOption) {
    return [&Scanner, szOption](ClProtocol& rProtocol) {
        const ClQuietHandle Handle;
        Load(Handle, Scanner.m_aData, rProtocol);
        Correct(Handle, Scanner.m_aCapture, rProtocol);
        rProtocol.Note(CalibrateSetOption(Handle, szOption));
        Correct(Handle, Scanner.m_aCapture, rProtocol);
    };
}

/// Data of a target, loaded by another handle with its table, which corrects the target.
void GenerateAndLoad(ClProtocol& rProtocol) {
    const Bytes& aTarget = Calls::TargetCapture();
    const ClQuietHandle First;
    rProtocol.Note(CalibrateGenerateData(First, Writable(aTarget), aTarget.size()));
    const Bytes aData = BlockOf(First, CalibrateGetData, rProtocol);
    const Bytes aTable = BlockOf(First, CalibrateGetPrecalculatedData, rProtocol);
    const ClQuietHandle Second;
    rProtocol.Note(CalibrateSetOption(Second, "PrecalculatedData=true"));
    Load(Second, aData, rProtocol);
    rProtocol.Note(CalibrateSetPrecalculatedData(Second, Writable(aTable), aTable.size()));
    rProtocol.Note(CalibrateSetOption(Second, "DynamicFingerMask=false"));
    Correct(Second, aTarget, rProtocol);
}

void Measure(const Bytes& aCapture, ClProtocol& rProtocol) {
    const ClQuietHandle Handle;
    double dLevel = 0.0;
    rProtocol.Note(ContaminationDetection(Handle, Writable(aCapture), aCapture.size(), &dLevel));
    rProtocol.Note(dLevel);
    const Bytes& aTarget = Calls::CorrectedTarget();
    double dPercent = 0.0;
    rProtocol.Note(CalibrateCheckEfts(Handle, Writable(aTarget), aTarget.size(), &dPercent));
}

/// Handles that come and go, and refusals, which are exceptions inside.
void Refuse(ClProtocol& rProtocol) {
    const Bytes aNoise(300, 0x43);
    for (int i = 0; i < 20; ++i) {
        const ClQuietHandle Handle;
        Load(Handle, aNoise, rProtocol);
        Correct(Handle, aNoise, rProtocol);
        rProtocol.Note(CalibrateGenerateData(Handle, Writable(aNoise), aNoise.size()));
        rProtocol.Note(static_cast<long>(CalibrateGetErrorDescription(-i)[0]));
    }
}

std::vector<Work> AllWork(const std::vector<StScanner>& aScanners) {
    static const char* const caszOptions[] = {"MaskIsOutput=true", "SensitiveMode=true",
                                              "GeometricCalibrate=oddLines",
                                              "DynamicFingerMask=false"};
    std::vector<Work> aWork;
    for (std::size_t i = 0; i < aScanners.size(); ++i) {
        aWork.push_back(Captures(aScanners[i], caszOptions[i % 4]));
        aWork.push_back([&aScanners, i](ClProtocol& r) { Measure(aScanners[i].m_aCapture, r); });
        aWork.push_back(GenerateAndLoad);
        aWork.push_back(Refuse);
    }
    return aWork;
}

/// Lets threads go on when all have come. By a lock, which every tool that watches threads knows.
class ClStart {
public:
    explicit ClStart(unsigned nMissing) : m_nMissing(nMissing) {}

    void Wait() {
        std::unique_lock<std::mutex> Lock(m_Mutex);
        if (--m_nMissing == 0)
            m_AllHere.notify_all();
        m_AllHere.wait(Lock, [this] { return m_nMissing == 0; });
    }

private:
    std::mutex m_Mutex;
    std::condition_variable m_AllHere;
    unsigned m_nMissing;
};

/// Does all work by so many threads, which begin together and take the pieces in turn.
std::vector<ClProtocol> DoneBy(unsigned nThreads, const std::vector<Work>& aWork) {
    std::vector<ClProtocol> aProtocols(aWork.size());
    ClStart Start(nThreads);
    std::vector<std::thread> aThreads;
    for (unsigned nThread = 0; nThread < nThreads; ++nThread)
        aThreads.emplace_back([&, nThread] {
            Start.Wait();
            for (std::size_t i = nThread; i < aWork.size(); i += nThreads)
                aWork[i](aProtocols[i]);
        });
    for (std::thread& rThread : aThreads)
        rThread.join();
    return aProtocols;
}

class Threads : public testing::TestWithParam<unsigned> {};

} // namespace

TEST_P(Threads, GiveTheBytesThatOneGives) {
    std::vector<StScanner> aScanners;
    for (const std::string Kind : {"loop", "wet", "dry", "empty", "two_fingers", "dirty"})
        aScanners.push_back(
            {DataFile("dynamic/" + Kind + ".cal"), DataBlock("dynamic/" + Kind + "_raw.bmp")});
    const std::vector<Work> aWork = AllWork(aScanners);
    const std::vector<ClProtocol> aExpected = DoneBy(1, aWork);
    EXPECT_NE(aExpected.front(), aExpected[4]) << "two scanners give the same";
    EXPECT_TRUE(DoneBy(GetParam(), aWork) == aExpected);
}

INSTANTIATE_TEST_SUITE_P(As, Threads, testing::Values(1u, 2u, 4u, 12u),
                         testing::PrintToStringParamName());
