// The whole trace of every exported call that reaches into the engine: its own lines, those of the
// engine and those of the geometric classes, in the order in which the work is done.

#include "TessarinCalibrateSDK/TracedCalls.h"
#include "support/DotTargets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

using TestSupport::Bytes;
using TestSupport::ClLogCapture;
using TestSupport::Leaving;
using TestSupport::Lines;
using TestSupport::PlausibleRecord;
using TestSupport::Printed;
using TestSupport::StBench;
using TestSupport::StTargetImage;
using TestSupport::StTracedCall;
using TestSupport::Trace;

namespace Calls = TestSupport::Calls;

namespace {

const std::string cEngine = "ClIpCalibrateQK7::";
const std::string cWarp = "ClIpCalibrateGeometricBase::";
const std::string cBicubic = "ClIpCalibrateGeometricBicubic::";
const std::string cBuilder = "ClIpCalibrateGeometricBuildRefPointsBase::";
const std::string cRawModel = "ClIpCalibrateGeometricBuildRefPointsQK7::";
const std::string cHalfModel = "ClIpCalibrateGeometricBuildRefPointsQK7Half::";

Lines Joined(std::initializer_list<Lines> aParts) {
    Lines aAll;
    for (const Lines& aPart : aParts)
        aAll.insert(aAll.end(), aPart.begin(), aPart.end());
    return aAll;
}

/// Enter and Leaving of a member, and what happens between.
Lines Member(const std::string& Name, std::initializer_list<Lines> aInner = {}) {
    return Joined({{Trace(Name + "() Enter")}, Joined(aInner), {Trace(Name + "() Leaving")}});
}

Lines Reset() {
    return Member(cWarp + "Reset");
}

/// A run of the warp that makes the table and has no image to correct.
Lines Preparing() {
    return Member("ClIpCalibrateBase::Process",
                  {Member(cWarp + "Initiate", {Member(cBicubic + "InitiateParams")}),
                   Member(cWarp + "Calibrate")});
}

/// A run of the warp that has its table.
Lines Warping() {
    return Member("ClIpCalibrateBase::Process",
                  {Member(cWarp + "Initiate"),
                   Member(cWarp + "Calibrate", {Member(cBicubic + "CalibrateGeo")})});
}

Lines ColumnLengths(const std::string& Model) {
    return Member(Model + "GetGridColumnLengths");
}

Lines BuildingPattern(const std::string& Model) {
    return Member(Model + "BuildTargetPoints", {ColumnLengths(Model)});
}

/// Looking up the neighbours of each dot leaves no lines.
Lines CheckingRecord() {
    return Member(cEngine + "CheckGeometricDataTarget",
                  {Member(cBuilder + "ValidateCalibrationData",
                          {Member(cBuilder + "ValidateTargetPoints", {BuildingPattern(cRawModel)}),
                           Member(cBuilder + "ArrayToGrid", {ColumnLengths(cRawModel)})})});
}

Lines FindingCandidates() {
    return Member(cBuilder + "LocatePoints",
                  {Member(cBuilder + "BuildGrid", {Member(cBuilder + "SortXY")})});
}

Lines Centres() {
    return Joined(
        {Member(cBuilder + "GetCentreOfGrid"), Member(cBuilder + "GetCentreOfVectorArray")});
}

Lines Moving() {
    return Member(cBuilder + "MoveArray");
}

/// A reference replaces the ideal pattern.
Lines BuildingTarget(const std::string& Model, bool bReference) {
    return Member(cBuilder + "BuildTarget", {bReference ? Lines() : BuildingPattern(Model)});
}

/// From the candidates to the check of the pattern. No dot of a clean plate is removed.
Lines Pruning(const std::string& Model, bool bReference) {
    return Joined(
        {Member(cBuilder + "RemoveLessNeighbours"), Member(cBuilder + "ReduceToFittingNeighbours"),
         Member(cBuilder + "RemoveLessNeighbours"),
         Member(cBuilder + "GridRemoveBadPoints",
                {BuildingTarget(Model, bReference), Centres(), Moving(), Centres(), Moving()})});
}

Lines TakingDots(const std::string& Model) {
    return Joined({BuildingPattern(Model), Centres(), Member(cBuilder + "SortXY")});
}

/// The model of corrected images has column lengths of its own to check the lines by.
Lines CheckingLines(const std::string& Model) {
    return Model == cRawModel ? Member(cBuilder + "CheckGridLines", {ColumnLengths(Model)})
                              : Lines();
}

Lines PlacingTarget(const std::string& Model, bool bReference) {
    const Lines Border = Member(cBuilder + "GetBorderDelta");
    return Joined({BuildingTarget(Model, bReference),
                   Member(cBuilder + "CenterTarget", {Border, Border, Border, Border, Moving()})});
}

/// A run of the builder that finds the target. The points are those of its reference, if any.
Lines Locating(const std::string& Model, const Lines& aReference = {}) {
    const bool bReference = !aReference.empty();
    return Member(
        cBuilder + "Process",
        {aReference, FindingCandidates(),
         Member(cBuilder + "AssociatePoints",
                {Pruning(Model, bReference),
                 Member(Model + "GridToArray", {TakingDots(Model), CheckingLines(Model)})}),
         PlacingTarget(Model, bReference)});
}

/// A line for every pair of points.
template <class Data>
Lines PointsOf(const Data& rData) {
    Lines aPoints;
    for (unsigned long i = 0; i < rData.m_aTarget.Entries(); ++i)
        aPoints.push_back(
            Trace(Printed("%d: Target(%7.3f, %7.3f) Actual0(%7.3f, %7.3f)", static_cast<int>(i),
                          rData.m_aTarget[i].x, rData.m_aTarget[i].y, rData.m_aActual[0][i].x,
                          rData.m_aActual[0][i].y)));
    return aPoints;
}

Lines Measuring() {
    return Joined({Member("ClGeometricTransformation::Transform"),
                   {Trace("ClGeometricAccuracy::setRequirements(ClGeometricAccuracy::eEFTS) Enter"),
                    Trace("ClGeometricAccuracy::setRequirements() Leaving")},
                   Member("ClGeometricAccuracy::Calculate"),
                   Member("ClGeometricAccuracy::getTestResult")});
}

/// Expects these lines between Enter and Leaving of a call that succeeds.
void ExpectTrace(const StTracedCall& Call, StBench& rBench, std::initializer_list<Lines> aInner) {
    const std::string Enter = Call.m_pEnter(rBench, rBench.Handle());
    const ClLogCapture Log;
    EXPECT_EQ(Call.m_pCall(rBench, rBench.Handle()), 0);
    EXPECT_EQ(Log.Lines(), Joined({{Trace(Enter)}, Joined(aInner), {Leaving(Call.m_szName, 0)}}));
}

Lines Initialized() {
    return Member(cEngine + "IsInitialized");
}

Lines Sizes(const char* szFunction, unsigned long nOld, unsigned long nNew) {
    return {Trace(Printed("%s OldSize=%lu NewSize=%lu", szFunction, nOld, nNew))};
}

} // namespace

