#include "platform/linux/pppd_dial_up.h"

#include <array>
#include <atomic>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/guarded.h"
#include "platform/linux/child_process.h"
#include "platform/linux/pppd_language.h"

namespace varkel {

namespace {

// A file without a name, for this user and for those who inherit it. pppd opens it anew each time that it
// reads its options, which a pipe would not survive.
FileDescriptor MemoryFile(std::string_view content) {
    FileDescriptor file(memfd_create("options", MFD_CLOEXEC));
    if (!file || fchmod(file.Get(), 0600) != 0 || !WriteAll(file.Get(), content)) return {};
    return file;
}

}  // namespace

// One run of the program. The thread that follows it is the only one to touch the child.
class PppdDialUp::Connection {
  public:
    Connection(PppdDialUp& owner, RasHandle handle, ChildProcess child, FileDescriptor output,
               std::function<void(RasState)> notifier, std::string password)
        : m_owner(owner),
          m_handle(handle),
          m_child(std::move(child)),
          m_output(std::move(output)),
          m_notifier(std::move(notifier)),
          m_password(std::move(password)) {}

    // The thread; does not outlive the owner.
    void Run() {
        Reach(RasState::OpenPort);
        Reach(RasState::ConnectDevice);
        const bool ended = Follow();
        if (ended) {
            ReportEnd();
        } else {
            End();
        }
        m_peerAddress.Set({});
        m_over = true;
        if (ended) Reach(RasState::Disconnected);
    }

    // The rest from any thread.
    void HangUp() {
        m_hangUp.Signal();
        m_thread->Wait(infiniteTicks);
    }

    // Before any other call. When the system has no thread for it, the program is ended at once.
    static bool Start(const std::shared_ptr<Connection>& connection) {
        connection->m_thread = connection->m_owner.m_runtime.CreateThread(
            {.name = "dial-up"}, [connection] { connection->Run(); });
        if (!connection->m_thread) connection->End();
        return connection->m_thread != nullptr;
    }

    RasHandle Handle() const { return m_handle; }
    bool Over() const { return m_over; }
    std::string PeerAddress() const { return m_peerAddress.Get(); }

  private:
    // True when the program has ended by itself, false when it shall end.
    bool Follow() {
        enum Place { HangUpOrder, Output, EndOfProgram, Count };
        std::array<pollfd, Count> polled{
            {{m_hangUp.Get(), POLLIN, 0}, {m_output.Get(), POLLIN, 0}, {m_child.EndDescriptor(), POLLIN, 0}}};
        for (;;) {
            Poll(polled, forever);
            if (polled[HangUpOrder].revents) return false;
            if (polled[Output].revents && !ReadOutput()) polled[Output].fd = -1;
            if (polled[EndOfProgram].revents) break;
        }
        // What it said last; programs that it has left behind may hold the pipe open and go on talking.
        constexpr int mostReads = 16;
        for (int i = 0; i < mostReads && ReadOutput(); ++i) {
        }
        m_child.Kill();  // what it has left behind in its group
        m_child.Wait(std::chrono::microseconds(0));
        return true;
    }

    // False when there is nothing more, for now or for ever.
    bool ReadOutput() {
        std::array<char, 4096> bytes{};
        const auto count = Uninterrupted([&] { return read(m_output.Get(), bytes.data(), bytes.size()); });
        if (count <= 0) return false;
        const auto reached = m_progress.Feed({bytes.data(), static_cast<std::size_t>(count)});
        m_peerAddress.Set(m_progress.PeerAddress());
        for (const RasState state : reached)
            Reach(state);
        return true;
    }

    void Reach(RasState state) {
        m_owner.m_loop.Post([notifier = m_notifier, state] { notifier(state); });
    }

    void End() {
        constexpr auto patienceWithKill = std::chrono::seconds(1);
        m_child.Terminate();
        pollfd end{m_child.EndDescriptor(), POLLIN, 0};
        const bool obeyed = Poll({&end, 1}, m_owner.m_patience);
        m_child.Kill();
        const bool ended = m_child.Wait(patienceWithKill);
        if (obeyed) return;
        Report(m_owner.m_onProblem, ended ? "dial-up: pppd did not end when asked to and was killed"
                                          : "dial-up: pppd does not end; the modem's data port stays in use");
    }

