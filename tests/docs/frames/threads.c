#include <TessarinCalibrateSDK.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>

static unsigned char block[4096], capture[1 << 20];
static unsigned long blockSize, captureSize;

struct job {
    unsigned char corrected[1 << 18];
    long status;
};

@BLOCK@

static unsigned long load(const char* name, long skip, unsigned char* data, unsigned long size) {
    FILE* file = fopen(name, "rb");
    unsigned long bytes = 0;
    if (file != NULL && fseek(file, skip, SEEK_SET) == 0)
        bytes = fread(data, 1, size, file);
    if (file != NULL)
        fclose(file);
    return bytes;
}

int main(void) {
    static struct job jobs[4];
    pthread_t threads[4];
    int i, bad = 0;
    blockSize = load("scanner.cal", 0, block, sizeof block);
    captureSize = load("capture.bmp", 14, capture, sizeof capture);
    for (i = 0; i < 4; ++i)
        bad |= pthread_create(&threads[i], NULL, work, &jobs[i]);
    for (i = 0; i < 4; ++i)
        bad |= pthread_join(threads[i], NULL);
    for (i = 0; i < 4; ++i)
        bad |= jobs[i].status != QMT_SUCCESS ||
               memcmp(jobs[i].corrected, jobs[0].corrected, sizeof jobs[0].corrected) != 0;
    return bad;
}
