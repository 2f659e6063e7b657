#include "platform/linux/child_process.h"

#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace varkel {

namespace {

// Programs whose owner has gone, until they end.
class LetGo {
  public:
    void Add(pid_t pid) {
        std::lock_guard lock(m_mutex);
        m_pids.push_back(pid);
    }

    void CollectEnded() {
        std::lock_guard lock(m_mutex);
        std::erase_if(m_pids, [](pid_t pid) { return waitpid(pid, nullptr, WNOHANG) != 0; });
    }

  private:
    std::mutex m_mutex;
    std::vector<pid_t> m_pids;
};

LetGo letGo;

// The attributes and file actions of one start.
class SpawnSettings {
  public:
    explicit SpawnSettings(const ChildStreams& streams) {
        posix_spawnattr_init(&m_attributes);
        posix_spawn_file_actions_init(&m_actions);
        sigset_t none;
        sigemptyset(&none);
        sigset_t all;
        sigfillset(&all);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setsigdefault(&m_attributes, &all);
        posix_spawnattr_setpgroup(&m_attributes, 0);
        constexpr int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP;
        posix_spawnattr_setflags(&m_attributes, flags);
        if (streams.input < 0)
            posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        Redirect(streams.input, STDIN_FILENO);
        Redirect(streams.output, STDOUT_FILENO);
        Redirect(streams.errors, STDERR_FILENO);
    }

    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }

    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    bool Spawn(const std::vector<std::string>& command, pid_t& pid) const {
        std::vector<char*> arguments;
        arguments.reserve(command.size() + 1);
        for (const std::string& argument : command)
            arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        return posix_spawnp(&pid, arguments[0], &m_actions, &m_attributes, arguments.data(), environ) == 0;
    }

  private:
    void Redirect(int from, int to) {
        if (from >= 0) posix_spawn_file_actions_adddup2(&m_actions, from, to);
    }

    posix_spawnattr_t m_attributes;
    posix_spawn_file_actions_t m_actions;
};

}  // namespace

std::vector<std::string> SplitCommand(std::string_view command) {
    constexpr std::size_t mostParts = 64;
    std::vector<std::string> parts;
    bool inPart = false;
    bool quoted = false;
    for (const char c : command) {
        const bool blank = (c == ' ' || c == '\t') && !quoted;
        if (!blank && !inPart) parts.emplace_back();
        inPart = !blank;
        if (c == '"') {
            quoted = !quoted;
        } else if (!blank) {
            parts.back() += c;
        }
    }
    if (quoted || parts.size() > mostParts) parts.clear();
    return parts;
}

std::optional<ChildProcess> ChildProcess::Start(const std::vector<std::string>& command,
                                                const ChildStreams& streams) {
    letGo.CollectEnded();
    pid_t pid = -1;
    if (command.empty() || !SpawnSettings(streams).Spawn(command, pid)) return std::nullopt;
    // By number: the C library's header for it is not made for C++.
    FileDescriptor end(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
    if (!end) {
        kill(-pid, SIGKILL);
        Uninterrupted([&] { return waitpid(pid, nullptr, 0); });
        return std::nullopt;
    }
    return ChildProcess(pid, std::move(end));
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : m_pid(std::exchange(other.m_pid, -1)), m_end(std::move(other.m_end)), m_exitCode(other.m_exitCode) {}

ChildProcess::~ChildProcess() {
    if (m_pid != -1 && !Wait(std::chrono::microseconds(0))) letGo.Add(m_pid);
}

bool ChildProcess::Wait(std::chrono::microseconds timeout) {
    if (m_pid == -1) return true;
    pollfd ended{m_end.Get(), POLLIN, 0};
    if (!Poll({&ended, 1}, timeout)) return false;
    int status = 0;
    Uninterrupted([&] { return waitpid(m_pid, &status, 0); });
    m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    m_pid = -1;
    return true;
}

// Until it has been collected the number is this program's.
void ChildProcess::Terminate() {
    if (m_pid != -1) kill(-m_pid, SIGTERM);
}

void ChildProcess::Kill() {
    if (m_pid != -1) kill(-m_pid, SIGKILL);
}

}  // namespace varkel
