#include "Tools/TextAnswer.h"

#include <cstring>

namespace Vek {

bool AnswerText(const char* pText, std::size_t nLength, char* pBuffer, unsigned long& nSize) {
    const bool bEnough = nSize > nLength;
    nSize = nLength + 1;
    if (bEnough && pBuffer != nullptr) {
        std::memcpy(pBuffer, pText, nLength);
        pBuffer[nLength] = '\0';
    }
    return bEnough;
}

bool AnswerText(const char* pText, char* pBuffer, unsigned long& nSize) {
    return AnswerText(pText, std::strlen(pText), pBuffer, nSize);
}

} // namespace Vek
