#include "apps/qk7/File.h"

#include "apps/qk7/TemporaryFiles.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qk7 {

namespace {

/// Closes what it holds, but not standard input, which others read on.
class ClDescriptor {
public:
    explicit ClDescriptor(int nFile) : m_nFile(nFile) {}
    ClDescriptor(const ClDescriptor&) = delete;
    ClDescriptor& operator=(const ClDescriptor&) = delete;
    ~ClDescriptor() {
        if (m_nFile > STDIN_FILENO)
            close(m_nFile);
    }
    int Get() const { return m_nFile; }

private:
    int m_nFile;
};

std::string TooLarge(std::size_t nLimit) {
    return "has more than " + std::to_string(nLimit) + " bytes, more than any file for this tool";
}

std::string Resolved(const std::string& Path) {
    const std::unique_ptr<char, decltype(&std::free)> pResolved(realpath(Path.c_str(), nullptr),
                                                                &std::free);
    return pResolved ? std::string(pResolved.get()) : Path;
}

/// Its own short name, whatever the length of the output's: it always fits into the directory.
std::string TemporaryName(const std::string& Target, unsigned int nTry) {
    const std::size_t nSlash = Target.rfind('/');
    const std::string folder = nSlash == std::string::npos ? "" : Target.substr(0, nSlash + 1);
    return folder + ".qk7-" + std::to_string(getpid()) + "-" + std::to_string(nTry) + ".tmp";
}

/// The bytes that came, 0 at the end.
std::size_t ReadSome(const std::string& Path, int nFile, Bytes& rContent, std::size_t nFilled) {
    for (;;) {
        const ssize_t nRead = read(nFile, rContent.data() + nFilled, rContent.size() - nFilled);
        if (nRead >= 0)
            return static_cast<std::size_t>(nRead);
        if (errno != EINTR)
            throw ClFailure(ShownName(Path, EStream::eIn), SystemWords(errno));
    }
}

int OpenForReading(const std::string& Path) {
    return IsStream(Path) ? STDIN_FILENO : open(Path.c_str(), O_RDONLY | O_CLOEXEC);
}

bool CannotBeForced(int nErrno) {
    return nErrno == EINVAL || nErrno == ENOTSUP;
}

} // namespace

void OccupyStandardStreams() {
    // A new one has the lowest number that is free.
    while (true) {
        const int nFile = open("/", O_PATH);
        if (nFile >= 0 && nFile <= STDERR_FILENO)
            continue;
        if (nFile >= 0)
            close(nFile);
        return;
    }
}

std::string SystemWords(int nErrno) {
    return std::generic_category().message(nErrno);
}

Bytes ReadFile(const std::string& Path, std::size_t nLimit) {
    const ClDescriptor file(OpenForReading(Path));
    const std::string name = ShownName(Path, EStream::eIn);
    struct stat status {};
    if (file.Get() < 0 || fstat(file.Get(), &status) != 0)
        throw ClFailure(name, SystemWords(errno));
    const std::size_t nTold = status.st_size > 0 ? static_cast<std::size_t>(status.st_size) : 0;
    if (nTold > nLimit)
        throw ClFailure(name, TooLarge(nLimit));
    // One byte more than told, so that the end is met without growing.
    Bytes content(std::max<std::size_t>(nTold + 1, 4096));
    std::size_t nFilled = 0;
    while (const std::size_t nRead = ReadSome(Path, file.Get(), content, nFilled)) {
        nFilled += nRead;
        if (nFilled > nLimit)
            throw ClFailure(name, TooLarge(nLimit));
        if (nFilled == content.size())
            content.resize(std::min(2 * nFilled, nLimit + 1));
    }
    content.resize(nFilled);
    return content;
}

bool IsStream(const std::string& Path) {
    return Path == "-";
}

std::string ShownName(const std::string& Path, EStream eStream) {
    if (!IsStream(Path))
        return Path;
    return eStream == EStream::eIn ? "standard input" : "standard output";
}

ClOutputFile::ClOutputFile(const std::string& Path) : ClOutputFile(Path, Path) {
    if (IsStream(Path)) {
        OpenStandardOutput();
        return;
    }
    struct stat status {};
    const bool bExists = stat(Path.c_str(), &status) == 0;
    if (bExists && !S_ISREG(status.st_mode)) {
        OpenDirectly();
        return;
    }
    if (bExists && access(Path.c_str(), W_OK) != 0)
        Fail(errno);
    if (bExists)
        m_Target = Resolved(Path);
    OpenTemporary(bExists ? status.st_mode & 0600U : 0666U);
    // A file system without permissions refuses; the file is then as it makes all files.
    if (bExists && fchmod(m_nFile, status.st_mode & 0777U) != 0 && errno != EPERM)
        Fail(errno);
}

