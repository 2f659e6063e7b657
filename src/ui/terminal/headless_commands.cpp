#include "ui/terminal/headless_commands.h"

#include <charconv>
#include <optional>

#include "platform/text.h"

namespace varkel {

struct HeadlessCommands::Command {
    const char* name;
    const char* arguments;
    const char* help;
    void (*run)(HeadlessCommands& self, std::string_view arguments);
};

using Self = HeadlessCommands;

namespace {

std::optional<std::uint32_t> WholeNumber(std::string_view text, int base) {
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

}  // namespace

const HeadlessCommands::Command HeadlessCommands::commands[] = {
    {"open", "", "switch the modem on", [](Self& self, auto) { self.m_dialog.OpenModule(); }},
    {"close", "", "switch the modem off", [](Self& self, auto) { self.m_dialog.CloseModule(); }},
    {"cancel", "", "give up switching the modem on", [](Self& self, auto) { self.m_dialog.CancelOpen(); }},
    {"status", "", "what is known of modem, SIM and signal", [](Self& self, auto) { self.Status(); }},
    {"inbox", "", "the received messages, the newest first",
     [](Self& self, auto) { self.m_messages.List(SmsBox::Inbox); }},
    {"outbox", "", "the sent ones", [](Self& self, auto) { self.m_messages.List(SmsBox::Outbox); }},
    {"drafts", "", "the ones that are kept for later",
     [](Self& self, auto) { self.m_messages.List(SmsBox::Drafts); }},
    {"read", "N", "message N of the list shown last",
     [](Self& self, std::string_view which) { self.m_messages.Read(which); }},
    {"delete", "N|all", "delete it, or all of that list",
     [](Self& self, std::string_view which) { self.m_messages.Delete(which); }},
    {"new", "", "the messages that came since \"new\" was last shown",
     [](Self& self, auto) { self.m_messages.ShowNew(); }},
    {"send", "NUMBER TEXT", "send a message",
     [](Self& self, std::string_view text) { self.m_messages.Send(text); }},
    {"phonebook", "[PART]", "the entries of both phonebooks, or those that contain the part",
     [](Self& self, std::string_view part) { self.m_phones.List(part); }},
    {"add", "NAME NUMBER", "a new entry",
     [](Self& self, std::string_view entry) { self.m_phones.Add(PhoneBookKind::Local, entry); }},
    {"add-sim", "NAME NUMBER", "a new entry on the SIM",
     [](Self& self, std::string_view entry) { self.m_phones.Add(PhoneBookKind::Sim, entry); }},
    {"change", "N NAME NUMBER", "change entry N of the entries shown last",
     [](Self& self, std::string_view entry) { self.m_phones.Change(entry); }},
    {"remove", "N", "delete entry N of the entries shown last",
     [](Self& self, std::string_view number) { self.m_phones.Remove(number); }},
    {"find", "NUMBER", "whose number it is",
     [](Self& self, std::string_view number) { self.m_phones.Find(number); }},
    {"dial", "NUMBER", "call it; a service code such as *100# is sent as a request",
     [](Self& self, std::string_view number) { self.m_dialog.Calls().Dial(number); }},
    {"reply", "TEXT", "answer what the network has asked",
     [](Self& self, std::string_view text) { self.m_dialog.Calls().AnswerUssd(text); }},
    {"redial", "", "call the number that was dialled last",
     [](Self& self, auto) { self.m_dialog.Calls().OnRedial(); }},
    {"answer", "", "take the call that rings", [](Self& self, auto) { self.m_dialog.Calls().Answer(); }},
    {"reject", "", "refuse it", [](Self& self, auto) { self.m_dialog.Calls().Reject(); }},
    {"hangup", "", "end the call, or give up dialling",
     [](Self& self, auto) { self.m_dialog.Calls().HangUp(); }},
    {"tone", "KEY", "0-9 * # + A-D to the other party",
     [](Self& self, std::string_view key) { self.m_dialog.Calls().SendTone(key); }},
    {"speaker", "", "switch the loudspeaker on or off",
     [](Self& self, auto) { self.m_dialog.Calls().ToggleSpeaker(); }},
    {"calls", "dialled|received|missed", "a list of calls, the newest first",
     [](Self& self, std::string_view kind) { self.m_calls.List(kind); }},
    {"delete-call", "N|all", "delete call N of the list shown last, or all of it",
     [](Self& self, std::string_view which) { self.m_calls.Delete(which); }},
    {"data", "[on|off]", "dial the data link, hang it up, or tell how far it is",
     [](Self& self, std::string_view what) { self.m_data.Run(what); }},
    {"test", "", "test the data link", [](Self& self, auto) { self.m_data.Test(); }},
    {"say", "TEXT", "speak it, as the caption of a button",
     [](Self& self, std::string_view text) { self.m_dialog.GetSpeech().Announce(text); }},
    {"key", "5F|EE", "the key that puts the unit to sleep, or wakes it up",
     [](Self& self, std::string_view code) { self.Key(code); }},
    {"post", "MESSAGE [W [L]]", "a window message, by its name or number, as another program posts it",
     [](Self& self, std::string_view message) { self.Post(message); }},
    {"exit", "", "leave the screen, as its exit cell does",
     [](Self& self, auto) { self.m_dialog.HideOrQuit(); }},
    {"quit", "", "switch the modem off and end", [](Self& self, auto) { self.m_dialog.Quit(); }},
    {"help", "", "this list", [](Self& self, auto) { self.Help(); }},
};

void HeadlessCommands::Run(std::string_view line) {
    line = Trimmed(line);
    if (line.empty()) return;
    const std::string_view name = line.substr(0, line.find(' '));
    const std::string_view arguments = Trimmed(line.substr(name.size()));
    for (const Command& command : commands) {
        if (name != command.name) continue;
        const bool takesNone = *command.arguments == '\0';
        const bool mayTakeNone = *command.arguments == '[';
        if (mayTakeNone || takesNone == arguments.empty()) {
            command.run(*this, arguments);
        } else {
            m_terminal.PrintLine(std::string("[error] usage: ") + command.name + " " + command.arguments);
        }
        return;
    }
    m_terminal.PrintLine("[error] unknown command \"" + std::string(CutUtf8(name, 40)) + "\"; try \"help\"");
}

void HeadlessCommands::Help() {
    constexpr std::size_t column = 34;  // behind the longest arguments
    for (const Command& command : commands) {
        std::string line = std::string("  ") + command.name + " " + command.arguments;
        line.resize(column, ' ');
        m_terminal.PrintLine(line + command.help);
    }
}

void HeadlessCommands::Key(std::string_view code) {
    const auto number = WholeNumber(code, 16);
    if (!number || !m_dialog.OnKey(static_cast<int>(*number)))
        m_terminal.PrintLine("[error] not a key of the unit");
}

void HeadlessCommands::Post(std::string_view text) {
    const auto next = [&text] {
        const std::string_view word = text.substr(0, text.find(' '));
        text = Trimmed(text.substr(word.size()));
        return word;
    };
    const std::string_view name = next();
    WindowMessage message;
    const auto number = WholeNumber(name, 10);
    message.id = number ? *number : m_windows.RegisterWindowMessage(name);
    message.wParam = WholeNumber(next(), 10).value_or(0);
    message.lParam = WholeNumber(next(), 10).value_or(0);
    if (!m_windows.PostMessage(m_dialog.Window(), message))
        m_terminal.PrintLine("[error] the window takes no message now");
}

void HeadlessCommands::Status() {
    const SessionState& state = m_dialog.State();
    const auto shown = [](const std::string& text) { return text.empty() ? std::string("unknown") : text; };
    const char* const mode = state.MainScreenMode == ScreenMode::Closed   ? "closed"
                             : state.MainScreenMode == ScreenMode::InCall ? "in a call"
                                                                          : "open";
    m_terminal.PrintLine(std::string("  modem   ") + mode);
    m_terminal.PrintLine("  signal  " + shown(std::string(state.m_szCsq.Get().View())));
    m_terminal.PrintLine("  IMSI    " + shown(state.m_strImsi.Get()));
    m_terminal.PrintLine("  IMEI    " + shown(state.m_strImei.Get()));
}

}  // namespace varkel
