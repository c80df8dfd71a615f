/* The declarations of the public header once more, as they were published: a compiler refuses a
 * declaration that has changed. C and C++, in every standard. */
#include <TessarinCalibrateSDK.h>

/* What the types of the declarations are on the machines that the library is for. */
typedef char long_has_8_bytes[sizeof(long) == 8 ? 1 : -1];
typedef char double_has_8_bytes[sizeof(double) == 8 ? 1 : -1];
typedef char a_pointer_has_8_bytes[sizeof(void*) == 8 ? 1 : -1];
typedef char a_wide_character_has_4_bytes[sizeof(wchar_t) == 4 ? 1 : -1];
typedef char a_status_is_long[sizeof(QMT_ERROR_NO_HANDLE) == sizeof(long) ? 1 : -1];

#ifdef __cplusplus
extern "C" {
#endif

void* CalibrateCreate(void);
long CalibrateDelete(void**);
long CalibrateSetOption(void*, const char*);
long CalibrateGetOption(void*, const char*, char*, unsigned long*);
long GetCalibrationWarningLevels(void*, double*, double*);

long Calibrate(void*, unsigned char*, unsigned long, unsigned char*, unsigned long*);
long ContaminationDetection(void*, unsigned char*, unsigned long, double*);
long CalibrateCheckEfts(void*, unsigned char*, unsigned long, double*);

long CalibrateSetData(void*, unsigned char*, unsigned long);
long CalibrateGetData(void*, unsigned char*, unsigned long*);
long CalibrateSetPrecalculatedData(void*, unsigned char*, unsigned long);
long CalibrateGetPrecalculatedData(void*, unsigned char*, unsigned long*);
long CalibrateSetReferenceData(void*, unsigned char*, unsigned long);
long CalibrateGenerateData(void*, unsigned char*, unsigned long);

const char* CalibrateGetErrorDescription(long);
const char* GetErrorDescriptionIntern(long);
const wchar_t* GetErrorDescriptionInternW(long);

long VekLFLog(long, const char*, ...);
long VekLFCreate(void);
void LoadLoggingFacility(void);
void ReleaseLoggingFacility(void);
extern void* g_VekLFCreate;
extern void* g_VekLFLog;

long ConvertWideCharToSBCS(const wchar_t*, unsigned long, char*, unsigned long);
long ConvertSBCSToWidechar(const char*, unsigned long, wchar_t*, unsigned long);

#ifdef __cplusplus
}
#endif
