/* The public header alone, in C89: it compiles, and its calls link and answer. */
#include <TessarinCalibrateSDK.h>

#include <stdio.h>
#include <string.h>

static int expect(int holds, const char* what) {
    if (!holds)
        fprintf(stderr, "does not hold: %s\n", what);
    return holds ? 0 : 1;
}

int main(void) {
    int failures = 0;
    char value[16];
    unsigned long size = sizeof value;
    double dirt = -1.0;
    double dry = -1.0;
    void* handle = CalibrateCreate();
    failures += expect(handle != NULL, "CalibrateCreate gives a handle");
    failures += expect(CalibrateSetOption(handle, "GeometricCalibrate=disable") == QMT_SUCCESS,
                       "an option is set");
    failures +=
        expect(CalibrateGetOption(handle, "geometriccalibrate", value, &size) == QMT_SUCCESS &&
                   strcmp(value, "oddLines") == 0 && size == 9,
               "the option reads back");
    failures += expect(GetCalibrationWarningLevels(handle, &dirt, &dry) == QMT_SUCCESS &&
                           dirt == 0.0 && dry == 0.0,
                       "the levels begin at 0");
    failures += expect(strcmp(CalibrateGetErrorDescription(QMT_ERROR_NO_HANDLE),
                              "The handle parameter is set to NULL.") == 0,
                       "a status has words");
    failures += expect(VekLFLog(7, "%s", "a line") == 0, "a line can be logged");
    failures += expect(CalibrateDelete(&handle) == QMT_SUCCESS && handle == NULL,
                       "CalibrateDelete clears the handle");
    return failures;
}
