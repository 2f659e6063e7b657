#include "ui/headless_commands.h"

#include "platform/text.h"

namespace varkel {

struct HeadlessCommands::Command {
    const char* name;
    const char* help;
    void (*run)(HeadlessCommands& self);
};

const HeadlessCommands::Command HeadlessCommands::commands[] = {
    {"open", "switch the modem on", [](HeadlessCommands& self) { self.m_dialog.OpenModule(); }},
    {"close", "switch the modem off", [](HeadlessCommands& self) { self.m_dialog.CloseModule(); }},
    {"cancel", "give up switching the modem on", [](HeadlessCommands& self) { self.m_dialog.CancelOpen(); }},
    {"status", "what is known of modem, SIM and signal", [](HeadlessCommands& self) { self.Status(); }},
    {"exit", "leave the screen, as its exit cell does",
     [](HeadlessCommands& self) { self.m_dialog.HideOrQuit(); }},
    {"quit", "switch the modem off and end", [](HeadlessCommands& self) { self.m_dialog.Quit(); }},
    {"help", "this list", [](HeadlessCommands& self) { self.Help(); }},
};

void HeadlessCommands::Run(std::string_view line) {
    const std::string_view name = Trimmed(line);
    if (name.empty()) return;
    for (const Command& command : commands) {
        if (name == command.name) {
            command.run(*this);
            return;
        }
    }
    m_terminal.PrintLine("[error] unknown command \"" + std::string(CutUtf8(name, 40)) + "\"; try \"help\"");
}

void HeadlessCommands::Help() {
    for (const Command& command : commands) {
        std::string line = std::string("  ") + command.name;
        line.resize(12, ' ');
        m_terminal.PrintLine(line + command.help);
    }
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
