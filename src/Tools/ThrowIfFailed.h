#pragma once

/// For steps of a work that answer with a number, inside a work that fails by exceptions.

#include "Tools/Exception.h"

/// Throws a `ClExTessarin` of that number and position unless the number is 0.
inline void ThrowIfFailed(long nResult, const char* szFile, long nLine) {
    if (nResult != 0)
        throw ClExTessarin(nResult, szFile, nLine);
}
