/*
 * Corrects captures of one scanner as they come, with one handle and one block of memory: what a
 * capture application does for as long as it runs.
 *
 *     capture_loop scanner.cal folder capture.bmp...
 *
 * Writes the corrected images into the folder, under the names of the captures: in their own folder
 * they would be overwritten. A capture that is refused is told and skipped.
 */
#include "files.h"

#include <TessarinCalibrateSDK.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct block {
    unsigned char* bytes;
    unsigned long room;
};

/* Whether there is room for this many bytes now; what was in the block is gone. */
static int make_room(struct block* out, unsigned long size) {
    free(out->bytes);
    out->bytes = (unsigned char*)malloc(size);
    out->room = out->bytes != NULL ? size : 0;
    return out->bytes != NULL;
}

/* The size protocol. The block begins without memory: the first capture is answered by -21 and the
   size needed, and calibrated once more; all that follow find a block that fits. A -21 that asks
   for no more than there is tells of the capture: its own size is not that of its header. */
static long correct(void* handle, unsigned char* capture, unsigned long captureSize,
                    struct block* out, unsigned long* size) {
    long status;
    *size = out->room;
    status = Calibrate(handle, capture, captureSize, out->bytes, size);
    if (status != QMT_ERROR_TEMPLATE_SIZE || *size <= out->room)
        return status;
    if (!make_room(out, *size))
        return QMT_ERROR_OUT_OF_MEMORY;
    return Calibrate(handle, capture, captureSize, out->bytes, size);
}

/* Writes it under the name of its capture. */
static int write_beside(const char* folder, const char* capture, const unsigned char* block,
                        unsigned long size) {
    const char* slash = strrchr(capture, '/');
    const char* name = slash != NULL ? slash + 1 : capture;
    char* path = (char*)malloc(strlen(folder) + strlen(name) + 2);
    int result = 1;
    if (path != NULL) {
        sprintf(path, "%s/%s", folder, name);
        result = write_bitmap(path, block, size);
    }
    free(path);
    return result;
}

/* Returns whether that failed. */
static int correct_file(void* handle, const char* folder, const char* name, struct block* out) {
    unsigned long captureSize = 0;
    unsigned long size = 0;
    unsigned char* capture = read_bitmap(name, &captureSize);
    int result = 1;
    if (capture != NULL && !failed(name, correct(handle, capture, captureSize, out, &size)))
        result = write_beside(folder, name, out->bytes, size);
    free(capture);
    return result;
}

int main(int argc, char** argv) {
    struct block out = {NULL, 0};
    unsigned long dataSize = 0;
    unsigned char* data;
    void* handle;
    int result = 1;
    int i;

    if (argc < 4) {
        fprintf(stderr, "usage: %s scanner.cal folder capture.bmp...\n", argv[0]);
        return 2;
    }
    data = read_file(argv[1], &dataSize);
    handle = CalibrateCreate();
    if (data != NULL && handle != NULL &&
        !failed("CalibrateSetData", CalibrateSetData(handle, data, dataSize))) {
        result = 0;
        for (i = 3; i < argc; ++i)
            result |= correct_file(handle, argv[2], argv[i], &out);
    }
    CalibrateDelete(&handle);
    free(data);
    free(out.bytes);
    return result;
}
