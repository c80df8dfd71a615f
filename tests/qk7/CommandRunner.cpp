#include "qk7/CommandRunner.h"

#include "qk7/TestFiles.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#ifndef QK7_BINARY
#define QK7_BINARY "qk7"
#endif

namespace TestSupport {

namespace {

/// Where an output goes: to a file, or to an open descriptor in its place.
struct StOutput {
    std::string m_Path;
    int m_nFile = -1;
};

void Redirect(const StOutput& Output, int nDescriptor) {
    const int nFile = Output.m_nFile >= 0
                          ? Output.m_nFile
                          : open(Output.m_Path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (dup2(nFile, nDescriptor) < 0)
        _exit(125);
}

[[noreturn]] void Execute(const Arguments& arguments, const StOutput& Out, const StOutput& Err,
                          const std::string& Folder, const std::function<void()>& prepare) {
    // The tool's path may be relative: it is opened before the directory changes.
    const int nTool = open(QK7_BINARY, O_RDONLY | O_CLOEXEC);
    HeedSignals();
    Redirect(Out, STDOUT_FILENO);
    Redirect(Err, STDERR_FILENO);
    if (!Folder.empty() && chdir(Folder.c_str()) != 0)
        _exit(126);
    std::vector<char*> pointers = {const_cast<char*>("qk7")};
    for (const std::string& argument : arguments)
        pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    if (prepare)
        prepare();
    fexecve(nTool, pointers.data(), environ);
    _exit(127);
}

pid_t Start(const Arguments& arguments, const StOutput& Out, const StOutput& Err,
            const std::string& Folder = "", const std::function<void()>& prepare = {}) {
    const pid_t nChild = fork();
    if (nChild < 0)
        throw std::runtime_error("no process");
    if (nChild == 0)
        Execute(arguments, Out, Err, Folder, prepare);
    return nChild;
}

StEnded Wait(pid_t nChild) {
    int nStatus = 0;
    waitpid(nChild, &nStatus, 0);
    StEnded ended;
    ended.m_nExit = WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
    ended.m_nSignal = WIFSIGNALED(nStatus) ? WTERMSIG(nStatus) : 0;
    return ended;
}

std::string ReadTerminal(int nMaster) {
    std::string text;
    char acPart[1024];
    for (ssize_t nRead = 0; (nRead = read(nMaster, acPart, sizeof acPart)) > 0;)
        text.append(acPart, static_cast<std::size_t>(nRead));
    return text;
}

} // namespace

std::string ToolPath() {
    return std::filesystem::absolute(QK7_BINARY).string();
}

void HeedSignals() {
    for (const int nSignal : {SIGINT, SIGTERM, SIGHUP})
        std::signal(nSignal, SIG_DFL);
}

StEnded Qk7(const Arguments& arguments, const std::string& Folder) {
    return Qk7Under({}, arguments, Folder);
}

StEnded Qk7Under(const std::function<void()>& prepare, const Arguments& arguments,
                 const std::string& Folder) {
    const ClTestFolder outputs;
    StEnded ended = Wait(Start(arguments, {outputs / "out"}, {outputs / "err"}, Folder, prepare));
    ended.m_Out = ToText(Get(outputs / "out"));
    ended.m_Err = ToText(Get(outputs / "err"));
    return ended;
}

StEnded Qk7From(const std::string& Input, const Arguments& arguments, const std::string& Folder) {
    const auto prepare = [&] { dup2(open(Input.c_str(), O_RDONLY | O_CLOEXEC), STDIN_FILENO); };
    return Qk7Under(prepare, arguments, Folder);
}

std::pair<int, int> Qk7AtOnce(const Arguments& one, const Arguments& other) {
    const ClTestFolder outputs;
    const pid_t nOne = Start(one, {outputs / "out1"}, {outputs / "err1"});
    const pid_t nOther = Start(other, {outputs / "out2"}, {outputs / "err2"});
    const int nExit = Wait(nOne).m_nExit;
    return {nExit, Wait(nOther).m_nExit};
}

StEnded Qk7Into(const std::string& Output, const Arguments& arguments) {
    const ClTestFolder outputs;
    StEnded ended = Wait(Start(arguments, {Output}, {outputs / "err"}));
    ended.m_Err = ToText(Get(outputs / "err"));
    return ended;
}

StEnded Qk7IntoClosedPipe(const Arguments& arguments) {
    const ClTestFolder outputs;
    int anEnds[2];
    if (pipe2(anEnds, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    close(anEnds[0]);
    StEnded ended = Wait(Start(arguments, {"", anEnds[1]}, {outputs / "err"}));
    close(anEnds[1]);
    ended.m_Err = ToText(Get(outputs / "err"));
    return ended;
}

StEnded Qk7AtTerminal(const Arguments& arguments) {
    const ClTestFolder outputs;
    int nMaster = -1;
    int nSlave = -1;
    if (openpty(&nMaster, &nSlave, nullptr, nullptr, nullptr) != 0)
        throw std::runtime_error("no terminal");
    const pid_t nChild = Start(arguments, {outputs / "out"}, {"", nSlave});
    close(nSlave); // the master ends when the child's copy does
    const std::string text = ReadTerminal(nMaster);
    close(nMaster);
    StEnded ended = Wait(nChild);
    ended.m_Err = text;
    return ended;
}

StEnded Qk7Interrupted(const Arguments& arguments, int nSignal,
                       const std::function<bool()>& ready) {
    const ClTestFolder outputs;
    const pid_t nChild = Start(arguments, {outputs / "out"}, {outputs / "err"});
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!ready() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    kill(nChild, nSignal);
    StEnded ended = Wait(nChild);
    ended.m_Out = ToText(Get(outputs / "out"));
    ended.m_Err = ToText(Get(outputs / "err"));
    return ended;
}

} // namespace TestSupport
