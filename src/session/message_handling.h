// Short messages: the modem's events of them, and what the screens and other programs ask for.
#pragma once

#include <atomic>
#include <string>
#include <string_view>

#include "session/message_editing.h"
#include "session/message_receiving.h"
#include "session/message_sending.h"

namespace varkel {

// Created and destroyed on the dialog thread. The handlers are the read thread's, and quick: what takes time
// is done by a worker.
class MessageHandling {
  public:
    MessageHandling(Session& session, CommandTurn& turn, CallControl& calls, SignalWatch& signal);
    ~MessageHandling();

    // Start-up, behind the main window, which is the program's first.
    void Start();
    // The named events by which a program for which the controller works learns of a received message and of
    // the result of a sent one.
    void SetClientEvents(std::shared_ptr<Event> received, std::shared_ptr<Event> sent);

    void OnMsComeIn(std::string_view text);
    void OnCpms(std::string_view text);
    void OnMsContent(std::string_view text) { m_receiving.OnMsContent(text); }
    void OnMsCenterNo(std::string_view text) { m_sending.OnMsCenterNo(text); }
    void OnSendMsSuc() { m_sending.OnSendMsSuc(); }
    void OnSendState(SendState state) { m_sending.OnSendState(state); }
    void OnSendTip() { m_sending.OnSendTip(); }
    void ReportFailure(bool toClient) { m_sending.ReportFailure(toClient); }
    // The module is open. Any thread.
    void OnModuleOpened() { Wake(); }
    // It is being shut down. Any thread.
    void OnModuleClosed() { m_receiving.OnModuleClosed(); }

    // See MessageSending.
    bool SendSMDll(std::string_view number, std::string_view text, Sender sender = Sender::User);
    bool ServesClient() const { return m_sending.ServesClient(); }

    std::string ServiceCenter() const { return m_sending.ServiceCenter(); }
    void SetServiceCenter(const CenterNumber& number) { m_sending.SetServiceCenter(number); }

    MessageBoxes& Boxes() { return m_boxes; }
    // What the screens change in them.
    MessageEditing& Editing() { return m_editing; }

  private:
    void Wake();
    void Work();

    Session& m_session;
    WindowHandle m_tipWindow = WindowHandle::None;
    MessageBoxes m_boxes;
    MessageReceiving m_receiving;
    MessageSending m_sending;
    std::atomic<bool> m_woken = false;
    Worker m_worker;
    MessageEditing m_editing;  // last: its thread ends first
};

}  // namespace varkel
