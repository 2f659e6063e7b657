#include "ui/screens/contact_dlg.h"

#include <utility>

#include "ui/screens/edit_contact_dlg.h"
#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/list_box.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {

namespace {

constexpr int nameId = 1001;
constexpr int emptyId = 1002;
constexpr int listId = 1030;
constexpr int callId = 1022;
constexpr int messageId = 1061;
constexpr int editId = 1062;
constexpr int deleteId = 1063;
constexpr int pickId = 1064;
constexpr int exitId = 1075;

constexpr Rect listRect{16, 124, 580, 344};

constexpr TextSpec texts[] = {
    {1000, {14, 0, 700, 50}, "IDS_ADDRESSLISTMODE", TextRole::Title},
    {nameId, {32, 64, 548, 56}, "", TextRole::CallerName},
    {emptyId, listRect, "IDS_NONUM", TextRole::Body,
     TextFormat::Center | TextFormat::VCenter | TextFormat::SingleLine},
};
constexpr ListSpec lists[] = {{listId, listRect, 86}};

// Four of them, so that they stand without gaps.
constexpr ButtonSpec Action(int place, int id, std::string_view picture, DisabledPicture disabled,
                            std::string_view caption) {
    return form::ActionAt(58 + place * 104, id, picture, disabled, caption);
}
constexpr ButtonSpec buttons[] = {
    Action(0, callId, "Key", DisabledPicture::Disable, "IDS_CALL"),
    Action(0, pickId, "ItemSelect", DisabledPicture::Dis, "IDS_USE"),
    Action(1, messageId, "BuildMsm", DisabledPicture::Dis, "IDS_MESSAGE"),
    Action(2, editId, "ItemEdit", DisabledPicture::Dis, "IDS_EDIT"),
    Action(3, deleteId, "Delete", DisabledPicture::Disable, "IDS_DELETE"),
    form::Exit(exitId),
};
constexpr DialogSpec spec{
    .directory = form::directory,
    .background = form::background,
    .texts = texts,
    .buttons = buttons,
    .lists = lists,
    .escapeClicks = exitId,
};

constexpr std::string_view labels[] = {"IDS_NUMBER_MOBILE", "IDS_NUMBER_HOME", "IDS_NUMBER_WORK",
                                       "IDS_NUMBER_OTHER"};

}  // namespace

CContactDlg::CContactDlg(ScreenContext& context, PhoneEntry entry, PhoneBookMode mode,
                         WriteMessage writeMessage)
    : Dialog(context.desktop, spec),
      m_context(context),
      m_entry(std::move(entry)),
      m_mode(mode),
      m_writeMessage(std::move(writeMessage)),
      m_wait(context.desktop) {
    for (std::size_t i = 0; i < m_entry.text.numbers.size(); ++i) {
        if (!m_entry.text.numbers[i].empty()) m_rows.push_back(i);
    }
    OnClick(callId, [this] { UseNumber(); });
    OnClick(pickId, [this] { UseNumber(); });
    OnClick(messageId, [this] { Message(); });
    OnClick(editId, [this] { Edit(); });
    OnClick(deleteId, [this] { Delete(); });
    OnClick(exitId, [this] { EndDialog(DialogResult::Cancel); });
}

void CContactDlg::OnInitDialog() {
    const bool onSim = m_entry.book == PhoneBookKind::Sim;
    Get<StaticText>(nameId).SetWindowText(onSim ? m_entry.text.name + " (SIM)" : m_entry.text.name);
    Get<StaticText>(emptyId).ShowWindow(m_rows.empty());

    auto& list = Get<ListBox>(listId);
    list.SetModel({[this] { return static_cast<int>(m_rows.size()); },
                   [this, onSim](int row) {
                       const std::size_t number = m_rows[static_cast<std::size_t>(row)];
                       return ListRow{.text = m_entry.text.numbers[number],
                                      .detail = LoadText(onSim ? "IDS_NUMBER" : labels[number])};
                   }});
    list.SelectRow(0);

    const bool use = m_mode == PhoneBookMode::Use;
    for (const int id : {callId, messageId, editId, deleteId})
        Get<CSkinButton>(id).ShowWindow(use);
    Get<CSkinButton>(pickId).ShowWindow(!use);
    for (const int id : {callId, pickId})
        Get<CSkinButton>(id).EnableWindow(!m_rows.empty());
    Get<CSkinButton>(messageId).EnableWindow(!m_rows.empty() && m_writeMessage != nullptr);
    SetFocus(&list);
}

bool CContactDlg::OnKey(const KeyEvent& event) {
    if (event.code != KeyCode::Return) return false;
    UseNumber();
    return true;
}

void CContactDlg::LeaveWith(Outcome outcome) {
    m_outcome = outcome;
    EndDialog(DialogResult::Ok);
}

std::string CContactDlg::Selected() const {
    const int row = Get<ListBox>(listId).SelectedRow();
    return row < 0 ? std::string() : m_entry.text.numbers[m_rows[static_cast<std::size_t>(row)]];
}

void CContactDlg::UseNumber() {
    m_number = Selected();
    if (m_number.empty() || m_wait.Pending()) return;
    if (m_mode == PhoneBookMode::PickNumber) {
        LeaveWith(Outcome::Picked);
    } else if (m_context.session.Calls().Dial(m_number)) {
        LeaveWith(Outcome::Dialled);
    }
}

void CContactDlg::Message() {
    if (!m_wait.Pending()) m_writeMessage(Selected());
}

void CContactDlg::Edit() {
    if (m_wait.Pending()) return;
    if (CEditContactDlg(m_context, m_entry).DoModal() == DialogResult::Ok) LeaveWith(Outcome::Changed);
}

void CContactDlg::Delete() {
    if (m_wait.Pending()) return;
    const DialogResult answer = Warn(GetDesktop(), WarnCode::DeleteRecordPrompt, WarnButtonMode::OkCancel);
    if (answer != DialogResult::Ok) return;
    m_context.session.Phones().Delete(
        m_entry, m_wait.Begin(WarnCode::DeleteFail, [this] { LeaveWith(Outcome::Changed); }));
}

}  // namespace varkel
