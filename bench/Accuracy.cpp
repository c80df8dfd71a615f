// How accurate corrections are over many simulated scanners: for each, the straight lines of a
// ruled plate are followed in its corrected capture.
//
//     accuracy [SCANNERS [FIRST_SEED]]

#include "bench/Straightness.h"
#include "sim/BitmapBlock.h"
#include "sim/Record.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr std::size_t cnPixelsAt = 40 + 1024; // header and palette of an 8-bit block

void Require(long nStatus) {
    if (nStatus != QMT_SUCCESS)
        throw std::runtime_error(std::to_string(nStatus) + " " +
                                 CalibrateGetErrorDescription(nStatus));
}

/// The corrected capture as a block.
std::vector<unsigned char> Correct(const sim::ClScanner& Scanner, const sim::ClRaster& Raw) {
    std::vector<unsigned char> aRecord = sim::RecordBlock(Scanner);
    std::vector<unsigned char> aCapture = sim::BitmapBlock(Raw);
    std::vector<unsigned char> aOut(cnPixelsAt + sim::g_nFrameWidth * sim::g_nFrameHeight);
    unsigned long nSize = aOut.size();
    void* handle = CalibrateCreate();
    Require(CalibrateSetOption(handle, "DynamicFingerMask=false"));
    Require(CalibrateSetData(handle, aRecord.data(), aRecord.size()));
    Require(Calibrate(handle, aCapture.data(), aCapture.size(), aOut.data(), &nSize));
    Require(CalibrateDelete(&handle));
    return aOut;
}

int Run(unsigned long nScanners, unsigned long nFirst) {
    double dBefore = 0.0;
    double dAfter = 0.0;
    int nLines = 0;
    std::printf("%8s %6s %16s %16s\n", "scanner", "lines", "raw max [px]", "corrected [px]");
    for (unsigned long nSeed = nFirst; nSeed < nFirst + nScanners; ++nSeed) {
        const sim::ClScanner Scanner(nSeed);
        const sim::ClCapture Capture = sim::CaptureKind(Scanner, sim::EKind::eRuled, 1);
        const auto aCorrected = Correct(Scanner, Capture.m_Raw);
        const bench::ClStraightness Result =
            bench::MeasureStraightness(Scanner, Capture, aCorrected.data() + cnPixelsAt);
        std::printf("%8lu %6d %16.3f %16.3f\n", nSeed, Result.m_nLines, Result.m_dBefore,
                    Result.m_dAfter);
        dBefore = std::max(dBefore, Result.m_dBefore);
        dAfter = std::max(dAfter, Result.m_dAfter);
        nLines += Result.m_nLines;
    }
    std::printf("%8s %6d %16.3f %16.3f\n", "all", nLines, dBefore, dAfter);
    std::printf("Straight lines of the plate deviate by at most %.3f pixels of 0.0508 mm after the "
                "correction, %.3f before.\n",
                dAfter, dBefore);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const unsigned long nScanners = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 10;
    const unsigned long nFirst = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 1;
    if (argc > 3 || nScanners == 0) {
        std::fprintf(stderr, "usage: %s [SCANNERS [FIRST_SEED]]\n", argv[0]);
        return 2;
    }
    try {
        return Run(nScanners, nFirst);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "accuracy: %s\n", e.what());
        return 1;
    }
}
