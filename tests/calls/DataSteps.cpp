// Steps with calibration data, precalculated data and reference data.

#include "calls/CallSequence.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>

namespace Calls {

namespace {

constexpr std::size_t cnGivenTables = 4;
constexpr std::size_t cnGivenSize = 100000; // not those of whole scanners

bool IsSame(const StTable& A, const StTable& B) {
    return A.m_nSourceWidth == B.m_nSourceWidth && A.m_nSourceHeight == B.m_nSourceHeight &&
           A.m_nTargetWidth == B.m_nTargetWidth && A.m_nTargetHeight == B.m_nTargetHeight &&
           A.m_nTargetPelsX == B.m_nTargetPelsX && A.m_nTargetPelsY == B.m_nTargetPelsY &&
           A.m_nPlanes == B.m_nPlanes && A.m_nBackground == B.m_nBackground;
}

} // namespace

void ClCallSequence::SetData(StSlot& rSlot) {
    if (m_rChoices.OneIn(32)) {
        Note("CalibrateSetData(null)");
        ExpectStatus(Try([&] { return CalibrateSetData(rSlot.m_pHandle, nullptr, 100); }),
                     {QMT_ERROR_TEMPLATE_PTR});
        return;
    }
    const Bytes aBlock = AnyRecordBlock(m_rChoices);
    const StReadRecord Read = ReadRecord(aBlock);
    unsigned char* const pBlock = m_In.Hold(aBlock);
    Note("CalibrateSetData", aBlock.size());
    const StAnswer Answer =
        Try([&] { return CalibrateSetData(rSlot.m_pHandle, pBlock, aBlock.size()); });
    ExpectStatus(Answer, rSlot.m_Model.ForSetData(Read));
    ExpectInput(aBlock);
    rSlot.m_Model.AfterSetData(Read, Answer.m_nStatus);
}

void ClCallSequence::SetReferenceData(StSlot& rSlot) {
    if (m_rChoices.OneIn(8)) {
        Note("CalibrateSetReferenceData(null)");
        ExpectStatus(Try([&] { return CalibrateSetReferenceData(rSlot.m_pHandle, nullptr, 100); }),
                     {QMT_ERROR_TEMPLATE_PTR});
        return;
    }
    const Bytes aBlock = AnyRecordBlock(m_rChoices);
    const StReadRecord Read = ReadRecord(aBlock);
    unsigned char* const pBlock = m_In.Hold(aBlock);
    Note("CalibrateSetReferenceData", aBlock.size());
    const StAnswer Answer =
        Try([&] { return CalibrateSetReferenceData(rSlot.m_pHandle, pBlock, aBlock.size()); });
    ExpectStatus(Answer, {Read.m_nStatus});
    ExpectInput(aBlock);
    rSlot.m_Model.DropData();
    rSlot.m_Model.m_Reference.reset();
    if (Answer.m_nStatus == QMT_SUCCESS)
        rSlot.m_Model.m_Reference = Read.m_Record;
}

void ClCallSequence::SetPrecalculatedData(StSlot& rSlot) {
    if (m_rChoices.OneIn(32)) {
        Note("CalibrateSetPrecalculatedData(null)");
        ExpectStatus(
            Try([&] { return CalibrateSetPrecalculatedData(rSlot.m_pHandle, nullptr, 100); }),
            {QMT_ERROR_TEMPLATE_PTR});
        return;
    }
    ClHandleModel& rModel = rSlot.m_Model;
    const StTable Sizes = rModel.WarpSizes();
    const Bytes aBlock = AnyTableBlock(
        m_rChoices, rModel.Hash(), {Sizes.m_nSourceWidth, Sizes.m_nSourceHeight}, m_aGivenTables);
    const StReadTable Read = ReadTable(aBlock, rModel.Hash());
    unsigned char* const pBlock = m_In.Hold(aBlock);
    Note("CalibrateSetPrecalculatedData", aBlock.size());
    const StAnswer Answer =
        Try([&] { return CalibrateSetPrecalculatedData(rSlot.m_pHandle, pBlock, aBlock.size()); });
    ExpectStatus(Answer, rModel.ForSetPrecalculatedData(Read));
    ExpectInput(aBlock);
    rModel.AfterSetPrecalculatedData(Read, Answer.m_nStatus);
}

// The size protocol of the calls that give a block

Bytes ClCallSequence::BlockOf(void* pHandle, GetBlock get) {
    unsigned long nSize = 0;
    if (get(pHandle, nullptr, &nSize) != QMT_ERROR_TEMPLATE_SIZE || nSize > m_Out.Capacity())
        return {};
    unsigned char* const pOut = m_Out.Offer(nSize);
    const unsigned long nTold = nSize;
    if (get(pHandle, pOut, &nSize) != QMT_SUCCESS)
        return {};
    Expect(nSize == nTold, "needs the size that it told");
    return m_Out.First(nTold);
}

/// Asks for a block of known bytes with any room for it.
void ClCallSequence::ExpectOneBlock(StSlot& rSlot, GetBlock get, const Bytes& aExpected) {
    const unsigned long nNeeded = aExpected.size();
    const unsigned long anSizes[] = {0, 1, nNeeded - 1, nNeeded, nNeeded, nNeeded + 17};
    const unsigned long nGiven = m_rChoices.Of(anSizes);
    const bool bNull = m_rChoices.OneIn(4);
    unsigned char* const pOut = m_Out.Offer(nGiven);
    unsigned long nSize = nGiven;
    const StAnswer Answer =
        Try([&] { return get(rSlot.m_pHandle, bNull ? nullptr : pOut, &nSize); });
    const bool bFits = nGiven >= nNeeded;
    ExpectStatus(Answer, {!bFits  ? QMT_ERROR_TEMPLATE_SIZE
                          : bNull ? QMT_ERROR_TEMPLATE_PTR
                                  : QMT_SUCCESS});
    const bool bNoMemory = Answer.m_nStatus == QMT_ERROR_OUT_OF_MEMORY;
    Expect(nSize == (bNoMemory ? nGiven : nNeeded), "tells the size that is needed");
    const bool bGiven = Answer.m_nStatus == QMT_SUCCESS && bFits;
    Expect(m_Out.IsUntouchedBehind(bGiven ? nNeeded : 0), "writes the block and no more");
    Expect(!bGiven || std::equal(aExpected.begin(), aExpected.end(), m_Out.Data()),
           "gives the block that belongs to what was loaded");
}

void ClCallSequence::GetData(StSlot& rSlot) {
    Note("CalibrateGetData");
    ExpectStatus(Try([&] { return CalibrateGetData(rSlot.m_pHandle, nullptr, nullptr); }),
                 {QMT_ERROR_TEMPLATE_SIZE_PTR});
    if (rSlot.m_Model.IsReady()) {
        ExpectOneBlock(rSlot, CalibrateGetData, rSlot.m_Model.Data()->m_aBlock);
        return;
    }
    unsigned long nSize = 5;
    ExpectStatus(Try([&] { return CalibrateGetData(rSlot.m_pHandle, nullptr, &nSize); }),
                 {QMT_ERROR_NOT_INITIALIZED});
    Expect(nSize == 5, "leaves the size");
}

void ClCallSequence::GetPrecalculatedData(StSlot& rSlot) {
    Note("CalibrateGetPrecalculatedData");
    ExpectStatus(
        Try([&] { return CalibrateGetPrecalculatedData(rSlot.m_pHandle, nullptr, nullptr); }),
        {QMT_ERROR_TEMPLATE_SIZE_PTR});
    if (!rSlot.m_Model.IsReady()) {
        unsigned long nSize = 5;
        ExpectStatus(
            Try([&] { return CalibrateGetPrecalculatedData(rSlot.m_pHandle, nullptr, &nSize); }),
            {QMT_ERROR_NOT_INITIALIZED});
        Expect(nSize == 5, "leaves the size");
        return;
    }
    const Bytes aBlock = BlockOf(rSlot.m_pHandle, CalibrateGetPrecalculatedData);
    CheckPrecalculatedBlock(rSlot, aBlock);
    if (!aBlock.empty() && aBlock.size() <= cnGivenSize) {
        ExpectOneBlock(rSlot, CalibrateGetPrecalculatedData, aBlock);
        m_aGivenTables.resize(std::min(m_aGivenTables.size(), cnGivenTables - 1));
        m_aGivenTables.insert(m_aGivenTables.begin(), aBlock);
    }
}

void ClCallSequence::CheckPrecalculatedBlock(StSlot& rSlot, const Bytes& aBlock) {
    const ClHandleModel& Model = rSlot.m_Model;
    const Digest aHash = Model.Data()->m_aHash;
    const Bytes aWithout = BlockWithoutTable(aHash);
    if (Model.Warp() == EWarp::eLoaded) {
        Expect(aBlock == UsualBlockOf(Model.Table(), aHash), "gives the table that was loaded");
        return;
    }
    if (Model.Warp() == EWarp::eNone ||
        (Model.Warp() == EWarp::eMaybePrepared && aBlock == aWithout)) {
        Expect(aBlock == aWithout, "gives a block without table where none is prepared");
        return;
    }
    const StTable Sizes = Model.WarpSizes();
    Expect(aBlock.size() == aWithout.size() + Model.Data()->TableEntries() * 36,
           "gives an entry for every pixel");
    if (Sizes.m_nTargetWidth == 0 || Sizes.m_nTargetHeight == 0 || Sizes.m_nSourceWidth == 0 ||
        Sizes.m_nSourceHeight == 0)
        return;
    const StReadTable Read = ReadTable(aBlock, aHash);
    Expect(Read.m_nStatus == QMT_SUCCESS, "gives a block that can be loaded");
    Expect(IsSame(Read.m_Table, Sizes), "gives the sizes of the record");
    Expect(aBlock == UsualBlockOf(Read.m_Table, aHash), "gives the usual form");
}

} // namespace Calls
