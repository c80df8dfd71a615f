#pragma once

/// Parameters that many operators publish alike, for both channels: the tree (`Container`) and
/// the flat list (`List`). An operator states its two lists side by side:
///
///     void ClIpCut::QueryParameters(ClParameterInterface& List) {
///         AddInImage(List, "InImage", m_pInImage, "In: Original Image");
///         AddEnum(List, "Mode", m_eMode, caModes, "In: Cut Mode");
///         AddNumber(List, "X0", m_nX0, "In: Start X");
///     }
///     void ClIpCut::PublishParameters(ClParameterContainer& Container) {
///         AddInImage(Container, "pInImage", m_pInImage);
///         Container.AddEnum("eMode", &m_eMode, caModes);
///         Container.AddNumeric("nX0", &m_nX0);
///     }
///
/// with the names of a choice stated once:
///
///     constexpr TpNamedValues<ClIpCut::EMode> caModes = {{ClIpCut::eFast, "Fast"}, ...};

#include "Tools/Allocate.h"
#include "Tools/FpImage.h"
#include "Tools/ParameterContainer.h"
#include "Tools/ParameterInterface.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>

/// The named values of a choice.
template <class T>
using TpNamedValues = std::initializer_list<Vek::TpValueName<T>>;

/// The pixel types of an output.
inline constexpr TpNamedValues<unsigned char> caPixelTypeChoice = {
    {ClImage::eUInt8, "unsigned char"},   {ClImage::eInt8, "signed char"},
    {ClImage::eUInt16, "unsigned short"}, {ClImage::eInt16, "signed short"},
    {ClImage::eUInt32, "unsigned int"},   {ClImage::eInt32, "signed int"},
    {ClImage::eFloat32, "float"},         {ClImage::eDouble64, "double"},
    {ClImage::eTypeDefault, "default"}};

/// The directions of a filter.
inline constexpr TpNamedValues<long> caFilterModeChoice = {{1, "Mode X"},
                                                           {2, "Mode Y"},
                                                           {3, "Mode XY"},
                                                           {8, "MODE_DIRECTED"},
                                                           {16, "MODE_DIRECTED_ORTHO"}};

// Tree

inline void AddInImage(ClParameterContainer& Container, const char* pName, ClImage*& pImage,
                       const char* pDescription = nullptr) {
    Container.AddPointer(pName, &pImage, ePfIn, pDescription);
}

inline void AddOutImage(ClParameterContainer& Container, const char* pName, ClImage*& pImage,
                        const char* pDescription = nullptr) {
    Container.AddPointer(pName, &pImage, ePfOut, pDescription);
}

inline void AddPixelType(ClParameterContainer& Container, const char* pName, unsigned char& nType,
                         const char* pDescription = nullptr) {
    Container.AddEnum(pName, &nType, caPixelTypeChoice, pDescription);
}

inline void AddFilterMode(ClParameterContainer& Container, const char* pName, long& nMode,
                          const char* pDescription = nullptr) {
    Container.AddEnum(pName, &nMode, caFilterModeChoice, pDescription);
}

// Flat list

inline void AddInImage(ClParameterInterface& List, const char* pName, ClImage*& pImage,
                       const char* pDescription = "") {
    List.AddParameter(&pImage, pName, pDescription, ClParameterInterface::eIn, 0.0, 0.0);
}

inline void AddOutImage(ClParameterInterface& List, const char* pName, ClImage*& pImage,
                        const char* pDescription = "") {
    List.AddParameter(&pImage, pName, pDescription, ClParameterInterface::eOut, 0.0, 0.0);
}

/// A number: `double`, `long`, `int` or `unsigned char`.
template <class T>
ClParameterInterface::ClParameter*
AddNumber(ClParameterInterface& List, const char* pName, T& Value, const char* pDescription = "",
          double dLower = 0.0, double dUpper = 0.0,
          ClParameterInterface::EDirection eDirection = ClParameterInterface::eIn) {
    return List.AddParameter(&Value, pName, pDescription, eDirection, dLower, dUpper);
}

/// A choice among the values listed, of an enumeration or an integer of any width.
template <class T>
ClParameterInterface::ClParameter*
AddEnum(ClParameterInterface& List, const char* pName, T& Value,
        TpNamedValues<typename Vek::TpIdentity<T>::Type> aValues, const char* pDescription = "",
        ClParameterInterface::EDirection eDirection = ClParameterInterface::eIn) {
    std::size_t nBytes = 1;
    for (const auto& NamedValue : aValues)
        nBytes += std::strlen(NamedValue.m_szName) + 1;
    const auto Names = Vek::NewArrayPtr<char>(nBytes);
    const auto Values = Vek::NewArrayPtr<long>(aValues.size());
    char* pNext = Names.get();
    long* pValue = Values.get();
    for (const auto& NamedValue : aValues) {
        pNext = std::copy_n(NamedValue.m_szName, std::strlen(NamedValue.m_szName) + 1, pNext);
        *pValue++ = static_cast<long>(NamedValue.m_Value);
    }
    *pNext = '\0';
    return List.AddEnum(&Value, pName, pDescription, Names.get(), Values.get(), eDirection,
                        sizeof(T));
}

inline void AddPixelType(ClParameterInterface& List, const char* pName, unsigned char& nType,
                         const char* pDescription = "") {
    AddEnum(List, pName, nType, caPixelTypeChoice, pDescription);
}

inline void AddFilterMode(ClParameterInterface& List, const char* pName, long& nMode,
                          const char* pDescription = "") {
    AddEnum(List, pName, nMode, caFilterModeChoice, pDescription);
}
