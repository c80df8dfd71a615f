// Steps with captures and corrected images.

#include "calls/BitmapRules.h"
#include "calls/CallSequence.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cstring>

namespace Calls {

namespace {

constexpr std::size_t cnRoomForResults = 300000; ///< a result of a whole scanner and more
constexpr std::size_t cnPixelsAt = 40 + 1024;
constexpr std::size_t cnMostEntries = 8000; ///< of a table that is prepared twice: a millisecond

StSize SourceOf(const StTable& Sizes) {
    return {Sizes.m_nSourceWidth, Sizes.m_nSourceHeight};
}

bool IsUsualResolution(std::uint32_t nPels) {
    return nPels >= 1200 && nPels <= 100000;
}

std::size_t LineBytes(std::uint32_t nWidth) {
    return (std::size_t{nWidth} + 3) / 4 * 4;
}

/// A handle of its own in the state of another one, reached by the shortest way.
class ClTwin {
public:
    explicit ClTwin(const ClHandleModel& Model) : m_pHandle(CalibrateCreate()) {
        Bytes aData = Model.Data()->m_aBlock;
        m_bMade = Set("PrecalculatedData=true") && SetOptions(Model.m_Options) &&
                  CalibrateSetData(m_pHandle, aData.data(), aData.size()) == QMT_SUCCESS;
        if (m_bMade && Model.Warp() == EWarp::eLoaded) {
            Bytes aTable = UsualBlockOf(Model.Table(), Model.Data()->m_aHash);
            m_bMade = CalibrateSetPrecalculatedData(m_pHandle, aTable.data(), aTable.size()) ==
                      QMT_SUCCESS;
        }
    }
    ClTwin(const ClTwin&) = delete;
    ClTwin& operator=(const ClTwin&) = delete;
    ~ClTwin() { CalibrateDelete(&m_pHandle); }

    bool IsMade() const { return m_bMade; }
    void* Handle() const { return m_pHandle; }

    long Run(Bytes aIn, Bytes& rOut) const {
        rOut.resize(cnRoomForResults);
        if (aIn.empty())
            aIn.reserve(1); // empty is not null
        unsigned long nSize = rOut.size();
        const long nStatus = Calibrate(m_pHandle, aIn.data(), aIn.size(), rOut.data(), &nSize);
        rOut.resize(nStatus == QMT_SUCCESS ? nSize : 0);
        return nStatus;
    }

private:
    bool Set(const char* szOption) const {
        return CalibrateSetOption(m_pHandle, szOption) == QMT_SUCCESS;
    }
    bool SetOptions(const StOptions& Options) const {
        static const char* const caszGeometry[] = {"GeometricCalibrate=off",
                                                   "GeometricCalibrate=oddLines",
                                                   "GeometricCalibrate=ThinPlateSpline"};
        return Set(Options.m_bDynamicFingerMask ? "DynamicFingerMask=true"
                                                : "DynamicFingerMask=false") &&
               Set(Options.m_bSensitiveMode ? "SensitiveMode=true" : "SensitiveMode=false") &&
               Set(Options.m_bMaskIsOutput ? "MaskIsOutput=true" : "MaskIsOutput=false") &&
               Set(caszGeometry[static_cast<int>(Options.m_eGeometry)]);
    }

