// Look-up in the parameter tree by name and by path.
//
// A path is followed in a loop, not by recursion: "a..a..a." leads back to the root as often as
// its author likes.

#include "Tools/ParameterContainer.h"
#include "Tools/Text.h"

#include <TessarinCalibrateSDK.h>

#include <cstring>

namespace {

constexpr std::size_t cnMaxPart = 255;

/// Copies the first part of a path, up to the next '.' or the end, and returns what follows.
const char* CopyNamePathPart(const char* pPath, char* pBuffer, std::size_t nMax) {
    const std::size_t nLength = std::strcspn(pPath, ".");
    if (nLength >= nMax)
        throw ClException("Parameter path part was to long max len is 255", QMT_ERROR_INTERNAL,
                          true, VEK_HERE);
    std::memcpy(pBuffer, pPath, nLength);
    pBuffer[nLength] = '\0';
    return pPath + nLength;
}

/// The container to go on in where `pRest` asks for one behind `pFound`, else null.
ClParameterContainer* Inner(ClParameter* pFound, const char* pRest) {
    return *pRest == '.' && pFound != nullptr ? pFound->GetContainerInterface() : nullptr;
}

} // namespace

ClParameter* ClParameterContainer::FindLocal(const char* pName) const {
    if (pName == nullptr)
        return nullptr;
    for (unsigned long i = 0; i < Entries(); ++i) {
        const char* pEntryName = m_aParameters[i]->GetName();
        if (pEntryName != nullptr && Vek::IsSameName(pEntryName, pName))
            return m_aParameters[i];
    }
    return nullptr;
}

ClParameter* ClParameterContainer::Find(const char* pPath) {
    ClParameterContainer* pContainer = this;
    while (pPath != nullptr && *pPath != '\0') {
        ClParameter* pFound = pContainer->FindStep(pPath);
        pContainer = Inner(pFound, pPath);
        if (pContainer == nullptr)
            return pFound;
        ++pPath;
    }
    return nullptr;
}

ClParameter* ClParameterContainer::FindNamePart(ClParameter* pFound, const char* pRest) {
    ClParameterContainer* pContainer = pRest != nullptr ? Inner(pFound, pRest) : nullptr;
    return pContainer != nullptr ? pContainer->Find(pRest + 1) : pFound;
}

/// One step of a path that is not empty: what its first part names, `pPath` moved behind that.
ClParameter* ClParameterContainer::FindStep(const char*& pPath) {
    ClParameter* pRoot = GetRoot()->GetParameterInterface();
    if (*pPath == '.') {
        if (pPath[1] == '\0')
            ++pPath;
        return pRoot;
    }
    char szPart[cnMaxPart + 1];
    pPath = CopyNamePathPart(pPath, szPart, cnMaxPart);
    if (pRoot == this && GetName() != nullptr && std::strcmp(GetName(), szPart) == 0) {
        if (*pPath == '\0')
            return this;
        pPath = CopyNamePathPart(pPath + 1, szPart, cnMaxPart);
    }
    return FindLocal(szPart);
}
