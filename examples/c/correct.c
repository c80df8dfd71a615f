/*
 * Corrects one capture.
 *
 *     correct scanner.cal capture.bmp corrected.bmp [Option=value...]
 *
 * Reads the calibration block of a scanner and a bitmap file, and writes the corrected image as a
 * bitmap file. DynamicFingerMask=false leaves the light and the background as they are.
 */
#include "files.h"

#include <TessarinCalibrateSDK.h>

#include <stdio.h>
#include <stdlib.h>

static int correct(void* handle, unsigned char* capture, unsigned long captureSize,
                   const char* output) {
    /* The corrected image of a scanner is smaller than its capture, as a rule; where it is not, the
       answer is -21 and the size needed: see capture_loop.c. */
    unsigned long size = captureSize;
    unsigned char* corrected = (unsigned char*)malloc(size);
    int result = 1;
    if (corrected != NULL &&
        !failed("Calibrate", Calibrate(handle, capture, captureSize, corrected, &size)))
        result = write_bitmap(output, corrected, size);
    free(corrected);
    return result;
}

/* Returns whether all of them were understood. */
static int set_options(void* handle, char** options) {
    for (; *options != NULL; ++options)
        if (failed("CalibrateSetOption", CalibrateSetOption(handle, *options)))
            return 0;
    return 1;
}

int main(int argc, char** argv) {
    unsigned long dataSize = 0;
    unsigned long captureSize = 0;
    unsigned char* data;
    unsigned char* capture;
    void* handle;
    int result = 1;

    if (argc < 4) {
        fprintf(stderr, "usage: %s scanner.cal capture.bmp corrected.bmp [Option=value...]\n",
                argv[0]);
        return 2;
    }
    data = read_file(argv[1], &dataSize);
    capture = read_bitmap(argv[2], &captureSize);
    handle = CalibrateCreate();
    if (data != NULL && capture != NULL && handle != NULL && set_options(handle, argv + 4) &&
        !failed("CalibrateSetData", CalibrateSetData(handle, data, dataSize)))
        result = correct(handle, capture, captureSize, argv[3]);
    CalibrateDelete(&handle);
    free(capture);
    free(data);
    return result;
}
