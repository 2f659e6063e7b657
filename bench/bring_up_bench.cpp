// How long opening the module takes on a pseudo-terminal, in real time, next to what it may take.
#include <algorithm>
#include <cstdio>
#include <vector>

#include "tests/support/bring_up_bar.h"
#include "tests/support/real_session.h"

namespace {

using namespace varkel;
using namespace varkel::test;

// Milliseconds from the module's power-on to "3G_OPEN_END".
Ticks OpenOnce() {
    RealSession session(1);
    session.dialog->OpenModule();
    // Power comes 500 ms after the first step.
    const Ticks powered = session.runtime.GetTickCount() + 500;
    session.RunUntil([&session] { return session.OpenEnds() > 0; }, 300'000);
    return TicksSince(session.runtime.GetTickCount(), powered);
}

}  // namespace

int main() {
    constexpr int rounds = 3;
    const auto bar = static_cast<double>(BringUpBar({}));
    std::vector<double> ratios;
    for (int i = 0; i < rounds; ++i) {
        const auto took = static_cast<double>(OpenOnce());
        ratios.push_back(took / bar);
        std::printf("%.0f ms, may take %.0f ms\n", took, bar);
    }
    std::sort(ratios.begin(), ratios.end());
    std::printf("median: %.3f of what it may take\n", ratios[rounds / 2]);
}
