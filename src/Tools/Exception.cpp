#include "Tools/Exception.h"

#include "Tools/ErrorCatalogue.h"
#include "Tools/Text.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>

namespace {

const char* FileOrUnknown(const char* file) {
    return file != nullptr ? file : "Unknown";
}

/// A copy in an array of its own; null for null, and null with `failed` set without memory.
char* Duplicate(const char* text, bool& failed) noexcept {
    failed = false;
    if (text == nullptr)
        return nullptr;
    const std::size_t nSize = std::strlen(text) + 1;
    char* copy = new (std::nothrow) char[nSize];
    failed = copy == nullptr;
    if (!failed)
        std::memcpy(copy, text, nSize);
    return copy;
}

char* FormatV(int& length, bool& failed, const char* format, va_list arguments) {
    failed = false;
    va_list measured;
    va_copy(measured, arguments);
    length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length <= 0)
        return nullptr;
    const std::size_t nSize = static_cast<std::size_t>(length) + 1;
    char* text = new (std::nothrow) char[nSize];
    failed = text == nullptr;
    if (!failed)
        length = std::vsnprintf(text, nSize, format, arguments);
    return text;
}

[[noreturn]] void ThrowBadAlloc() {
    throw ClExBadAlloc("Memory allocation failed", QMT_ERROR_OUT_OF_MEMORY, false, VEK_NOWHERE);
}

/// The words of a `ClExBadAlloc` whose comment cannot be allocated.
constexpr const char* cszBadAllocComment =
    "Memory allocation failed or given mem-block too small.\nMemory allocation failed";

} // namespace

// ClException

ClException::ClException(StNoComment, long number, const char* file, long line) noexcept
    : m_szFile(FileOrUnknown(file)), m_nLine(line), m_nNumber(number), m_bOwnComment(false) {}

ClException::ClException(long number, bool ownComment, const char* file, long line)
    : m_szFile(FileOrUnknown(file)), m_nLine(line), m_nNumber(number), m_bOwnComment(ownComment) {
    SetComment(GetErrorDescriptionIntern(number));
}

ClException::ClException(const char* text, long number, bool ownComment, const char* file,
                         long line)
    : m_szFile(FileOrUnknown(file)), m_nLine(line), m_nNumber(number), m_bOwnComment(ownComment) {
    SetCommentV("%s\n%s", GetErrorDescriptionIntern(number), Vek::TextOrEmpty(text));
}

ClException::ClException(const ClException& other)
    : Vek::ClTessarinException(other), m_szFile(other.m_szFile), m_nLine(other.m_nLine),
      m_nNumber(other.m_nNumber), m_bOwnComment(false) {
    if (!CopyComment(other))
        ThrowBadAlloc();
}

ClException& ClException::operator=(const ClException& other) {
    if (this == &other)
        return *this;
    if (!CopyComment(other))
        ThrowBadAlloc();
    CopyNumberAndPosition(other);
    return *this;
}

ClException::~ClException() noexcept {
    if (m_bOwnComment)
        delete[] m_szComment;
}

const char* ClException::what() const noexcept {
    return What();
}

const char* ClException::What() const {
    return m_szComment;
}

void ClException::SetComment(const char* text) {
    if (!m_bOwnComment) {
        PointComment(text);
        return;
    }
    if (text != nullptr && text == m_szComment)
        return;
    bool failed = false;
    char* copy = Duplicate(text, failed);
    if (failed)
        ThrowBadAlloc();
    TakeComment(copy);
}

int ClException::SetCommentV(const char* format, ...) {
    int length = 0;
    bool failed = false;
    va_list arguments;
    va_start(arguments, format);
    char* text = FormatV(length, failed, format, arguments);
    va_end(arguments);
    if (failed)
        ThrowBadAlloc();
    TakeComment(text);
    return length;
}

char* ClException::Format(int& length, bool& failed, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    char* text = FormatV(length, failed, format, arguments);
    va_end(arguments);
    return text;
}

bool ClException::CopyComment(const ClException& other) noexcept {
    if (!other.m_bOwnComment) {
        PointComment(other.m_szComment);
        return true;
    }
    bool failed = false;
    char* copy = Duplicate(other.m_szComment, failed);
    if (!failed)
        TakeComment(copy);
    return !failed;
}

void ClException::CopyNumberAndPosition(const ClException& other) noexcept {
    m_nNumber = other.m_nNumber;
    m_szFile = other.m_szFile;
    m_nLine = other.m_nLine;
}

void ClException::TakeComment(char* ownedText) noexcept {
    if (m_bOwnComment)
        delete[] m_szComment;
    m_szComment = ownedText;
    m_bOwnComment = true;
}

void ClException::PointComment(const char* foreignText) noexcept {
    if (m_bOwnComment)
        delete[] m_szComment;
    m_szComment = const_cast<char*>(foreignText); // never written, and not freed: not owned
    m_bOwnComment = false;
}

// ClExTessarin

const char* ClExTessarin::DescriptionOf(long number) {
    return GetErrorDescriptionIntern(number);
}

// ClExBadAlloc

ClExBadAlloc::ClExBadAlloc(const char* text, long number, bool, const char* file, long line)
    : ClException(StNoComment{}, number, file, line) {
    int length = 0;
    bool failed = false;
    char* comment =
        Format(length, failed, "%s\n%s", GetErrorDescriptionIntern(number), Vek::TextOrEmpty(text));
    if (failed)
        PointComment(cszBadAllocComment);
    else
        TakeComment(comment);
}

ClExBadAlloc::ClExBadAlloc(const ClException& other)
    : ClException(StNoComment{}, other.Number(), other.File(), other.Line()) {
    CopyOrPointComment(other);
}

ClExBadAlloc::ClExBadAlloc(const ClExBadAlloc& other)
    : ClExBadAlloc(static_cast<const ClException&>(other)) {}

ClExBadAlloc& ClExBadAlloc::operator=(const ClExBadAlloc& other) {
    if (this == &other)
        return *this;
    CopyOrPointComment(other);
    CopyNumberAndPosition(other);
    return *this;
}

void ClExBadAlloc::CopyOrPointComment(const ClException& other) noexcept {
    if (!CopyComment(other))
        PointComment(cszBadAllocComment);
}

// ClExSystem

ClExSystem::ClExSystem(const char* text, const char* file, long line)
    : ClExSystem(text, file, line, errno) {}

ClExSystem::ClExSystem(const char* text, const char* file, long line, int systemError)
    : ClException(text, QMT_ERROR_FROM_SYSTEM_FUNCTION, true, file, line) {
    SetCommentV("%s\n%s", std::strerror(systemError), Vek::TextOrEmpty(text));
}

// One destructor per class here keeps each class's tables in this file.

ClExTessarin::~ClExTessarin() noexcept = default;
ClExBadAlloc::~ClExBadAlloc() noexcept = default;
ClExRange::~ClExRange() noexcept = default;
ClExInvalid::~ClExInvalid() noexcept = default;
ClExStack::~ClExStack() noexcept = default;
ClCodingException::~ClCodingException() noexcept = default;
ClExStream::~ClExStream() noexcept = default;
ClExStreamUnexpectedEnd::~ClExStreamUnexpectedEnd() noexcept = default;
ClExStreamFailToWrite::~ClExStreamFailToWrite() noexcept = default;
ClExStreamFailToRead::~ClExStreamFailToRead() noexcept = default;
ClExStreamOpen::~ClExStreamOpen() noexcept = default;
ClExSystem::~ClExSystem() noexcept = default;
ClExFilesystem::~ClExFilesystem() noexcept = default;
