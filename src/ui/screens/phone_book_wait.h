// Follows a change of a phonebook for the screen that asked for it. Dialog thread.
#pragma once

#include <functional>
#include <memory>

#include "session/phone_book.h"
#include "session/warn_code.h"
#include "ui/toolkit/prompt_dlg.h"
#include "ui/toolkit/timers.h"

namespace varkel {

// Says that the change is under way when it takes its time, and why it failed. The user who has left the
// screen meanwhile is told of a failure all the same.
class PhoneBookWait {
  public:
    explicit PhoneBookWait(Desktop& desktop);

    // For a change that begins now. `refused` is the warning for a store that does not take it; `onDone` runs
    // when it was taken and the screen is still there.
    PhoneBook::Done Begin(WarnCode refused, std::function<void()> onDone);
    bool Pending() const { return m_pending; }

    static constexpr Ticks tipDelay = 300;

  private:
    void End();

    Desktop& m_desktop;
    Timers m_timers;
    CPromptDlg m_tip;
    bool m_pending = false;
    std::shared_ptr<PhoneBookWait*> m_self;  // a result that comes later finds nobody there
};

}  // namespace varkel
