#pragma once

/// Text conversion between wide characters and UTF-8: `ConvertWideCharToSBCS` and
/// `ConvertSBCSToWidechar`, which the public header declares.

#include <TessarinCalibrateSDK.h>
