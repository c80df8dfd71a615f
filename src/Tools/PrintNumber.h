#pragma once

/// Numbers as texts, by a `printf` format that comes from outside.

namespace Vek {

/// Prints a number with a format that holds one conversion or none, of any standard length. The
/// conversion decides what the number is passed as: the integer of its width (truncated toward
/// zero, 0 for what 64 bits do not hold), or the real number. `nPrecision` is passed before it for
/// a '*' in the conversion. Numbers are printed as in the C locale.
///
/// `nSize` is as in AnswerText(). False, without any writing, where `snprintf` fails, and for a
/// format that asks for anything but this: text, a pointer, a count, a second number.
bool PrintNumber(const char* pFormat, int nPrecision, double dValue, char* pBuffer,
                 unsigned long& nSize);
bool PrintNumber(const char* pFormat, int nPrecision, long long nValue, char* pBuffer,
                 unsigned long& nSize);

} // namespace Vek
