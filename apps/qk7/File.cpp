#include "apps/qk7/File.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qk7 {

namespace {

constexpr std::array<int, 3> anEndingSignals = {SIGINT, SIGTERM, SIGHUP};

// What a signal handler may touch: a fixed buffer and a flag.
char g_szTemporary[PATH_MAX];
volatile std::sig_atomic_t g_bTemporary = 0;

extern "C" void RemoveTemporaryAndEnd(int nSignal) {
    if (g_bTemporary)
        unlink(g_szTemporary);
    raise(nSignal); // the handler was reset on entry: the default action ends the process
}

/// While it lives no ending signal comes between a change on the disk and its note.
class ClSignalsHeld {
public:
    ClSignalsHeld() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int nSignal : anEndingSignals)
            sigaddset(&signals, nSignal);
        pthread_sigmask(SIG_BLOCK, &signals, &m_Former);
    }
    ClSignalsHeld(const ClSignalsHeld&) = delete;
    ClSignalsHeld& operator=(const ClSignalsHeld&) = delete;
    ~ClSignalsHeld() { pthread_sigmask(SIG_SETMASK, &m_Former, nullptr); }

private:
    sigset_t m_Former;
};

class ClDescriptor {
public:
    explicit ClDescriptor(int nFile) : m_nFile(nFile) {}
    ClDescriptor(const ClDescriptor&) = delete;
    ClDescriptor& operator=(const ClDescriptor&) = delete;
    ~ClDescriptor() {
        if (m_nFile >= 0)
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
            throw ClFailure(Path, SystemWords(errno));
    }
}

bool CannotBeForced(int nErrno) {
    return nErrno == EINVAL || nErrno == ENOTSUP;
}

} // namespace

std::string SystemWords(int nErrno) {
    return std::generic_category().message(nErrno);
}

Bytes ReadFile(const std::string& Path, std::size_t nLimit) {
    const ClDescriptor file(open(Path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status {};
    if (file.Get() < 0 || fstat(file.Get(), &status) != 0)
        throw ClFailure(Path, SystemWords(errno));
    const std::size_t nTold = status.st_size > 0 ? static_cast<std::size_t>(status.st_size) : 0;
    if (nTold > nLimit)
        throw ClFailure(Path, TooLarge(nLimit));
    // One byte more than told, so that the end is met without growing.
    Bytes content(std::max<std::size_t>(nTold + 1, 4096));
    std::size_t nFilled = 0;
    while (const std::size_t nRead = ReadSome(Path, file.Get(), content, nFilled)) {
        nFilled += nRead;
        if (nFilled > nLimit)
            throw ClFailure(Path, TooLarge(nLimit));
        if (nFilled == content.size())
            content.resize(std::min(2 * nFilled, nLimit + 1));
    }
    content.resize(nFilled);
    return content;
}

ClOutputFile::ClOutputFile(const std::string& Path) : ClOutputFile(Path, Path) {
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

void ClOutputFile::OpenTemporary(unsigned int nMode) {
    if (g_bTemporary)
        throw std::logic_error("two output files at once");
    // A name that exists is what a killed process of the same number left behind.
    constexpr unsigned int cnTries = 100;
    for (unsigned int nTry = 0; nTry < cnTries; ++nTry) {
        std::string name = TemporaryName(m_Target, nTry);
        if (name.size() >= sizeof g_szTemporary)
            Fail(ENAMETOOLONG);
        const ClSignalsHeld held;
        m_nFile = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, nMode);
        if (m_nFile >= 0) {
            std::memcpy(g_szTemporary, name.c_str(), name.size() + 1);
            g_bTemporary = 1;
            m_Temporary.swap(name);
            return;
        }
        if (errno != EEXIST)
            Fail(errno);
    }
    Fail(EEXIST);
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
    const ClSignalsHeld held;
    if (rename(m_Temporary.c_str(), m_Target.c_str()) != 0)
        Fail(errno);
    g_bTemporary = 0;
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
    const ClSignalsHeld held;
    unlink(m_Temporary.c_str());
    g_bTemporary = 0;
}

void ClOutputFile::Fail(int nErrno) const {
    throw ClFailure(m_Path, "cannot be written: " + SystemWords(nErrno));
}

void WriteFile(const std::string& Path, std::initializer_list<const Bytes*> Parts) {
    ClOutputFile file(Path);
    for (const Bytes* pPart : Parts)
        file.Write(pPart->data(), pPart->size());
    file.Commit();
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
    struct sigaction action {};
    action.sa_handler = RemoveTemporaryAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int nSignal : anEndingSignals) {
        struct sigaction former {};
        // Who started us with a signal ignored, as nohup does, wants it ignored.
        if (sigaction(nSignal, nullptr, &former) == 0 && former.sa_handler != SIG_IGN)
            sigaction(nSignal, &action, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace qk7
