#pragma once

/// The record behind the opaque handle of the exported functions, and its options as texts.

#include "TessarinCalibrateSDK/IpCalibrateLumivane2.h"

#include <cstddef>

/// Two guards around the pointer tell a handle from any other memory.
struct CalibrateHandle_t {
    char m_acHead[4];
    ClIpCalibrateLumivane2* m_pProcessor; ///< owned
    char m_acTail[4];
};
static_assert(offsetof(CalibrateHandle_t, m_pProcessor) == 8 &&
                  offsetof(CalibrateHandle_t, m_acTail) == 16,
              "the layout of the handle is fixed");

extern "C" {

/// -42 for a null handle, with `*processor` left as it was; -43, with `*processor` null, where a
/// guard differs or there is no processor; -43 for a null `processor`; else 0.
TESSARIN_CALIBRATE_API long CheckHandle(void* handle, ClIpCalibrateLumivane2** processor);

/// Both return whether `option` begins with the key, and throw the `long` -37 where the key is
/// there but no equals sign, or no known value, follows. What is not recognised changes nothing.
TESSARIN_CALIBRATE_API bool CheckBoolOption(const char* option, const char* key, bool& value);
TESSARIN_CALIBRATE_API bool CheckGeometricOption(const char* option,
                                                 ClIpCalibrateLumivane2::EGeometricMode& mode);

} // extern "C"
