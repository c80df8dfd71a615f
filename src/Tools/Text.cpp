#include "Tools/Text.h"

#include "Tools/Allocate.h"

#include <cstring>

namespace Vek {

std::unique_ptr<char[]> CopyOf(const char* pText) {
    if (pText == nullptr)
        return nullptr;
    const std::size_t nBytes = std::strlen(pText) + 1;
    auto pCopy = NewArrayPtr<char>(nBytes);
    std::memcpy(pCopy.get(), pText, nBytes);
    return pCopy;
}

bool IsSameName(const char* pOne, const char* pOther) {
    while (*pOne != '\0' && LowerLetter(*pOne) == LowerLetter(*pOther)) {
        ++pOne;
        ++pOther;
    }
    return LowerLetter(*pOne) == LowerLetter(*pOther);
}

bool BeginsWithName(const char* pText, const char* pName) {
    while (*pName != '\0' && LowerLetter(*pText) == LowerLetter(*pName)) {
        ++pText;
        ++pName;
    }
    return *pName == '\0';
}

} // namespace Vek
