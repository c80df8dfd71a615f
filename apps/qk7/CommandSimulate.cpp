/// `qk7 simulate`: the files of a simulated scanner, or of a production line of them, to try the
/// other commands on.

#include "apps/qk7/Arguments.h"
#include "apps/qk7/Choices.h"
#include "apps/qk7/Commands.h"
#include "apps/qk7/Console.h"
#include "apps/qk7/Document.h"
#include "apps/qk7/File.h"
#include "apps/qk7/Picture.h"
#include "apps/qk7/Progress.h"
#include "apps/qk7/SpoiltTargets.h"

#include "sim/BitmapBlock.h"
#include "sim/Capture.h"
#include "sim/Record.h"
#include "sim/TargetCases.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace qk7 {

namespace {

struct StSimulateCall {
    std::uint64_t m_nSeed = 1;
    unsigned int m_nCount = 1;
    unsigned int m_nScanners = 0; ///< 0 for one, whose files lie in the folder itself
    unsigned int m_nSpoilt = 0;
    std::vector<std::string> m_aKinds = {"loop"};
    std::vector<std::string> m_aCases;
    std::string m_Output;
    std::string m_Format = "bmp";
    bool m_bTruth = false;
    bool m_bJson = false;
};

std::string PathIn(const std::string& Folder, const std::string& Name) {
    return (std::filesystem::path(Folder) / Name).string();
}

/// One capture to make.
struct StOrder {
    std::string m_File;
    std::string m_Kind;
    std::optional<std::string> m_Case; ///< of the target
    std::uint64_t m_nSeed;
    std::function<sim::ClCapture(const sim::ClScanner&)> m_Make;
};

struct StNaming {
    unsigned int m_nCount; ///< of the captures of a subject
    std::string m_Ending;
};

/// The captures of a subject carry its name, with a number behind it where there are several. The
/// number is also the capture's seed, so that more captures leave the first ones as they were.
std::string FileName(const StNaming& Naming, const std::string& Subject, unsigned int nNumber) {
    return Subject + (Naming.m_nCount > 1 ? "_" + std::to_string(nNumber) : "") + "." +
           Naming.m_Ending;
}

void AddKind(std::vector<StOrder>& rOrders, const std::string& Kind, const StNaming& Naming) {
    sim::EKind eKind = sim::EKind::eTarget;
    sim::KindFromName(Kind, eKind); // the parser lets only kinds through
    for (unsigned int i = 1; i <= Naming.m_nCount; ++i)
        rOrders.push_back(
            {FileName(Naming, Kind, i), Kind, std::nullopt, i,
             [=](const sim::ClScanner& scanner) { return sim::CaptureKind(scanner, eKind, i); }});
}

void AddCase(std::vector<StOrder>& rOrders, const std::string& Case, const StNaming& Naming) {
    sim::ETargetCase eCase = sim::ETargetCase::ePlain;
    sim::TargetCaseFromName(Case, eCase); // as above
    for (unsigned int i = 1; i <= Naming.m_nCount; ++i)
        rOrders.push_back({FileName(Naming, "target_" + Case, i), "target", Case, i,
                           [=](const sim::ClScanner& scanner) {
                               return sim::CaptureTargetCase(scanner, eCase, i);
                           }});
}

/// The names in their order, each once, without those in `aDone`.
std::vector<std::string> EachOnce(const std::vector<std::string>& aNames,
                                  std::vector<std::string> aDone) {
    std::vector<std::string> once;
    for (const std::string& name : aNames) {
        if (std::find(aDone.begin(), aDone.end(), name) != aDone.end())
            continue;
        aDone.push_back(name);
        once.push_back(name);
    }
    return once;
}

/// The two plates once each, then the kinds and the cases that were asked for, each once.
std::vector<StOrder> OrdersOf(const StSimulateCall& Call) {
    std::vector<StOrder> orders;
    const std::vector<std::string> plates = {"target", "ruled"};
    for (const std::string& plate : plates)
        AddKind(orders, plate, {1, Call.m_Format});
    for (const std::string& kind : EachOnce(Call.m_aKinds, plates))
        AddKind(orders, kind, {Call.m_nCount, Call.m_Format});
    for (const std::string& name : EachOnce(Call.m_aCases, {}))
        AddCase(orders, name, {Call.m_nCount, Call.m_Format});
    return orders;
}

Json JsonOf(const sim::ClDistortionSettings& Settings) {
    return {{"rotation_degrees", Settings.m_dRotation},
            {"row_slant_degrees", Settings.m_dRowSlant},
            {"column_lean_degrees", Settings.m_dColumnLean},
            {"shift_mm", {Settings.m_dShiftX, Settings.m_dShiftY}},
            {"trapezoid_per_mm", {Settings.m_dTrapezoidX, Settings.m_dTrapezoidY}},
            {"bow_per_mm", Settings.m_dBow},
            {"barrel_per_mm2", Settings.m_dBarrel}};
}

Json JsonOf(const sim::ClLightSettings& Settings) {
    return {{"bright", Settings.m_dBright},
            {"tilt", {Settings.m_dTiltX, Settings.m_dTiltY}},
            {"vignette", Settings.m_dVignette},
            {"top_edge", Settings.m_dTopEdge},
            {"lower_corners", Settings.m_dCorners}};
}

Json JsonOf(const sim::ClSensorSettings& Settings) {
    return {{"blur_pixels", {Settings.m_dBlurX, Settings.m_dBlurY}},
            {"noise", Settings.m_dNoise},
            {"line_noise", Settings.m_dLineNoise},
            {"column_gain", Settings.m_dColumnGain}};
}

Json JsonOf(const sim::ClScanner& Scanner) {
    const sim::ClScannerSettings& settings = Scanner.Settings();
    return {{"seed", Scanner.Seed()},
            {"raw_width", settings.m_nRawWidth},
            {"raw_height", settings.m_nRawHeight},
            {"distortion", JsonOf(settings.m_Distortion)},
            {"light", JsonOf(settings.m_Light)},
            {"sensor", JsonOf(settings.m_Sensor)}};
}

Json PointJson(const sim::ClPoint& Point) {
    return Json::array({Point.x, Point.y});
}

/// What is true about a capture: dots in pixels of the capture, lines in pixels of the corrected
/// frame.
Json JsonOf(const StOrder& Order, const sim::ClCapture& Capture) {
    Json json = {{"file", Order.m_File}, {"kind", Order.m_Kind}, {"seed", Order.m_nSeed}};
    if (Order.m_Case)
        json["case"] = *Order.m_Case;
    for (const sim::ClPoint& dot : Capture.m_aDots)
        json["dots_in_capture"].push_back(PointJson(dot));
    for (const sim::ClLine& line : Capture.m_aLines)
        json["lines_in_frame"].push_back({PointJson(line.m_From), PointJson(line.m_To)});
    return json;
}

/// A scanner whose files are written to a folder.
struct StSimulated {
    std::string m_Folder;
    std::uint64_t m_nSeed;
    std::vector<StOrder> m_aOrders;
};

Json WriteCaptures(const sim::ClScanner& Scanner, const StSimulated& Simulated,
                   ClProgress& rProgress) {
    Json truths = Json::array();
    for (const StOrder& order : Simulated.m_aOrders) {
        rProgress.Begin(PathIn(Simulated.m_Folder, order.m_File));
        const sim::ClCapture capture = order.m_Make(Scanner);
        WriteBlock(PathIn(Simulated.m_Folder, order.m_File), sim::BitmapBlock(capture.m_Raw));
        truths.push_back(JsonOf(order, capture));
        rProgress.Done();
    }
    return truths;
}

void WriteTruth(const StSimulated& Simulated, const sim::ClScanner& Scanner, const Json& Captures) {
    WriteText(PathIn(Simulated.m_Folder, "truth.json"),
              Dump({{"scanner", JsonOf(Scanner)}, {"captures", Captures}}));
}

/// The calibration block and the captures, with their paths.
void AddResults(const StSimulated& Simulated, const Json& Captures, Json& rResults) {
    rResults.push_back(
        {{"file", PathIn(Simulated.m_Folder, "scanner.cal")}, {"kind", "calibration"}});
    for (const Json& capture : Captures) {
        Json result = {{"file", PathIn(Simulated.m_Folder, capture["file"])},
                       {"kind", capture["kind"]},
                       {"seed", capture["seed"]}};
        if (capture.contains("case"))
            result["case"] = capture["case"];
        rResults.push_back(result);
    }
}

/// The target, laid anew.
StOrder SecondOrder(const std::string& Format) {
    constexpr std::uint64_t nSeed = 2;
    return {"second." + Format, "target", std::nullopt, nSeed, [](const sim::ClScanner& scanner) {
                return sim::CaptureKind(scanner, sim::EKind::eTarget, nSeed);
            }};
}

/// Two targets, the empty platen, and the kinds that were asked for.
std::vector<StOrder> LineOrders(const StSimulateCall& Call, const std::string& Case) {
    std::vector<StOrder> orders;
    const StNaming single = {1, Call.m_Format};
    if (Case.empty())
        AddKind(orders, "target", single);
    else
        AddCase(orders, Case, single);
    orders.front().m_File = "target." + Call.m_Format;
    orders.push_back(SecondOrder(Call.m_Format));
    AddKind(orders, "empty", single);
    for (const std::string& kind : EachOnce(Call.m_aKinds, {"target", "ruled", "empty"}))
        AddKind(orders, kind, {Call.m_nCount, Call.m_Format});
    return orders;
}

/// "007" of 120.
std::string LineFolder(const StSimulateCall& Call, unsigned int nScanner) {
    const std::string number = std::to_string(nScanner + 1);
    const std::size_t nDigits = std::max<std::size_t>(2, std::to_string(Call.m_nScanners).size());
    return PathIn(Call.m_Output, std::string(nDigits - number.size(), '0') + number);
}

std::vector<StSimulated> ScannersOf(const StSimulateCall& Call) {
    if (Call.m_nScanners == 0)
        return {{Call.m_Output, Call.m_nSeed, OrdersOf(Call)}};
    const StLine line = {Call.m_nScanners, Call.m_nSpoilt};
    std::vector<StSimulated> scanners;
    for (unsigned int n = 0; n < Call.m_nScanners; ++n)
        scanners.push_back(
            {LineFolder(Call, n), Call.m_nSeed + n, LineOrders(Call, SpoiltCase(line, n))});
    return scanners;
}

void WriteScanner(const StSimulateCall& Call, const StSimulated& Simulated, ClProgress& rProgress,
                  Json& rResults) {
    const sim::ClScanner scanner(Simulated.m_nSeed);
    MakeDirectory(Simulated.m_Folder);
    const Bytes record = sim::RecordBlock(scanner);
    WriteFile(PathIn(Simulated.m_Folder, "scanner.cal"), {&record});
    const Json captures = WriteCaptures(scanner, Simulated, rProgress);
    if (Call.m_bTruth)
        WriteTruth(Simulated, scanner, captures);
    AddResults(Simulated, captures, rResults);
}

void CheckLine(const StSimulateCall& Call) {
    if (Call.m_nSpoilt > Call.m_nScanners)
        throw ClWrongUsage("--spoilt " + std::to_string(Call.m_nSpoilt) +
                           " is more than --scanners " + std::to_string(Call.m_nScanners));
    if (Call.m_nScanners > 0 && !Call.m_aCases.empty())
        throw ClWrongUsage("--case is for one scanner; --spoilt spoils some of --scanners");
}

void RunSimulate(const StSimulateCall& Call) {
    CheckLine(Call);
    const std::vector<StSimulated> scanners = ScannersOf(Call);
    std::size_t nCaptures = 0;
    for (const StSimulated& scanner : scanners)
        nCaptures += scanner.m_aOrders.size();
    ClProgress progress(nCaptures);
    Json results = Json::array();
    for (const StSimulated& scanner : scanners)
        WriteScanner(Call, scanner, progress, results);
    if (Call.m_bJson)
        PrintDocument("simulate", results);
}

template <class Entries>
std::vector<std::string> NamesOf(const Entries& entries) {
    std::vector<std::string> names;
    names.reserve(entries.size());
    for (const auto& entry : entries)
        names.push_back(entry.m_szName);
    return names;
}

template <class Entries>
std::string HelpOf(std::string help, const Entries& entries) {
    for (const auto& entry : entries)
        help += std::string("\n  ") + entry.m_szName + ": " + entry.m_szDescription;
    return help;
}

} // namespace

