// Tells how contaminated the sensor is, and of each capture how dirty the platen and how dry the
// finger were.
//
//     levels scanner.cal empty.bmp capture.bmp...

#include "files.hpp"

#include <TessarinCalibrateSDK.hpp>

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: %s scanner.cal empty.bmp capture.bmp...\n", argv[0]);
        return 2;
    }
    return exitStatusOf([&] {
        tessarin::Calibrator calibrator;
        calibrator.setData(readFile(argv[1]));
        std::printf("%s: contamination %.2f\n", argv[2],
                    calibrator.contamination(readBitmap(argv[2])));

        // The levels are those of the last capture that was corrected, with dynamicFingerMask,
        // which is the default.
        Block corrected;
        for (int i = 3; i < argc; ++i) {
            calibrator.correct(readBitmap(argv[i]), corrected);
            const tessarin::Levels levels = calibrator.levels();
            std::printf("%s: dirt %.2f, dry finger %.2f\n", argv[i], levels.dirt, levels.dryFinger);
        }
        return 0;
    });
}
