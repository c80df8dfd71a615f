/*
 * A logging facility for the trace of the library: a VekLFLog() of its own, in front of the one
 * that drops every line. It writes level, time, thread and text to standard error:
 *
 *     7 14:03:27.104713 4711 CalibrateCreate() Enter
 *
 * In front of the shared library it is preloaded, and nothing is built anew:
 *
 *     LD_PRELOAD=./log_to_stderr.so correct scanner.cal capture.bmp corrected.bmp
 *
 * An application that links the library statically has it as one more source file.
 *
 * TRACE_LEVEL in the environment is the highest level shown: 3 shows failures alone, 7 everything.
 */
#define _GNU_SOURCE /* syscall() */

#include <TessarinCalibrateSDK.h>

#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#define LINE_SIZE 2048

static long highest_level = 7;

/* Before main(), so that no two threads meet here. */
__attribute__((constructor)) static void read_level(void) {
    const char* text = getenv("TRACE_LEVEL");
    if (text != NULL)
        highest_level = strtol(text, NULL, 10);
}

/* What snprintf() has left in a buffer of this size, whatever it answered. */
static size_t written(int answer, size_t size) {
    if (answer < 0)
        return 0;
    return (size_t)answer < size ? (size_t)answer : size - 1;
}

/* Level, time of day and thread. Returns the length. */
static size_t print_head(char* line, size_t size, long level) {
    struct timespec now = {0, 0};
    struct tm day;
    clock_gettime(CLOCK_REALTIME, &now);
    localtime_r(&now.tv_sec, &day);
    return written(snprintf(line, size, "%ld %02d:%02d:%02d.%06ld %ld ", level, day.tm_hour,
                            day.tm_min, day.tm_sec, now.tv_nsec / 1000, syscall(SYS_gettid)),
                   size);
}

/* The words of an exception are parted by line feeds; one call stays one line. */
static void join_lines(char* text) {
    for (; *text != '\0'; ++text)
        if (*text == '\n')
            *text = ' ';
}

long VekLFLog(long level, const char* format, ...) {
    const int error = errno; /* the caller's: a log changes nothing */
    char line[LINE_SIZE];
    size_t length;
    va_list arguments;

    if (level > highest_level)
        return 0;
    length = print_head(line, sizeof line - 1, level);
    line[length] = '\0';
    va_start(arguments, format);
    length += written(vsnprintf(line + length, sizeof line - 1 - length, format, arguments),
                      sizeof line - 1 - length);
    va_end(arguments);
    line[length] = '\0';
    join_lines(line);
    line[length] = '\n';
    fwrite(line, 1, length + 1, stderr); /* at once: lines of several threads do not mix */
    errno = error;
    return 0;
}
