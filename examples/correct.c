/*
 * Corrects one capture, in C.
 *
 *     correct_c scanner.cal capture.bmp corrected.bmp
 *
 * Reads the calibration block of a scanner and a bitmap file, and writes the geometrically
 * corrected image as a bitmap file.
 */
#include <TessarinCalibrateSDK.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define FILE_HEADER_SIZE 14

/* The whole file in memory that the caller frees; null with a message where it cannot be read. */
static unsigned char* read_file(const char* name, unsigned long* size) {
    unsigned char* data = NULL;
    FILE* file = fopen(name, "rb");
    if (file != NULL && fseek(file, 0, SEEK_END) == 0) {
        const long length = ftell(file);
        if (length > 0 && fseek(file, 0, SEEK_SET) == 0) {
            data = (unsigned char*)malloc((size_t)length);
            if (data != NULL && fread(data, 1, (size_t)length, file) != (size_t)length) {
                free(data);
                data = NULL;
            }
            *size = (unsigned long)length;
        }
    }
    if (file != NULL)
        fclose(file);
    if (data == NULL)
        fprintf(stderr, "%s: cannot be read\n", name);
    return data;
}

/* Writes a bitmap block behind the file header that bitmap files have. Returns 0 for success. */
static int write_bitmap(const char* name, const unsigned char* block, unsigned long size) {
    unsigned char header[FILE_HEADER_SIZE] = {'B', 'M', 0};
    const unsigned long total = size + FILE_HEADER_SIZE;
    const unsigned long pixels = FILE_HEADER_SIZE + 40 + 1024;
    int failed = 1;
    int i;
    FILE* file = fopen(name, "wb");
    for (i = 0; i < 4; ++i) {
        header[2 + i] = (unsigned char)(total >> (8 * i));
        header[10 + i] = (unsigned char)(pixels >> (8 * i));
    }
    if (file != NULL) {
        failed = fwrite(header, 1, sizeof header, file) != sizeof header ||
                 fwrite(block, 1, size, file) != size;
        failed |= fclose(file) != 0;
    }
    if (failed)
        fprintf(stderr, "%s: cannot be written\n", name);
    return failed;
}

/* The library's own words for a status. Returns whether it is a failure. */
static int failed(const char* what, long status) {
    if (status != QMT_SUCCESS)
        fprintf(stderr, "%s: %ld %s\n", what, status, CalibrateGetErrorDescription(status));
    return status != QMT_SUCCESS;
}

static int correct(void* handle, unsigned char* capture, unsigned long captureSize,
                   const char* output) {
    /* A corrected image is never bigger than the capture of this scanner, but the library knows
       the size needed: a block that is too small is answered with it. */
    unsigned long size = captureSize;
    unsigned char* corrected = (unsigned char*)malloc(size);
    int result = 1;
    if (corrected != NULL &&
        !failed("Calibrate", Calibrate(handle, capture, captureSize, corrected, &size)))
        result = write_bitmap(output, corrected, size);
    free(corrected);
    return result;
}

int main(int argc, char** argv) {
    unsigned long dataSize = 0;
    unsigned long fileSize = 0;
    unsigned char* data;
    unsigned char* file;
    void* handle;
    int result = 1;

    if (argc != 4) {
        fprintf(stderr, "usage: %s scanner.cal capture.bmp corrected.bmp\n", argv[0]);
        return 2;
    }
    data = read_file(argv[1], &dataSize);
    file = read_file(argv[2], &fileSize);
    handle = CalibrateCreate();
    /* The library takes the bitmap block without its file header. */
    if (data != NULL && file != NULL && fileSize > FILE_HEADER_SIZE && handle != NULL &&
        !failed("CalibrateSetOption", CalibrateSetOption(handle, "DynamicFingerMask=false")) &&
        !failed("CalibrateSetData", CalibrateSetData(handle, data, dataSize)))
        result = correct(handle, file + FILE_HEADER_SIZE, fileSize - FILE_HEADER_SIZE, argv[3]);
    CalibrateDelete(&handle);
    free(file);
    free(data);
    return result;
}
