#include "Tools/FormatText.h"

#include "Tools/Allocate.h"

#include <cstdarg>
#include <cstdio>

namespace Vek {

namespace {

/// Length of the text, 0 where it cannot be told.
std::size_t Measure(const char* pFormat, va_list arguments) {
    const int nLength = std::vsnprintf(nullptr, 0, pFormat, arguments);
    return nLength > 0 ? static_cast<std::size_t>(nLength) : 0;
}

} // namespace

std::unique_ptr<char[]> FormatText(const char* pFormat, ...) {
    va_list arguments;
    va_start(arguments, pFormat);
    const std::size_t nSize = Measure(pFormat, arguments) + 1;
    va_end(arguments);

    auto pText = NewArrayPtr<char>(nSize);
    pText[0] = '\0';
    va_start(arguments, pFormat);
    static_cast<void>(std::vsnprintf(pText.get(), nSize, pFormat, arguments));
    va_end(arguments);
    return pText;
}

} // namespace Vek
