// A part of an application that hides what it can: linked twice, as two libraries.

#include <TessarinCalibrateSDK.hpp>

extern "C" __attribute__((visibility("default"))) const std::error_category* CATEGORY_OF_PART() {
    return &tessarin::category();
}
