#pragma once

#include <cstddef>

namespace Vek {

/// The one protocol of answers in text: `nSize` is the size of the buffer on entry and the size
/// needed on return, terminator included. Answers whether the size was enough. Writes nothing
/// into a null buffer and into one that is too small.
bool AnswerText(const char* pText, std::size_t nLength, char* pBuffer, unsigned long& nSize);

/// The same with the text's own length.
bool AnswerText(const char* pText, char* pBuffer, unsigned long& nSize);

} // namespace Vek
