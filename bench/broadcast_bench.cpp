// How soon a broadcast and a posted message reach another program's window. Run it on a bus:
// dbus-run-session -- broadcast_bench
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "platform/linux/bus_window_messages.h"
#include "platform/linux/linux_runtime.h"

namespace {

using namespace varkel;
using Clock = std::chrono::steady_clock;

constexpr int rounds = 500;

// Sends `rounds` messages, each when the one before has arrived, and prints how long they took.
void Measure(const char* what, MessageLoop& loop, BusWindowMessages& from, WindowHandle to,
             const int& received) {
    std::vector<double> milliseconds;
    for (int round = 0; round < rounds; ++round) {
        const int before = received;
        const auto start = Clock::now();
        from.PostMessage(to, {from.RegisterWindowMessage("UM_CALLIN"), 1, 1});
        loop.Run([&] { return received > before; });
        milliseconds.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("%-12s median %.3f ms, worst %.3f ms of %d\n", what, milliseconds[rounds / 2],
                milliseconds.back(), rounds);
}

}  // namespace

int main() {
    LinuxRuntime runtime;
    MessageLoop loop(runtime);
    Bus senderBus({}, nullptr);
    Bus listenerBus({}, nullptr);
    BusWindowMessages sender(senderBus, loop, nullptr);
    BusWindowMessages listener(listenerBus, loop, nullptr);
    if (!senderBus.Available()) {
        std::fputs("there is no bus\n", stderr);
        return 1;
    }
    listener.RegisterWindowMessage("UM_CALLIN");  // only names that a program knows reach it
    int received = 0;
    const WindowHandle window =
        listener.CreateWindow("listener", {[&received](const WindowMessage&) { ++received; }, nullptr});
    Measure("posted", loop, sender, window, received);
    Measure("broadcast", loop, sender, WindowHandle::Broadcast, received);
    listener.DestroyWindow(window);
}
