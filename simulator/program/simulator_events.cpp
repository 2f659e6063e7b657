// What happens to the running simulator: signals, typed lines, the program's output and end.
#include <array>
#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

#include "platform/linux/shm_named_objects.h"
#include "platform/text.h"
#include "simulator/program/simulator_program.h"

namespace varkel::sim {

namespace {

constexpr Millis patience = 15'000;    // with a program that was asked to end
constexpr Millis restartTime = 1'000;  // of the unit

}  // namespace

void SimulatorProgram::OnSignal() {
    signalfd_siginfo received{};
    if (read(m_signals.Get(), &received, sizeof received) != sizeof received) return;
    if (!m_leaving) return Leave();
    // Once more: the program takes it as an order to end at once.
    if (m_program) m_program->Signal(SIGINT);
}

void SimulatorProgram::OnTyped() {
    std::array<char, 4096> buffer{};
    const auto count = Uninterrupted([&] { return read(STDIN_FILENO, buffer.data(), buffer.size()); });
    if (count > 0) {
        m_typed.Add(std::string_view(buffer.data(), static_cast<std::size_t>(count)));
        while (const auto line = m_typed.Next())
            OnLine(*line);
        return;
    }
    m_inputOpen = false;
    const std::string rest = m_typed.Rest();
    if (!rest.empty()) OnLine(rest);
}

// With a program on the unit, what is typed is for it, unless it begins with "!".
void SimulatorProgram::OnLine(const std::string& line) {
    if (m_options.command.empty()) return Answer(Console(line));
    if (line.starts_with('!')) return Answer(Console(std::string_view(line).substr(1)));
    if (!m_program || !m_program->Type(line + "\n")) m_screen.Say("the program reads nothing now");
}

CommandResult SimulatorProgram::Console(std::string_view line) {
    const std::string_view command = Trimmed(line);
    if (command == "quit") {
        Leave();
        return {};
    }
    CommandResult result = m_unit.Command(command, Now());
    // The device must be seen to vanish even when the next line brings it back.
    ServeLine();
    if (command == "help") result.text += "\n" + HelpLine("quit", "", "end the program and the simulator");
    return result;
}

void SimulatorProgram::Answer(const CommandResult& result) {
    if (!result.text.empty()) m_screen.Say(result.text);
}

void SimulatorProgram::OnProgramOutput(int descriptor, const std::string& bytes) {
    m_screen.Program(descriptor, bytes);
    if (m_player) m_player->ProgramPrinted(bytes);
}

void SimulatorProgram::DrainOutput() {
    // A grandchild could keep the pipes open and talk for ever.
    constexpr int mostReads = 256;
    for (int i = 0; i < mostReads; ++i) {
        const std::string output = m_program->Output() >= 0 ? m_program->ReadOutput() : "";
        const std::string errors = m_program->Errors() >= 0 ? m_program->ReadErrors() : "";
        OnProgramOutput(STDOUT_FILENO, output);
        OnProgramOutput(STDERR_FILENO, errors);
        if (output.empty() && errors.empty()) return;
    }
}

void SimulatorProgram::OnProgramEnded(int code) {
    DrainOutput();
    m_program.reset();
    m_killAt.reset();
    if (m_restartAt) return;
    if (m_player && !m_leaving) {
        m_player->Advance(Now());
        m_player->ProgramEnded();
        if (!m_player->Failure().empty()) Fail(m_player->Failure());
    }
    m_screen.Say("the program has ended with " + std::to_string(code));
    Finish(code);
}

void SimulatorProgram::RestartUnit() {
    ShmNamedObjects::Remove(m_place.objectPrefix);
    if (m_program) m_program->Signal(SIGKILL);
    if (!m_options.command.empty() && !m_leaving) m_restartAt = Now() + restartTime;
}

void SimulatorProgram::Leave() {
    m_leaving = true;
    m_restartAt.reset();
    if (!m_program) return Finish(0);
    m_program->Signal(SIGINT);
    m_killAt = Now() + patience;
}

void SimulatorProgram::Finish(int code) {
    m_exitCode = m_failed ? 1 : code;
}

void SimulatorProgram::Fail(std::string_view why) {
    m_failed = true;
    m_screen.Say("scenario failed: " + std::string(why));
    Leave();
}

}  // namespace varkel::sim
