#include "files.h"

#include <TessarinCalibrateSDK.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define FILE_HEADER_SIZE 14
#define PIXELS_OFFSET (FILE_HEADER_SIZE + 40 + 1024) /* info header, palette of 256 greys */

static unsigned char* read_open_file(FILE* file, unsigned long* size) {
    unsigned char* data = NULL;
    long length = -1;
    if (fseek(file, 0, SEEK_END) == 0)
        length = ftell(file);
    if (length > 0 && fseek(file, 0, SEEK_SET) == 0)
        data = (unsigned char*)malloc((size_t)length);
    if (data != NULL && fread(data, 1, (size_t)length, file) != (size_t)length) {
        free(data);
        data = NULL;
    }
    *size = data != NULL ? (unsigned long)length : 0;
    return data;
}

unsigned char* read_file(const char* name, unsigned long* size) {
    FILE* file = fopen(name, "rb");
    unsigned char* data = NULL;
    *size = 0;
    if (file != NULL) {
        data = read_open_file(file, size);
        fclose(file);
    }
    if (data == NULL)
        fprintf(stderr, "%s: cannot be read\n", name);
    return data;
}

unsigned char* read_bitmap(const char* name, unsigned long* size) {
    unsigned char* data = read_file(name, size);
    if (data == NULL)
        return NULL;
    if (*size <= FILE_HEADER_SIZE || memcmp(data, "BM", 2) != 0) {
        fprintf(stderr, "%s: is no bitmap file\n", name);
        free(data);
        return NULL;
    }
    *size -= FILE_HEADER_SIZE;
    memmove(data, data + FILE_HEADER_SIZE, *size);
    return data;
}

/* Writes head and data in a row; the head may be of no bytes. */
static int write_parts(const char* name, const unsigned char* head, unsigned long headSize,
                       const unsigned char* data, unsigned long size) {
    FILE* file = fopen(name, "wb");
    int bad = 1;
    if (file != NULL) {
        bad = fwrite(head, 1, headSize, file) != headSize || fwrite(data, 1, size, file) != size;
        bad |= fclose(file) != 0;
    }
    if (bad)
        fprintf(stderr, "%s: cannot be written\n", name);
    return bad;
}

int write_file(const char* name, const unsigned char* data, unsigned long size) {
    return write_parts(name, data, 0, data, size);
}

int write_bitmap(const char* name, const unsigned char* block, unsigned long size) {
    unsigned char head[FILE_HEADER_SIZE] = {'B', 'M', 0};
    const unsigned long total = FILE_HEADER_SIZE + size;
    int i;
    for (i = 0; i < 4; ++i) {
        head[2 + i] = (unsigned char)(total >> (8 * i));
        head[10 + i] = (unsigned char)((unsigned long)PIXELS_OFFSET >> (8 * i));
    }
    return write_parts(name, head, sizeof head, block, size);
}

int failed(const char* what, long status) {
    if (status != QMT_SUCCESS)
        fprintf(stderr, "%s: %ld %s\n", what, status, CalibrateGetErrorDescription(status));
    return status != QMT_SUCCESS;
}
