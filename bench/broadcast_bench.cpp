// How soon a broadcast and a posted message reach another program's window. Run it on a bus:
// dbus-run-session -- broadcast_bench
#include "bench/times.h"
#include "platform/linux/bus_window_messages.h"
#include "platform/linux/linux_runtime.h"

namespace {

using namespace varkel;

// Sends messages, each when the one before has arrived.
void Measure(const char* what, MessageLoop& loop, BusWindowMessages& from, WindowHandle to,
             const int& received) {
    Times times;
    for (int round = 0; round < 500; ++round) {
        times.Take([&] {
            const int before = received;
            from.PostMessage(to, {from.RegisterWindowMessage("UM_CALLIN"), 1, 1});
            loop.Run([&] { return received > before; });
        });
    }
    times.Report(what);
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
