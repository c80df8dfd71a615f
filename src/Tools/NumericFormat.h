#pragma once

/// Print formats of the C number types, for texts that are made by `printf`.

#include <cstddef>

namespace Vek {

/// One row per type, numbered by `TpNumericIndex`.
namespace FormatTools {
inline constexpr const char* aFormats[] = {
    "%d",   // char
    "%u",   // unsigned char
    "%hd",  // short
    "%hu",  // unsigned short
    "%d",   // int
    "%u",   // unsigned int
    "%ld",  // long
    "%lu",  // unsigned long
    "%lld", // long long
    "%llu", // unsigned long long
    "%f",   // float
    "%f",   // double
};
/// What stands between '%' and the conversion.
inline constexpr const char* aFormatPrefix[] = {"",  "",  "h",  "h",  "", "",
                                                "l", "l", "ll", "ll", "", ""};
} // namespace FormatTools

/// The row of a type. Types without one, `signed char` among them, do not compile.
template <class T>
struct TpNumericIndex;

template <std::size_t N>
struct TpNumericRow {
    static constexpr std::size_t cnIndex = N;
};

template <>
struct TpNumericIndex<char> : TpNumericRow<0> {};
template <>
struct TpNumericIndex<unsigned char> : TpNumericRow<1> {};
template <>
struct TpNumericIndex<short> : TpNumericRow<2> {};
template <>
struct TpNumericIndex<unsigned short> : TpNumericRow<3> {};
template <>
struct TpNumericIndex<int> : TpNumericRow<4> {};
template <>
struct TpNumericIndex<unsigned int> : TpNumericRow<5> {};
template <>
struct TpNumericIndex<long> : TpNumericRow<6> {};
template <>
struct TpNumericIndex<unsigned long> : TpNumericRow<7> {};
template <>
struct TpNumericIndex<long long> : TpNumericRow<8> {};
template <>
struct TpNumericIndex<unsigned long long> : TpNumericRow<9> {};
template <>
struct TpNumericIndex<float> : TpNumericRow<10> {};
template <>
struct TpNumericIndex<double> : TpNumericRow<11> {};

/// Format of a `T`, and its length prefix. Both are constants of the program: they are there
/// before any code of the library runs.
template <class T>
struct ClNumericFormat {
    static constexpr const char* Format = FormatTools::aFormats[TpNumericIndex<T>::cnIndex];
    static constexpr const char* Prefix = FormatTools::aFormatPrefix[TpNumericIndex<T>::cnIndex];
};

} // namespace Vek
