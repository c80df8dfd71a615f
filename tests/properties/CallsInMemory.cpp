#include "properties/CallsInMemory.h"

#include "api/Api.h"
#include "calls/CallMaterial.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace Properties {

using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;

namespace {

constexpr unsigned char cnFill = 0xEE;
constexpr unsigned long cnRoom = 60000; ///< for each result but the table of a whole scanner
constexpr unsigned long cnImageRoom = 500000;
constexpr double cdBefore = 7.0;

// What is given

/// Large enough for a finger, small enough for thousands of calls.
const Bytes& Record() {
    static const Bytes aBlock = RecordBlock(PlausibleRecord(48, 80, 24, 32));
    return aBlock;
}

const Bytes& Finger() {
    static const Bytes aBlock = TestSupport::Capture(48, 80);
    return aBlock;
}

const Bytes& Table() {
    static const Bytes aBlock = [] {
        TestSupport::ClApiHandle Handle;
        EXPECT_EQ(Handle.SetData(Record()), 0);
        return Handle.PrecalculatedData();
    }();
    return aBlock;
}

unsigned char* Writable(const Bytes& aBlock) {
    return const_cast<unsigned char*>(aBlock.data()); // input blocks are never written to
}

// Before the call

void GiveNothing(void*) {}

void GiveData(void* pHandle) {
    EXPECT_EQ(CalibrateSetData(pHandle, Writable(Record()), Record().size()), 0);
}

void GiveTable(void* pHandle) {
    GiveData(pHandle);
    EXPECT_EQ(CalibrateSetPrecalculatedData(pHandle, Writable(Table()), Table().size()), 0);
}

/// A handle at work: its levels are those of a capture, where its options ask for any.
void Correct(void* pHandle) {
    GiveData(pHandle);
    Bytes aOut(cnRoom);
    unsigned long nSize = aOut.size();
    Calibrate(pHandle, Writable(Finger()), Finger().size(), aOut.data(), &nSize);
}

void GiveScanner(void* pHandle) {
    static const Bytes aBlock = TestSupport::DataFile("dynamic/loop.cal");
    EXPECT_EQ(CalibrateSetData(pHandle, Writable(aBlock), aBlock.size()), 0);
}

void GiveReference(void* pHandle) {
    EXPECT_EQ(CalibrateSetReferenceData(pHandle, Writable(Record()), Record().size()), 0);
}

// The calls

unsigned char* Room(StOutcome& r) {
    return r.m_aOut.data();
}

long RunCalibrate(void* pHandle, StOutcome& r) {
    return Calibrate(pHandle, Writable(Finger()), Finger().size(), Room(r), &r.m_nSize);
}

long CorrectScanner(void* pHandle, StOutcome& r) {
    static const Bytes aIn = TestSupport::DataBlock("dynamic/loop_raw.bmp");
    return Calibrate(pHandle, Writable(aIn), aIn.size(), Room(r), &r.m_nSize);
}

long RunContamination(void* pHandle, StOutcome& r) {
    r.m_dResult = cdBefore; // a failure writes it, too
    return ContaminationDetection(pHandle, Writable(Finger()), Finger().size(), &r.m_dResult);
}

long RunCheckEfts(void* pHandle, StOutcome& r) {
    const Bytes& aIn = Calls::CorrectedTarget();
    return CalibrateCheckEfts(pHandle, Writable(aIn), aIn.size(), &r.m_dResult);
}

long RunSetData(void* pHandle, StOutcome&) {
    return CalibrateSetData(pHandle, Writable(Record()), Record().size());
}

long RunGetData(void* pHandle, StOutcome& r) {
    return CalibrateGetData(pHandle, Room(r), &r.m_nSize);
}

long RunSetTable(void* pHandle, StOutcome&) {
    return CalibrateSetPrecalculatedData(pHandle, Writable(Table()), Table().size());
}

long RunGetTable(void* pHandle, StOutcome& r) {
    return CalibrateGetPrecalculatedData(pHandle, Room(r), &r.m_nSize);
}

long RunSetReference(void* pHandle, StOutcome&) {
    return CalibrateSetReferenceData(pHandle, Writable(Record()), Record().size());
}

long RunGenerate(void* pHandle, StOutcome&) {
    const Bytes& aIn = Calls::TargetCapture();
    return CalibrateGenerateData(pHandle, Writable(aIn), aIn.size());
}

long RunSetOption(void* pHandle, StOutcome&) {
    return CalibrateSetOption(pHandle, "SensitiveMode=true");
}

long RunGetOption(void* pHandle, StOutcome& r) {
    return CalibrateGetOption(pHandle, "GeometricCalibrate", reinterpret_cast<char*>(Room(r)),
                              &r.m_nSize);
}

long RunGetLevels(void* pHandle, StOutcome& r) {
    return GetCalibrationWarningLevels(pHandle, &r.m_dResult, nullptr);
}

long RunWords(void*, StOutcome&) {
    const char* szText = CalibrateGetErrorDescription(QMT_ERROR_OUT_OF_MEMORY);
    return szText == GetErrorDescriptionIntern(QMT_ERROR_OUT_OF_MEMORY) &&
                   GetErrorDescriptionInternW(QMT_ERROR_OUT_OF_MEMORY) != nullptr
               ? QMT_SUCCESS
               : QMT_ERROR_INTERNAL;
}

long RunConversions(void*, StOutcome& r) {
    wchar_t acWide[3] = {};
    const long nWide = ConvertSBCSToWidechar("abc", 3, acWide, sizeof acWide);
    const long nNarrow =
        ConvertWideCharToSBCS(acWide, sizeof acWide, reinterpret_cast<char*>(Room(r)), cnRoom);
    return nWide == 3 && nNarrow == 3 ? QMT_SUCCESS : QMT_ERROR_INTERNAL;
}

bool Always(const StOptionSet&) {
    return true;
}

bool UnlessRefused(const StOptionSet& Options) {
    return !Options.IsRefused();
}

Bytes& Append(Bytes& rTo, const void* pFrom, std::size_t nSize) {
    const auto* pBytes = static_cast<const unsigned char*>(pFrom);
    rTo.insert(rTo.end(), pBytes, pBytes + nSize);
    return rTo;
}

Bytes OptionsOf(void* pHandle) {
    Bytes aOptions;
    for (const char* szKey : {"DynamicFingerMask", "SensitiveMode", "GeometricCalibrate",
                              "MaskIsOutput", "PrecalculatedData"}) {
        char acValue[40] = {};
        unsigned long nSize = sizeof acValue;
        EXPECT_EQ(CalibrateGetOption(pHandle, szKey, acValue, &nSize), 0);
        Append(aOptions, acValue, sizeof acValue);
    }
    return aOptions;
}

Bytes LevelsOf(void* pHandle) {
    double adLevels[2] = {};
    EXPECT_EQ(GetCalibrationWarningLevels(pHandle, &adLevels[0], &adLevels[1]), 0);
    Bytes aLevels;
    return Append(aLevels, adLevels, sizeof adLevels);
}

Bytes BlockOf(void* pHandle, long (*get)(void*, unsigned char*, unsigned long*)) {
    unsigned long nSize = 0;
    long nStatus = get(pHandle, nullptr, &nSize);
    Bytes aBlock(sizeof nStatus + nSize);
    if (nStatus == QMT_ERROR_TEMPLATE_SIZE)
        nStatus = get(pHandle, aBlock.data() + sizeof nStatus, &nSize);
    std::memcpy(aBlock.data(), &nStatus, sizeof nStatus);
    return aBlock;
}

} // namespace

