// A simulated unit on the bench: time is moved by hand, answers come back as text.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/simulated_unit.h"

namespace varkel::sim::test {

class BenchUnit {
  public:
    explicit BenchUnit(const UnitConfig& config = {}, std::uint64_t seed = 1);

    // Powers the module and waits until it is registered; the echo is off then.
    void Start();
    // What the modem sends during that time, with "|" for CR LF: "|+CSQ: 18,99||OK|".
    std::string Pass(Millis time);
    // The same as it comes, piece by piece.
    std::vector<std::string> Pieces(Millis time);
    // Sends the line with its CR and gives what comes within 500 ms.
    std::string Ask(std::string_view line);
    // Console commands, each of which must be understood.
    void Do(std::initializer_list<std::string_view> commands);
    int Driver(DrvFunction function, int value = 0);

    SimulatedUnit unit;
    Millis now = 1000;
    std::vector<std::string> commands;  // that the modem took
    std::vector<std::string> said;
    std::vector<std::string> networkSaid;  // that part of `said`
    std::vector<std::string> sent;         // PDUs
    std::vector<SubmittedMessage> messages;
    std::string dialled;  // what the dialling program prints, "|" behind each line, "=5" for its exit code
    int restarts = 0;
};

std::string WithBars(std::string_view bytes);
// The lines between the bars.
std::vector<std::string> Lines(std::string_view bars);

}  // namespace varkel::sim::test
