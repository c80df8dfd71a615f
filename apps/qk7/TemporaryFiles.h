#pragma once

/// The temporary files of a process, which an interrupt removes.
///
/// A handler of signals may touch little: the names stand in fixed buffers, one for each file that
/// is being written, and what is on the disk changes only within a `ClDiskChange`. The handler
/// waits until no thread is within one and lets none begin, so that every name it reads is whole
/// and no file comes into being behind it.

#include <cstddef>
#include <string>

#include <csignal>

namespace qk7 {

/// As many files may be written at the same time.
constexpr std::size_t cnTemporaryFiles = 256;

/// While it lives no ending signal comes between a change on the disk and its note.
class ClDiskChange {
public:
    ClDiskChange();
    ClDiskChange(const ClDiskChange&) = delete;
    ClDiskChange& operator=(const ClDiskChange&) = delete;
    ~ClDiskChange();

private:
    sigset_t m_Former;
};

/// Notes the name of a temporary file and returns the number of its note. Throws
/// `std::logic_error` when there are too many, and `std::length_error` for a name that is longer
/// than any path. Note and forget within a `ClDiskChange`.
std::size_t NoteTemporary(const std::string& Name);
void ForgetTemporary(std::size_t nNote) noexcept;

/// Makes SIGINT, SIGTERM and SIGHUP remove the temporary files before they end the process.
void RemoveTemporariesOnSignals();

/// What a process that ends by a signal says last on standard error; null for nothing. The text is
/// the caller's and has to live on.
void SetLastWords(const char* szWords);

/// Lets a thread take no ending signal: they are for the thread that began the work.
void LeaveSignalsToOthers();

} // namespace qk7