bool IsNight() {
    return std::getenv("TESSARIN_NIGHTLY") != nullptr;
}

std::string StOptionSet::Name() const {
    static const char* const caszGeometry[] = {"Off", "OddLines", "Spline"};
    return std::string(m_bDynamicFingerMask ? "Dynamic" : "Static") +
           (m_bSensitiveMode ? "Sensitive" : "") + caszGeometry[m_nGeometry] +
           (m_bMaskIsOutput ? "Mask" : "") + (m_bPrecalculatedData ? "Precalculated" : "");
}

const std::vector<StOptionSet>& AllOptions() {
    static const std::vector<StOptionSet> aSets = [] {
        std::vector<StOptionSet> aMade;
        for (const bool bDynamic : {true, false})
            for (const bool bSensitive : {false, true})
                for (const int nGeometry : {2, 1, 0})
                    for (const bool bMask : {false, true})
                        for (const bool bPrecalculated : {false, true})
                            aMade.push_back(
                                {bDynamic, bSensitive, nGeometry, bMask, bPrecalculated});
        return aMade;
    }();
    return aSets;
}

ClHandle::ClHandle(const StOptionSet& Options) : m_pHandle(CalibrateCreate()) {
    static const char* const caszGeometry[] = {"off", "oddLines", "ThinPlateSpline"};
    const auto Set = [&](const std::string& Key, const std::string& Value) {
        EXPECT_EQ(CalibrateSetOption(m_pHandle, (Key + "=" + Value).c_str()), 0);
    };
    const auto Word = [](bool bOn) { return bOn ? "true" : "false"; };
    Set("DynamicFingerMask", Word(Options.m_bDynamicFingerMask));
    Set("SensitiveMode", Word(Options.m_bSensitiveMode));
    Set("GeometricCalibrate", caszGeometry[Options.m_nGeometry]);
    Set("MaskIsOutput", Word(Options.m_bMaskIsOutput));
    Set("PrecalculatedData", Word(Options.m_bPrecalculatedData));
}

