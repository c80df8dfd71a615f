#include <stdio.h>

/* The bytes of a file behind those that are skipped; returns how many. */
static unsigned long load(const char* name, long skip, unsigned char* data, unsigned long size) {
    FILE* file = fopen(name, "rb");
    unsigned long bytes = 0;
    if (file == NULL)
        return 0;
    if (fseek(file, skip, SEEK_SET) == 0)
        bytes = fread(data, 1, size, file);
    fclose(file);
    return bytes;
}

@BLOCK@
