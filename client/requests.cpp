#include "client/requests.h"

#include "client/answer_event.h"

namespace varkel::client {

namespace {

constexpr MessageId getImsi = WM_USER + 1002;
constexpr MessageId getImei = WM_USER + 1003;
constexpr MessageId getConnectStatus = WM_USER + 1005;

using AnswerOf = std::string (*)(const SharedDataLayout&);

// Asks, waits for the event and prints what the block then holds.
ExitCode Ask(PhoneProgram& program, Ticks timeout, MessageId request, AnswerOf answerOf) {
    AnswerEvent answered(program, "CGSMData RESP EVENT", timeout);
    if (const ExitCode code = answered.Prepare(); code != ExitCode::Ok) return code;
    const auto ask = [&] { program.Post(request); };
    ask();
    if (const ExitCode code = answered.Await(ask); code != ExitCode::Ok) return code;
    const auto data = program.Data().Read();
    if (!data) return Fail(ExitCode::Failed, "the shared block cannot be read");
    const std::string answer = answerOf(*data);
    if (answer.empty()) return Fail(ExitCode::Failed, "the answer is empty");
    return PrintLine(answer) ? ExitCode::Ok : ExitCode::Failed;
}

std::string StatusText(const SharedDataLayout& data) {
    constexpr std::uint32_t up = 1;
    constexpr std::uint32_t notUp = 2;
    if (data.connectionStatus == up) return "up";
    return data.connectionStatus == notUp ? "down" : "";
}

}  // namespace

ExitCode AskImsi(PhoneProgram& program, Ticks timeout) {
    return Ask(program, timeout, getImsi, [](const SharedDataLayout& data) { return TextOf(data.imsi); });
}

ExitCode AskImei(PhoneProgram& program, Ticks timeout) {
    return Ask(program, timeout, getImei, [](const SharedDataLayout& data) { return TextOf(data.imei); });
}

ExitCode AskStatus(PhoneProgram& program, Ticks timeout) {
    return Ask(program, timeout, getConnectStatus, StatusText);
}

ExitCode Tell(PhoneProgram& program, std::string_view message, std::uint32_t wParam) {
    return program.Post(message, wParam) ? ExitCode::Ok
                                         : Fail(ExitCode::NotRunning, "the message cannot be sent");
}

ExitCode Quit(PhoneProgram& program, Ticks timeout) {
    constexpr Ticks lookAgain = 50;
    if (const ExitCode code = Tell(program, "3Gwindow_QUIT"); code != ExitCode::Ok) return code;
    LinuxRuntime& runtime = program.GetRuntime();
    for (const Ticks start = runtime.GetTickCount(); program.Running(); runtime.Sleep(lookAgain)) {
        if (TicksSince(runtime.GetTickCount(), start) >= timeout)
            return Fail(ExitCode::NoAnswer, "varkel has not ended in time");
    }
    return ExitCode::Ok;
}

}  // namespace varkel::client
