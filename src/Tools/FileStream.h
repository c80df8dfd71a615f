#pragma once

/// A stream over a file of the C library. It serves files that developers and tools keep; the
/// exported functions work on memory only.
///
/// Without an open file transfers, position and size are 0 and Seek() is refused.

#include "Tools/Stream.h"

#include <cstdio>
#include <memory>

class ClFileStream : public ClStream {
public:
    ClFileStream() = default;
    ClFileStream(const char* pName, const char* pMode);
    ClFileStream(const wchar_t* pName, const wchar_t* pMode);
    ~ClFileStream() override;

    /// Opens a file with a mode of `fopen`, closing the one that is open. Returns true or throws:
    /// -44 for a null argument, `ClExFilesystem` (-200) with the name where the file does not open
    /// or is a directory. After a failure no file is open and none is named.
    bool Open(const char* pName, const char* pMode);
    /// The same with wide texts, which become UTF-8; -37 for one that is null or does not convert.
    bool Open(const wchar_t* pName, const wchar_t* pMode);

    /// Throws "ClFileStream::Close. Failed to Close" (-204); the file is released all the same.
    void Close() override;
    unsigned long Pos() const override;
    unsigned long Size() const override;
    /// As `fseek`: targets behind the end are allowed.
    unsigned int Seek(long nOffset, int nWhence) override;
    /// The name of the last file opened, or "No file open".
    const char* Name() const override;
    /// Always true.
    bool IsSeekable() const override;
    unsigned long WriteRaw(const void* pData, unsigned long nSize) override;
    unsigned long ReadRaw(void* pData, unsigned long nSize) override;
    /// Whether a transfer since Open() has met an error of the system, and not just the end.
    bool HasFailed() const;

private:
    enum ELast : unsigned char { eNone, eRead, eWrite };

    std::unique_ptr<char[]> CloseAndForget();
    bool CloseFile() noexcept;
    void SetDirection(ELast eNext);

    std::FILE* m_pFile = nullptr;
    char* m_szName = nullptr;
    ELast m_eLast = eNone; ///< C files want a positioning call where reading and writing alternate
};
