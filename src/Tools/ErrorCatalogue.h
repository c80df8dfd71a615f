#pragma once

/// The status numbers of the library, with their names and words. Numbers come from the public
/// header; the words live here and nowhere else.

#include <TessarinCalibrateSDK.h>

#include <cstddef>

/// One row of the catalogue. All texts have static lifetime.
struct ST_ErrorMapEntry {
    long m_nCode;
    const char* m_szDescription;
    const wchar_t* m_wszDescription;
    const char* m_szName;
    const wchar_t* m_wszName;
};

/// The rows, `QMT_SUCCESS` first, then by theme; no number occurs twice.
extern const ST_ErrorMapEntry g_aErrorMap[];
extern const std::size_t g_nErrorMapEntries;

/// First row with the number, or with exactly the name. Where there is none, and for a null
/// name, an entry with the number 2147483647 and the words "Unknown error code.".
template <class Key>
const ST_ErrorMapEntry& GetErrorInfoT(Key key);

template <>
const ST_ErrorMapEntry& GetErrorInfoT<long>(long code);
template <>
const ST_ErrorMapEntry& GetErrorInfoT<const char*>(const char* name);
template <>
const ST_ErrorMapEntry& GetErrorInfoT<const wchar_t*>(const wchar_t* name);

const ST_ErrorMapEntry& GetVekErrorInfo(long code);
const ST_ErrorMapEntry& GetVekErrorInfo(const char* name);
const ST_ErrorMapEntry& GetVekErrorInfo(const wchar_t* name);
