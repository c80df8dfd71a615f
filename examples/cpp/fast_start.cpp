// Starts fast: takes the prepared warp table of a scanner from a file in place of preparing it, and
// leaves it there where it is missing or belongs to another calibration. A file of another kind
// stays as it is.
//
//     fast_start scanner.cal scanner.pre capture.bmp corrected.bmp
//
// Tells "loaded" or "prepared". Either way the corrected image is the same.

#include "files.hpp"

#include <TessarinCalibrateSDK.hpp>

#include <algorithm>
#include <filesystem>
#include <optional>

namespace {

/// Whether a file begins as tables do. One that was cut off, or is empty, may be written anew.
bool isTable(const Block& file) {
    constexpr unsigned char tags[] = {'C', 'A', 'L', 0, 'P', 'R', 'E', 0, '0', '0', '1', 0};
    return std::equal(tags, tags + std::min(std::size(tags), file.size()), file.begin());
}

/// The table in a file; none where there is no file.
std::optional<Block> tableIn(const std::string& name) {
    if (!std::filesystem::exists(name))
        return std::nullopt;
    Block file = readFile(name);
    if (!isTable(file))
        throw std::runtime_error(name + ": is no table");
    return file;
}

/// Whether the table was taken. What is refused leaves no calibration data behind.
bool load(tessarin::Calibrator& calibrator, const Block& data, const Block& table) {
    try {
        calibrator.setOption(tessarin::Switch::precalculatedData, true);
        calibrator.setData(data);
        calibrator.setPrecalculatedData(table);
        return true;
    } catch (const std::system_error& e) {
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
        const std::optional<Block> table = tableIn(argv[2]);
        const bool loaded = table && load(calibrator, data, *table);
        if (!loaded)
            prepare(calibrator, data, argv[2]);
        std::puts(loaded ? "loaded" : "prepared");

        Block corrected;
        calibrator.correct(readBitmap(argv[3]), corrected);
        writeBitmap(argv[4], corrected);
        return 0;
    });
}
