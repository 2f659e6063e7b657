#include "platform/linux/board_kovex_drv.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/child_process.h"
#include "platform/linux/file_descriptor.h"
#include "platform/text.h"

namespace varkel {

namespace {

constexpr std::size_t longestAnswer = 256;  // bytes of a file or of a command's output that are looked at

bool FirstNumber(std::string_view text, int& value) {
    const std::size_t digit = text.find_first_of("0123456789");
    if (digit == std::string_view::npos) return false;
    const bool negative = digit > 0 && text[digit - 1] == '-';
    return ParseInt(text.substr(negative ? digit - 1 : digit), value);
}

// O_NONBLOCK: a pipe that somebody put in the file's place must not hold the caller up.
bool ReadNumber(const std::string& path, int& value) {
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    char bytes[longestAnswer];
    const ssize_t count = file ? Uninterrupted([&] { return read(file.Get(), bytes, sizeof bytes); }) : -1;
    return count > 0 && FirstNumber({bytes, static_cast<std::size_t>(count)}, value);
}

bool WriteNumber(const std::string& path, int value) {
    FileDescriptor file(open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NONBLOCK));
    if (!file || !WriteAll(file.Get(), std::to_string(value) + "\n")) return false;
    return close(file.Release()) == 0;
}

std::vector<std::string> WithValue(std::vector<std::string> command, int value) {
    for (std::string& part : command) {
        if (const std::size_t at = part.find("%d"); at != std::string::npos)
            part.replace(at, 2, std::to_string(value));
    }
    return command;
}

// Takes a command's output until it closes it or `deadline`; what is more than `longestAnswer` is thrown
// away.
std::string CollectOutput(int pipe, std::chrono::steady_clock::time_point deadline) {
    std::string output;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd readable{pipe, POLLIN, 0};
        if (!Poll({&readable, 1}, left)) return output;
        char bytes[512];
        const ssize_t count = Uninterrupted([&] { return read(pipe, bytes, sizeof bytes); });
        if (count <= 0) return output;
        const std::size_t room = longestAnswer - output.size();
        output.append(bytes, std::min(static_cast<std::size_t>(count), room));
    }
}

// Runs a command to its end; false when it failed or had to be killed. The output counts only for a getter,
// but is taken in any case: nobody else reads it.
bool RunCommand(const std::vector<std::string>& command, std::string& output) {
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(KovexDrvApi::longestCall);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    const FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);
    auto child = ChildProcess::Start(command, {.output = writeEnd.Get()});
    writeEnd.Reset();
    if (!child) return false;
    output = CollectOutput(readEnd.Get(), deadline);
    const auto left =
        std::chrono::duration_cast<std::chrono::microseconds>(deadline - std::chrono::steady_clock::now());
    if (child->Wait(std::max(left, std::chrono::microseconds(0)))) return child->ExitCode() == 0;
    child->Kill();
    child->Wait(forever);
    return false;
}

bool CarryOut(const BoardAnswer& answer, DrvKind kind, int& value) {
    const int argument = kind == DrvKind::Action ? 1 : value;
    switch (answer.source) {
        case BoardSource::File:
            return kind == DrvKind::Get ? ReadNumber(answer.path, value) : WriteNumber(answer.path, argument);
        case BoardSource::Command: {
            std::string output;
            if (!RunCommand(WithValue(answer.command, argument), output)) return false;
            return kind != DrvKind::Get || FirstNumber(output, value);
        }
        case BoardSource::Constant:
            if (kind == DrvKind::Get) value = answer.constant;
            return true;
        case BoardSource::Default: break;
    }
    return false;
}

// What is wrong with the notation; "" when it was understood.
std::string_view ParseAnswer(std::string_view text, BoardAnswer& answer) {
    const std::size_t colon = text.find(':');
    const std::string_view kind = text.substr(0, colon);
    const std::string_view rest = colon == std::string_view::npos ? "" : Trimmed(text.substr(colon + 1));
    if (EqualIgnoringCase(kind, "file")) {
        if (!rest.starts_with('/')) return "file: needs an absolute path";
        answer = {BoardSource::File, std::string(rest), {}, 0};
        return {};
    }
    if (EqualIgnoringCase(kind, "command")) {
        auto command = SplitCommand(rest);
        if (command.empty()) return "command: needs a program with at most 63 arguments";
        answer = {BoardSource::Command, {}, std::move(command), 0};
        return {};
    }
    if (EqualIgnoringCase(kind, "constant")) {
        int value = 0;
        if (!ParseInt(rest, value) || std::to_string(value) != rest) return "constant: needs a number";
        answer = {BoardSource::Constant, {}, {}, value};
        return {};
    }
    return "neither file:, command: nor constant:";
}

}  // namespace

BoardAnswers BoardAnswers::Parse(const KeyFile& unitFile) {
    BoardAnswers board;
    for (const KeyFile::Entry& entry : unitFile.Entries()) {
        if (!EqualIgnoringCase(entry.section, "driver")) continue;
        const auto function = std::find_if(drvTable.begin(), drvTable.end(), [&](const DrvEntry& candidate) {
            return EqualIgnoringCase(candidate.name, entry.key);
        });
        const std::string_view problem =
            function == drvTable.end()
                ? "the driver library has no function of that name"
                : ParseAnswer(entry.value, board.answers[static_cast<std::size_t>(function->function)]);
        if (!problem.empty())
            board.errors.push_back("line " + std::to_string(entry.line) + ": " + std::string(problem));
    }
    return board;
}

BoardKovexDrv::BoardKovexDrv(BoardAnswers answers, std::string modemTty, ProblemSink onProblem)
    : m_answers(std::move(answers)), m_modemTty(std::move(modemTty)), m_onProblem(std::move(onProblem)) {}

bool BoardKovexDrv::Call(DrvFunction function, int& value) {
    const auto index = static_cast<std::size_t>(function);
    const DrvEntry& entry = drvTable[index];
    const BoardAnswer& answer = m_answers.answers[index];
    if (answer.source == BoardSource::Default) return CallDefault(function, entry.kind, value);
    const bool done = CarryOut(answer, entry.kind, value);
    if (done && function == DrvFunction::SetGprsHpSpkStatus) m_speaker = value;
    if (!done && !m_failing[index])
        Report(m_onProblem, "the unit file's answer for " + std::string(entry.name) + " fails");
    m_failing[index] = !done;
    return done;
}

bool BoardKovexDrv::CallDefault(DrvFunction function, DrvKind kind, int& value) {
    switch (function) {
        case DrvFunction::Get3GPower:
        case DrvFunction::GetSDCardStatus: value = 0; return true;
        case DrvFunction::Get3GSimStatus: value = 1; return true;
        case DrvFunction::GetUsbHostStatus:
            value = access(m_modemTty.c_str(), F_OK) == 0 ? 1 : 0;
            return true;
        case DrvFunction::GetGprsHpSpkStatus: value = m_speaker; return true;
        case DrvFunction::SetGprsHpSpkStatus: m_speaker = value; return true;
        case DrvFunction::RestartMachine:
            Report(m_onProblem, "the unit should be restarted; RestartMachine is not configured");
            return true;
        default: return kind != DrvKind::Get;
    }
}

}  // namespace varkel
