// How long it takes from "RING" on a pseudo-terminal to the order for the incoming-call screen, in real time:
// at rest, and while the SIM is tidied after messages.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

#include "tests/support/real_session.h"

namespace {

using namespace varkel;
using namespace varkel::test;
using Clock = std::chrono::steady_clock;

// Milliseconds, sorted. A call comes at any time after the one before it.
std::vector<double> Ring(RealSession& session, int rounds) {
    std::mt19937 random(7);
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        const int before = session.screens.Count("incoming call");
        const auto start = Clock::now();
        session.unit.Command("urc RING");
        session.RunUntil([&] { return session.screens.Count("incoming call") > before; }, 2000);
        times.push_back(
            std::chrono::duration<double, std::milli>(session.screens.LastIncomingCall() - start).count());
        session.unit.Command("urc NO CARRIER");
        session.RunFor(400 + static_cast<Ticks>(random() % 1000));
    }
    std::sort(times.begin(), times.end());
    return times;
}

void Report(const char* when, const std::vector<double>& times) {
    std::printf("%s: median %.1f ms, worst %.1f ms of %zu\n", when, times[times.size() / 2], times.back(),
                times.size());
}

}  // namespace

int main() {
    RealSession session(1);
    session.dialog->OpenModule();
    session.RunUntil([&session] { return session.OpenEnds() > 0; }, 300'000);
    session.RunFor(2000);
    Report("at rest", Ring(session, 40));
    // Twelve messages are read in some 8 s, announced in some 40 s and deleted in 12 s.
    session.unit.Command("sms-burst 12");
    Report("while messages are read", Ring(session, 12));
    session.RunUntil([&session] { return session.unit.Command("messages").find("1 of") == 0; }, 90'000);
    session.unit.Command("sms-burst 12");
    session.RunUntil([&session] { return session.unit.Command("messages").find("11 of") == 0; }, 90'000);
    Report("while the SIM is tidied", Ring(session, 12));
}
