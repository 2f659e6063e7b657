#include "simulator/program/hosted_program.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace varkel::sim {

namespace {

struct Pipe {
    FileDescriptor read;
    FileDescriptor write;
};

bool Open(Pipe& made) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    made.read.Reset(ends[0]);
    made.write.Reset(ends[1]);
    return true;
}

void DoNotBlock(const FileDescriptor& descriptor) {
    fcntl(descriptor.Get(), F_SETFL, fcntl(descriptor.Get(), F_GETFL) | O_NONBLOCK);
}

// In the child, between fork and exec: nothing that takes a lock or memory. Does not return.
[[noreturn]] void BecomeProgram(char* const* arguments, const Pipe (&pipes)[3], int fault, pid_t parent) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL);
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(1);
    dup2(pipes[0].read.Get(), STDIN_FILENO);
    dup2(pipes[1].write.Get(), STDOUT_FILENO);
    dup2(pipes[2].write.Get(), STDERR_FILENO);
    execvp(arguments[0], arguments);
    const int why = errno;
    [[maybe_unused]] const ssize_t told = write(fault, &why, sizeof why);
    _exit(127);
}

}  // namespace

std::unique_ptr<HostedProgram> HostedProgram::Start(const std::vector<std::string>& command,
                                                    std::string& fault) {
    Pipe pipes[3];
    Pipe told;
    const bool piped = Open(pipes[0]) && Open(pipes[1]) && Open(pipes[2]) && Open(told);
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    const pid_t parent = getpid();
    const pid_t pid = piped ? fork() : -1;
    if (pid == 0) BecomeProgram(arguments.data(), pipes, told.write.Get(), parent);

    // From here on the destructor collects the child, whatever comes.
    std::unique_ptr<HostedProgram> program(new HostedProgram);
    program->m_pid = pid;
    int why = errno;
    if (pid > 0) {
        setpgid(pid, pid);  // the child does the same; whoever comes first
        told.write.Reset();
        // As a system call: the library's header forgets that it is C.
        program->m_end.Reset(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
        why = program->m_end ? 0 : errno;
        // Nothing comes when the exec went well, which closes the other end.
        int execFault = 0;
        const auto got = Uninterrupted([&] { return read(told.read.Get(), &execFault, sizeof execFault); });
        if (got == sizeof execFault) why = execFault;
    }
    if (why != 0) {
        fault = command.front() + ": " + std::strerror(why);
        return nullptr;
    }
    program->m_input = std::move(pipes[0].write);
    program->m_output = std::move(pipes[1].read);
    program->m_errors = std::move(pipes[2].read);
    for (const FileDescriptor* each : {&program->m_input, &program->m_output, &program->m_errors})
        DoNotBlock(*each);
    return program;
}

HostedProgram::~HostedProgram() {
    if (m_pid <= 0) return;
    Signal(SIGKILL);
    Uninterrupted([this] { return waitpid(m_pid, nullptr, 0); });
}

std::string HostedProgram::Read(FileDescriptor& from) {
    std::array<char, 4096> buffer{};
    const ssize_t count = Uninterrupted([&] { return read(from.Get(), buffer.data(), buffer.size()); });
    if (count > 0) return std::string(buffer.data(), static_cast<std::size_t>(count));
    if (count == 0 || errno != EAGAIN) from.Reset();
    return {};
}

bool HostedProgram::Type(std::string_view bytes) {
    if (!m_input || m_inputEnds || m_waiting.size() + bytes.size() > mostWaiting) return false;
    m_waiting += bytes;
    FlushInput();
    return true;
}

void HostedProgram::FlushInput() {
    while (m_input && !m_waiting.empty()) {
        const ssize_t count =
            Uninterrupted([this] { return write(m_input.Get(), m_waiting.data(), m_waiting.size()); });
        if (count < 0 && errno == EAGAIN) return;
        if (count <= 0) {
            // It has closed its input.
            m_waiting.clear();
            m_inputEnds = true;
            break;
        }
        m_waiting.erase(0, static_cast<std::size_t>(count));
    }
    if (m_inputEnds) m_input.Reset();
}

void HostedProgram::CloseInput() {
    m_inputEnds = true;
    FlushInput();
}

void HostedProgram::Signal(int number) {
    if (m_pid > 0) kill(-m_pid, number);
}

std::optional<int> HostedProgram::Collect() {
    // waitpid(-1) would take the end of any other child.
    if (m_pid < 0) return std::nullopt;
    int status = 0;
    const pid_t ended = Uninterrupted([&] { return waitpid(m_pid, &status, WNOHANG); });
    if (ended != m_pid) return std::nullopt;
    m_pid = -1;
    constexpr int bySignal = 128;
    return WIFEXITED(status) ? WEXITSTATUS(status) : bySignal + WTERMSIG(status);
}

}  // namespace varkel::sim
