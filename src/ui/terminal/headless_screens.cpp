#include "ui/terminal/headless_screens.h"

#include <algorithm>
#include <utility>

#include "ui/toolkit/warn_texts.h"

namespace varkel {

namespace {

constexpr Ticks boxLook = 100;          // how soon a box sees that it is to close
constexpr Ticks noticeRepeat = 10'000;  // the same notice is not printed twice within this time
constexpr std::string_view cancelWord = "cancel";

const char* StepText(OpenStep step) {
    switch (step) {
        case OpenStep::PowerOn: return "powering the modem";
        case OpenStep::OpenLink: return "opening the serial port";
        case OpenStep::AwaitModule: return "waiting for the modem";
        case OpenStep::AwaitSim: return "waiting for the SIM";
        case OpenStep::SearchNetwork: return "waiting for the network";
        case OpenStep::Initialise: return "preparing the modem and the SIM";
    }
    return "";
}

const char* ModeText(ScreenMode mode) {
    switch (mode) {
        case ScreenMode::Idle: return "the modem is open";
        case ScreenMode::InCall: return "in a call";
        case ScreenMode::Closed: return "the modem is closed";
    }
    return "";
}

}  // namespace

const char* DataText(DataState state) {
    switch (state) {
        case DataState::Off: return "off";
        case DataState::Dialling: return "dialling";
        case DataState::Connected: return "connected";
    }
    return "";
}

HeadlessScreens::HeadlessScreens(Runtime& runtime, MessageLoop& loop, Terminal& terminal,
                                 const Language& language)
    : m_runtime(runtime), m_loop(loop), m_terminal(terminal), m_language(language) {}

HeadlessScreens::~HeadlessScreens() = default;

void HeadlessScreens::Start(const SessionState& state, std::function<void(std::string_view)> onCommand) {
    m_state = &state;
    m_onCommand = std::move(onCommand);
    m_terminal.Listen([this](std::string line) { OnLine(line); }, [this] { OnInputEnd(); });
}

void HeadlessScreens::SetStatusText(std::string_view text) {
    if (!text.empty()) m_terminal.PrintLine("[status] " + std::string(text));
}

void HeadlessScreens::ShowOpenStep(OpenStep step, Ticks limit) {
    std::string line = std::string("[step] ") + StepText(step);
    if (limit != 0) line += " (up to " + std::to_string(limit / 1000) + " s)";
    m_terminal.PrintLine(line);
}

void HeadlessScreens::SetSignalLevel(int level) {
    if (m_signalLevel.exchange(level) == level) return;
    m_terminal.PrintLine("[signal] " + std::to_string(level) + " of 5");
}

void HeadlessScreens::Repaint() {
    if (!m_state) return;
    const ScreenMode mode = m_state->MainScreenMode;
    if (m_mode.exchange(mode) != mode) m_terminal.PrintLine(std::string("[screen] ") + ModeText(mode));
    const DataState data = m_state->m_dataState;
    if (m_data.exchange(data) != data) m_terminal.PrintLine(std::string("[data] ") + DataText(data));
}

void HeadlessScreens::PlaceWindow(WindowPlace place) {
    const bool hidden = place == WindowPlace::Hidden;
    const bool changed = m_hidden.exchange(hidden) != hidden;
    if (changed || place == WindowPlace::TopMost)
        m_terminal.PrintLine(hidden ? "[screen] hidden" : "[screen] shown");
}

void HeadlessScreens::Warn(WarnCode code) {
    PrintNotice("[warning] " + WarnText(code, m_language));
}

void HeadlessScreens::ShowIncomingCall(bool show) {
    if (m_rings.exchange(show) != show && show)
        m_terminal.PrintLine("[call] ringing: \"answer\" or \"reject\"");
}

void HeadlessScreens::SetCallerText(std::string_view text) {
    if (!text.empty()) m_terminal.PrintLine("[call] " + std::string(text));
}

void HeadlessScreens::ShowUssd(std::string_view text, bool replyExpected) {
    if (!text.empty()) m_terminal.PrintLine("[network] " + std::string(text));
    if (text.empty()) m_terminal.PrintLine("[network] the dialogue has ended");
    if (replyExpected) m_terminal.PrintLine("[network] expects an answer: \"reply TEXT\"");
}

void HeadlessScreens::ShowSendTip(SendTip tip) {
    switch (tip) {
        case SendTip::Hidden: break;
        case SendTip::Sending: m_terminal.PrintLine("[message] sending"); break;
        case SendTip::Sent: m_terminal.PrintLine("[message] sent"); break;
        case SendTip::Failed: m_terminal.PrintLine("[message] sending failed"); break;
    }
}

void HeadlessScreens::ShowNewMessages() {
    m_loop.Post([this] { m_onCommand("new"); });
}

void HeadlessScreens::ShowMessageBox(std::string_view text, std::string_view caption) {
    PrintNotice("[box] " + std::string(caption) + (caption.empty() ? "" : ": ") + std::string(text));
}

void HeadlessScreens::PrintNotice(const std::string& line) {
    const Ticks now = m_runtime.GetTickCount();
    const bool repeated = m_lastNotice.With([&](LastNotice& last) {
        if (last.line == line && TicksSince(now, last.at) < noticeRepeat) return true;
        last = {line, now};
        return false;
    });
    if (!repeated) m_terminal.PrintLine(line);
}

std::optional<CodeEntry> HeadlessScreens::AskCodes(const CodeRequest& request) {
    const auto prompt = std::make_shared<Prompt>();
    prompt->request = request;
    prompt->answered = m_runtime.CreateEvent(EventReset::Manual);
    Await(prompt, nullptr);
    if (!prompt->accepted) return std::nullopt;
    return prompt->entry;
}

void HeadlessScreens::MessageBox(std::string_view text, std::string_view caption, Event* closed) {
    const std::string shown = std::string(caption) + (caption.empty() ? "" : ": ") + std::string(text);
    const bool open = m_prompts.With([&shown](const Prompts& prompts) {
        return std::any_of(prompts.begin(), prompts.end(),
                           [&](const auto& other) { return other->text == shown; });
    });
    if (open) return;
    const auto prompt = std::make_shared<Prompt>();
    prompt->isBox = true;
    prompt->text = shown;
    prompt->answered = m_runtime.CreateEvent(EventReset::Manual);
    Await(prompt, closed);
}

void HeadlessScreens::Await(const std::shared_ptr<Prompt>& prompt, Event* ended) {
    m_prompts.With([&prompt](Prompts& prompts) { prompts.push_back(prompt); });
    PrintQuestion(*prompt, false);
    const bool cancelled = prompt->request.cancelled && prompt->request.cancelled();
    if (m_inputEnded || cancelled) Close(*prompt, false);

    if (m_loop.OnDialogThread()) {
        m_loop.Run([&prompt] { return prompt->closed.load(); });
    } else if (!ended) {
        prompt->answered->Wait(infiniteTicks);
    } else {
        while (!prompt->closed && ended->Wait(boxLook) != WaitResult::Object0) {
        }
    }
    m_prompts.With([&prompt](Prompts& prompts) { std::erase(prompts, prompt); });
}

void HeadlessScreens::PrintQuestion(const Prompt& prompt, bool second) {
    if (prompt.isBox) {
        m_terminal.PrintLine("[box] " + prompt.text + " (press Enter)");
        return;
    }
    const std::string& label = second ? prompt.request.secondLabel : prompt.request.firstLabel;
    m_terminal.PrintLine("[input] " + prompt.request.title + " " + label + " (or \"" +
                         std::string(cancelWord) + "\")");
}

void HeadlessScreens::Close(Prompt& prompt, bool accepted) {
    prompt.accepted = accepted;
    prompt.closed = true;
    prompt.answered->Set();
    m_loop.Post([] {});
}

void HeadlessScreens::CancelPrompts() {
    const Prompts open = m_prompts.Get();
    for (const auto& prompt : open) {
        if (!prompt->isBox && !prompt->closed) Close(*prompt, false);
    }
}

void HeadlessScreens::OnInputEnd() {
    m_inputEnded = true;
    const Prompts open = m_prompts.Get();
    for (const auto& prompt : open) {
        if (!prompt->closed) Close(*prompt, false);
    }
}

void HeadlessScreens::OnLine(const std::string& line) {
    const auto top = m_prompts.With([](const Prompts& prompts) -> std::shared_ptr<Prompt> {
        const auto open =
            std::find_if(prompts.rbegin(), prompts.rend(), [](const auto& p) { return !p->closed; });
        return open == prompts.rend() ? nullptr : *open;
    });
    if (!top) {
        m_onCommand(line);
    } else if (top->isBox) {
        Close(*top, true);
    } else {
        OnCodeLine(*top, line);
    }
}

void HeadlessScreens::OnCodeLine(Prompt& prompt, const std::string& line) {
    if (line == cancelWord) {
        Close(prompt, false);
        return;
    }
    (prompt.firstDone ? prompt.entry.second : prompt.entry.first) = line;
    if (!prompt.firstDone && !prompt.request.secondLabel.empty()) {
        prompt.firstDone = true;
        PrintQuestion(prompt, true);
        return;
    }
    if (const auto fault = prompt.request.check(prompt.entry.first, prompt.entry.second)) {
        m_terminal.PrintLine("[warning] " + WarnText(*fault, m_language));
        prompt.firstDone = false;
        prompt.entry = {};
        PrintQuestion(prompt, false);
        return;
    }
    Close(prompt, true);
}

}  // namespace varkel
