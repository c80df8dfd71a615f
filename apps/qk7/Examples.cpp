#include "apps/qk7/Examples.h"

#include <utility>

namespace qk7 {

namespace {

using Examples = std::vector<StExample>;

const std::vector<std::pair<std::string, Examples>>& AllExamples() {
    static const std::vector<std::pair<std::string, Examples>> all = {
        {"simulate",
         {{"qk7 simulate --seed 7 --kind whorl --kind empty --case laid -o scanner",
           "the target, a finger and the empty platen, as a simulated scanner captures them, and "
           "the target once more, laid anew"},
          {"qk7 simulate --seed 7 --kind loop --count 4 --format png -o captures",
           "four captures of loops by the same scanner, as PNG"},
          {"qk7 simulate --scanners 3 -o line",
           "a production line, a folder for each scanner; --spoilt spoils some of them"}}},
        {"generate",
         {{"qk7 generate scanner/target.bmp -o scanner.cal --precalculated scanner.pre",
           "the calibration of the scanner, with the table for fast starts"},
          {"qk7 generate scanner/target.bmp -o scanner.cal --debug-image grid.png",
           "the same, and a picture of the dots that were found"},
          {"qk7 generate scanner/target.bmp -o scanner.cal --second scanner/target_laid.bmp",
           "the same, tried on a second capture for which the target was laid anew"}}},
        {"precalculate",
         {{"qk7 precalculate -d scanner.cal -o scanner.pre",
           "the table of a calibration block that is there"}}},
        {"calibrate",
         {{"qk7 calibrate -d scanner.cal --precalculated scanner.pre -v scanner/whorl.bmp "
           "-o finger.png",
           "one capture, as PNG, and its levels"},
          {"qk7 calibrate -d scanner.cal 'captures/loop_*.png' -o corrected --skip-existing",
           "many captures into a folder; called again, it goes on where it stopped"},
          {"qk7 calibrate -d scanner.cal captures -o corrected --jobs 2 --json > levels.json",
           "all pictures of a folder, two at a time, with their levels as JSON"},
          {"qk7 calibrate -d scanner.cal --measures scanner/whorl.bmp -o finger.bmp",
           "one capture, and what can be measured of its print"},
          {"qk7 calibrate -d scanner.cal -O DynamicFingerMask=false scanner/target.bmp "
           "-o target.bmp",
           "the target, for qk7 check"},
          {"qk7 calibrate -d scanner.cal - -o - < scanner/whorl.bmp > finger.bmp",
           "between other programs"}}},
        {"check",
         {{"qk7 check -d scanner.cal target.bmp",
           "how accurate the calibration is, on its corrected target"}}},
        {"contamination",
         {{"qk7 contamination scanner/empty.bmp", "how dirty the platen is"},
          {"qk7 contamination --measures scanner/empty.bmp", "and how even its light"}}},
        {"report",
         {{"qk7 report scanner/target.bmp --empty scanner/empty.bmp --finger scanner/whorl.bmp "
           "-o report.html",
           "a page that tells whether the calibration can be believed, and shows why"},
          {"qk7 report --batch line -o pages",
           "a page for the scanner of each folder in it, and pages/index.html"}}},
        {"verify",
         {{"qk7 verify scanner.cal --target scanner/target.bmp",
           "whether a block loads, and is what this version makes from the capture"},
          {"qk7 verify scanner.pre -d scanner.cal",
           "whether a table belongs to its block, and every entry is right"}}},
        {"info",
         {{"qk7 info scanner.cal scanner.pre", "what stands in two blocks"},
          {"qk7 info --json scanner", "the pictures and blocks of a folder, as JSON"}}},
        {"errors",
         {{"qk7 errors -14", "the words of a status"},
          {"qk7 errors --json", "all statuses, as JSON"}}},
    };
    return all;
}

} // namespace

std::vector<StExample> ExamplesOf(const std::string& Command) {
    for (const auto& [name, examples] : AllExamples())
        if (name == Command)
            return examples;
    return {};
}

std::vector<std::string> ExampleCommands() {
    std::vector<std::string> names;
    for (const auto& [name, examples] : AllExamples())
        names.push_back(name);
    return names;
}

} // namespace qk7
