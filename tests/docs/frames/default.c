/* A scanner's blocks and captures in memory, around the steps of a task, which leave a status. */
#include <TessarinCalibrateSDK.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static unsigned char* load(const char* name, long skip, unsigned long* size) {
    unsigned char* data = NULL;
    FILE* file = fopen(name, "rb");
    long length;
    if (file == NULL || fseek(file, 0, SEEK_END) != 0)
        exit(2);
    length = ftell(file) - skip;
    data = malloc((size_t)length);
    if (data == NULL || fseek(file, skip, SEEK_SET) != 0 ||
        fread(data, 1, (size_t)length, file) != (size_t)length)
        exit(2);
    fclose(file);
    *size = (unsigned long)length;
    return data;
}

static void show(const unsigned char* image, unsigned long size) {
    if (image == NULL || size != 154664)
        exit(3);
}

static void keep(const char* name, const unsigned char* block, unsigned long size) {
    FILE* file = fopen(name, "wb");
    if (file == NULL || fwrite(block, 1, size, file) != size || fclose(file) != 0)
        exit(2);
}

/* The next capture of the scanner, or null behind the last one. */
static unsigned char* next_capture(unsigned long* size) {
    static int left = 3;
    return left-- > 0 ? load("capture.bmp", 14, size) : NULL;
}

static unsigned char corrected[1 << 18];

int main(void) {
    unsigned long blockSize, captureSize, targetSize, secondSize, emptySize;
    unsigned char* block = load("scanner.cal", 0, &blockSize);
    unsigned char* capture = load("capture.bmp", 14, &captureSize);
    unsigned char* target = load("target.bmp", 14, &targetSize);
    unsigned char* second = load("second.bmp", 14, &secondSize);
    unsigned char* empty = load("empty.bmp", 14, &emptySize);

@BLOCK@

    free(empty);
    free(second);
    free(target);
    free(capture);
    free(block);
    (void)show, (void)keep, (void)next_capture, (void)corrected;
    (void)emptySize, (void)secondSize, (void)targetSize, (void)blockSize;
    return status == QMT_SUCCESS ? 0 : 1;
}
