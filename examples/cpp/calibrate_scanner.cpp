// Calibrates a scanner from a capture of the dot target, measures the result on that capture and on
// a second one, for which the target was laid anew, and asks for the verdict.
//
//     calibrate_scanner target.bmp second.bmp scanner.cal [qk7]
//
// The library derives the calibration and measures how much of a corrected target keeps the limits
// of the EFTS. Whether a calibration can be believed is told by the tool qk7, which looks at each
// dot and at the plate: no call of the library does. The tool writes the block when its verdict is
// good. The exit status is 0 for a good calibration, 3 for a doubtful one, 1 for a failure.

#include "files.hpp"

#include <TessarinCalibrateSDK.hpp>

#include <algorithm>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr double requiredPercent = 99.9; // good calibrations of clean captures stay above
constexpr int doubtful = 3;

/// The calibration as it will be loaded later: data may be generated and not load.
tessarin::Calibrator calibratorFor(const Block& target) {
    tessarin::Calibrator generator;
    generator.generateData(target);
    tessarin::Calibrator calibrator;
    calibrator.setData(generator.getData());
    // The dynamic calibration finds no finger on a target, and would whiten the whole image.
    calibrator.setOption(tessarin::Switch::dynamicFingerMask, false);
    return calibrator;
}

bool check(tessarin::Calibrator& calibrator, const char* what, const Block& capture) {
    Block corrected;
    calibrator.correct(capture, corrected);
    const double percent = calibrator.checkEfts(corrected);
    std::printf("%s: %.2f percent within the EFTS\n", what, percent);
    return percent >= requiredPercent;
}

/// Runs the tool, without what it prints, and returns its exit status.
int run(std::vector<std::string> words) {
    std::vector<char*> arguments(words.size() + 1); // the last one stays null
    std::transform(words.begin(), words.end(), arguments.begin(),
                   [](std::string& word) { return word.data(); });

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int bad =
        posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (bad != 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        throw std::runtime_error(words[0] + ": cannot be run");
    return WEXITSTATUS(status);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4 && argc != 5) {
        std::fprintf(stderr, "usage: %s target.bmp second.bmp scanner.cal [qk7]\n", argv[0]);
        return 2;
    }
    return exitStatusOf([&] {
        const Block target = readBitmap(argv[1]);
        tessarin::Calibrator calibrator = calibratorFor(target);
        if (!check(calibrator, "target", target) ||
            !check(calibrator, "second", readBitmap(argv[2])))
            return 1;

        std::fflush(stdout);
        const int status = run(
            {argc == 5 ? argv[4] : "qk7", "generate", "--second", argv[2], "-o", argv[3], argv[1]});
        if (status == 0 || status == doubtful)
            std::printf("verdict: %s\n", status == 0 ? "good" : "doubtful");
        return status;
    });
}
