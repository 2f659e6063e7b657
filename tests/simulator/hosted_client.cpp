// A program on the simulated unit: does what it is told on its standard input, with the driver library, the
// modem's device, the main window and the data link, and ends with 1 as soon as anything is not as it should
// be.
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <poll.h>
#include <string>
#include <thread>
#include <unistd.h>

#include "platform/linux/bus_kovex_drv.h"
#include "platform/linux/bus_window_messages.h"
#include "platform/linux/file_descriptor.h"
#include "platform/linux/linux_runtime.h"
#include "platform/linux/pppd_dial_up.h"
#include "platform/linux/unit_settings.h"

namespace {

using namespace varkel;

constexpr int longEnough = 10'000;  // ms

void Say(std::string_view line) {
    std::cout << line << std::endl;
}

void Require(bool well, std::string_view what) {
    if (well) return;
    Say("not so: " + std::string(what));
    std::exit(1);
}

struct Client {
    explicit Client(const UnitSettings& unit)
        : tty(unit.TtyOf("COM7:")), bus(unit.bus, {}), dialUp(runtime, loop, unit.dialUp, Say) {
        int power = -1;
        Require(driver.Get3GPower(power) && power == 0, "the module is off at first");
    }

    void Power() {
        Require(driver.Set3GPower(1), "power can be switched on");
        int present = 0;
        for (int waited = 0; present == 0 && waited < longEnough; waited += 20) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            Require(driver.GetUsbHostStatus(present), "the link has a state");
        }
        // The driver knows of the device a moment before its name is there.
        for (int waited = 0; !device && waited < longEnough; waited += 20) {
            device.Reset(open(tty.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
            if (!device) std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        Require(present == 1 && device, "the module comes up");
        Say("device");
    }

    void Ask(const std::string& command = "AT") {
        Require(WriteAll(device.Get(), command + "\r"), "the device takes a command");
        std::string answer;
        while (answer.find("\r\nOK\r\n") == std::string::npos) {
            const std::string more = Read();
            Require(!more.empty(), "the modem answers");
            answer += more;
        }
        Require(answer == command + "\r\r\nOK\r\n", "echo and answer");
        Say("\"" + command + "\" is answered");
    }

    void Dial() {
        const auto follow = [this](RasState state) {
            Say("link state " + std::to_string(static_cast<unsigned>(state)));
            settled = state == RasState::Connected || state == RasState::Disconnected;
        };
        Require(dialUp.RasDial({"connet", "us\"er", "pass word"}, follow, link) == RasError::None,
                "it dials");
        Follow();
    }

    // Until the link is up or has ended.
    void Follow() {
        settled = false;
        loop.Run([this] { return settled; });
    }

    void HangUp() {
        dialUp.RasHangUp(link);
        Require(dialUp.PeerAddress(link).empty(), "nobody is at the other end");
        Say("hung up");
    }

    void Post() {
        int handle = 0;
        Require(driver.GetMainHandle(handle), "there is a main window");
        Require(windows.FindWindow("MainWindow") == WindowHandle(handle), "it is found by its title");
        const MessageId message = windows.RegisterWindowMessage("UM_CALLIN");
        Require(windows.PostMessage(WindowHandle(handle), {message, 7, 8}), "it takes messages");
    }

    void WaitForHangUp() {
        Require(Read().empty(), "nothing comes but a hang-up");
        Say("hang-up");
    }

    // "" at a hang-up, and when nothing comes.
    std::string Read() {
        std::array<pollfd, 1> polled{{{device.Get(), POLLIN, 0}}};
        if (!Poll(polled, std::chrono::milliseconds(longEnough))) Require(false, "something arrives");
        std::array<char, 256> bytes{};
        const ssize_t count = read(device.Get(), bytes.data(), bytes.size());
        return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : std::string();
    }

    const std::string tty;
    LinuxRuntime runtime;
    Bus bus;
    MessageLoop loop{runtime};
    BusWindowMessages windows{bus, loop, {}};
    BusKovexDrv driver{bus};
    PppdDialUp dialUp;
    RasHandle link = RasHandle::None;
    bool settled = false;
    FileDescriptor device;
};

}  // namespace

int main(int, char** argv) {
    const UnitSettings unit = LoadUnitSettings(argv[1]);
    Require(unit.errors.empty() && unit.driver == DriverKind::Bus, "the unit file can be read");
    Client client(unit);
    Say("life begins");
    for (std::string line; std::getline(std::cin, line);) {
        if (line == "power") client.Power();
        if (line == "ask") client.Ask();
        if (line == "context") client.Ask("AT+CGDCONT=1,\"IP\",\"CMNET\"");
        if (line == "dial") client.Dial();
        if (line == "follow") client.Follow();
        if (line == "hangup") client.HangUp();
        if (line == "post") client.Post();
        if (line == "wait") client.WaitForHangUp();
        if (line == "restart") Require(client.driver.RestartMachine(), "the unit restarts");
        if (line == "exit") break;
    }
    Say("bye");
    return 0;
}
