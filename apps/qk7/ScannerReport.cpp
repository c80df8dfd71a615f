#include "apps/qk7/ScannerReport.h"

#include "apps/qk7/Advice.h"
#include "apps/qk7/BlockInfo.h"
#include "apps/qk7/CalibrationReport.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/Derivation.h"
#include "apps/qk7/FingerReport.h"
#include "apps/qk7/Handle.h"

#include "TessarinCalibrateSDK.h"

namespace qk7 {

namespace {

void NoteFile(const char* szRole, const std::string& Path, report::StScanner& rScanner) {
    if (!Path.empty())
        rScanner.m_aFiles.push_back({szRole, FileNameOf(Path)});
}

void NoteFiles(const StScannerFiles& Files, report::StScanner& rScanner) {
    NoteFile("Target", Files.m_Target, rScanner);
    NoteFile("Second capture", Files.m_Second, rScanner);
    NoteFile("Reference plate", Files.m_Reference, rScanner);
    NoteFile("Calibration", Files.m_Calibration, rScanner);
    NoteFile("Empty platen", Files.m_Empty, rScanner);
    for (const std::string& finger : Files.m_aFingers)
        NoteFile("Finger", finger, rScanner);
}

[[noreturn]] void RefuseStored(const StSource& Stored, const StDerivation& Derivation,
                               const ClLibraryError& Error) {
    if (const auto fault = FindRecordFault(Stored.m_Bytes))
        throw ClUnloadableRecord(Stored.Name() + ": " + Error.what(), *fault, Diagnose(Derivation),
                                 "Derive the calibration anew.");
    throw ClFailure(Stored.Name(), Error.what() + Advice(EHanded::eCalibration, Error.Number()));
}

/// The stored block and the table made from it.
StBlocks StoredBlocks(const std::string& Path, const StDerivation& Derivation) {
    const StSource stored = FileSource(Path);
    try {
        ClHandle handle;
        handle.SetData(stored.m_Bytes);
        return {stored.m_Bytes,
                handle.PrecalculatedData(ExpectedPrecalculatedBytes(stored.m_Bytes))};
    } catch (const ClLibraryError& error) {
        RefuseStored(stored, Derivation, error);
    }
}

StBlocks BlocksOf(const StScannerFiles& Files, const StDerivation& Derivation) {
    return Files.m_Calibration.empty() ? Derive(Derivation, true)
                                       : StoredBlocks(Files.m_Calibration, Derivation);
}

/// A message without the name of the file in front: the page names its files elsewhere.
std::string WithoutName(const std::string& Message, const StScannerFiles& Files) {
    for (const std::string& path : PathsOf(Files)) {
        const std::string front = ShownName(path, EStream::eIn) + ": ";
        if (!path.empty() && Message.compare(0, front.size(), front) == 0)
            return Message.substr(front.size());
    }
    return Message;
}

void NoteRefusal(const std::vector<std::string>& aReasons, const std::string& Advice,
                 const StTargetDiagnosis& Target, report::StScanner& rScanner) {
    rScanner.m_eVerdict = report::EVerdict::eRefused;
    rScanner.m_aReasons = aReasons;
    rScanner.m_sAdvice = Advice;
    NoteTarget(Target, rScanner);
}

/// The blocks, or none of a target that is refused.
std::optional<StBlocks> JudgeInto(const StScannerFiles& Files, const StDerivation& Derivation,
                                  report::StScanner& rScanner) {
    try {
        const StBlocks blocks = BlocksOf(Files, Derivation);
        NoteTarget(Diagnose(Derivation), rScanner);
        NoteJudged(Derivation, blocks,
                   Files.m_Calibration.empty()
                       ? Judge(Derivation, blocks.m_Calibration)
                       : JudgeStored(Derivation, {Files.m_Calibration, blocks.m_Calibration}),
                   rScanner);
        return blocks;
    } catch (const ClRefusedTarget& refused) {
        NoteRefusal({WithoutName(refused.Message(), Files)}, refused.Advice(), refused.Diagnosis(),
                    rScanner);
    } catch (const ClUnloadableRecord& unloadable) {
        NoteRefusal({WithoutName(unloadable.Message(), Files), SentenceOf(unloadable.Fault())},
                    unloadable.Advice(), unloadable.Diagnosis(), rScanner);
    }
    return std::nullopt;
}

Json ReasonsJson(const report::StScanner& Scanner) {
    Json json = Json::array();
    for (const std::string& reason : Scanner.m_aReasons)
        json.push_back(reason);
    return json;
}

bool IsOwn(const std::string& Name) {
    const std::string front = "report/";
    return Name.compare(0, front.size(), front) == 0;
}

/// Those of the list of figures, and what no other command tells, by their names.
Json FiguresJson(const report::Values& Known) {
    Json json = Json::object();
    for (const report::StFigure& figure : report::Figures())
        if (const auto value = report::ValueOf(Known, figure.m_szId))
            json[figure.m_szId] = *value;
    for (const auto& [name, value] : Known)
        if (IsOwn(name))
            json[name] = value;
    return json;
}

Json FingerJson(const report::StFinger& Finger) {
    Json json = {{"file", Finger.m_sFile}, {"figures", FiguresJson(Finger.m_Values)}};
    if (!Finger.m_sFault.empty())
        json["error"] = Finger.m_sFault;
    return json;
}

} // namespace

report::StScanner GatherScanner(const StScannerFiles& Files) {
    StDerivation derivation;
    derivation.m_Target = PictureSource(Files.m_Target);
    derivation.m_Second = PictureSource(Files.m_Second);
    derivation.m_Reference = FileSource(Files.m_Reference);
    report::StScanner scanner;
    scanner.m_sTitle = Files.m_Title.empty() ? FileNameOf(Files.m_Target) : Files.m_Title;
    scanner.m_sVersion = QK7_VERSION;
    NoteFiles(Files, scanner);
    NoteCapture(derivation.m_Target, scanner);
    const std::optional<StBlocks> blocks = JudgeInto(Files, derivation, scanner);
    if (!Files.m_Empty.empty())
        scanner.m_Platen = GatherPlaten(Files.m_Empty);
    const auto pHandle = blocks ? FingerHandle(*blocks) : nullptr;
    for (const std::string& finger : Files.m_aFingers)
        scanner.m_aFingers.push_back(GatherFinger(finger, pHandle.get()));
    return scanner;
}

std::vector<std::string> PathsOf(const StScannerFiles& Files) {
    std::vector<std::string> paths = {Files.m_Target, Files.m_Second, Files.m_Reference,
                                      Files.m_Calibration, Files.m_Empty};
    paths.insert(paths.end(), Files.m_aFingers.begin(), Files.m_aFingers.end());
    return paths;
}

Json ScannerJson(const report::StScanner& Scanner) {
    Json json = {{"verdict", report::VerdictName(Scanner.m_eVerdict)},
                 {"reasons", ReasonsJson(Scanner)},
                 {"figures", FiguresJson(Scanner.m_Values)}};
    if (Scanner.m_Platen)
        json["platen"] = {{"file", Scanner.m_Platen->m_sFile},
                          {"figures", FiguresJson(Scanner.m_Platen->m_Values)}};
    json["fingers"] = Json::array();
    for (const report::StFinger& finger : Scanner.m_aFingers)
        json["fingers"].push_back(FingerJson(finger));
    return json;
}

void AddNumbers(const std::string& Name, const Json& Value, report::Values& rValues) {
    if (Value.is_number())
        rValues[Name] = Value.get<double>();
    if (!Value.is_structured())
        return;
    for (const auto& [key, value] : Value.items())
        AddNumbers(std::string(Name).append("/").append(key), value, rValues);
}

} // namespace qk7
