#pragma once

/// Sequences of calls as no application makes them: every exported function, in any order, on one
/// to three handles, with good blocks, spoilt ones and none, and with memory that runs out. What a
/// call answers and leaves is compared with the model of its handle.
///
/// Who runs a sequence gives what decides (`ClChoices`), what makes allocations fail (`ClFaults`)
/// and who hears of broken promises (`ClObserver`).

#include "calls/CallMaterial.h"
#include "calls/GuardedRoom.h"
#include "calls/HandleModel.h"

#include <array>
#include <string>

namespace Calls {

/// Lets one allocation fail.
class ClFaults {
public:
    virtual ~ClFaults() = default;
    /// From now on the allocation number `nAfter`, 0 being the next one, fails.
    virtual void Arm(long nAfter) = 0;
    /// From now on none does. Returns whether one did.
    virtual bool Disarm() = 0;
};

class ClObserver {
public:
    virtual ~ClObserver() = default;
    virtual void OnStep(long /*nStep*/) {}
    /// What the step does: on which handle, 1 to 3, which call with how many bytes or which text.
    virtual void OnCall(long /*nHandle*/, const char* /*szCall*/, std::size_t /*nSize*/,
                        const char* /*szText*/) {}
    /// An answer to it, and whether an allocation was made to fail on the way.
    virtual void OnAnswer(long /*nStatus*/, bool /*bFault*/) {}
    /// The dynamic step has found a finger in an image that it calibrates the quick way.
    virtual void OnQuickFinger() {}
    /// A promise does not hold.
    virtual void OnBroken(const std::string& Promise) = 0;
};

/// Calls from further down the stack: what a handle remembers of an earlier call's locals is
/// something else by then.
template <class Call>
[[gnu::noinline]] long AtDepth(std::uint32_t nDepth, Call& rCall) {
    volatile unsigned char acRoom[400];
    acRoom[nDepth] = 1;
    return nDepth == 0 ? rCall() : AtDepth(nDepth - 1, rCall) * acRoom[nDepth];
}

class ClCallSequence {
public:
    ClCallSequence(ClChoices& rChoices, ClFaults& rFaults, ClObserver& rObserver);
    ClCallSequence(const ClCallSequence&) = delete;
    ClCallSequence& operator=(const ClCallSequence&) = delete;
    ~ClCallSequence();

    /// Makes `nSteps` steps, or fewer where nothing is left to decide with.
    void Run(long nSteps);
    /// Makes the steps of these numbers and leaves out all others.
    void Run(const std::vector<long>& anSteps);

private:
    struct StSlot {
        void* m_pHandle = nullptr;
        ClHandleModel m_Model;
    };
    struct StAnswer {
        long m_nStatus;
        bool m_bFault; ///< an allocation failed on the way
    };
    using Step = void (ClCallSequence::*)(StSlot&);
    using GetBlock = long (*)(void*, unsigned char*, unsigned long*);

    void MakeStep(long nStep);
    Step ChooseStep();

    // Handles
    void Create(StSlot& rSlot);
    void Delete(StSlot& rSlot);
    void Misuse(StSlot& rSlot);

    // Options and levels
    void SetOption(StSlot& rSlot);
    void Configure(StSlot& rSlot);
    void GetOption(StSlot& rSlot);
    void GetLevels(StSlot& rSlot);
    void Describe(StSlot& rSlot);

    // Text and log
    void ConvertText(StSlot& rSlot);
    void ConvertToNarrow(const std::vector<wchar_t>& aWide, const std::string& Narrow);
    void ConvertToWide(const std::string& Narrow, const std::vector<wchar_t>& aWide);
    void CheckConverted(const Bytes& aExpected, std::size_t nCount, bool bBroken,
                        unsigned long nRoom, bool bThrown, long nResult);
    void CallFacility(StSlot& rSlot);

    // Data
    void SetData(StSlot& rSlot);
    void SetReferenceData(StSlot& rSlot);
    void SetPrecalculatedData(StSlot& rSlot);
    void GetData(StSlot& rSlot);
    void GetPrecalculatedData(StSlot& rSlot);
    void CheckPrecalculatedBlock(StSlot& rSlot, const Bytes& aBlock);
    void ExpectOneBlock(StSlot& rSlot, GetBlock get, const Bytes& aExpected);
    /// The block that a handle gives, empty after a failure.
    Bytes BlockOf(void* pHandle, GetBlock get);

    // Images
    void RunCalibrate(StSlot& rSlot);
    void MisuseCalibrate(StSlot& rSlot);
    void CalibrateOne(StSlot& rSlot, const Bytes& aIn);
    void CheckResult(StSlot& rSlot, const StForecast& Forecast, const Bytes& aIn,
                     const Bytes& aOut);
    bool IsTwinWanted(const StSlot& Slot);
    void CompareWithTwin(StSlot& rSlot, const Bytes& aIn, const Bytes& aOut, long nStatus,
                         bool bFault);
    void Contaminate(StSlot& rSlot);
    void CheckEfts(StSlot& rSlot);
    void CompareEfts(StSlot& rSlot, Bytes aIn, double dResult);
    Statuses ForCheckEfts(const StSlot& Slot, const Bytes& aIn, bool bNull) const;
    void Generate(StSlot& rSlot);
    Statuses ForGenerate(const StSlot& Slot, const Bytes& aIn, bool bTarget) const;
    void CompareGenerated(StSlot& rSlot, Bytes aIn, long nStatus);
    void CheckGenerated(StSlot& rSlot, const StSize& Size);
    Bytes ChooseCapture(StSlot& rSlot);
    bool IsDynamicStepCheap(const StSlot& Slot) const;

    // What all have in common
    template <class Call>
    StAnswer Try(Call call) {
        const long nAfter = ChooseFault();
        const std::uint32_t nDepth = m_rChoices.Below(8);
        StAnswer Answer{0, false};
        m_rFaults.Arm(nAfter);
        bool bThrown = false;
        try {
            Answer.m_nStatus = AtDepth(nDepth, call);
        } catch (...) {
            bThrown = true;
        }
        Answer.m_bFault = m_rFaults.Disarm();
        Expect(!bThrown, "throws nothing");
        return Answer;
    }
    long ChooseFault();
    void Expect(bool bHolds, const char* szPromise);
    void ExpectStatus(const StAnswer& Answer, const Statuses& anExpected);
    void ExpectInput(const Bytes& aBlock);
    void Break(const std::string& Promise);
    void Note(const char* szCall, std::size_t nSize = 0, const char* szText = "");

    ClChoices& m_rChoices;
    ClFaults& m_rFaults;
    ClObserver& m_rObserver;
    ClGuardedRoom m_In;
    ClGuardedRoom m_Out;
    std::array<StSlot, 3> m_aSlots;
    std::vector<Bytes> m_aGivenTables;
    long m_nHandle = 0;
    const char* m_szCall = "";
};

} // namespace Calls
