#pragma once

/// The texts of ParameterString().

/// Writes formatted text, terminated, into `nSize` bytes and returns its length. Throws
/// "String-Length exceeded available size" (-101) for a text that does not fit, and for a null
/// buffer.
long WriteSettings(char* pBuffer, unsigned long nSize, const char* pFormat, ...)
    __attribute__((format(printf, 3, 4)));
