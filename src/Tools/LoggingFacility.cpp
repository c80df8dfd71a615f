#include "Tools/LoggingFacility.h"

// All six are weak: an application with a facility of its own, of some of the names or of all,
// takes their place wherever it links the library, be it shared, static or static as a whole.
#define TESSARIN_REPLACEABLE __attribute__((weak))

extern "C" {

TESSARIN_REPLACEABLE void* g_VekLFCreate = nullptr;
TESSARIN_REPLACEABLE void* g_VekLFLog = nullptr;

TESSARIN_REPLACEABLE void LoadLoggingFacility(void) {}

TESSARIN_REPLACEABLE void ReleaseLoggingFacility(void) {}

TESSARIN_REPLACEABLE long VekLFCreate(void) {
    return 0;
}

TESSARIN_REPLACEABLE long VekLFLog(long, const char*, ...) {
    return 0;
}

} // extern "C"
