#pragma once

/// Whole files in, whole files out.
///
/// An output file comes into being under its name only when it is complete: it is written under a
/// temporary name in the same directory, `.qk7-PROCESS-NUMBER.tmp`, and then renamed. A reader sees
/// the old file or the new one, and a failure or an interrupt leaves the old one. Of several
/// writers the last one to rename wins. A process that is killed leaves its temporary file, which
/// nobody takes for an output.
///
/// The path "-" is standard input where something is read, standard output where something is
/// written. A file of that name is "./-".

#include <cstddef>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

namespace qk7 {

using Bytes = std::vector<unsigned char>;

/// What went wrong with what, complete as the tool prints it: "scanner.cal: Permission denied".
class ClFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ClFailure(const std::string& Subject, const std::string& Words)
        : std::runtime_error(Subject + ": " + Words) {}
};

enum class EStream { eIn, eOut };

/// Whether the path stands for standard input or output.
bool IsStream(const std::string& Path);
/// The path as messages name it: "standard input" or "standard output" for "-".
std::string ShownName(const std::string& Path, EStream eStream);

/// No file that the tool handles is larger: a precalculated block ends below 513 MiB.
constexpr std::size_t cnFileLimit = std::size_t{544} << 20;

/// The bytes of a file. Throws `ClFailure` when it cannot be read or has more than `nLimit` bytes;
/// a device or pipe is read no further than that.
Bytes ReadFile(const std::string& Path, std::size_t nLimit = cnFileLimit);

/// A file while it is written. Every failure throws `ClFailure` with the path. An interrupt removes
/// the temporary file. Different threads may write different files.
class ClOutputFile {
public:
    /// A regular file, or none yet, is written under a temporary name; a link to a file is
    /// followed, one that leads nowhere is replaced; a device or pipe is written directly, since
    /// nothing may take its place, and so is standard output, unless it is a terminal. An existing
    /// file hands on its permissions.
    explicit ClOutputFile(const std::string& Path);
    ClOutputFile(const ClOutputFile&) = delete;
    ClOutputFile& operator=(const ClOutputFile&) = delete;
    /// Removes what was not committed.
    ~ClOutputFile();

    void Write(const void* pData, std::size_t nSize);
    /// Forces the bytes to the disk, closes and renames.
    void Commit();

private:
    /// The body of the public one throws with the object complete, so that the destructor runs.
    ClOutputFile(const std::string& Path, const std::string& Target);

    void OpenDirectly();
    void OpenStandardOutput();
    void OpenTemporary(unsigned int nMode);
    void NoteThis(const std::string& Name);
    void CloseFile();
    void RemoveTemporary() noexcept;
    [[noreturn]] void Fail(int nErrno) const;

    std::string m_Path;      ///< as the user wrote it
    std::string m_Target;    ///< with links resolved
    std::string m_Temporary; ///< empty when there is none
    std::size_t m_nNote = 0; ///< of the temporary one
    int m_nFile = -1;
};

/// All parts, one behind the other, committed.
void WriteFile(const std::string& Path, std::initializer_list<const Bytes*> Parts);

/// A whole text, committed.
void WriteText(const std::string& Path, const std::string& Text);

/// Whether two paths lead, or would lead, to the same file.
bool IsSameFile(const std::string& a, const std::string& b);

/// Makes a directory and those above it, where they are missing. Throws `ClFailure`.
void MakeDirectory(const std::string& Path);

/// Makes SIGINT, SIGTERM and SIGHUP remove temporary files before they end the process, and turns
/// a broken pipe and a reached size limit into failures of the write. For main().
void GuardAgainstSignals();

/// Takes the places of standard input, output and error that are closed, by what can be neither
/// read nor written. Otherwise the next file to be opened got the place, and what is printed would
/// get into an output. For main(), before anything is opened.
void OccupyStandardStreams();

/// The system's words for an error number.
std::string SystemWords(int nErrno);

} // namespace qk7
