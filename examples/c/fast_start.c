/*
 * Starts fast: takes the prepared warp table of a scanner from a file in place of preparing it, and
 * leaves it there where it is missing or belongs to another calibration. A file of another kind
 * stays as it is.
 *
 *     fast_start scanner.cal scanner.pre capture.bmp corrected.bmp
 *
 * Tells "loaded" or "prepared". Either way the corrected image is the same.
 */
#include "files.h"

#include <TessarinCalibrateSDK.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum outcome { LOADED, NOT_LOADED, NO_TABLE };

/* Whether a file begins as tables do. One that was cut off, or is empty, may be written anew. */
static int is_table(const unsigned char* file, unsigned long size) {
    static const unsigned char tags[12] = {'C', 'A', 'L', 0, 'P', 'R', 'E', 0, '0', '0', '1', 0};
    return memcmp(file, tags, size < sizeof tags ? size : sizeof tags) == 0;
}

/* Takes a table. One that is refused leaves no calibration data behind. */
static enum outcome take(void* handle, unsigned char* data, unsigned long dataSize,
                         const char* tableName, unsigned char* table, unsigned long size) {
    if (!is_table(table, size)) {
        fprintf(stderr, "%s: is no table\n", tableName);
        return NO_TABLE;
    }
    return failed("CalibrateSetOption", CalibrateSetOption(handle, "PrecalculatedData=true")) ||
                   failed("CalibrateSetData", CalibrateSetData(handle, data, dataSize)) ||
                   failed(tableName, CalibrateSetPrecalculatedData(handle, table, size))
               ? NOT_LOADED
               : LOADED;
}

static enum outcome load(void* handle, unsigned char* data, unsigned long dataSize,
                         const char* tableName) {
    unsigned long size = 0;
    unsigned char* table = read_file(tableName, &size);
    const enum outcome result =
        table != NULL ? take(handle, data, dataSize, tableName, table, size) : NOT_LOADED;
    free(table);
    return result;
}

/* Keeps the table for the next start. Returns whether that failed. */
static int keep(void* handle, const char* tableName) {
    unsigned long size = 0;
    unsigned char* table = NULL;
    int result = 1;
    if (CalibrateGetPrecalculatedData(handle, NULL, &size) == QMT_ERROR_TEMPLATE_SIZE)
        table = (unsigned char*)malloc(size);
    if (table != NULL && !failed("CalibrateGetPrecalculatedData",
                                 CalibrateGetPrecalculatedData(handle, table, &size)))
        result = write_file(tableName, table, size);
    free(table);
    return result;
}

/* Returns whether that failed. */
static int prepare(void* handle, unsigned char* data, unsigned long dataSize,
                   const char* tableName) {
    return failed("CalibrateSetOption", CalibrateSetOption(handle, "PrecalculatedData=false")) ||
           failed("CalibrateSetData", CalibrateSetData(handle, data, dataSize)) ||
           keep(handle, tableName);
}

static int correct(void* handle, const char* captureName, const char* output) {
    unsigned long captureSize = 0;
    unsigned char* capture = read_bitmap(captureName, &captureSize);
    unsigned long size = captureSize;
    unsigned char* corrected = capture != NULL ? (unsigned char*)malloc(size) : NULL;
    int result = 1;
    if (corrected != NULL &&
        !failed("Calibrate", Calibrate(handle, capture, captureSize, corrected, &size)))
        result = write_bitmap(output, corrected, size);
    free(corrected);
    free(capture);
    return result;
}

int main(int argc, char** argv) {
    unsigned long dataSize = 0;
    unsigned char* data;
    void* handle;
    int result = 1;

    if (argc != 5) {
        fprintf(stderr, "usage: %s scanner.cal scanner.pre capture.bmp corrected.bmp\n", argv[0]);
        return 2;
    }
    data = read_file(argv[1], &dataSize);
    handle = CalibrateCreate();
    if (data != NULL && handle != NULL) {
        const enum outcome loaded = load(handle, data, dataSize, argv[2]);
        if (loaded == LOADED ||
            (loaded == NOT_LOADED && !prepare(handle, data, dataSize, argv[2]))) {
            puts(loaded == LOADED ? "loaded" : "prepared");
            result = correct(handle, argv[3], argv[4]);
        }
    }
    CalibrateDelete(&handle);
    free(data);
    return result;
}
