// A simulated unit on the bench: time is moved by hand, answers come back as text.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/simulated_unit.h"

namespace varkel::sim::test {

// A line of a dialogue and what the modem sends until that time has passed. It is for the modem, which gets
// its CR as well; "!" stands before a command of the console, and "" only lets the time pass.
struct Exchange {
    std::string_view line;
    std::string_view answer;
    Millis time = 500;
};

class BenchUnit {
  public:
    explicit BenchUnit(const UnitConfig& config = {}, std::uint64_t seed = 1);

    // Powers the module and waits until it is registered; the echo is off then.
    void Start();
    // What the modem sends during that time, with "|" for CR LF: "|+CSQ: 18,99||OK|".
    std::string Pass(Millis time);
    // The same as it comes, piece by piece.
    std::vector<std::string> Pieces(Millis time);
    // Sends the bytes and gives what comes in that time.
    std::string Write(std::string_view bytes, Millis time = 500);
    // The same with a line and its CR.
    std::string Ask(std::string_view line, Millis time = 500) {
        return Write(std::string(line) + "\r", time);
    }
    // Console commands, each of which must be understood.
    void Do(std::initializer_list<std::string_view> commands);
    // What a console command, which may fail, prints.
    std::string Command(std::string_view line) { return unit.Command(line, now).text; }
    void Converse(std::initializer_list<Exchange> dialogue);
    // The module starts anew by itself; its echo is off then.
    void Restart();
    int Driver(DrvFunction function, int value = 0);

    SimulatedUnit unit;
    Millis now = 1000;
    std::vector<std::string> commands;  // that the modem took
    std::vector<std::string> said;
    std::vector<std::string> networkSaid;  // that part of `said`
    std::vector<std::string> sent;         // PDUs
    std::string dialled;  // what the dialling program prints, "|" behind each line, "=5" for its exit code
    int restarts = 0;
};

std::string WithBars(std::string_view bytes);
std::string Repeated(std::string_view text, int times);
// The lines between the bars.
std::vector<std::string> Lines(std::string_view bars);

}  // namespace varkel::sim::test
