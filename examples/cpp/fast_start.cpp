// Starts fast: takes the prepared warp table of a scanner from a file in place of preparing it, and
// leaves it there where it is missing or belongs to another calibration.
//
//     fast_start scanner.cal scanner.pre capture.bmp corrected.bmp
//
// Tells "loaded" or "prepared". Either way the corrected image is the same.

#include "files.hpp"

#include <TessarinCalibrateSDK.hpp>

namespace {

/// Whether the table in the file was taken. What is refused leaves no calibration data behind.
bool load(tessarin::Calibrator& calibrator, const Block& data, const std::string& tableName) {
    try {
        const Block table = readFile(tableName);
        calibrator.setOption(tessarin::Switch::precalculatedData, true);
        calibrator.setData(data);
        calibrator.setPrecalculatedData(table);
        return true;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return false;
    }
}

/// Keeps the table for the next start.
void prepare(tessarin::Calibrator& calibrator, const Block& data, const std::string& tableName) {
    calibrator.setOption(tessarin::Switch::precalculatedData, false);
    calibrator.setData(data);
    writeFile(tableName, calibrator.getPrecalculatedData());
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fprintf(stderr, "usage: %s scanner.cal scanner.pre capture.bmp corrected.bmp\n",
                     argv[0]);
        return 2;
    }
    return exitStatusOf([&] {
        tessarin::Calibrator calibrator;
        const Block data = readFile(argv[1]);
        const bool loaded = load(calibrator, data, argv[2]);
        if (!loaded)
            prepare(calibrator, data, argv[2]);
        std::puts(loaded ? "loaded" : "prepared");

        Block corrected;
        calibrator.correct(readBitmap(argv[3]), corrected);
        writeBitmap(argv[4], corrected);
        return 0;
    });
}
