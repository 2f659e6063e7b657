#include "session/unit_messages.h"

#include <string>

#include "session/varkel_dlg.h"

namespace varkel {

namespace {

constexpr int sleepKey = 0x5F;
constexpr int wakeKey = 0xEE;
constexpr std::array<std::string_view, 2> numberNames{"SOS", "HELP"};  // by wParam

}  // namespace

UnitMessages::UnitMessages(Session& session, CVarkelDlg& dialog)
    : m_session(session),
      m_dialog(dialog),
      m_handlers{{
          {session.platform.windows.RegisterWindowMessage("3Gwindow_SHOW"), &UnitMessages::OnShow},
          {session.platform.windows.RegisterWindowMessage("3Gwindow_HIDE"), &UnitMessages::OnHide},
          {session.platform.windows.RegisterWindowMessage("3Gwindow_QUIT"), &UnitMessages::OnQuit},
          {session.platform.windows.RegisterWindowMessage("Network_interface"),
           &UnitMessages::OnNetworkInterface},
          {session.platform.windows.RegisterWindowMessage("UM_QX_CALL"), &UnitMessages::OnQxCall},
          {session.platform.windows.RegisterWindowMessage("LANGUAGE_CHANGE"),
           &UnitMessages::OnLanguageChange},
          {session.platform.windows.RegisterWindowMessage("NEED_CLOSE_USB_HOST"),
           &UnitMessages::OnNeedCloseUsbHost},
          {session.platform.windows.RegisterWindowMessage("UM_3G_SIMCARDDETACH"),
           &UnitMessages::OnSimCardDetach},
      }} {}

void UnitMessages::OnMessage(const WindowMessage& message) {
    if (message.id == WM_KEYDOWN || message.id == WM_SYSKEYDOWN) {
        OnKey(static_cast<int>(message.wParam));
        return;
    }
    for (const Entry& entry : m_handlers) {
        // A name that could not be registered has the number 0.
        if (entry.id == message.id && entry.id != 0) return (this->*entry.handle)(message);
    }
}

bool UnitMessages::OnKey(int code) {
    if (code == sleepKey) Sleep();
    if (code == wakeKey) Wake();
    return code == sleepKey || code == wakeKey;
}

void UnitMessages::OnShow(const WindowMessage&) {
    m_dialog.ShowWindow();
}

void UnitMessages::OnHide(const WindowMessage&) {
    m_dialog.HideOrQuit();
}

void UnitMessages::OnQuit(const WindowMessage&) {
    m_dialog.Quit();
}

void UnitMessages::OnNetworkInterface(const WindowMessage& message) {
    m_session.platform.log.Trace("[OnNetworkInterface]%u", message.lParam);
    if (message.lParam != 0 || m_session.state.m_bModuleOpen) return;
    if (m_session.state.m_bWindowHidden) {
        m_session.state.m_bOpenPending = true;
        return;
    }
    m_dialog.OpenModule();
}

void UnitMessages::OnQxCall(const WindowMessage& message) {
    int inserted = 0;
    if (m_session.platform.driver.Get3GSimStatus(inserted) && inserted == 0) {
        if (!m_session.state.m_externalClient) m_session.screens.Warn(WarnCode::NoSim);
        return;
    }
    if (message.wParam < numberNames.size())
        m_dialog.Calls().Redial(m_session.settings.ReadPhoneNumber(numberNames[message.wParam]));
}

void UnitMessages::OnLanguageChange(const WindowMessage&) {
    Language& language = m_session.platform.language;
    const std::string name = m_session.settings.ReadLanguage().value_or(language.GetLanguage());
    if (!language.Change(name)) m_session.platform.log.Trace("[unit]--no texts in %s", name.c_str());
    m_session.screens.ReloadTexts();
}

void UnitMessages::OnNeedCloseUsbHost(const WindowMessage&) {
    m_dialog.CloseModule();
}

void UnitMessages::Sleep() {
    if (m_session.settings.ReadOpenFlag() != 1) return;
    m_reopen = true;
    m_dialog.CloseModule();
}

void UnitMessages::Wake() {
    if (!m_reopen) return;
    m_reopen = false;
    m_dialog.OpenModule();
}

}  // namespace varkel
