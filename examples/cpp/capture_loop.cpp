// Corrects captures of one scanner as they come, with one handle and one block of memory: what a
// capture application does for as long as it runs.
//
//     capture_loop scanner.cal folder capture.bmp...
//
// Writes the corrected images into the folder, under the names of the captures: in their own folder
// they would be overwritten. A capture that is refused is told and skipped.

#include "files.hpp"

#include <TessarinCalibrateSDK.hpp>

#include <filesystem>

namespace {

/// The size protocol. The block begins without memory: the first capture is answered by -21 and the
/// size needed, and calibrated once more; all that follow find a block that fits. `correct` does
/// the same when it is given the vector in place of a span.
///
/// @return bytes used
std::size_t correct(tessarin::Calibrator& calibrator, const Block& capture, Block& out,
                    std::error_code& error) {
    std::size_t size = calibrator.correct(capture, tessarin::Bytes(out), error);
    if (error.value() == QMT_ERROR_TEMPLATE_SIZE && size > out.size()) {
        out.resize(size);
        size = calibrator.correct(capture, tessarin::Bytes(out), error);
    }
    return size;
}

/// Refused captures are no surprise in a loop: they come as an error code.
int correctFile(tessarin::Calibrator& calibrator, const std::string& folder,
                const std::string& name, Block& out) {
    std::error_code error;
    const std::size_t size = correct(calibrator, readBitmap(name), out, error);
    if (error) {
        std::fprintf(stderr, "%s: %d %s\n", name.c_str(), error.value(), error.message().c_str());
        return 1;
    }
    out.resize(size);
    writeBitmap(folder + "/" + std::filesystem::path(name).filename().string(), out);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "usage: %s scanner.cal folder capture.bmp...\n", argv[0]);
        return 2;
    }
    return exitStatusOf([&] {
        tessarin::Calibrator calibrator;
        calibrator.setData(readFile(argv[1]));
        Block out;
        int result = 0;
        for (int i = 3; i < argc; ++i)
            result |= exitStatusOf([&] { return correctFile(calibrator, argv[2], argv[i], out); });
        return result;
    });
}
