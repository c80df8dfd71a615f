#pragma once

/// The exceptions of the library. Every failure below the exported functions travels as one of
/// them, with a status number, a text and the source position of the throw; the call frame turns
/// it back into the number and logs text and position.
///
/// The classes are thrown by value and caught by reference. Three forms are in use:
///   throw ClExTessarin(number, VEK_HERE);                   a number with the catalogue's words
///   throw ClException("words", number, true, VEK_HERE);     words that say more
///   throw ClException("words", number, false, VEK_NOWHERE);  checks inside headers

#include "Tools/SourcePosition.h"

#include <TessarinCalibrateSDK.h>

#include <exception>

namespace Vek {

/// Marks the family; has no content of its own.
class ClTessarinException : public std::exception {};

} // namespace Vek

class ClException : public Vek::ClTessarinException {
public:
    /// The comment is the catalogue's description of `number`: a copy of it if `ownComment`,
    /// else the catalogue's pointer itself.
    ClException(long number, bool ownComment, const char* file, long line);

    /// The comment is the description of `number`, a line feed and `text`; always owned.
    ClException(const char* text, long number, bool ownComment, const char* file, long line);

    ClException(const ClException& other);
    ClException& operator=(const ClException& other);
    ~ClException() noexcept override;

    const char* what() const noexcept override;

    /// The comment, or null. Valid as long as the object and its comment are.
    virtual const char* What() const;

    long Number() const { return m_nNumber; }
    const char* File() const { return m_szFile; }
    long Line() const { return m_nLine; }

    /// Replaces the comment: by a copy of `text` if the comment is owned, else by the pointer.
    void SetComment(const char* text);

    /// Replaces the comment by formatted text, which is owned. An empty result leaves null.
    /// Returns what `vsnprintf` returned.
    int SetCommentV(const char* format, ...) __attribute__((format(printf, 2, 3)));

protected:
    /// Leaves the comment null; for constructors that make their own.
    struct StNoComment {};
    ClException(StNoComment, long number, const char* file, long line) noexcept;

    /// A formatted text in an array of its own, null for an empty text. `length` gets the result
    /// of `vsnprintf`; `failed` says whether memory was missing.
    static char* Format(int& length, bool& failed, const char* format, ...)
        __attribute__((format(printf, 3, 4)));

    /// Takes over the other's comment and own flag: a copy of an owned text, else the pointer.
    /// False where memory is missing; nothing has changed then.
    [[nodiscard]] bool CopyComment(const ClException& other) noexcept;
    void CopyNumberAndPosition(const ClException& other) noexcept;
    void TakeComment(char* ownedText) noexcept;
    void PointComment(const char* foreignText) noexcept;

    char* m_szComment = nullptr;
    const char* m_szFile;
    long m_nLine;
    long m_nNumber;
    bool m_bOwnComment;
};

/// A status number and nothing else of interest. Its comment is the description twice.
class ClExTessarin : public ClException {
public:
    ClExTessarin(long number, const char* file, long line)
        : ClException(DescriptionOf(number), number, false, file, line) {}
    explicit ClExTessarin(const ClException& other) : ClException(other) {}
    ClExTessarin(const ClExTessarin&) = default;
    ClExTessarin& operator=(const ClExTessarin&) = default;
    ~ClExTessarin() noexcept override;

private:
    static const char* DescriptionOf(long number);
};

/// Allocation failed. Making one needs no memory: where its comment cannot be allocated it
/// points at a static text of the same words.
class ClExBadAlloc : public ClException {
public:
    ClExBadAlloc(const char* text, long number, bool ownComment, const char* file, long line);
    explicit ClExBadAlloc(const ClException& other);
    ClExBadAlloc(const ClExBadAlloc& other);
    ClExBadAlloc& operator=(const ClExBadAlloc& other);
    ~ClExBadAlloc() noexcept override;

private:
    void CopyOrPointComment(const ClException& other) noexcept;
};

/// The two constructors that most classes of the family have.
// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are names of classes
#define VEK_EXCEPTION_CLASS(Name, Base)                                                            \
    class Name : public Base {                                                                     \
    public:                                                                                        \
        Name(const char* text, long number, bool ownComment, const char* file, long line)          \
            : Base(text, number, ownComment, file, line) {}                                        \
        explicit Name(const ClException& other) : Base(other) {}                                   \
        Name(const Name&) = default;                                                               \
        Name& operator=(const Name&) = default;                                                    \
        ~Name() noexcept override;                                                                 \
    }
// NOLINTEND(bugprone-macro-parentheses)

VEK_EXCEPTION_CLASS(ClExRange, ClException);              ///< a number out of range
VEK_EXCEPTION_CLASS(ClExInvalid, ClException);            ///< declared for users of the family
VEK_EXCEPTION_CLASS(ClExStack, ClException);              ///< declared for users of the family
VEK_EXCEPTION_CLASS(ClCodingException, ClException);      ///< declared for users of the family
VEK_EXCEPTION_CLASS(ClExStream, ClException);             ///< a stream failure
VEK_EXCEPTION_CLASS(ClExStreamUnexpectedEnd, ClExStream); ///< short transfer on a strict stream
VEK_EXCEPTION_CLASS(ClExStreamFailToWrite, ClExStream);   ///< a write refused
VEK_EXCEPTION_CLASS(ClExStreamFailToRead, ClExStream);    ///< declared for users of the family
VEK_EXCEPTION_CLASS(ClExStreamOpen, ClExStream);          ///< declared for users of the family

#undef VEK_EXCEPTION_CLASS

/// A system call failed: the comment is `strerror` of the `errno` found on entry, a line feed
/// and the text.
class ClExSystem : public ClException {
public:
    ClExSystem(const char* text, const char* file, long line);
    explicit ClExSystem(const ClException& other) : ClException(other) {}
    ClExSystem(const ClExSystem&) = default;
    ClExSystem& operator=(const ClExSystem&) = default;
    ~ClExSystem() noexcept override;

private:
    ClExSystem(const char* text, const char* file, long line, int systemError);
};

/// A file could not be opened.
class ClExFilesystem : public ClExSystem {
public:
    ClExFilesystem(const char* text, long number, const char* file, long line)
        : ClExSystem(text, file, line) {
        m_nNumber = number;
    }
    explicit ClExFilesystem(const ClException& other) : ClExSystem(other) {}
    ClExFilesystem(const ClExFilesystem&) = default;
    ClExFilesystem& operator=(const ClExFilesystem&) = default;
    ~ClExFilesystem() noexcept override;
};
