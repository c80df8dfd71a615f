// A program that has functions of its own by the names of some that the library exports and calls
// itself: they are the program's affair.

#include <cstdio>

extern "C" {

// As the public header has them, which declares others by their own types.
void* CalibrateCreate();
long CalibrateDelete(void** handle);
long CalibrateSetOption(void* handle, const char* option);
const char* CalibrateGetErrorDescription(long code);

// The program's own
int CheckHandle(const char* szDoor);
int CheckBoolOption();
int CheckGeometricOption();
const char* GetErrorDescriptionIntern(long code);

} // extern "C"

namespace {

int nCalls = 0;

} // namespace

int CheckHandle(const char*) {
    return ++nCalls;
}

int CheckBoolOption() {
    return ++nCalls;
}

int CheckGeometricOption() {
    return ++nCalls;
}

const char* GetErrorDescriptionIntern(long) {
    ++nCalls;
    return "";
}

int main() {
    void* handle = CalibrateCreate();
    const bool bWorks = CalibrateSetOption(handle, "GeometricCalibrate=off") == 0 &&
                        CalibrateSetOption(handle, "MaskIsOutput=true") == 0 &&
                        *CalibrateGetErrorDescription(-2) != '\0' && CalibrateDelete(&handle) == 0;
    if (!bWorks || nCalls != 0)
        std::fprintf(stderr, "the library called %d functions of the program\n", nCalls);
    return bWorks && nCalls == 0 ? 0 : 1;
}
