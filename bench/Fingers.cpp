// How well fingers are found, what the warning levels answer to, and pictures of it, on simulated
// captures:
//
//     fingers [SCANNERS [FIRST_SEED]]            a table by kind of capture; 10 scanners from 1
//     fingers --series [SCANNERS [FIRST_SEED]]   one thing changed step by step
//     fingers --levels [SCANNERS [FIRST_SEED]]   where in the image the levels come from
//     fingers --measures [FINGERS [FIRST_SEED]]  how the measures follow the truth; 300 from 1001
//     fingers --sheets FOLDER [SCANNER]          pictures; scanner 2
//
// The calibration data is the true geometry of each scanner, so that nothing but the dynamic
// calibration is measured. Ends with 1 where a whole, normal finger was refused or an empty platen
// was taken as a finger.

#include "bench/FingerSheets.h"
#include "bench/FingerTables.h"
#include "bench/MeasureSheet.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

namespace {

using Arguments = std::vector<std::string>;

constexpr int cnUsage = 2;

int Usage() {
    std::fprintf(stderr, "usage: fingers [--series | --levels] [SCANNERS [FIRST_SEED]]\n"
                         "       fingers --measures [FINGERS [FIRST_SEED]]\n"
                         "       fingers --sheets FOLDER [SCANNER]\n");
    return cnUsage;
}

unsigned long NumberAt(const Arguments& aArguments, std::size_t n, unsigned long nDefault) {
    return n < aArguments.size() ? std::strtoul(aArguments[n].c_str(), nullptr, 10) : nDefault;
}

int RunSheets(const Arguments& aArguments) {
    const unsigned long nScanner = NumberAt(aArguments, 2, 2);
    if (aArguments.size() < 2 || aArguments.size() > 3 || nScanner == 0)
        return Usage();
    bench::DrawSheets(aArguments[1], nScanner);
    bench::DrawMeasureSheet(aArguments[1] + "/fingers-measures.png", nScanner);
    return 0;
}

int RunMeasures(const Arguments& aArguments) {
    const unsigned long nFingers = NumberAt(aArguments, 1, 300);
    if (aArguments.size() > 3 || nFingers == 0)
        return Usage();
    bench::PrintMeasures(nFingers, NumberAt(aArguments, 2, 1001));
    return 0;
}

int RunTables(const Arguments& aArguments) {
    const bool bSeries = !aArguments.empty() && aArguments[0] == "--series";
    const bool bLevels = !aArguments.empty() && aArguments[0] == "--levels";
    const std::size_t nFrom = bSeries || bLevels ? 1 : 0;
    const unsigned long nScanners = NumberAt(aArguments, nFrom, 10);
    const unsigned long nFirst = NumberAt(aArguments, nFrom + 1, 1);
    if (aArguments.size() > nFrom + 2 || nScanners == 0)
        return Usage();
    if (bSeries)
        bench::PrintSeries(nScanners, nFirst);
    else if (bLevels)
        bench::PrintLevelSources(nScanners, nFirst);
    else
        return bench::PrintKinds(nScanners, nFirst) == 0 ? 0 : 1;
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        const Arguments aArguments(argv + 1, argv + argc);
        const std::string sFirst = aArguments.empty() ? "" : aArguments[0];
        if (sFirst == "--sheets")
            return RunSheets(aArguments);
        return sFirst == "--measures" ? RunMeasures(aArguments) : RunTables(aArguments);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "fingers: %s\n", e.what());
        return 1;
    }
}
