/*
 * Tells how contaminated the sensor is, and of each capture how dirty the platen and how dry the
 * finger were.
 *
 *     levels scanner.cal empty.bmp capture.bmp...
 */
#include "files.h"

#include <TessarinCalibrateSDK.h>

#include <stdio.h>
#include <stdlib.h>

/* Both return whether that failed. */

static int tell_contamination(void* handle, const char* name) {
    unsigned long size = 0;
    unsigned char* capture = read_bitmap(name, &size);
    double level = 0.0;
    const int bad =
        capture == NULL || failed(name, ContaminationDetection(handle, capture, size, &level));
    if (!bad)
        printf("%s: contamination %.2f\n", name, level);
    free(capture);
    return bad;
}

/* The levels are those of the last capture that was corrected, with DynamicFingerMask, which is the
   default. */
static int tell_levels(void* handle, const char* name) {
    unsigned long captureSize = 0;
    unsigned char* capture = read_bitmap(name, &captureSize);
    unsigned long size = captureSize;
    unsigned char* corrected = capture != NULL ? (unsigned char*)malloc(size) : NULL;
    double dirt = 0.0;
    double dryFinger = 0.0;
    const int bad = corrected == NULL ||
                    failed(name, Calibrate(handle, capture, captureSize, corrected, &size)) ||
                    failed(name, GetCalibrationWarningLevels(handle, &dirt, &dryFinger));
    if (!bad)
        printf("%s: dirt %.2f, dry finger %.2f\n", name, dirt, dryFinger);
    free(corrected);
    free(capture);
    return bad;
}

int main(int argc, char** argv) {
    unsigned long dataSize = 0;
    unsigned char* data;
    void* handle;
    int result = 1;
    int i;

    if (argc < 4) {
        fprintf(stderr, "usage: %s scanner.cal empty.bmp capture.bmp...\n", argv[0]);
        return 2;
    }
    data = read_file(argv[1], &dataSize);
    handle = CalibrateCreate();
    if (data != NULL && handle != NULL &&
        !failed("CalibrateSetData", CalibrateSetData(handle, data, dataSize))) {
        result = tell_contamination(handle, argv[2]);
        for (i = 3; i < argc && result == 0; ++i)
            result = tell_levels(handle, argv[i]);
    }
    CalibrateDelete(&handle);
    free(data);
    return result;
}