// Calibration data

TEST(WholeTrace, SetDataReadsChecksAndPrepares) {
    StBench Bench;
    ExpectTrace(Calls::cSetData, Bench,
                {Member(cEngine + "Clear"),
                 // a preparation begins on an empty table, too
                 Member(cEngine + "Read", {Reset(), CheckingRecord(), Preparing()}),
                 {Trace("CalibrateSetData() Version of calibration data is 006")}});
}

TEST(WholeTrace, SetDataPreparesNothingThatWillBeLoaded) {
    StBench Bench;
    Bench.m_Processor.m_bPrecalculatedData = true;
    ExpectTrace(Calls::cSetData, Bench,
                {Member(cEngine + "Clear"),
                 Member(cEngine + "Read", {Reset(), CheckingRecord()}),
                 {Trace("CalibrateSetData() Version of calibration data is 006")}});
}

TEST(WholeTrace, SetPrecalculatedDataLoads) {
    StBench Bench;
    ExpectTrace(Calls::cSetPrecalculated, Bench,
                {Member(cEngine + "ReadPrecalculatedData", {Member(cWarp + "Load")}),
                 {Trace("CalibrateSetPrecalculatedData() Version of calibration data is 001")}});
}

TEST(WholeTrace, SetReferenceDataReads) {
    StBench Bench;
    ExpectTrace(Calls::cSetReference, Bench,
                {Member(cEngine + "Clear"), Member(cEngine + "ReadTarget")});
}

