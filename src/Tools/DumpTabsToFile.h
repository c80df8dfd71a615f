#pragma once

/// `ClDumpTabsToFile` writes tables of integers as C++ source, so that a table that a program
/// computes can become one that is compiled in. A developer's tool: no calibration needs it.
///
///     std::FILE* pFile = DumpHeader("Squares.cpp", "/home/dev/src", false);
///     std::fprintf(pFile, "const unsigned char g_aSquares[10] = {\n");
///     DumpTab(pFile, aSquares, 10);
///     DumpClose(pFile);
///
/// writes
///
///     // Squares.cpp
///     // 24.12.2024, 18:00:00 Automatically created by ClDumpTabsToFile
///     const unsigned char g_aSquares[10] = {
///             0x00, 0x01, 0x04, 0x09, 0x10, 0x19, 0x24, 0x31,
///             0x40, 0x51};

#include "Tools/NumericFormat.h"

#include <cstdio>
#include <type_traits>

class ClDumpTabsToFile {
public:
    virtual ~ClDumpTabsToFile();

    /// Opens `pPath`/`pFile` for writing and writes its first comments, with local time; with
    /// `bPrecompiled` an include of "StdAfx.h", too. The file is the caller's, up to DumpClose().
    /// Throws "szFile is NULL" and "szPath is NULL" (-44), `ClExFilesystem` (-200) with the name
    /// of a file that does not open, `ClExBadAlloc` (-102).
    static std::FILE* DumpHeader(const char* pFile, const char* pPath, bool bPrecompiled);

    /// The entries of a table, as hexadecimal numbers of `nDigits` digits at least, eight on a
    /// line, with the brace that ends the table. Throws -44 for a missing file or table.
    template <class T>
    static void DumpTab(std::FILE* pFile, const T* pTab, unsigned long nSize,
                        int nDigits = 2 * sizeof(T));

    /// Ends the last line and closes. Throws `ClExFilesystem` (-200) where not all that was written
    /// has reached the file, -44 for a missing one.
    static void DumpClose(std::FILE* pFile);

private:
    static void CheckTab(const std::FILE* pFile, const void* pTab, unsigned long nSize);
    static void DumpSeparator(std::FILE* pFile, unsigned long nIndex);
};

template <class T>
void ClDumpTabsToFile::DumpTab(std::FILE* pFile, const T* pTab, unsigned long nSize, int nDigits) {
    using Unsigned = std::make_unsigned_t<T>; // the bits of T alone, not those of its promotion
    using Printed = std::conditional_t<(sizeof(T) < sizeof(unsigned)), unsigned, Unsigned>;
    CheckTab(pFile, pTab, nSize);
    char szFormat[32];
    std::snprintf(szFormat, sizeof szFormat, "0x%%0%d%sx", nDigits,
                  Vek::ClNumericFormat<T>::Prefix);
    std::fputs("\t\t", pFile);
    for (unsigned long i = 0; i < nSize; ++i) {
        DumpSeparator(pFile, i);
        std::fprintf(pFile, szFormat, static_cast<Printed>(static_cast<Unsigned>(pTab[i])));
    }
    std::fputs("};\n", pFile);
}