    void* m_pHandle;
    bool m_bMade = false;
};

bool IsHeaderRight(const StForecast& Forecast, const Bytes& aOut) {
    return Field(aOut, 0, 4) == 40 && Field(aOut, 4, 4) == Forecast.m_nWidth &&
           Field(aOut, 8, 4) == Forecast.m_nHeight && Field(aOut, 12, 4) == (8 << 16 | 1) &&
           Field(aOut, 16, 8) == 0 && Field(aOut, 32, 4) == 0;
}

bool IsResolutionRight(const StForecast& Forecast, const Bytes& aOut) {
    return Field(aOut, 24, 4) == Forecast.m_nPelsX && Field(aOut, 28, 4) == Forecast.m_nPelsY;
}

bool IsPaletteGrey(const Bytes& aOut) {
    for (std::size_t i = 0; i < 256; ++i)
        if (Field(aOut, 40 + 4 * i, 4) != static_cast<std::int64_t>(i * 0x010101))
            return false;
    return true;
}

/// Whether pixels without source have the background's value.
bool IsBackgroundRight(const StTable& Table, const Bytes& aOut) {
    for (std::uint32_t y = 0; y < Table.m_nTargetHeight; ++y)
        for (std::uint32_t x = 0; x < Table.m_nTargetWidth; ++x)
            if (OffsetOf(Table, std::size_t{y} * Table.m_nTargetWidth + x) == -1 &&
                aOut[cnPixelsAt + y * LineBytes(Table.m_nTargetWidth) + x] != Table.m_nBackground)
                return false;
    return true;
}

/// Whether the dynamic step calibrates images like this one the quick way.
bool IsOrdinary(const StForecast& Forecast) {
    const auto Side = [](std::uint32_t n) { return n >= 53 && n <= 2048; };
    const auto Pels = [](std::uint32_t n) { return n >= 9000 && n <= 40000; };
    return Side(Forecast.m_nWidth) && Side(Forecast.m_nHeight) && Pels(Forecast.m_nPelsX) &&
           Pels(Forecast.m_nPelsY);
}

/// What has no finger is white, image and mask.
bool HasFinger(const StForecast& Forecast, const Bytes& aOut) {
    for (std::uint32_t y = 0; y < Forecast.m_nHeight; ++y)
        for (std::uint32_t x = 0; x < Forecast.m_nWidth; ++x)
            if (aOut[cnPixelsAt + y * LineBytes(Forecast.m_nWidth) + x] != 255)
                return true;
    return false;
}

bool ArePixelsSame(const Bytes& aIn, const Bytes& aOut) {
    return aOut.size() <= aIn.size() + cnPixelsAt &&
           std::equal(aOut.begin() + cnPixelsAt, aOut.end(),
                      aIn.end() - static_cast<std::ptrdiff_t>(aOut.size() - cnPixelsAt));
}

} // namespace

// Calibrate()

bool ClCallSequence::IsDynamicStepCheap(const StSlot& Slot) const {
    if (!Slot.m_Model.m_Options.m_bDynamicFingerMask || !Slot.m_Model.IsReady())
        return true;
    const StTable Sizes = Slot.m_Model.WarpSizes();
    const StRecord& Record = Slot.m_Model.Data()->m_Record;
    return Sizes.m_nTargetWidth <= 320 && Sizes.m_nTargetHeight <= 480 &&
           IsUsualResolution(Sizes.m_nTargetPelsX) && IsUsualResolution(Sizes.m_nTargetPelsY) &&
           IsUsualResolution(Record.m_nSourcePelsX) && IsUsualResolution(Record.m_nSourcePelsY);
}

Bytes ClCallSequence::ChooseCapture(StSlot& rSlot) {
    const StData* pData = rSlot.m_Model.Data();
    if (pData != nullptr && m_rChoices.OneIn(4))
        return AnyCapture(m_rChoices,
                          {pData->m_Record.m_nSourceWidth, pData->m_Record.m_nSourceHeight});
    return AnyCapture(m_rChoices, SourceOf(rSlot.m_Model.WarpSizes()));
}

void ClCallSequence::RunCalibrate(StSlot& rSlot) {
    if (!IsDynamicStepCheap(rSlot))
        Configure(rSlot);
    else if (m_rChoices.OneIn(24))
        MisuseCalibrate(rSlot);
    else
        CalibrateOne(rSlot, ChooseCapture(rSlot));
}

void ClCallSequence::MisuseCalibrate(StSlot& rSlot) {
    const Bytes aIn = ChooseCapture(rSlot);
    unsigned char* const pIn = m_In.Hold(aIn);
    unsigned long nSize = 1;
    Note("Calibrate with a null argument");
    const auto Run = [&](unsigned char* pFrom, unsigned char* pTo, unsigned long* pSize) {
        return Try([&] { return Calibrate(rSlot.m_pHandle, pFrom, aIn.size(), pTo, pSize); });
    };
    ExpectStatus(Run(nullptr, pIn, &nSize), {QMT_ERROR_BITMAP_PTR});
    ExpectStatus(Run(pIn, pIn, &nSize), {QMT_ERROR_BITMAP_PTR});
    ExpectStatus(Run(pIn, nullptr, nullptr), {QMT_ERROR_TEMPLATE_SIZE_PTR});
    ExpectStatus(Run(pIn, nullptr, &nSize), {QMT_ERROR_BITMAP_PTR});
    Expect(nSize == 1, "leaves the size");
    ExpectInput(aIn);
}

void ClCallSequence::CalibrateOne(StSlot& rSlot, const Bytes& aIn) {
    ClHandleModel& rModel = rSlot.m_Model;
    const StForecast Forecast = rModel.ForCalibrate(aIn);
    const unsigned long nNeeded = Forecast.MaySucceed() ? Forecast.Size() : 2000;
    const unsigned long anSizes[] = {0, 1, nNeeded - 1, nNeeded, nNeeded, nNeeded + 13};
    const unsigned long nGiven = m_rChoices.Of(anSizes);

    unsigned char* const pIn = m_In.Hold(aIn);
    unsigned char* const pOut = nGiven > 0 ? m_Out.Offer(nGiven) : nullptr;
    unsigned long nSize = nGiven;
    Note("Calibrate", aIn.size());
    const StAnswer Answer =
        Try([&] { return Calibrate(rSlot.m_pHandle, pIn, aIn.size(), pOut, &nSize); });
    ExpectStatus(Answer, Forecast.ForRoom(nGiven));
    ExpectInput(aIn);

    const long nStatus = Answer.m_nStatus;
    const bool bDone =
        Forecast.MaySucceed() && (nStatus == QMT_SUCCESS || nStatus == QMT_ERROR_TEMPLATE_SIZE);
    Expect(nSize == (bDone ? nNeeded : nGiven), "tells the size of a result, and no other");
    const bool bGiven = bDone && nStatus == QMT_SUCCESS && nSize <= nGiven;
    Expect(nGiven == 0 || m_Out.IsUntouchedBehind(bGiven ? nSize : 0),
           "writes the result and no more");
    const Bytes aOut = bGiven ? m_Out.First(nSize) : Bytes();
    rModel.AfterCalibrate(Forecast, nStatus);
    if (bGiven)
        CheckResult(rSlot, Forecast, aIn, aOut);
    CompareWithTwin(rSlot, aIn, aOut, bDone ? QMT_SUCCESS : nStatus, Answer.m_bFault);
}

void ClCallSequence::CheckResult(StSlot& rSlot, const StForecast& Forecast, const Bytes& aIn,
                                 const Bytes& aOut) {
    const ClHandleModel& Model = rSlot.m_Model;
    Expect(IsHeaderRight(Forecast, aOut), "gives an 8-bit block of the right size");
    Expect(IsPaletteGrey(aOut), "gives a grey palette");
    Expect(IsResolutionRight(Forecast, aOut), "gives the resolution of the mode");
    if (Model.m_Options.m_bDynamicFingerMask) {
        if (IsOrdinary(Forecast) && HasFinger(Forecast, aOut))
            m_rObserver.OnQuickFinger();
        return;
    }
    if (Model.m_Options.m_eGeometry == EGeometry::eOff)
        Expect(ArePixelsSame(aIn, aOut), "gives the capture unchanged");
    if (Model.m_Options.m_eGeometry == EGeometry::eSpline && Model.Warp() == EWarp::eLoaded)
        Expect(IsBackgroundRight(Model.Table(), aOut), "gives background where there is no source");
}

/// A dynamic step is always compared, what is dear to prepare seldom.
bool ClCallSequence::IsTwinWanted(const StSlot& Slot) {
    const ClHandleModel& Model = Slot.m_Model;
    const bool bPrepares =
        Model.m_Options.m_eGeometry == EGeometry::eSpline && Model.Warp() != EWarp::eLoaded;
    if (bPrepares && Model.Data()->TableEntries() > cnMostEntries)
        return false;
    return Model.m_Options.m_bDynamicFingerMask || m_rChoices.OneIn(bPrepares ? 64 : 8);
}

/// What a handle does depends on its state alone, not on how it came there. Where memory was
/// missing the levels are the twin's or those before, and both from one capture.
void ClCallSequence::CompareWithTwin(StSlot& rSlot, const Bytes& aIn, const Bytes& aOut,
                                     long nStatus, bool bFault) {
    ClHandleModel& rModel = rSlot.m_Model;
    if (!rModel.IsReady() || (bFault && !rModel.m_Options.m_bDynamicFingerMask))
        return;
    if (!IsTwinWanted(rSlot)) {
        if (rModel.m_Options.m_bDynamicFingerMask)
            rModel.m_aLevels.clear();
        return;
    }
    const ClTwin Twin(rModel);
    Expect(Twin.IsMade(), "takes again what it took");
    Bytes aExpected;
    const long nExpected = Twin.Run(aIn, aExpected);
    if (nExpected == QMT_ERROR_INVALID_OPTIONS_SETTING)
        return;
    const bool bMissing = bFault && nStatus == QMT_ERROR_OUT_OF_MEMORY;
    Expect(bMissing || nStatus == nExpected, "answers as a new handle in the same state");
    Expect(aOut.empty() || aOut == aExpected, "gives the same as a new handle in the same state");
    if (nExpected != QMT_SUCCESS || !rModel.m_Options.m_bDynamicFingerMask)
        return; // no dynamic calibration: the levels stay
    StLevels Levels;
    GetCalibrationWarningLevels(Twin.Handle(), &Levels.first, &Levels.second);
    if (!bMissing)
        rModel.m_aLevels = {Levels};
    else if (!rModel.m_aLevels.empty())
        rModel.m_aLevels.push_back(Levels);
}

// Measurements

namespace {

double ContaminationOn(void* pHandle, Bytes aIn) {
    double dLevel = -1.0;
    ContaminationDetection(pHandle, aIn.data(), aIn.size(), &dLevel);
    return dLevel;
}

/// A handle that has seen nothing.
class ClNewHandle {
public:
    ClNewHandle() : m_pHandle(CalibrateCreate()) {}
    ClNewHandle(const ClNewHandle&) = delete;
    ClNewHandle& operator=(const ClNewHandle&) = delete;
    ~ClNewHandle() { CalibrateDelete(&m_pHandle); }

