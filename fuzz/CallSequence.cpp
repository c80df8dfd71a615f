// Sequences of all exported calls on one to three handles: the bytes decide which calls, with which
// blocks, and which allocations fail. Every answer is compared with a model of the handle.
//
// A sequence is short: what two calls have to do with each other shows within a few steps, and many
// short sequences come by more of it than few long ones. The tests have long ones. Seeds are made
// by CallSeeds.cpp.

#include "Harness.h"

#include "calls/InjectedFaults.h"

namespace {

constexpr long cnSteps = 30;
constexpr std::size_t cnBytes = 512;

Fuzz::ClMilestone s_Generated("data is generated from a target");
Fuzz::ClMilestone s_Measured("an accuracy is measured");
Fuzz::ClMilestone s_Corrected("a capture is corrected");
Fuzz::ClMilestone s_Table("a table is loaded");
Fuzz::ClMilestone s_Missing("a call lacks memory");
Fuzz::ClMilestone s_QuickFinger("a finger is found the quick way");

class ClHardObserver : public Calls::ClObserver {
public:
    void OnCall(long /*nHandle*/, const char* szCall, std::size_t /*nSize*/,
                const char* /*szText*/) override {
        m_Call = szCall;
    }
    void OnAnswer(long nStatus, bool bFault) override {
        if (bFault && nStatus == QMT_ERROR_OUT_OF_MEMORY)
            s_Missing.Reach();
        if (nStatus == 0)
            Succeed();
    }
    void OnQuickFinger() override { s_QuickFinger.Reach(); }
    void OnBroken(const std::string& Promise) override { Fuzz::Require(false, Promise.c_str()); }

private:
    void Succeed() const {
        if (m_Call == "CalibrateGenerateData")
            s_Generated.Reach();
        else if (m_Call == "CalibrateCheckEfts")
            s_Measured.Reach();
        else if (m_Call == "Calibrate")
            s_Corrected.Reach();
        else if (m_Call == "CalibrateSetPrecalculatedData")
            s_Table.Reach();
    }

    std::string m_Call;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Calls::ClByteChoices Choices(pData, std::min(nSize, cnBytes));
    Calls::ClInjectedFaults Faults;
    ClHardObserver Observer;
    Calls::ClCallSequence(Choices, Faults, Observer).Run(cnSteps);
    return 0;
}