TEST(WholeTrace, GetDataWrites) {
    StBench Bench;
    ExpectTrace(
        Calls::cGetData, Bench,
        {Initialized(), Member(cEngine + "Write"), Sizes("CalibrateGetData", 200000, 1261)});
}

TEST(WholeTrace, GetPrecalculatedDataStores) {
    StBench Bench;
    CalibrateSetData(Bench.Handle(), Bench.m_aRecord.data(), Bench.m_aRecord.size());
    // header, hash, record and 36 bytes for each of 40 x 60 pixels
    ExpectTrace(Calls::cGetPrecalculated, Bench,
                {Initialized(),
                 Member(cEngine + "WritePrecalculatedData", {Member(cWarp + "Store")}),
                 Sizes("CalibrateGetPrecalculatedData", 200000, 28 + 94 + 36 * 40 * 60 + 4)});
}

// Captures

TEST(WholeTrace, CalibrateWarps) {
    StBench Bench;
    CalibrateSetData(Bench.Handle(), Bench.m_aRecord.data(), Bench.m_aRecord.size());
    ExpectTrace(Calls::cCalibrate, Bench,
                {Initialized(),
                 {Trace(cEngine + "Process() Enter")},
                 Warping(),
                 {Leaving(cEngine + "Process", 0)}});
}

TEST(WholeTrace, CalibratePreparesATableThatIsMissing) {
    StBench Bench;
    ExpectTrace(Calls::cCalibrate, Bench,
                {Initialized(),
                 {Trace(cEngine + "Process() Enter")},
                 Member("ClIpCalibrateBase::Process",
                        {Member(cWarp + "Initiate", {Member(cBicubic + "InitiateParams")}),
                         Member(cWarp + "Calibrate", {Member(cBicubic + "CalibrateGeo")})}),
                 {Leaving(cEngine + "Process", 0)}});
}

TEST(WholeTrace, CalibrateKeepsOddLines) {
    StBench Bench;
    Bench.m_Processor.m_eGeometricMode = ClIpCalibrateLumivane2::eOddLines;
    ExpectTrace(Calls::cCalibrate, Bench,
                {Initialized(),
                 {Trace(cEngine + "Process() Enter")},
                 Member(cEngine + "CopyOddLineImage"),
                 {Leaving(cEngine + "Process", 0)}});
}

TEST(WholeTrace, CalibrateOfTheWrongSizeBreaksOffInTheWarp) {
    StBench Bench;
    CalibrateSetData(Bench.Handle(), Bench.m_aRecord.data(), Bench.m_aRecord.size());
    Bench.m_aCapture = TargetBlock(StTargetImage());
    const ClLogCapture Log;
    EXPECT_EQ(Calls::cCalibrate.m_pCall(Bench, Bench.Handle()), -14);
    Lines aLines = Log.Lines();
    ASSERT_GT(aLines.size(), 3u);
    const Lines aEnd(aLines.end() - 3, aLines.end());
    aLines.resize(aLines.size() - 3);
    EXPECT_EQ(aLines, Joined({{Trace(Calls::cCalibrate.m_pEnter(Bench, Bench.Handle()))},
                              Initialized(),
                              {Trace(cEngine + "Process() Enter"),
                               Trace("ClIpCalibrateBase::Process() Enter")},
                              Member(cWarp + "Initiate"),
                              {Trace(cWarp + "Calibrate() Enter")}}));
    EXPECT_EQ(aEnd[0].m_Text, std::string("Calibrate() Error: ") + GetErrorDescriptionIntern(-14) +
                                  "\nInImage can't be the out image");
    EXPECT_EQ(aEnd[1].m_Text.find("Calibrate() File: Calibrate/IpCalibrateGeometricBase("), 0u);
    EXPECT_EQ(aEnd[2], Leaving("Calibrate", -14, 3));
    EXPECT_EQ(aEnd[0].m_nLevel, 3);
    EXPECT_EQ(aEnd[1].m_nLevel, 3);
}

