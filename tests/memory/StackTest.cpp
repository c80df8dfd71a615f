// What calls take of a thread's stack, and what becomes of one that is too small.

#include "support/TestData.h"

#include <TessarinCalibrateSDK.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

using TestSupport::Bytes;
using TestSupport::DataBlock;
using TestSupport::DataFile;

namespace {

constexpr std::size_t cnNeighbour = 256 * 1024;
constexpr std::size_t cnGuard = 4096;
constexpr unsigned char cnUntouched = 0xA5;

/// The stack of a thread, one page of guard below it, and below that what belongs to others.
class ClStack {
public:
    explicit ClStack(std::size_t nBytes)
        : m_nBytes(nBytes), m_pAll(static_cast<unsigned char*>(
                                mmap(nullptr, cnNeighbour + cnGuard + nBytes,
                                     PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        std::memset(m_pAll, cnUntouched, cnNeighbour);
        EXPECT_EQ(mprotect(m_pAll + cnNeighbour, cnGuard, PROT_NONE), 0);
    }
    ClStack(const ClStack&) = delete;
    ClStack& operator=(const ClStack&) = delete;
    ~ClStack() { munmap(m_pAll, cnNeighbour + cnGuard + m_nBytes); }

    void RunThread(void* (*run)(void*), void* pArgument) const {
        pthread_attr_t Attributes;
        pthread_attr_init(&Attributes);
        pthread_attr_setstack(&Attributes, m_pAll + cnNeighbour + cnGuard, m_nBytes);
        pthread_t nThread{};
        EXPECT_EQ(pthread_create(&nThread, &Attributes, run, pArgument), 0);
        pthread_attr_destroy(&Attributes);
        pthread_join(nThread, nullptr);
    }

    bool IsNeighbourUntouched() const {
        return std::all_of(m_pAll, m_pAll + cnNeighbour,
                           [](unsigned char nByte) { return nByte == cnUntouched; });
    }

private:
    std::size_t m_nBytes;
    unsigned char* m_pAll;
};

struct StInputs {
    Bytes m_aTarget = DataBlock("generate/911_target.bmp");
    Bytes m_aData = DataFile("dynamic/loop.cal");
    Bytes m_aCapture = DataBlock("dynamic/loop_raw.bmp");
    Bytes m_aScanner = DataFile("efts/911.cal");
    Bytes m_aCorrected = DataBlock("efts/911_corrected.bmp");
    Bytes m_aRoom = Bytes(8 << 20);
    int m_nDone = 0; ///< calls that succeeded
};

/// Every call that computes; each counts when it succeeds.
void* MakeCalls(void* pArgument) {
    auto& r = *static_cast<StInputs*>(pArgument);
    void* handle = CalibrateCreate();
    unsigned long nSize = 0;
    double dResult = 0.0;
    const auto room = [&] { return &(nSize = r.m_aRoom.size()); };
    const auto count = [&](long nStatus) { r.m_nDone += nStatus == QMT_SUCCESS ? 1 : 0; };
    count(CalibrateGenerateData(handle, r.m_aTarget.data(), r.m_aTarget.size()));
    count(CalibrateSetReferenceData(handle, r.m_aScanner.data(), r.m_aScanner.size()));
    count(CalibrateSetData(handle, r.m_aScanner.data(), r.m_aScanner.size()));
    count(CalibrateCheckEfts(handle, r.m_aCorrected.data(), r.m_aCorrected.size(), &dResult));
    count(CalibrateSetData(handle, r.m_aData.data(), r.m_aData.size()));
    count(CalibrateGetData(handle, r.m_aRoom.data(), room()));
    count(CalibrateGetPrecalculatedData(handle, r.m_aRoom.data(), room()));
    count(CalibrateSetPrecalculatedData(handle, r.m_aRoom.data(), nSize));
    for (const char* szOption : {"SensitiveMode=true", "SensitiveMode=false", "MaskIsOutput=true",
                                 "GeometricCalibrate=oddLines"}) {
        count(CalibrateSetOption(handle, szOption));
        count(
            Calibrate(handle, r.m_aCapture.data(), r.m_aCapture.size(), r.m_aRoom.data(), room()));
    }
    count(ContaminationDetection(handle, r.m_aCapture.data(), r.m_aCapture.size(), &dResult));
    count(CalibrateDelete(&handle));
    return nullptr;
}

constexpr int cnCalls = 18;

/// What the process looks at when its stack has ended.
const ClStack* g_pTooSmall = nullptr;

constexpr int cnSpoilt = 1;
constexpr int cnEndedAtTheGuard = 2;

void LookAtNeighbour(int) {
    std::_Exit(g_pTooSmall->IsNeighbourUntouched() ? cnEndedAtTheGuard : cnSpoilt);
}

void* LoadData(void* pArgument) {
    auto& rInputs = *static_cast<StInputs*>(pArgument);
    static char acOther[64 * 1024];
    stack_t Other{};
    Other.ss_sp = acOther;
    Other.ss_size = sizeof acOther;
    sigaltstack(&Other, nullptr);
    void* handle = CalibrateCreate();
    CalibrateSetData(handle, rInputs.m_aData.data(), rInputs.m_aData.size());
    return nullptr;
}

/// The exit status of a process whose thread loads data on a stack of this size.
int OutcomeOnStack(std::size_t nBytes) {
    StInputs Inputs;
    const pid_t nChild = fork();
    if (nChild == 0) {
        const ClStack Stack(nBytes);
        g_pTooSmall = &Stack;
        struct sigaction Action {};
        Action.sa_handler = LookAtNeighbour;
        Action.sa_flags = SA_ONSTACK;
        sigaction(SIGSEGV, &Action, nullptr);
        Stack.RunThread(LoadData, &Inputs);
        std::_Exit(0);
    }
    int nStatus = -1;
    waitpid(nChild, &nStatus, 0);
    return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
}

} // namespace

TEST(Stack, Of128KiBIsEnoughForEveryCall) {
    StInputs Inputs;
    const ClStack Stack(128 * 1024);
    Stack.RunThread(MakeCalls, &Inputs);
    EXPECT_EQ(Inputs.m_nDone, cnCalls);
    EXPECT_TRUE(Stack.IsNeighbourUntouched());
}

TEST(Stack, ThatIsTooSmallEndsAtItsGuardAndSpoilsNoNeighbour) {
    for (const std::size_t nKiB : {24, 32, 40, 48})
        EXPECT_EQ(OutcomeOnStack(nKiB * 1024), cnEndedAtTheGuard) << nKiB;
}