    void ReportEnd() const {
        std::string words = m_progress.LastWords();
        for (std::size_t at = 0; !m_password.empty() && (at = words.find(m_password, at)) != words.npos;)
            words.replace(at, m_password.size(), "****");
        const std::string said = words.empty() ? "" : "; it said last: " + words;
        Report(m_owner.m_onProblem, "dial-up: " + PppdExitText(m_child.ExitCode()) + said);
    }

    PppdDialUp& m_owner;
    const RasHandle m_handle;
    ChildProcess m_child;
    const FileDescriptor m_output;
    const std::function<void(RasState)> m_notifier;
    const std::string m_password;  // which no report may repeat
    PppdProgress m_progress;
    WakeUp m_hangUp;
    std::atomic<bool> m_over = false;
    Guarded<std::string> m_peerAddress;
    std::shared_ptr<Thread> m_thread;
};

PppdDialUp::PppdDialUp(Runtime& runtime, MessageLoop& loop, std::vector<std::string> program,
                       ProblemSink onProblem, std::chrono::milliseconds patience)
    : m_runtime(runtime),
      m_loop(loop),
      m_program(std::move(program)),
      m_onProblem(std::move(onProblem)),
      m_patience(patience) {}

PppdDialUp::~PppdDialUp() {
    if (m_connection) m_connection->HangUp();
}

RasError PppdDialUp::RasDial(const RasDialParams& params, std::function<void(RasState)> notifier,
                             RasHandle& handle) {
    handle = RasHandle::None;
    const auto refused = [this](const std::string& why) {
        Report(m_onProblem, "dial-up: " + why);
        return RasError::CannotDial;
    };
    const std::lock_guard lock(m_mutex);
    if (m_connection && !m_connection->Over()) return RasError::Busy;
    if (m_connection) m_connection->HangUp();  // its thread is about to end

    const auto options = PppdOptions(params);
    if (!options) return refused("user or password is too long, or has characters that pppd cannot take");
    if (!IsPppdEntry(params.entryName)) return refused("pppd can have no such entry");
    const FileDescriptor input = MemoryFile(*options);
    std::array<int, 2> ends{};
    if (!input || pipe2(ends.data(), O_CLOEXEC) != 0) return refused("the system has no more descriptors");
    FileDescriptor output(ends[0]);
    const FileDescriptor inputOfOutput(ends[1]);
    fcntl(output.Get(), F_SETFL, O_NONBLOCK);

    std::vector<std::string> command = m_program;
    for (const std::string_view argument :
         {"call", params.entryName.c_str(), "nodetach", "nopersist", "logfd", "1", "file", "/dev/stdin"})
        command.emplace_back(argument);
    auto child = ChildProcess::Start(command, {input.Get(), inputOfOutput.Get(), inputOfOutput.Get()});
    if (!child) return refused(m_program.front() + " cannot be started");

    // Known to the caller before the first state can be.
    handle = RasHandle(++m_lastHandle);
    const auto connection = std::make_shared<Connection>(*this, handle, std::move(*child), std::move(output),
                                                         std::move(notifier), params.password);
    if (!Connection::Start(connection)) {
        handle = RasHandle::None;
        return refused("the system has no more threads");
    }
    m_connection = connection;
    return RasError::None;
}

void PppdDialUp::RasHangUp(RasHandle handle) {
    if (const auto connection = Find(handle)) connection->HangUp();
}

std::string PppdDialUp::PeerAddress(RasHandle handle) {
    const auto connection = Find(handle);
    return connection ? connection->PeerAddress() : std::string();
}

std::shared_ptr<PppdDialUp::Connection> PppdDialUp::Find(RasHandle handle) {
    const std::lock_guard lock(m_mutex);
    return m_connection && m_connection->Handle() == handle ? m_connection : nullptr;
}

}  // namespace varkel