    operator void*() const { return m_pHandle; }

private:
    void* m_pHandle;
};

bool IsSame(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

void ClCallSequence::Contaminate(StSlot& rSlot) {
    const Bytes aIn = AnyCapture(m_rChoices, {0, 0});
    unsigned char* const pIn = m_rChoices.OneIn(16) ? nullptr : m_In.Hold(aIn);
    double dResult = 7.0;
    Note("ContaminationDetection", aIn.size());
    ExpectStatus(
        Try([&] { return ContaminationDetection(rSlot.m_pHandle, pIn, aIn.size(), nullptr); }),
        {QMT_ERROR_TEMPLATE_SIZE_PTR});
    const StAnswer Answer =
        Try([&] { return ContaminationDetection(rSlot.m_pHandle, pIn, aIn.size(), &dResult); });
    ExpectStatus(Answer,
                 {pIn == nullptr ? QMT_ERROR_BITMAP_PTR : StatusOfRawImage(aIn, aIn.size())});
    Expect(Answer.m_nStatus == QMT_SUCCESS ? dResult >= 0.0 && dResult <= 100.0
                                           : dResult > 100.5 && dResult < 101.5,
           "gives a level, or tells that nothing was measured");
    if (Answer.m_nStatus != QMT_SUCCESS)
        return;
    Expect(Field(aIn, 16, 4) == 0 || IsSame(dResult, 0.0), "finds nothing in a compressed block");
    Expect(IsSame(dResult, ContaminationOn(ClNewHandle(), aIn)), "gives what a new handle gives");
}

void ClCallSequence::CheckEfts(StSlot& rSlot) {
    const Bytes aIn = m_rChoices.OneIn(64) ? CorrectedTarget() : AnyCapture(m_rChoices, {0, 0});
    unsigned char* const pIn = m_rChoices.OneIn(16) ? nullptr : m_In.Hold(aIn);
    double dResult = 7.0;
    Note("CalibrateCheckEfts", aIn.size());
    const StAnswer Answer =
        Try([&] { return CalibrateCheckEfts(rSlot.m_pHandle, pIn, aIn.size(), &dResult); });
    ExpectStatus(Answer, ForCheckEfts(rSlot, pIn != nullptr ? aIn : Bytes(), pIn == nullptr));
    ExpectStatus(
        Try([&] { return CalibrateCheckEfts(rSlot.m_pHandle, nullptr, aIn.size(), nullptr); }),
        {QMT_ERROR_BITMAP_PTR});
    const bool bMeasured = Answer.m_nStatus == QMT_SUCCESS;
    if (bMeasured)
        CompareEfts(rSlot, aIn, dResult);
    Expect(bMeasured ? dResult >= 0.0 && dResult <= 100.0 : dResult > 6.5 && dResult < 7.5,
           "gives a percentage, or leaves the result");
    if (pIn != nullptr)
        ExpectStatus(
            Try([&] { return CalibrateCheckEfts(rSlot.m_pHandle, pIn, aIn.size(), nullptr); }),
            {QMT_ERROR_TEMPLATE_PTR_NULL});
}

/// What is right is the target of the data; options, table and history play no part.
void ClCallSequence::CompareEfts(StSlot& rSlot, Bytes aIn, double dResult) {
    ClHandleModel Other = rSlot.m_Model;
    Other.m_Options = StOptions();
    Other.AfterGenerateData(std::make_unique<StData>(rSlot.m_Model.Data()->m_Record), true);
    const ClTwin Twin(Other);
    double dExpected = -1.0;
    CalibrateCheckEfts(Twin.Handle(), aIn.data(), aIn.size(), &dExpected);
    Expect(IsSame(dResult, dExpected), "measures as a new handle with the same data");
}

Statuses ClCallSequence::ForCheckEfts(const StSlot& Slot, const Bytes& aIn, bool bNull) const {
    if (bNull)
        return {QMT_ERROR_BITMAP_PTR};
    if (const long nStatus = StatusOfBlock(aIn, aIn.size()))
        return {nStatus};
    if (!Slot.m_Model.IsReady())
        return {QMT_ERROR_NOT_INITIALIZED};
    if (const long nStatus = StatusOfImage(aIn, aIn.size()))
        return {nStatus};
    if (!IsReference(Slot.m_Model.Data()->m_Record)) // asked for once there are dots
        return {QMT_ERROR_CURRUPT_DATA, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE};
    if (SignedField(aIn, 4) > 64) // the painted target
        return {QMT_SUCCESS, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE};
    return {QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE};
}

// Generation

Statuses ClCallSequence::ForGenerate(const StSlot& Slot, const Bytes& aIn, bool bTarget) const {
    if (const long nStatus = StatusOfImage(aIn, aIn.size()))
        return {nStatus};
    const std::optional<StRecord>& Reference = Slot.m_Model.m_Reference;
    Statuses anAny = {QMT_ERROR_CURRUPT_DATA, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE};
    if (bTarget)
        anAny.push_back(QMT_SUCCESS);
    if (!Reference) // what was read of a block that failed
        return anAny;
    if (!Reference->m_aTarget.empty() && !IsReference(*Reference)) // asked for once there are dots
        return {QMT_ERROR_CURRUPT_DATA, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE};
    if (!bTarget || HasTwinPoints(*Reference))
        return {QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE};
    if (Reference->m_aTarget.empty())
        return {QMT_SUCCESS};
    return {QMT_SUCCESS, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE};
}

void ClCallSequence::Generate(StSlot& rSlot) {
    if (m_rChoices.OneIn(16)) {
        Note("CalibrateGenerateData(null)");
        ExpectStatus(Try([&] { return CalibrateGenerateData(rSlot.m_pHandle, nullptr, 100); }),
                     {QMT_ERROR_BITMAP_PTR});
        return;
    }
    const bool bTarget = m_rChoices.OneIn(128);
    const Bytes aIn = bTarget ? TargetCapture() : AnyCapture(m_rChoices, {0, 0});
    const Statuses anExpected = ForGenerate(rSlot, aIn, bTarget);
    unsigned char* const pIn = m_In.Hold(aIn);
    Note("CalibrateGenerateData", aIn.size());
    const StAnswer Answer =
        Try([&] { return CalibrateGenerateData(rSlot.m_pHandle, pIn, aIn.size()); });
    ExpectStatus(Answer, anExpected);
    ExpectInput(aIn);
    rSlot.m_Model.AfterGenerateData(nullptr, bTarget);
    if (Answer.m_nStatus == QMT_SUCCESS)
        CheckGenerated(rSlot, {280, 880});
    if (bTarget && !Answer.m_bFault && rSlot.m_Model.m_Reference)
        CompareGenerated(rSlot, aIn, Answer.m_nStatus);
}

/// The capture and the reference decide alone.
void ClCallSequence::CompareGenerated(StSlot& rSlot, Bytes aIn, long nStatus) {
    const ClNewHandle Other;
    if (!rSlot.m_Model.m_Reference->m_aTarget.empty()) {
        Bytes aReference = RecordBlock(*rSlot.m_Model.m_Reference);
        Expect(CalibrateSetReferenceData(Other, aReference.data(), aReference.size()) ==
                   QMT_SUCCESS,
               "takes again the reference that it took");
    }
    Expect(CalibrateGenerateData(Other, aIn.data(), aIn.size()) == nStatus,
           "generates as a new handle with the same reference");
    Expect(BlockOf(Other, CalibrateGetData) == BlockOf(rSlot.m_pHandle, CalibrateGetData),
           "gives the data that a new handle with the same reference gives");
}

/// What is generated is data like any other: it loads, and its table belongs to it.
void ClCallSequence::CheckGenerated(StSlot& rSlot, const StSize& Size) {
    const Bytes aData = BlockOf(rSlot.m_pHandle, CalibrateGetData);
    const StReadRecord Read = ReadRecord(aData);
    Expect(Read.m_nStatus == QMT_SUCCESS && RecordBlock(Read.m_Record) == aData,
           "gives generated data in the latest layout");
    Expect(Read.m_Record.m_nSourceWidth == Size.m_nWidth &&
               Read.m_Record.m_nSourceHeight == Size.m_nHeight && Read.m_Record.m_nPlanes == 1,
           "takes the size of captures from the target's");
    rSlot.m_Model.AfterGenerateData(std::make_unique<StData>(Read.m_Record), true);
    if (!IsPlausible(Read.m_Record))
        return;
    const Bytes aTable = BlockOf(rSlot.m_pHandle, CalibrateGetPrecalculatedData);
    const StReadTable Table = ReadTable(aTable, HashOf(Read.m_Record));
    Expect(Table.m_nStatus == QMT_SUCCESS, "gives the table of generated data");
    ClHandleModel Copy = rSlot.m_Model;
    Copy.AfterSetPrecalculatedData(Table, QMT_SUCCESS);
    const ClTwin Twin(Copy);
    Expect(Twin.IsMade(), "takes what was generated");
    Expect(BlockOf(Twin.Handle(), CalibrateGetData) == aData, "keeps what was generated");
}

} // namespace Calls
