/*
 * Calibrates a scanner from a capture of the dot target, measures the result on that capture and on
 * a second one, for which the target was laid anew, and asks for the verdict.
 *
 *     calibrate_scanner target.bmp second.bmp scanner.cal [qk7]
 *
 * The library derives the calibration and measures how much of a corrected target keeps the limits
 * of the EFTS. Whether a calibration can be believed is told by the tool qk7, which looks at each
 * dot and at the plate: no call of the library does. The tool writes the block when its verdict is
 * good. The exit status is 0 for a good calibration, 3 for a doubtful one, 1 for a failure.
 */
#define _POSIX_C_SOURCE 200809L /* posix_spawnp() */

#include "files.h"

#include <TessarinCalibrateSDK.h>

#include <fcntl.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>

#define REQUIRED_PERCENT 99.9 /* good calibrations of clean captures stay above */
#define DOUBTFUL 3

extern char** environ;

/* Hands over what was generated as it will be loaded later: data may be generated and not load.
   Returns whether that failed. */
static int hand_over(void* from, void* to) {
    unsigned long size = 0;
    unsigned char* data = NULL;
    int bad;
    if (CalibrateGetData(from, NULL, &size) == QMT_ERROR_TEMPLATE_SIZE)
        data = (unsigned char*)malloc(size);
    bad = data == NULL || failed("CalibrateGetData", CalibrateGetData(from, data, &size)) ||
          failed("CalibrateSetData", CalibrateSetData(to, data, size));
    free(data);
    return bad;
}

static int generate(void* handle, unsigned char* target, unsigned long size) {
    void* generator = CalibrateCreate();
    const int bad =
        generator == NULL ||
        failed("CalibrateGenerateData", CalibrateGenerateData(generator, target, size)) ||
        hand_over(generator, handle);
    CalibrateDelete(&generator);
    return bad;
}

/* Corrects a capture of the target and measures it. The dynamic calibration finds no finger there,
   and would whiten the whole image. */
static int check(void* handle, const char* what, unsigned char* capture,
                 unsigned long captureSize) {
    unsigned long size = captureSize;
    unsigned char* corrected = (unsigned char*)malloc(size);
    double percent = 0.0;
    const int bad =
        corrected == NULL ||
        failed("CalibrateSetOption", CalibrateSetOption(handle, "DynamicFingerMask=false")) ||
        failed("Calibrate", Calibrate(handle, capture, captureSize, corrected, &size)) ||
        failed("CalibrateCheckEfts", CalibrateCheckEfts(handle, corrected, size, &percent));
    free(corrected);
    if (bad)
        return bad;
    printf("%s: %.2f percent within the EFTS\n", what, percent);
    return percent < REQUIRED_PERCENT;
}

/* Runs the tool, without what it prints, and returns its exit status. */
static int run_qk7(char** arguments) {
    posix_spawn_file_actions_t actions;
    pid_t child = 0;
    int status = 0;
    int bad = posix_spawn_file_actions_init(&actions);
    if (bad != 0)
        return 1;
    bad = posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    if (bad == 0)
        bad = posix_spawnp(&child, arguments[0], &actions, NULL, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (bad != 0)
        fprintf(stderr, "%s: cannot be run\n", arguments[0]);
    if (bad != 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return 1;
    return WEXITSTATUS(status);
}

/* What the tool thinks, by its exit status; the words and figures are in what it prints. */
static int judge(char* qk7, char* target, char* second, char* output) {
    char* arguments[] = {qk7, "generate", "--second", second, "-o", output, target, NULL};
    const int status = run_qk7(arguments);
    if (status == 0 || status == DOUBTFUL)
        printf("verdict: %s\n", status == 0 ? "good" : "doubtful");
    return status;
}

int main(int argc, char** argv) {
    unsigned long targetSize = 0;
    unsigned long secondSize = 0;
    unsigned char* target;
    unsigned char* second;
    void* handle;
    int result = 1;

    if (argc != 4 && argc != 5) {
        fprintf(stderr, "usage: %s target.bmp second.bmp scanner.cal [qk7]\n", argv[0]);
        return 2;
    }
    target = read_bitmap(argv[1], &targetSize);
    second = read_bitmap(argv[2], &secondSize);
    handle = CalibrateCreate();
    if (target != NULL && second != NULL && handle != NULL &&
        !generate(handle, target, targetSize) && !check(handle, "target", target, targetSize) &&
        !check(handle, "second", second, secondSize)) {
        fflush(stdout);
        result = judge(argc == 5 ? argv[4] : "qk7", argv[1], argv[2], argv[3]);
    }
    CalibrateDelete(&handle);
    free(second);
    free(target);
    return result;
}