void AddSimulate(CLI::App& rApp) {
    CLI::App* pCommand = rApp.add_subcommand(
        "simulate", "Writes the captures and the calibration block of a simulated scanner");
    const auto pCall = std::make_shared<StSimulateCall>();
    pCommand->add_option("-s,--seed", pCall->m_nSeed, "Number of the scanner")
        ->transform(Whole())
        ->type_name("N")
        ->capture_default_str();
    pCommand
        ->add_option("-k,--kind", pCall->m_aKinds,
                     HelpOf("Further captures, each with a name of its own; may be repeated:",
                            sim::g_aKinds))
        ->allow_extra_args(false)
        ->check(OneOf(NamesOf(sim::g_aKinds)))
        ->type_name("KIND")
        ->capture_default_str();
    pCommand
        ->add_option("-c,--case", pCall->m_aCases,
                     HelpOf("Further captures of the target, target_CASE.bmp, some of them such "
                            "that \"qk7 generate\" refuses them; may be repeated:",
                            sim::g_aTargetCases))
        ->allow_extra_args(false)
        ->check(OneOf(NamesOf(sim::g_aTargetCases)))
        ->type_name("CASE");
    pCommand
        ->add_option("-n,--count", pCall->m_nCount,
                     "Captures of each further kind and case, up to 10000")
        ->transform(Whole())
        ->check(CLI::Range(1, 10000).description(""))
        ->type_name("N")
        ->capture_default_str();
    pCommand
        ->add_option(
            "--scanners", pCall->m_nScanners,
            "Simulate a production line: so many scanners, each in a folder 01, 02, ... with "
            "target, second target, empty platen and the further kinds, for \"qk7 report "
            "--batch\"; up to 1000")
        ->transform(Whole())
        ->check(CLI::Range(1, 1000).description(""))
        ->type_name("N");
    pCommand
        ->add_option("--spoilt", pCall->m_nSpoilt,
                     "So many of the scanners have a target that is spoilt, in turn: hidden_dot, "
                     "missing_dot, wide_pitch, stand_in_far, glare_spot")
        ->transform(Whole())
        ->type_name("N");
    pCommand->add_option("--format", pCall->m_Format, "Format of the captures: bmp or png")
        ->check(OneOf({"bmp", "png"}))
        ->type_name("FORMAT")
        ->capture_default_str();
    pCommand->add_flag("--truth", pCall->m_bTruth,
                       "Write truth.json: the scanner's settings and the true places of dots and "
                       "lines");
    pCommand->add_flag("--json", pCall->m_bJson, "Print a JSON document with the files written");
    pCommand
        ->add_option("-o,--output", pCall->m_Output,
                     "Folder for target.bmp, ruled.bmp, scanner.cal and the further captures, "
                     "made when missing")
        ->required()
        ->type_name("DIR");
    pCommand->callback([pCall] { RunSimulate(*pCall); });
}

} // namespace qk7
