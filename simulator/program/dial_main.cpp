// varkel-sim-pppd: the simulated unit's dialling program. To whoever starts it, it is pppd with a modem on
// the simulated network; what it prints and how it ends is the simulator's word.
//
//     varkel-sim-pppd UNIT-DIRECTORY call connet nodetach nopersist logfd 1 file /dev/stdin
#include <array>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/signalfd.h>
#include <unistd.h>
#include <vector>

#include "platform/linux/file_descriptor.h"
#include "platform/text.h"
#include "simulator/dial_options.h"
#include "simulator/program/dial_socket.h"

namespace {

using namespace varkel;
using namespace varkel::sim;

constexpr int optionsFault = 2;
constexpr int toldToEnd = 5;
constexpr int noModem = 7;
constexpr int hungUp = 16;

std::optional<std::string> ReadOptionsFile(const std::string& path) {
    constexpr std::size_t largest = 16 * 1024;
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return file ? ReadAll(file.Get(), largest) : std::nullopt;
}

class DialProgram {
  public:
    explicit DialProgram(int logDescriptor) : m_log(logDescriptor) {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int each : {SIGTERM, SIGINT, SIGHUP})
            sigaddset(&signals, each);
        sigprocmask(SIG_BLOCK, &signals, nullptr);
        m_signals.Reset(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
        signal(SIGPIPE, SIG_IGN);
    }

    int Run(const std::string& directory, const std::string& user) {
        const FileDescriptor simulator = ConnectDialSocket(directory);
        if (!simulator || !SendDialPacket(simulator, "dial " + user)) {
            Print("Failed to open the modem: no simulator runs in " + directory);
            return End(noModem);
        }
        for (bool asked = false;;) {
            std::array<pollfd, 2> polled{
                {{simulator.Get(), POLLIN, 0}, {asked ? -1 : m_signals.Get(), POLLIN, 0}}};
            constexpr auto patience = std::chrono::seconds(2);
            if (!Poll(polled, asked ? patience : forever)) return End(toldToEnd);
            if (polled[1].revents) asked = SendDialPacket(simulator, "hangup");
            if (!polled[0].revents) continue;
            const auto packet = ReceiveDialPacket(simulator);
            if (!packet) {
                Print("Modem hangup");
                return End(hungUp);
            }
            if (packet->starts_with("line ")) Print(packet->substr(5));
            int code = 0;
            if (packet->starts_with("end ") && ParseInt(std::string_view(*packet).substr(4), code))
                return End(code);
        }
    }

    void Print(const std::string& line) { WriteAll(m_log, line + "\n"); }

  private:
    int End(int code) {
        Print("Exit.");
        return code;
    }

    const int m_log;
    FileDescriptor m_signals;
};

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty()) arguments.emplace_back(".");
    const DialOptions options =
        ParseDialOptions(std::span(std::as_const(arguments)).subspan(1), ReadOptionsFile);
    DialProgram program(options.logDescriptor);
    const bool known = options.fault.empty() && options.entry == "connet";
    if (!known) {
        program.Print("varkel-sim-pppd: " + (options.fault.empty()
                                                 ? "Can't open options file /etc/ppp/peers/" + options.entry
                                                 : options.fault));
        return optionsFault;
    }
    return program.Run(arguments.front(), options.user);
}
