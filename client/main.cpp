// varkelctl: other programs of the unit, and people, talk to the telephone program.
#include <csignal>

#include "client/command_line.h"
#include "client/phone_program.h"
#include "client/registry_access.h"
#include "client/requests.h"
#include "client/send_message.h"
#include "client/watch.h"
#include "platform/linux/termination.h"

namespace varkel::client {

namespace {

constexpr Ticks answerTimeout = 5'000;
constexpr Ticks quitTimeout = 30'000;   // the module is shut down in order
constexpr Ticks sendTimeout = 70'000;   // the program itself gives a message 60 s
constexpr std::uint32_t sosNumber = 0;  // wParam of "UM_QX_CALL"
constexpr std::uint32_t helpNumber = 1;

ExitCode RunOnProgram(const CommandLine& line, const UnitSettings& settings, LinuxRuntime& runtime,
                      MessageLoop& loop) {
    PhoneProgram program(runtime, loop, settings);
    if (const ExitCode code = program.Connect(); code != ExitCode::Ok) return code;
    const auto timeout = [&line](Ticks otherwise) { return line.timeout.value_or(otherwise); };
    switch (line.command) {
        case Command::Show: return Tell(program, "3Gwindow_SHOW");
        case Command::Hide: return Tell(program, "3Gwindow_HIDE");
        case Command::Open: return Tell(program, "Network_interface");
        case Command::CallSos: return Tell(program, "UM_QX_CALL", sosNumber);
        case Command::CallHelp: return Tell(program, "UM_QX_CALL", helpNumber);
        case Command::Quit: return Quit(program, timeout(quitTimeout));
        case Command::Imsi: return AskImsi(program, timeout(answerTimeout));
        case Command::Imei: return AskImei(program, timeout(answerTimeout));
        case Command::Status: return AskStatus(program, timeout(answerTimeout));
        case Command::Send:
            return SendShortMessage(program, settings, line.number, line.text, timeout(sendTimeout));
        case Command::Language: return Tell(program, "LANGUAGE_CHANGE");
        case Command::Watch: return Watch(program, loop);
        default: return ExitCode::Usage;
    }
}

ExitCode Run(const CommandLine& line) {
    const UnitSettings settings =
        line.unitFile.empty() ? UserUnitSettings() : LoadUnitSettings(line.unitFile);
    for (const std::string& error : settings.errors)
        Fail(ExitCode::Failed, "unit file: " + error);
    switch (line.command) {
        case Command::RegGet: return GetRegistryValue(settings.registry, line.key, line.name);
        case Command::RegSet: return SetRegistryValue(settings.registry, line.key, line.name, line.value);
        case Command::RegList: return ListRegistry(settings.registry, line.key);
        case Command::Language:
            if (const ExitCode code = SetLanguage(settings.registry, line.language); code != ExitCode::Ok)
                return code;
            break;
        default: break;
    }
    LinuxRuntime runtime;
    MessageLoop loop(runtime);
    if (line.command != Command::Watch) return RunOnProgram(line, settings, runtime, loop);
    const Termination termination([&loop] { loop.Quit(); });
    return RunOnProgram(line, settings, runtime, loop);
}

}  // namespace

}  // namespace varkel::client

int main(int argc, char** argv) {
    using namespace varkel::client;
    signal(SIGPIPE, SIG_IGN);  // a closed pipe is a failed write
    ExitCode exitCode = ExitCode::Ok;
    if (const auto line = ParseCommandLine(argc, argv, exitCode)) exitCode = Run(*line);
    return static_cast<int>(exitCode);
}
