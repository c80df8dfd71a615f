#pragma once

#include <cstdio>
#include <string>

namespace diagnosis {

/// A format of printf with its numbers, as up to 255 characters.
template <class... Numbers>
std::string Words(const char* szFormat, Numbers... numbers) {
    char szText[256];
    std::snprintf(szText, sizeof szText, szFormat, numbers...);
    return szText;
}

} // namespace diagnosis
