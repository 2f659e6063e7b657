// How long it takes from "RING" on a pseudo-terminal to the order for the incoming-call screen, in real time:
// at rest, and while the SIM is tidied after messages.
#include <random>

#include "bench/times.h"
#include "tests/support/real_session.h"

namespace {

using namespace varkel;
using namespace varkel::test;

// A call comes at any time after the one before it.
void Ring(const char* when, RealSession& session, int rounds) {
    std::mt19937 random(7);
    Times times;
    for (int round = 0; round < rounds; ++round) {
        const int before = session.screens.Count("incoming call");
        const auto start = Times::Clock::now();
        session.unit.Command("urc RING");
        session.RunUntil([&] { return session.screens.Count("incoming call") > before; }, 2000);
        times.Add(session.screens.LastIncomingCall() - start);
        session.unit.Command("urc NO CARRIER");
        session.RunFor(400 + static_cast<Ticks>(random() % 1000));
    }
    times.Report(when);
}

}  // namespace

int main() {
    RealSession session(1);
    session.dialog->OpenModule();
    session.RunUntil([&session] { return session.OpenEnds() > 0; }, 300'000);
    session.RunFor(2000);
    Ring("at rest", session, 40);
    // Twelve messages are read in some 8 s, announced in some 40 s and deleted in 12 s.
    session.unit.Command("sms-burst 12");
    Ring("while messages are read", session, 12);
    session.RunUntil([&session] { return session.unit.Command("messages").find("1 of") == 0; }, 90'000);
    session.unit.Command("sms-burst 12");
    session.RunUntil([&session] { return session.unit.Command("messages").find("11 of") == 0; }, 90'000);
    Ring("while the SIM is tidied", session, 12);
}
