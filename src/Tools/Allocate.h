#pragma once

/// Allocation that answers in the library's own way: `ClExBadAlloc`, number -102.

#include "Tools/Exception.h"

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace Vek {

[[noreturn]] inline void ThrowBadAlloc() {
    throw ClExBadAlloc("Memory allocation failed", QMT_ERROR_OUT_OF_MEMORY, false, VEK_NOWHERE);
}

/// `new T[nCount]`, default-initialised: numbers are not cleared.
template <class T>
T* NewArray(std::size_t nCount) {
    if (nCount > static_cast<std::size_t>(-1) / 2 / sizeof(T)) // NOLINT(bugprone-sizeof-expression)
        ThrowBadAlloc();
    T* pArray = new (std::nothrow) T[nCount];
    if (pArray == nullptr)
        ThrowBadAlloc();
    return pArray;
}

/// The same with an owner.
template <class T>
std::unique_ptr<T[]> NewArrayPtr(std::size_t nCount) {
    return std::unique_ptr<T[]>(NewArray<T>(nCount));
}

/// `new T(arguments)`.
template <class T, class... Arguments>
T* NewObject(Arguments&&... arguments) {
    if (T* pObject = new (std::nothrow) T(std::forward<Arguments>(arguments)...))
        return pObject;
    ThrowBadAlloc();
}

} // namespace Vek