// Targets

TEST(WholeTrace, GenerateDataLocatesTracesThePointsAndPrepares) {
    StBench Bench;
    Bench.m_aCapture = TargetBlock(StTargetImage());
    const std::string Enter = Calls::cGenerate.m_pEnter(Bench, Bench.Handle());
    const ClLogCapture Log;
    EXPECT_EQ(Calls::cGenerate.m_pCall(Bench, Bench.Handle()), 0);
    const Lines aPoints = PointsOf(Bench.m_Processor.m_CalibrationData);
    EXPECT_EQ(aPoints.size(), 75u);
    EXPECT_EQ(Log.Lines(), Joined({{Trace(Enter)},
                                   Member(cEngine + "Clear"),
                                   Member(cEngine + "Setup",
                                          {Reset(), Locating(cRawModel), aPoints, Preparing()}),
                                   {Leaving("CalibrateGenerateData", 0)}}));
}

TEST(WholeTrace, GenerateDataTracesItsReferenceFirst) {
    StBench Bench;
    Bench.m_aCapture = TargetBlock(StTargetImage());
    Fill(PlausibleRecord(390, 1052, 320, 480, 19685), Bench.m_Processor.m_TargetData);
    const Lines aReference = PointsOf(Bench.m_Processor.m_TargetData);
    const std::string Enter = Calls::cGenerate.m_pEnter(Bench, Bench.Handle());
    const ClLogCapture Log;
    EXPECT_EQ(Calls::cGenerate.m_pCall(Bench, Bench.Handle()), 0);
    EXPECT_EQ(Log.Lines(),
              Joined({{Trace(Enter)},
                      Member(cEngine + "Clear"),
                      Member(cEngine + "Setup",
                             {Reset(), Locating(cRawModel, aReference),
                              PointsOf(Bench.m_Processor.m_CalibrationData), Preparing()}),
                      {Leaving("CalibrateGenerateData", 0)}}));
}

TEST(WholeTrace, GenerateDataBreaksOffWhereADotLacks) {
    StBench Bench;
    StTargetImage Image;
    Image.m_aMissing = {17};
    Bench.m_aCapture = TargetBlock(Image);
    const ClLogCapture Log;
    EXPECT_EQ(Calls::cGenerate.m_pCall(Bench, Bench.Handle()), -600);
    Lines aLines = Log.Lines();
    ASSERT_GT(aLines.size(), 3u);
    aLines.resize(aLines.size() - 3); // Error, File and Leaving are compared with the call's own
    EXPECT_EQ(aLines, Joined({{Trace(Calls::cGenerate.m_pEnter(Bench, Bench.Handle()))},
                              Member(cEngine + "Clear"),
                              {Trace(cEngine + "Setup() Enter")},
                              Reset(),
                              {Trace(cBuilder + "Process() Enter")},
                              FindingCandidates(),
                              {Trace(cBuilder + "AssociatePoints() Enter")},
                              Pruning(cRawModel, false),
                              {Trace(cRawModel + "GridToArray() Enter")},
                              TakingDots(cRawModel),
                              Member(cEngine + "Clear")}));
    EXPECT_TRUE(Log.Texts(3).empty());
}

TEST(WholeTrace, CheckEftsLocatesFitsAndMeasures) {
    StBench Bench;
    Bench.m_aCapture = TargetBlock(TestSupport::CorrectedTarget());
    ExpectTrace(
        Calls::cCheckEfts, Bench,
        {Initialized(), Member(cEngine + "Compare",
                               {Locating(cHalfModel, PointsOf(Bench.m_Processor.m_CalibrationData)),
                                Measuring()})});
}

// The empty platen

TEST(WholeTrace, ContaminationDetectionTracesItsResult) {
    StBench Bench;
    std::fill(Bench.m_aCapture.begin() + 40 + 1024, Bench.m_aCapture.end(), 200);
    ExpectTrace(Calls::cContamination, Bench,
                {{Trace("Result of contamination detection is   0.00")}});
}
