// Two threads on one handle, for the thread sanitizer to judge.
//
//     shared_handle handed PAIR     the second thread gets the handle when the first one is done
//     shared_handle shared PAIR     nobody hands it over
//
// In both forms the second thread waits until the first one has ended its call, so that nothing is
// ever done at the same time and no data is damaged. But in the second form it learns so in a way
// that orders nothing, as by luck: two threads use one handle against the rule, and the sanitizer
// reports it in every run.

#include "calls/CallMaterial.h"
#include "support/Records.h"

#include <TessarinCalibrateSDK.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

using TestSupport::Bytes;

const Bytes& Record() {
    static const Bytes aBlock =
        TestSupport::RecordBlock(TestSupport::PlausibleRecord(48, 80, 24, 32));
    return aBlock;
}

unsigned char* Writable(const Bytes& aBlock) {
    return const_cast<unsigned char*>(aBlock.data());
}

void Load(void* pHandle) {
    CalibrateSetData(pHandle, Writable(Record()), Record().size());
}

void Correct(void* pHandle) {
    Bytes aCapture(40 + 1024 + 48 * 80, 0);
    const unsigned char acHead[] = {40, 0, 0, 0, 48, 0, 0, 0, 80, 0, 0, 0, 1, 0, 8, 0};
    std::memcpy(aCapture.data(), acHead, sizeof acHead);
    Bytes aOut(60000);
    unsigned long nSize = aOut.size();
    Calibrate(pHandle, aCapture.data(), aCapture.size(), aOut.data(), &nSize);
}

void SetOption(void* pHandle) {
    CalibrateSetOption(pHandle, "SensitiveMode=true");
}

void GetOption(void* pHandle) {
    char acValue[20];
    unsigned long nSize = sizeof acValue;
    CalibrateGetOption(pHandle, "SensitiveMode", acValue, &nSize);
}

struct StPair {
    const char* m_szName;
    void (*m_pFirst)(void*);
    void (*m_pSecond)(void*);
};

const StPair caPairs[] = {
    {"captures", Correct, Correct},
    {"data", Load, Correct},
    {"options", SetOption, GetOption},
};

void RunPair(const StPair& Pair, std::memory_order eTell, std::memory_order eLearn) {
    void* pHandle = CalibrateCreate();
    Load(pHandle);
    std::atomic<bool> bDone{false};
    std::thread First([&] {
        Pair.m_pFirst(pHandle);
        bDone.store(true, eTell);
    });
    std::thread Second([&] {
        while (!bDone.load(eLearn))
            std::this_thread::yield();
        Pair.m_pSecond(pHandle);
    });
    First.join();
    Second.join();
    CalibrateDelete(&pHandle);
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3)
        for (const StPair& Pair : caPairs)
            if (std::strcmp(argv[2], Pair.m_szName) == 0) {
                const bool bHanded = std::strcmp(argv[1], "handed") == 0;
                RunPair(Pair, bHanded ? std::memory_order_release : std::memory_order_relaxed,
                        bHanded ? std::memory_order_acquire : std::memory_order_relaxed);
                std::puts("both calls were made");
                return 0;
            }
    std::fputs("usage: shared_handle handed|shared captures|data|options\n", stderr);
    return 2;
}
