#pragma once

/// Numbers in strings of bytes. Places beyond the end are not read (0) and not written.

#include <cstddef>
#include <cstdint>
#include <string>

namespace Fuzz {

template <class T>
T Big(const std::string& Bytes, std::size_t nAt) {
    T nValue = 0;
    for (std::size_t i = 0; i < sizeof(T) && nAt + i < Bytes.size(); ++i)
        nValue = static_cast<T>(nValue | static_cast<T>(static_cast<unsigned char>(Bytes[nAt + i]))
                                             << (8 * (sizeof(T) - 1 - i)));
    return nValue;
}

template <class T>
T Little(const std::string& Bytes, std::size_t nAt) {
    T nValue = 0;
    for (std::size_t i = 0; i < sizeof(T) && nAt + i < Bytes.size(); ++i)
        nValue = static_cast<T>(nValue | static_cast<T>(static_cast<unsigned char>(Bytes[nAt + i]))
                                             << (8 * i));
    return nValue;
}

template <class T>
void PutBig(std::string& rBytes, std::size_t nAt, T nValue) {
    for (std::size_t i = 0; i < sizeof(T) && nAt + i < rBytes.size(); ++i)
        rBytes[nAt + i] = static_cast<char>(nValue >> (8 * (sizeof(T) - 1 - i)));
}

template <class T>
void PutLittle(std::string& rBytes, std::size_t nAt, T nValue) {
    for (std::size_t i = 0; i < sizeof(T) && nAt + i < rBytes.size(); ++i)
        rBytes[nAt + i] = static_cast<char>(nValue >> (8 * i));
}

} // namespace Fuzz
