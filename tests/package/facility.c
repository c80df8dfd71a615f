/*
 * An application with a logging facility of its own: OWN_LOG has the log alone, OWN_ALL every name
 * of the facility, neither of them none. Whichever way the library is linked, what the application
 * defines holds, and what it lacks comes from the library.
 */
#include <TessarinCalibrateSDK.h>

#include <stdio.h>

static long lines; /* that came */

#if defined(OWN_LOG) || defined(OWN_ALL)
#define EXPECTED_LINES 4 /* Enter and Leaving of two calls */
long VekLFLog(long level, const char* format, ...) {
    (void)format;
    lines += level == 7;
    return 0;
}
#else
#define EXPECTED_LINES 0
#endif

#if defined(OWN_ALL)
#define EXPECTED_CREATE 7
#define EXPECTED_POINTER ((void*)&lines)
void* g_VekLFCreate = &lines;
void* g_VekLFLog = &lines;
static int loads;
void LoadLoggingFacility(void) {
    ++loads;
}
void ReleaseLoggingFacility(void) {
    --loads;
}
long VekLFCreate(void) {
    return EXPECTED_CREATE;
}
#else
#define EXPECTED_CREATE 0
#define EXPECTED_POINTER NULL
#endif

static int failures;

static void expect(int holds, const char* what) {
    if (!holds) {
        fprintf(stderr, "%s\n", what);
        ++failures;
    }
}

int main(void) {
    void* handle = CalibrateCreate();
    expect(CalibrateDelete(&handle) == QMT_SUCCESS, "a handle cannot be deleted");
    expect(lines == EXPECTED_LINES, "the lines did not come where they should");
    expect(VekLFCreate() == EXPECTED_CREATE, "VekLFCreate() is another one");
    expect(g_VekLFCreate == EXPECTED_POINTER, "g_VekLFCreate is another one");
    expect(g_VekLFLog == EXPECTED_POINTER, "g_VekLFLog is another one");
    LoadLoggingFacility();
#if defined(OWN_ALL)
    expect(loads == 1, "LoadLoggingFacility() is another one");
#endif
    ReleaseLoggingFacility();
    return failures != 0;
}
