// The program varkel-sim: the simulated unit in real time, with a console and maybe a program that runs on
// it.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/file_descriptor.h"
#include "simulator/program/dial_socket.h"
#include "simulator/program/hosted_program.h"
#include "simulator/program/line_reader.h"
#include "simulator/program/pty.h"
#include "simulator/program/screen.h"
#include "simulator/program/task_queue.h"
#include "simulator/program/unit_bus.h"
#include "simulator/program/unit_place.h"
#include "simulator/scenario_player.h"
#include "simulator/simulated_unit.h"

namespace varkel::sim {

struct ProgramOptions {
    std::string unitDirectory;
    std::string assets;
    std::string scenario;  // file name; "" for none
    std::string pin;       // "" for none
    ModemKind modem = ModemKind::Unit;
    std::uint64_t seed = 1;
    bool quiet = false;  // nothing of what goes over the serial line
    std::vector<std::string> command;
};

// One thread, which sleeps until something arrives or is due, does everything; other threads (the bus, the
// window) only hand it work.
class SimulatorProgram {
  public:
    explicit SimulatorProgram(ProgramOptions options);
    ~SimulatorProgram();

    // The exit code.
    int Run();

  private:
    using Clock = std::chrono::steady_clock;

    bool Prepare();
    bool OpenDialSocket();
    bool LoadScenario();
    bool StartProgram();
    Millis Now() const;

    // One round: what is due, then what has arrived.
    void Act();
    void Wait();
    void ServeLine();
    std::optional<Millis> NextDeadline() const;

    void OnSignal();
    void OnTyped();
    void OnLine(const std::string& line);
    void OnProgramOutput(int descriptor, const std::string& bytes);
    void DrainOutput();
    void OnProgramEnded(int code);
    // A line of the unit, its modem or its window: shown, and heard by the scenario.
    void Tell(std::string_view line, bool show);
    CommandResult Console(std::string_view line);
    void Answer(const CommandResult& result);

    void RestartUnit();
    // Ends the program in order, and with it the simulator.
    void Leave();
    void Finish(int code);
    void Fail(std::string_view why);

    const ProgramOptions m_options;
    const Clock::time_point m_start = Clock::now();
    Screen m_screen;
    TaskQueue m_tasks;
    SimulatedUnit m_unit;
    UnitPlace m_place;
    std::unique_ptr<UnitBus> m_bus;
    std::unique_ptr<ScenarioPlayer> m_player;
    std::unique_ptr<DialSocket> m_dial;
    std::unique_ptr<Pty> m_pty;
    bool m_noPty = false;  // the system gave none; said once for each time that the device should appear
    FileDescriptor m_signals;
    bool m_inputOpen = true;
    LineReader m_typed;
    std::unique_ptr<HostedProgram> m_program;
    std::optional<Millis> m_restartAt;  // the unit is off until then
    std::optional<Millis> m_killAt;     // the program has been asked to end
    bool m_leaving = false;
    bool m_failed = false;
    std::optional<int> m_exitCode;
};

}  // namespace varkel::sim
