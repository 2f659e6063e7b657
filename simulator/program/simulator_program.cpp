#include "simulator/program/simulator_program.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/signalfd.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/shm_named_objects.h"
#include "platform/text.h"

namespace varkel::sim {

namespace {

constexpr std::size_t largestScenario = 1024 * 1024;
constexpr int failure = 1;
constexpr int notFound = 127;

UnitConfig ConfigFor(const ProgramOptions& options) {
    UnitConfig config;
    config.modem.kind = options.modem;
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    constexpr int quarterHour = 15 * 60;
    config.modem.clock = {now, static_cast<int>(local.tm_gmtoff / quarterHour)};
    if (!options.pin.empty()) {
        config.sim.pinRequest = true;
        config.sim.codes[static_cast<std::size_t>(SimCode::Pin)] = options.pin;
    }
    return config;
}

}  // namespace

SimulatorProgram::SimulatorProgram(ProgramOptions options)
    : m_options(std::move(options)), m_unit(ConfigFor(m_options), m_options.seed) {
    UnitHooks hooks;
    hooks.say = [this](Voice voice, std::string_view text) {
        const bool modem = voice == Voice::Modem;
        Tell(std::string(NameOf(voice)) + ": " + std::string(text), !(modem && m_options.quiet));
    };
    hooks.dialLine = [this](std::string_view line) { m_dial->Print(line); };
    hooks.dialEnd = [this](int code) { m_dial->End(code); };
    hooks.restart = [this] { RestartUnit(); };
    m_unit.SetHooks(std::move(hooks));
}

SimulatorProgram::~SimulatorProgram() {
    m_program.reset();
    m_bus.reset();
    if (!m_place.objectPrefix.empty()) ShmNamedObjects::Remove(m_place.objectPrefix);
}

int SimulatorProgram::Run() {
    if (!Prepare()) return m_exitCode.value_or(failure);
    while (!m_exitCode) {
        Act();
        if (!m_exitCode) Wait();
    }
    return *m_exitCode;
}

bool SimulatorProgram::Prepare() {
    // Blocked before the first thread is made, so that only m_signals sees them.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    m_signals.Reset(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    signal(SIGPIPE, SIG_IGN);

    if (!m_options.scenario.empty() && !LoadScenario()) return false;
    std::string fault;
    const UnitParts parts{m_options.assets, DialProgramPath(), m_options.modem};
    auto place = MakeUnitPlace(m_options.unitDirectory, parts, fault);
    if (!place) {
        m_screen.Say(fault);
        return false;
    }
    m_place = std::move(*place);
    ShmNamedObjects::Remove(m_place.objectPrefix);
    if (!OpenDialSocket()) return false;

    UnitBusHooks hooks;
    hooks.call = [this](DrvFunction function, int& value) { return m_unit.Call(function, value, Now()); };
    hooks.say = [this](std::string_view text) { Tell(text, true); };
    m_bus = std::make_unique<UnitBus>(m_tasks, std::move(hooks));
    if (m_bus->Available() && !m_bus->Exported()) {
        m_screen.Say("another program is the driver library on this bus; one simulated unit at a time");
        return false;
    }
    m_unit.Head().mainWindow = m_bus->MainWindow();
    m_screen.Say("unit file " + m_place.unitFile + ", modem " + m_place.tty);
    if (!m_options.command.empty()) return StartProgram();
    m_screen.Say("type \"help\" for the commands, \"quit\" to end");
    return true;
}

bool SimulatorProgram::OpenDialSocket() {
    DialSocketHooks hooks;
    hooks.dial = [this](std::string_view user) { m_unit.DialData(user, Now()); };
    hooks.hangUp = [this] { m_unit.HangUpData(Now()); };
    hooks.gone = [this] { m_unit.AbandonData(Now()); };
    m_dial = DialSocket::Open(m_place.directory, std::move(hooks));
    if (!m_dial) m_screen.Say(std::string("no socket for the dialling program: ") + std::strerror(errno));
    return m_dial != nullptr;
}

bool SimulatorProgram::LoadScenario() {
    const FileDescriptor file(open(m_options.scenario.c_str(), O_RDONLY | O_CLOEXEC));
    const auto text = file ? ReadAll(file.Get(), largestScenario) : std::nullopt;
    if (!text) {
        m_screen.Say(m_options.scenario + " cannot be read, or is larger than 1 MiB");
        return false;
    }
    Scenario scenario = ParseScenario(*text);
    for (const std::string& error : scenario.errors)
        m_screen.Say(m_options.scenario + ", " + error);
    if (!scenario.errors.empty()) return false;
    ScenarioHooks hooks;
    hooks.command = [this](std::string_view line) {
        m_screen.Say("> " + std::string(line));
        CommandResult result = Console(line);
        if (result.well) Answer(result);
        return result;
    };
    hooks.type = [this](std::string_view line, bool secret) {
        m_screen.Say("typed: " + (secret ? "****" : std::string(line)));
        return m_program && m_program->Type(std::string(line) + "\n");
    };
    hooks.end = [this] { Leave(); };
    m_player = std::make_unique<ScenarioPlayer>(std::move(scenario), std::move(hooks));
    return true;
}

void SimulatorProgram::Tell(std::string_view line, bool show) {
    if (show) m_screen.Say(line);
    if (m_player) m_player->UnitSaid(line);
}

bool SimulatorProgram::StartProgram() {
    std::string fault;
    m_program = HostedProgram::Start(m_options.command, fault);
    if (m_program) return true;
    m_screen.Say(fault);
    m_exitCode = notFound;
    return false;
}

Millis SimulatorProgram::Now() const {
    const auto passed = Clock::now() - m_start;
    return static_cast<Millis>(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count());
}

void SimulatorProgram::Act() {
    const Millis now = Now();
    if (m_restartAt && now >= *m_restartAt) {
        m_restartAt.reset();
        if (!StartProgram()) return;
    }
    if (m_killAt && now >= *m_killAt) {
        m_killAt.reset();
        m_screen.Say("the program does not end; it is killed");
        m_program->Signal(SIGKILL);
    }
    m_unit.Advance(now);
    if (m_player && !m_leaving) {
        m_player->Advance(now);
        if (!m_player->Failure().empty()) Fail(m_player->Failure());
    }
    // A scenario types until it is done, whatever becomes of the terminal.
    const bool typing = m_inputOpen || (m_player && !m_player->Done());
    if (m_program && !typing) m_program->CloseInput();
    ServeLine();
}

// Makes the device come and go with the module, and sends what the modem says.
void SimulatorProgram::ServeLine() {
    if (!m_unit.LinePresent()) {
        m_pty.reset();
        m_noPty = false;
    } else if (!m_pty && !m_noPty) {
        m_pty = Pty::Open(m_place.tty);
        m_noPty = !m_pty;
        if (m_noPty) m_screen.Say(std::string("no pseudo-terminal: ") + std::strerror(errno));
    }
    const Millis now = Now();
    for (std::string piece = m_unit.TakeOutput(now); !piece.empty(); piece = m_unit.TakeOutput(now)) {
        if (m_pty) m_pty->Write(piece);
    }
}

std::optional<Millis> SimulatorProgram::NextDeadline() const {
    std::optional<Millis> next = m_unit.NextDeadline();
    const auto scenario = m_player && !m_leaving ? m_player->NextDeadline() : std::nullopt;
    for (const std::optional<Millis>& each : {scenario, m_restartAt, m_killAt}) {
        if (each && (!next || *each < *next)) next = each;
    }
    return next;
}

void SimulatorProgram::Wait() {
    enum Place { Tasks, Signals, Typed, Line, Dial, Output, Errors, Input, End, Count };
    std::array<pollfd, Count> polled;
    polled.fill({-1, POLLIN, 0});
    polled[Tasks].fd = m_tasks.Descriptor();
    polled[Signals].fd = m_signals.Get();
    // A program that does not read what is typed holds the typing up.
    if (m_inputOpen && !(m_program && m_program->Waiting())) polled[Typed].fd = STDIN_FILENO;
    if (m_pty) {
        polled[Line].fd = m_pty->Descriptor();
        if (m_pty->Waiting()) polled[Line].events = POLLIN | POLLOUT;
    }
    polled[Dial].fd = m_dial->Descriptor();
    if (m_program) {
        polled[Output].fd = m_program->Output();
        polled[Errors].fd = m_program->Errors();
        if (m_program->Waiting()) polled[Input] = {m_program->Input(), POLLOUT, 0};
        polled[End].fd = m_program->EndDescriptor();
    }
    auto timeout = forever;
    if (const auto next = NextDeadline()) {
        const auto until = m_start + std::chrono::milliseconds(*next) - Clock::now();
        timeout = std::max(std::chrono::duration_cast<std::chrono::microseconds>(until),
                           std::chrono::microseconds(0)) +
                  std::chrono::microseconds(1);
    }
    if (!Poll(polled, timeout)) return;

    if (polled[Line].revents & POLLOUT) m_pty->Flush();
    if (polled[Line].revents & POLLIN) m_unit.HostWrites(m_pty->Read(), Now());
    if (polled[Dial].revents) m_dial->Serve();
    if (polled[Output].revents) OnProgramOutput(STDOUT_FILENO, m_program->ReadOutput());
    if (polled[Errors].revents) OnProgramOutput(STDERR_FILENO, m_program->ReadErrors());
    if (polled[Input].revents) m_program->FlushInput();
    if (polled[Signals].revents) OnSignal();
    if (polled[Typed].revents) OnTyped();
    if (polled[End].revents) {
        if (const auto code = m_program->Collect()) OnProgramEnded(*code);
    }
    // Last, because a restart of the unit may come out of it.
    if (polled[Tasks].revents) m_tasks.Run();
}

}  // namespace varkel::sim