ClOutputFile::ClOutputFile(const std::string& Path, const std::string& Target)
    : m_Path(Path), m_Target(Target) {}

ClOutputFile::~ClOutputFile() {
    if (m_nFile >= 0)
        close(m_nFile);
    RemoveTemporary();
}

void ClOutputFile::OpenDirectly() {
    m_nFile = open(m_Path.c_str(), O_WRONLY | O_CLOEXEC);
    if (m_nFile < 0)
        Fail(errno);
}

void ClOutputFile::OpenStandardOutput() {
    if (isatty(STDOUT_FILENO) != 0)
        throw ClFailure("standard output", "is a terminal, which shows no pictures and blocks. "
                                           "Send it to a file or another program.");
    m_nFile = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (m_nFile < 0)
        Fail(errno);
}

void ClOutputFile::OpenTemporary(unsigned int nMode) {
    // A name that exists is what a killed process of the same number left behind.
    constexpr unsigned int cnTries = 100 + cnTemporaryFiles;
    for (unsigned int nTry = 0; nTry < cnTries; ++nTry) {
        const std::string name = TemporaryName(m_Target, nTry);
        if (name.size() >= PATH_MAX)
            Fail(ENAMETOOLONG);
        const ClDiskChange change;
        m_nFile = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, nMode);
        if (m_nFile >= 0) {
            NoteThis(name);
            return;
        }
        if (errno != EEXIST)
            Fail(errno);
    }
    Fail(EEXIST);
}

/// A file that cannot be noted is not left behind.
void ClOutputFile::NoteThis(const std::string& Name) {
    try {
        m_Temporary = Name;
        m_nNote = NoteTemporary(Name);
    } catch (...) {
        unlink(Name.c_str());
        m_Temporary.clear();
        throw;
    }
}

void ClOutputFile::Write(const void* pData, std::size_t nSize) {
    const char* pNext = static_cast<const char*>(pData);
    while (nSize > 0) {
        const ssize_t nWritten = write(m_nFile, pNext, nSize);
        if (nWritten < 0 && errno == EINTR)
            continue;
        if (nWritten < 0)
            Fail(errno);
        pNext += nWritten;
        nSize -= static_cast<std::size_t>(nWritten);
    }
}

void ClOutputFile::Commit() {
    if (!m_Temporary.empty() && fsync(m_nFile) != 0 && !CannotBeForced(errno))
        Fail(errno);
    CloseFile();
    if (m_Temporary.empty())
        return;
    const ClDiskChange change;
    if (rename(m_Temporary.c_str(), m_Target.c_str()) != 0)
        Fail(errno);
    ForgetTemporary(m_nNote);
    m_Temporary.clear();
}

void ClOutputFile::CloseFile() {
    const int nFile = m_nFile;
    m_nFile = -1;
    if (close(nFile) != 0 && errno != EINTR)
        Fail(errno);
}

void ClOutputFile::RemoveTemporary() noexcept {
    if (m_Temporary.empty())
        return;
    const ClDiskChange change;
    unlink(m_Temporary.c_str());
    ForgetTemporary(m_nNote);
}

void ClOutputFile::Fail(int nErrno) const {
    throw ClFailure(ShownName(m_Path, EStream::eOut), "cannot be written: " + SystemWords(nErrno));
}

void WriteFile(const std::string& Path, std::initializer_list<const Bytes*> Parts) {
    ClOutputFile file(Path);
    for (const Bytes* pPart : Parts)
        file.Write(pPart->data(), pPart->size());
    file.Commit();
}

void WriteText(const std::string& Path, const std::string& Text) {
    ClOutputFile file(Path);
    file.Write(Text.data(), Text.size());
    file.Commit();
}

bool IsSameFile(const std::string& a, const std::string& b) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    const auto place = [&ignored](const std::string& path) {
        return fs::weakly_canonical(fs::absolute(path, ignored), ignored);
    };
    return a == b || fs::equivalent(a, b, ignored) || (!place(a).empty() && place(a) == place(b));
}

void MakeDirectory(const std::string& Path) {
    namespace fs = std::filesystem;
    std::error_code error;
    std::error_code ignored;
    fs::create_directories(Path, error);
    // Judged by the outcome: a trailing slash may be reported as an error with the work done, and
    // a file in its place by one of three numbers.
    if (fs::is_directory(Path, ignored))
        return;
    if (!error || error == std::errc::file_exists)
        error = std::make_error_code(std::errc::not_a_directory);
    throw ClFailure(Path, "cannot be made a directory: " + error.message());
}

void GuardAgainstSignals() {
    RemoveTemporariesOnSignals();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace qk7
