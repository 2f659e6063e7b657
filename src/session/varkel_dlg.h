// The controller and main dialog: it owns the parts of the session and wires the modem's events to them.
#pragma once

#include <memory>
#include <string_view>

#include "modem/serial_link.h"
#include "modem/shared_block.h"
#include "session/call_control.h"
#include "session/client_requests.h"
#include "session/data_link.h"
#include "session/listeners.h"
#include "session/message_handling.h"
#include "session/module_control.h"
#include "session/one_shot_watch.h"
#include "session/phone_book.h"
#include "session/program_watch.h"
#include "session/session.h"
#include "session/signal_watch.h"
#include "session/sim_card.h"
#include "session/speech.h"
#include "session/unit_messages.h"
#include "session/user_choices.h"

namespace varkel {

// Created, started and destroyed on the dialog thread, outside its message loop.
class CVarkelDlg {
  public:
    CVarkelDlg(Platform& platform, Screens& screens, SessionOptions options = {});
    ~CVarkelDlg();
    CVarkelDlg(const CVarkelDlg&) = delete;
    CVarkelDlg& operator=(const CVarkelDlg&) = delete;

    // Start-up. The command line "1" means a start in the background, which opens the module.
    void OnInitDialog(std::string_view commandLine, LogLevel logLevel);

    // What the user and other programs ask for. Any thread; each returns at once.
    void OpenModule(bool withData = true);
    // Also takes back what was to be opened and has not begun.
    void CloseModule();
    void CancelOpen() { m_module.CancelOpen(); }
    bool Opening() const { return m_module.Opening(); }
    // What the settings screen asks for: the module first, then the data link.
    void CarryOut(const ChangeRequests& requests);
    // Shuts the module down in order and ends the message loop.
    void Quit();

    // Leaves the screen: hides the window while the module is on, else ends the program. Dialog thread.
    void HideOrQuit();
    // Comes back to the screen, and opens the module when that was put off until now. Dialog thread.
    void ShowWindow();
    // A key that went down, seen before any screen sees it; true when no screen is to see it. Dialog thread.
    bool OnKey(int code) { return m_unitMessages.OnKey(code); }

    CallControl& Calls() { return m_calls; }
    MessageHandling& Messages() { return m_messages; }
    Speech& GetSpeech() { return m_speech; }
    ProgramWatch& Programs() { return m_programs; }
    PhoneBook& Phones() { return m_phones; }
    DataLink& Data() { return m_data; }
    UserChoices& Choices() { return m_choices; }
    Settings& GetSettings() { return m_settings; }
    WindowHandle Window() const { return m_window; }
    SessionState& State() { return m_state; }
    const SkinColors& Colors() const { return m_colors; }

  private:
    // The read thread's callback: a chunk of the modem.
    static void OnSeriesRead(void* owner, std::string_view chunk);
    static ModemHandlers Handlers();
    static CVarkelDlg& Self(void* owner) { return *static_cast<CVarkelDlg*>(owner); }

    void OnWindowMessage(const WindowMessage& message);
    void OnAtResult(AtResult result);
    void CheckPower();
    void CreateNamedEvents();
    void ScheduleStart();

    Platform& m_platform;
    Screens& m_screens;
    SessionState m_state;
    Settings m_settings;
    CCESeries m_link;
    CATChannel m_at;
    Session m_session;
    CommandTurn m_turn;
    CGSMData m_sharedData;
    WindowHandle m_window = WindowHandle::None;
    bool m_background = false;
    SkinColors m_colors;

    std::shared_ptr<Event> m_recvSmEvent;
    std::shared_ptr<Event> m_sendSmEvent;
    std::shared_ptr<Event> m_sendSmSus;
    std::shared_ptr<Event> m_recPhoneBookSus;
    std::shared_ptr<Event> m_simSus;

    PhoneBook m_phones;
    SimCard m_sim;
    Listeners m_listeners;
    DataLink m_data;
    SignalWatch m_signal;
    CallLists m_callLists;
    CallControl m_calls;
    MessageHandling m_messages;
    UserChoices m_choices;
    OneShotWatch m_oneShots;
    ProgramWatch m_programs;
    Speech m_speech;
    UnitMessages m_unitMessages;
    ClientRequests m_requests;
    ModuleControl m_module;
};

}  // namespace varkel
