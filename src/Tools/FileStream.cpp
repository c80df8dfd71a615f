#include "Tools/FileStream.h"

#include "Tools/Allocate.h"
#include "Tools/Text.h"
#include "Tools/XChar.h"

#include <cerrno>
#include <cstring>
#include <cwchar>
#include <sys/stat.h>
#include <utility>

namespace {

constexpr unsigned int cnRefused = 0xFFFFFFFFu;

bool IsDirectory(std::FILE* pFile) {
    struct stat Status;
    return fstat(fileno(pFile), &Status) == 0 && S_ISDIR(Status.st_mode);
}

/// A C library opens directories for reading and fails at the first byte only.
std::FILE* OpenFile(const char* szName, const char* szMode) {
    std::FILE* pFile = std::fopen(szName, szMode);
    if (pFile != nullptr && IsDirectory(pFile)) {
        std::fclose(pFile);
        pFile = nullptr;
        errno = EISDIR;
    }
    if (pFile == nullptr)
        throw ClExFilesystem(szName, QMT_ERROR_FILE_OPEN_FAIL, VEK_NOWHERE);
    return pFile;
}

/// The text as UTF-8, which takes at most 6 bytes for a wide character; null where it does not
/// convert.
std::unique_ptr<char[]> Narrow(const wchar_t* szText) {
    if (szText == nullptr)
        return nullptr;
    const std::size_t nLength = std::wcslen(szText);
    const std::size_t nRoom = 6 * nLength;
    auto pText = Vek::NewArrayPtr<char>(nRoom + 1);
    const long nDone = ConvertWideCharToSBCS(szText, nLength * sizeof(wchar_t), pText.get(), nRoom);
    if (nDone < 0)
        return nullptr;
    pText[static_cast<std::size_t>(nDone)] = 0;
    return pText;
}

std::unique_ptr<char[]> NarrowOrThrow(const wchar_t* szText, const char* szComplaint) {
    auto pText = Narrow(szText);
    if (pText == nullptr)
        throw ClException(szComplaint, QMT_ERROR_PARAM_IS_MISSING, false, VEK_NOWHERE);
    return pText;
}

} // namespace

ClFileStream::ClFileStream(const char* pName, const char* pMode) {
    Open(pName, pMode);
}

ClFileStream::ClFileStream(const wchar_t* pName, const wchar_t* pMode) {
    Open(pName, pMode);
}

ClFileStream::~ClFileStream() {
    try {
        ClFileStream::Close();
    } catch (...) { // the file is released all the same
    }
    delete[] m_szName;
}

bool ClFileStream::Open(const char* pName, const char* pMode) {
    const auto pFormerName = CloseAndForget(); // pName may be this very text
    if (pName == nullptr)
        throw ClException("szName is NULL", QMT_ERROR_INVALID_PARAMETER, false, VEK_NOWHERE);
    if (pMode == nullptr)
        throw ClException("szMode is NULL", QMT_ERROR_INVALID_PARAMETER, false, VEK_NOWHERE);
    auto pCopy = Vek::CopyOf(pName);
    m_pFile = OpenFile(pName, pMode);
    m_szName = pCopy.release();
    return true;
}

bool ClFileStream::Open(const wchar_t* pName, const wchar_t* pMode) {
    CloseAndForget();
    const auto pNarrowName = NarrowOrThrow(pName, "the szName parameter is invalid.");
    const auto pNarrowMode = NarrowOrThrow(pMode, "the szMode parameter is invalid.");
    return Open(pNarrowName.get(), pNarrowMode.get());
}

/// Closes, and hands out the name so that it lives a little longer.
std::unique_ptr<char[]> ClFileStream::CloseAndForget() {
    std::unique_ptr<char[]> pName(std::exchange(m_szName, nullptr));
    Close();
    return pName;
}

void ClFileStream::Close() {
    try {
        ClStream::Close();
    } catch (...) {
        CloseFile();
        throw;
    }
    if (!CloseFile())
        throw ClExStream("ClFileStream::Close. Failed to Close", QMT_ERROR_IO, false, VEK_NOWHERE);
}

bool ClFileStream::CloseFile() noexcept {
    ResetBits();
    m_eLast = eNone;
    std::FILE* pFile = std::exchange(m_pFile, nullptr);
    return pFile == nullptr || std::fclose(pFile) == 0;
}

const char* ClFileStream::Name() const {
    return m_szName != nullptr ? m_szName : "No file open";
}

bool ClFileStream::IsSeekable() const {
    return true;
}

unsigned long ClFileStream::Pos() const {
    const long nPos = m_pFile != nullptr ? std::ftell(m_pFile) : 0;
    return nPos > 0 ? static_cast<unsigned long>(nPos) : 0;
}

unsigned long ClFileStream::Size() const {
    if (m_pFile == nullptr)
        return 0;
    const long nPos = std::ftell(m_pFile);
    if (nPos < 0 || std::fseek(m_pFile, 0, SEEK_END) != 0)
        return 0;
    const unsigned long nSize = Pos();
    std::fseek(m_pFile, nPos, SEEK_SET);
    return nSize;
}

unsigned int ClFileStream::Seek(long nOffset, int nWhence) {
    static_assert(SEEK_SET == 0 && SEEK_CUR == 1 && SEEK_END == 2, "nWhence is passed on");
    if (m_pFile == nullptr || nWhence < 0 || nWhence > 2)
        return cnRefused;
    return std::fseek(m_pFile, nOffset, nWhence) == 0 ? 0 : cnRefused;
}

/// Between a read and a write, in either order, a C file has to be positioned.
void ClFileStream::SetDirection(ELast eNext) {
    if (m_eLast != eNone && m_eLast != eNext)
        std::fseek(m_pFile, 0, SEEK_CUR);
    m_eLast = eNext;
}

unsigned long ClFileStream::ReadRaw(void* pData, unsigned long nSize) {
    if (m_pFile == nullptr || nSize == 0)
        return 0;
    SetDirection(eRead);
    return std::fread(pData, 1, nSize, m_pFile);
}

unsigned long ClFileStream::WriteRaw(const void* pData, unsigned long nSize) {
    if (m_pFile == nullptr || nSize == 0)
        return 0;
    SetDirection(eWrite);
    return std::fwrite(pData, 1, nSize, m_pFile);
}

bool ClFileStream::HasFailed() const {
    return m_pFile != nullptr && std::ferror(m_pFile) != 0;
}
