// What the head unit orders by registered window messages and by keys.
#pragma once

#include <array>

#include "session/session.h"

namespace varkel {

class CVarkelDlg;

// Dialog thread.
class UnitMessages {
  public:
    UnitMessages(Session& session, CVarkelDlg& dialog);

    // Registered messages, and the unit's keys when another program posts them.
    void OnMessage(const WindowMessage& message);
    // A key that went down, seen before any screen sees it; true when it is one of the unit's own.
    bool OnKey(int code);

  private:
    using Handler = void (UnitMessages::*)(const WindowMessage&);
    struct Entry {
        MessageId id;
        Handler handle;
    };

    void OnShow(const WindowMessage&);
    void OnHide(const WindowMessage&);
    void OnQuit(const WindowMessage&);
    void OnNetworkInterface(const WindowMessage& message);
    void OnQxCall(const WindowMessage& message);
    void OnLanguageChange(const WindowMessage&);
    void OnNeedCloseUsbHost(const WindowMessage&);
    void OnSimCardDetach(const WindowMessage&) { Sleep(); }
    // The unit goes to sleep, and wakes up: an open module is shut down, and opened again.
    void Sleep();
    void Wake();

    Session& m_session;
    CVarkelDlg& m_dialog;
    const std::array<Entry, 8> m_handlers;
    bool m_reopen = false;  // the module is to be opened when the unit wakes up
};

}  // namespace varkel
