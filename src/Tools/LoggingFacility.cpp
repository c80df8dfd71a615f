#include "Tools/LoggingFacility.h"

// Weak, so that an application which links statically and brings its own facility does not
// collide with these definitions.
#define TESSARIN_REPLACEABLE __attribute__((weak))

extern "C" {

TESSARIN_CALIBRATE_API void* g_VekLFCreate = nullptr;
TESSARIN_CALIBRATE_API void* g_VekLFLog = nullptr;

TESSARIN_REPLACEABLE void LoadLoggingFacility(void) {}

TESSARIN_REPLACEABLE void ReleaseLoggingFacility(void) {}

TESSARIN_REPLACEABLE long VekLFCreate(void) {
    return 0;
}

TESSARIN_REPLACEABLE long VekLFLog(long, const char*, ...) {
    return 0;
}

} // extern "C"
