// Corrects one capture.
//
//     correct scanner.cal capture.bmp corrected.bmp [Option=value...]
//
// Reads the calibration block of a scanner and a bitmap file, and writes the corrected image as a
// bitmap file. DynamicFingerMask=false leaves the light and the background as they are.

#include "files.hpp"

#include <TessarinCalibrateSDK.hpp>

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: %s scanner.cal capture.bmp corrected.bmp [Option=value...]\n",
                     argv[0]);
        return 2;
    }
    return exitStatusOf([&] {
        tessarin::Calibrator calibrator;
        for (int i = 4; i < argc; ++i)
            calibrator.setOption(argv[i]);
        calibrator.setData(readFile(argv[1]));

        Block corrected;
        calibrator.correct(readBitmap(argv[2]), corrected);
        writeBitmap(argv[3], corrected);
        return 0;
    });
}