bool StOutcome::operator==(const StOutcome& Other) const {
    return m_nStatus == Other.m_nStatus && m_nSize == Other.m_nSize && m_aOut == Other.m_aOut &&
           std::memcmp(&m_dResult, &Other.m_dResult, sizeof m_dResult) == 0;
}

bool StState::operator==(const StState& Other) const {
    return m_aOptions == Other.m_aOptions && m_aLevels == Other.m_aLevels &&
           m_aData == Other.m_aData && m_aTable == Other.m_aTable;
}

StState StateOf(void* pHandle) {
    return {OptionsOf(pHandle), LevelsOf(pHandle), BlockOf(pHandle, CalibrateGetData),
            BlockOf(pHandle, CalibrateGetPrecalculatedData)};
}

Bytes NoBlock() {
    const long nStatus = QMT_ERROR_NOT_INITIALIZED;
    Bytes aBlock;
    return Append(aBlock, &nStatus, sizeof nStatus);
}

namespace {

StOutcome Left(unsigned long nRoom, double dResult) {
    return {0, nRoom, Bytes(nRoom, cnFill), dResult};
}

} // namespace

StOutcome StCall::Run(void* pHandle) const {
    StOutcome Outcome = m_Left;
    Outcome.m_nStatus = m_pRun(pHandle, Outcome);
    return Outcome;
}

const std::vector<StCall>& CallsThatAllocate() {
    static const StOutcome Block = Left(cnRoom, cdBefore);
    static const StOutcome Image = Left(cnImageRoom, cdBefore);
    static const StOutcome Nothing = Left(0, cdBefore);
    static const StOutcome NotMeasured = Left(0, 101.0);
    static const std::vector<StCall> aCalls = {
        {"first Calibrate", GiveData, RunCalibrate, Block, false, UnlessRefused, 9, 1},
        {"second Calibrate", Correct, RunCalibrate, Block, false, UnlessRefused, 9, 1},
        {"Calibrate with a table loaded", GiveTable, RunCalibrate, Block, false, UnlessRefused, 13,
         1},
        {"Calibrate of a scanner", GiveScanner, CorrectScanner, Image, false, UnlessRefused, 29, 1},
        {"ContaminationDetection", Correct, RunContamination, NotMeasured, false, Always, 5, 7},
        {"CalibrateCheckEfts", GiveData, RunCheckEfts, Nothing, false, Always, 29, 7},
        {"first CalibrateSetData", GiveNothing, RunSetData, Nothing, true, Always, 13, 1},
        {"second CalibrateSetData", Correct, RunSetData, Nothing, true, Always, 13, 1},
        {"CalibrateGetData", Correct, RunGetData, Block, false, Always, 5, 7},
        {"CalibrateSetPrecalculatedData", Correct, RunSetTable, Nothing, true, Always, 1, 1},
        {"CalibrateGetPrecalculatedData", GiveTable, RunGetTable, Block, false, Always, 1, 1},
        {"CalibrateSetReferenceData", Correct, RunSetReference, Nothing, true, Always, 1, 7},
        {"CalibrateGenerateData", GiveNothing, RunGenerate, Nothing, true, Always, 29, 7},
        {"generation on a reference", GiveReference, RunGenerate, Nothing, true, Always, 29, 7},
    };
    return aCalls;
}

const std::vector<StCall>& CallsThatDoNot() {
    static const StOutcome Block = Left(cnRoom, cdBefore);
    static const std::vector<StCall> aCalls = {
        {"CalibrateSetOption", GiveData, RunSetOption, Block, false, Always, 1, 1},
        {"CalibrateGetOption", GiveData, RunGetOption, Block, false, Always, 1, 7},
        {"GetCalibrationWarningLevels", GiveData, RunGetLevels, Block, false, Always, 1, 7},
        {"words", GiveNothing, RunWords, Block, false, Always, 1, 7},
        {"conversions", GiveNothing, RunConversions, Block, false, Always, 1, 7},
    };
    return aCalls;
}

} // namespace Properties
