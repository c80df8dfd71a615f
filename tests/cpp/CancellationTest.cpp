// Threads that are cancelled while they call, end or assign a calibrator. The log of the program is
// where they can be.

#include "cpp/Scanner.h"
#include "support/LogCapture.h"

#include <pthread.h>

#include <functional>
#include <memory>

using tessarin::Calibrator;
using TestSupport::ClLogCapture;

namespace {

/// Work on a thread of its own, which is to be cancelled as soon as it logs.
struct StCancelled {
    std::function<void(Calibrator&)> m_Work;
    bool m_bLogged = false; ///< in the work
    bool m_bDone = false;   ///< the work came to its end
};

void* RunCancelled(void* pArgument) {
    auto& rCancelled = *static_cast<StCancelled*>(pArgument);
    Calibrator Scanner;
    ClLogCapture Log;
    Log.m_OnLine = [&](const TestSupport::StLogLine&) {
        rCancelled.m_bLogged = true;
        pthread_cancel(pthread_self());
        pthread_testcancel();
    };
    rCancelled.m_Work(Scanner);
    rCancelled.m_bDone = true;
    Log.m_OnLine = nullptr;
    pthread_testcancel();
    return nullptr;
}

/// What came of it on a thread, which is cancelled in any case.
StCancelled Cancelled(std::function<void(Calibrator&)> Work) {
    StCancelled Run{std::move(Work)};
    pthread_t Thread;
    void* pAnswer = nullptr;
    EXPECT_EQ(pthread_create(&Thread, nullptr, RunCancelled, &Run), 0);
    EXPECT_EQ(pthread_join(Thread, &pAnswer), 0);
    EXPECT_EQ(pAnswer, PTHREAD_CANCELED);
    EXPECT_TRUE(Run.m_bLogged);
    return Run;
}

} // namespace

TEST(CalibratorCancellation, UnwindsThroughACall) {
    EXPECT_FALSE(Cancelled([](Calibrator& r) { r.levels(); }).m_bDone);
}

TEST(CalibratorCancellation, WaitsForTheEndOfACalibrator) {
    EXPECT_TRUE(Cancelled([](Calibrator& r) { const Calibrator Moved = std::move(r); }).m_bDone);
}

TEST(CalibratorCancellation, WaitsForTheEndOfAnAssignment) {
    EXPECT_TRUE(Cancelled([Other = std::make_shared<Calibrator>()](Calibrator& r) {
                    *Other = std::move(r);
                }).m_bDone);
}

TEST(CalibratorCancellation, StaysSwitchedOffWhereItWas) {
    EXPECT_EQ(pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr), 0);
    { const Calibrator Scanner; }
    int nState = -1;
    EXPECT_EQ(pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &nState), 0);
    EXPECT_EQ(nState, PTHREAD_CANCEL_DISABLE);
}
