#include "ui/screens/phone_book_wait.h"

#include <utility>

#include "ui/toolkit/warn_dlg.h"

namespace varkel {

namespace {

constexpr int tipTimer = 1;

WarnCode WarnCodeOf(PhoneBookResult result, WarnCode refused) {
    switch (result) {
        case PhoneBookResult::NotFound: return WarnCode::NotFound;
        case PhoneBookResult::NameTooLong: return WarnCode::NameLong;
        case PhoneBookResult::NumberTooLong: return WarnCode::NumberLong;
        case PhoneBookResult::NumberInvalid: return WarnCode::NumberInvalid;
        case PhoneBookResult::VolumeFull: return WarnCode::NandFull;
        case PhoneBookResult::SimFull: return WarnCode::PhonebookFull;
        case PhoneBookResult::ModuleClosed: return WarnCode::NetClosed;
        case PhoneBookResult::Busy: return WarnCode::Busy;
        case PhoneBookResult::Done:
        case PhoneBookResult::Refused: break;
    }
    return refused;
}

}  // namespace

PhoneBookWait::PhoneBookWait(Desktop& desktop)
    : m_desktop(desktop),
      m_timers(desktop.Loop(), desktop.Numbers()),
      m_tip(desktop),
      m_self(std::make_shared<PhoneBookWait*>(this)) {}

PhoneBook::Done PhoneBookWait::Begin(WarnCode refused, std::function<void()> onDone) {
    m_pending = true;
    m_timers.SetOnce(tipTimer, tipDelay, [this] { m_tip.ShowTip(m_tip.LoadText("IDS_SAVING")); });
    return [&desktop = m_desktop, self = std::weak_ptr(m_self), refused,
            onDone = std::move(onDone)](PhoneBookResult result) {
        const auto there = self.lock();
        if (there) (*there)->End();
        if (result != PhoneBookResult::Done) {
            Warn(desktop, WarnCodeOf(result, refused));
        } else if (there) {
            onDone();
        }
    };
}

void PhoneBookWait::End() {
    m_pending = false;
    m_timers.KillAll();
    m_tip.Hide();
}

}  // namespace varkel
