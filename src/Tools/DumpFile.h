#pragma once

/// The `ClDumpFile` family writes generated source files: comments, includes and constants, as
/// C++ or for an assembler. A developer's tool: no calibration needs it.
///
///     ClDumpFile_C_Header Header("tabs.h", "/home/dev/src");
///     Header.GeneratedComment();
///     Header.Define("TAB_SIZE", 256, "int");
///
/// writes
///
///     #ifndef _TABS_H_
///     #define _TABS_H_
///
///     // tabs.h
///     // 24.12.2024, 18:00:00 Automatically created.
///     #define TAB_SIZE ((int)256)
///     #endif //_TABS_H_
///
/// What cannot be written, on a full disk for example, is lost without a word. A null text counts
/// as empty.

#include <cstdio>
#include <memory>

class ClDumpFile {
public:
    /// Opens `pPath`/`pFile` for writing. Throws "szFile is NULL" and "szPath is NULL" (-44),
    /// `ClExFilesystem` (-200) with the name of a file that does not open, `ClExBadAlloc` (-102).
    ClDumpFile(const char* pFile, const char* pPath);
    ClDumpFile(const ClDumpFile&) = delete;
    ClDumpFile& operator=(const ClDumpFile&) = delete;
    virtual ~ClDumpFile();

    virtual void CommentLine(const char* pText) = 0;
    virtual void Include(const char* pName) = 0;
    virtual void Define(const char* pName, int nValue, const char* pType) = 0;
    virtual void Define(const char* pName, double dValue, const char* pType) = 0;
    virtual void Const(const char* pName, int nValue, const char* pType) = 0;

    /// Formatted text, as it is.
    void Out(const char* pFormat, ...) __attribute__((format(printf, 2, 3)));
    void NewLines(int nCount);
    /// A formatted line of comment. Throws "Comment to long" (-101) for more than 1023 characters.
    void Comment(const char* pFormat, ...) __attribute__((format(printf, 2, 3)));
    /// Two lines of comment: the file name, and the date and time of now, local.
    void GeneratedComment();

    /// Name of the file, without its path.
    const char* Name() const { return m_pName.get(); }

    /// Columns that a name takes at least, in the lines that align it: to the right, or to the left
    /// where negative.
    int m_nNameWidth = 0;

private:
    std::unique_ptr<char[]> m_pName;
    std::FILE* m_pFile;
};

/// C++ text. Define() writes a macro.
class ClDumpFile_C : public ClDumpFile {
public:
    using ClDumpFile::ClDumpFile;

    void CommentLine(const char* pText) override;
    void Include(const char* pName) override;
    void Define(const char* pName, int nValue, const char* pType) override;
    void Define(const char* pName, double dValue, const char* pType) override;
};

/// A header, guarded from its first line to its last one. Const() declares.
class ClDumpFile_C_Header : public ClDumpFile_C {
public:
    ClDumpFile_C_Header(const char* pFile, const char* pPath);
    ~ClDumpFile_C_Header() override;

    void Const(const char* pName, int nValue, const char* pType) override;

    /// The name of the guard: "_", the file name in capitals with '_' for each '.', "_". `pBuffer`
    /// has room for the length of the file name and 3 bytes.
    void GetProtectorName(char* pBuffer) const;

private:
    std::unique_ptr<char[]> m_pProtector; ///< at hand when no memory is left
};

/// A source file. Const() defines.
class ClDumpFile_C_File : public ClDumpFile_C {
public:
    using ClDumpFile_C::ClDumpFile_C;

    void Const(const char* pName, int nValue, const char* pType) override;
};

/// Text for an assembler, which knows integers alone: Define() of a double writes nothing.
class ClDumpFile_ASM : public ClDumpFile {
public:
    using ClDumpFile::ClDumpFile;

    void CommentLine(const char* pText) override;
    void Include(const char* pName) override;
    void Define(const char* pName, int nValue, const char* pType) override;
    void Define(const char* pName, double dValue, const char* pType) override;
    void Const(const char* pName, int nValue, const char* pType) override;
};
