#include "calls/CallSequence.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>

namespace Calls {

namespace {

constexpr std::size_t cnInRoom = std::size_t{8} << 20;
constexpr std::size_t cnOutRoom = std::size_t{8} << 20; // a table of a whole scanner

} // namespace

ClCallSequence::ClCallSequence(ClChoices& rChoices, ClFaults& rFaults, ClObserver& rObserver)
    : m_rChoices(rChoices), m_rFaults(rFaults), m_rObserver(rObserver), m_In(cnInRoom),
      m_Out(cnOutRoom) {}

ClCallSequence::~ClCallSequence() {
    for (StSlot& rSlot : m_aSlots)
        CalibrateDelete(&rSlot.m_pHandle);
}

void ClCallSequence::Run(long nSteps) {
    for (long nStep = 0; nStep < nSteps && !m_rChoices.IsEmpty(); ++nStep)
        MakeStep(nStep);
}

void ClCallSequence::Run(const std::vector<long>& anSteps) {
    for (const long nStep : anSteps)
        MakeStep(nStep);
}

/// Which steps are made how often; what is dear is rare.
ClCallSequence::Step ClCallSequence::ChooseStep() {
    struct StShare {
        std::uint32_t m_nShare;
        Step m_pStep;
    };
    static const StShare caShares[] = {
        {60, &ClCallSequence::RunCalibrate},
        {31, &ClCallSequence::SetPrecalculatedData},
        {30, &ClCallSequence::SetData},
        {30, &ClCallSequence::GetData},
        {20, &ClCallSequence::GetPrecalculatedData},
        {20, &ClCallSequence::Configure},
        {12, &ClCallSequence::SetOption},
        {16, &ClCallSequence::GetOption},
        {8, &ClCallSequence::GetLevels},
        {6, &ClCallSequence::Misuse},
        {5, &ClCallSequence::CheckEfts},
        {5, &ClCallSequence::Contaminate},
        {4, &ClCallSequence::SetReferenceData},
        {2, &ClCallSequence::Generate},
        {3, &ClCallSequence::ConvertText},
        {1, &ClCallSequence::CallFacility},
        {2, &ClCallSequence::Describe},
        {1, &ClCallSequence::Delete},
    };
    constexpr std::uint32_t cnAll = 256;
    std::uint32_t nLeft = m_rChoices.Below(cnAll);
    for (const StShare& Share : caShares) {
        if (nLeft < Share.m_nShare)
            return Share.m_pStep;
        nLeft -= Share.m_nShare;
    }
    return &ClCallSequence::RunCalibrate;
}

void ClCallSequence::MakeStep(long nStep) {
    m_rObserver.OnStep(nStep);
    m_rChoices.BeginStep(nStep);
    const std::uint32_t nSlot = m_rChoices.Below(3);
    StSlot& rSlot = m_aSlots[nSlot];
    m_nHandle = long{nSlot} + 1;
    if (rSlot.m_pHandle == nullptr)
        Create(rSlot);
    else if (!rSlot.m_Model.IsReady() && !m_rChoices.OneIn(3))
        SetData(rSlot); // without data there is little to see
    else
        (this->*ChooseStep())(rSlot);
}

/// The allocation that is to fail, behind all of them as a rule.
long ClCallSequence::ChooseFault() {
    if (!m_rChoices.OneIn(12))
        return -1;
    return static_cast<long>(m_rChoices.Below(1u << m_rChoices.Below(9)));
}

void ClCallSequence::Note(const char* szCall, std::size_t nSize, const char* szText) {
    m_szCall = szCall;
    m_rObserver.OnCall(m_nHandle, szCall, nSize, szText);
}

void ClCallSequence::Break(const std::string& Promise) {
    m_rObserver.OnBroken(std::string(m_szCall) + ": " + Promise);
}

void ClCallSequence::Expect(bool bHolds, const char* szPromise) {
    if (!bHolds)
        Break(szPromise);
}

void ClCallSequence::ExpectStatus(const StAnswer& Answer, const Statuses& anExpected) {
    m_rObserver.OnAnswer(Answer.m_nStatus, Answer.m_bFault);
    const bool bExpected =
        std::find(anExpected.begin(), anExpected.end(), Answer.m_nStatus) != anExpected.end();
    if (bExpected || (Answer.m_bFault && Answer.m_nStatus == QMT_ERROR_OUT_OF_MEMORY))
        return;
    std::string Promise = "answers " + std::to_string(Answer.m_nStatus) + " in place of";
    for (const long nStatus : anExpected)
        Promise += " " + std::to_string(nStatus);
    Break(Promise + (Answer.m_bFault ? " or -102" : ""));
}

void ClCallSequence::ExpectInput(const Bytes& aBlock) {
    Expect(m_In.IsHolding(aBlock), "leaves its input block as it is");
}

} // namespace Calls
