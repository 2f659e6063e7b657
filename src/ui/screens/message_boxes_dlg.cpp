#include "ui/screens/message_boxes_dlg.h"

#include <algorithm>
#include <utility>

#include "ui/screens/message_text.h"
#include "ui/screens/read_message_dlg.h"
#include "ui/screens/write_message_dlg.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"
#include "ui/toolkit/text_lines.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {

namespace {

constexpr int inboxId = 1009;
constexpr int outboxId = 1011;
constexpr int newId = 1012;
constexpr int openId = 1013;
constexpr int deleteId = 1014;

constexpr std::string_view tabs[] = {"IDS_INBOX", "IDS_OUTBOX", "IDS_DRAFTS"};
constexpr RadioSpec radios[] = {ListScreen::Tabs(tabs)};
constexpr TextSpec texts[] = {ListScreen::Title("IDS_NOTEMODE"), ListScreen::Counter(),
                              ListScreen::Empty("IDS_NO_MESSAGES")};
constexpr ButtonSpec buttons[] = {
    ListScreen::Action(0, openId, "MsmOpen", DisabledPicture::Dis, "IDS_OPEN"),
    ListScreen::Action(1, newId, "BuildMsm", DisabledPicture::Dis, "IDS_NEW"),
    ListScreen::Action(2, deleteId, "DelMsm", DisabledPicture::Dis, "IDS_DELETE"),
    ListScreen::PageUp(),
    ListScreen::PageDown(),
    ListScreen::Exit(),
};
constexpr ListSpec lists[] = {ListScreen::List()};
// The first two tabs have ids of their own as well.
constexpr PlaceSpec places[] = {
    ListScreen::BarPlace(), {inboxId, {8, 58, 196, 66}}, {outboxId, {208, 58, 196, 66}}};

constexpr DialogSpec spec{
    .directory = ListScreen::directory,
    .background = ListScreen::background,
    .texts = texts,
    .buttons = buttons,
    .lists = lists,
    .radios = radios,
    .places = places,
    .returnClicks = openId,
    .escapeClicks = ListScreen::exitId,
    .animated = true,
};

LastTap g_lastTap;

}  // namespace

CMessageBoxesDlg::CMessageBoxesDlg(ScreenContext& context) : ListScreen(context, spec, g_lastTap) {
    OnClick(inboxId, [this] { SelectTab(static_cast<int>(SmsBox::Inbox)); });
    OnClick(outboxId, [this] { SelectTab(static_cast<int>(SmsBox::Outbox)); });
    OnClick(newId, [this] { Write(); });
    OnClick(openId, [this] { Open(); });
    OnClick(deleteId, [this] { Delete(); });
}

void CMessageBoxesDlg::OnInitDialog() {
    m_names.clear();
    ListScreen::OnInitDialog();
    ShowTitle();
}

void CMessageBoxesDlg::SetNewCount(int count) {
    m_newCount = count;
    if (IsOpen()) ShowTitle();
}

void CMessageBoxesDlg::ShowTitle() {
    Get<StaticText>(titleId).SetWindowText(
        m_newCount < 2 ? LoadText("IDS_NOTEMODE") : WithNumber(LoadText("IDS_NOTEPROMPT1"), m_newCount));
}

MessageBox::List CMessageBoxesDlg::Read() const {
    return m_context.session.Messages().Boxes().Of(Box()).FindSmsRecord();
}

void CMessageBoxesDlg::Load(int) {
    m_list = Read();
}

std::optional<int> CMessageBoxesDlg::LoadAgain(int row) {
    MessageBox::List list = Read();
    const auto same = [](const SmsRecord& a, const SmsRecord& b) { return SameBytes{}(a, b); };
    if (std::equal(list.begin(), list.end(), m_list.begin(), m_list.end(), same)) return std::nullopt;
    const MessageBox::List shown = std::exchange(m_list, std::move(list));
    return RowNow(m_list, std::span<const SmsRecord>(shown), row, IsSameMessage);
}

void CMessageBoxesDlg::OnRowsShown() {
    for (const int id : {openId, deleteId})
        Get<CSkinButton>(id).EnableWindow(!m_list.empty());
}

ListRow CMessageBoxesDlg::MakeRow(int row) {
    const SmsRecord& record = *AtRow(m_list, static_cast<std::size_t>(row));
    const CodePage& page = m_context.platform.codePage;
    const bool unread = Box() == SmsBox::Inbox && record.Index == SmsState::Unread;
    const char* const picture = Box() == SmsBox::Outbox   ? "RowSent"
                                : Box() == SmsBox::Drafts ? "RowDraft"
                                : unread                  ? "RowUnread"
                                                          : "RowRead";
    return {.text = NameOf(ShownLine(page, record.szPhoneNo.View())),
            .detail = ShownLine(page, record.szContent.View()),
            .note = ShownLine(page, record.szTime.View()),
            .picture = LoadPicture(picture),
            .selectedPicture = LoadPicture(std::string(picture) + "Sel"),
            .emphasised = unread};
}

std::string CMessageBoxesDlg::NameOf(const std::string& number) {
    if (number.empty()) return Box() == SmsBox::Inbox ? LoadText("IDS_UNKNOWN_CALLER") : "\u2014";
    if (m_names.size() >= mostNames) m_names.clear();
    const auto [place, isNew] = m_names.try_emplace(number);
    if (isNew) place->second = m_context.session.Phones().NameOf(number);
    return place->second;
}

void CMessageBoxesDlg::Open() {
    if (SelectedRow() >= 0) OnOpenRow(SelectedRow());
}

void CMessageBoxesDlg::OnOpenRow(int row) {
    const auto index = m_list.size() - 1 - static_cast<std::size_t>(row);
    CReadMessageDlg read(m_context, Box(), m_list[index]);
    if (Box() == SmsBox::Inbox && m_list[index].Index == SmsState::Unread) {
        m_context.session.Messages().Editing().MarkRead(m_list, static_cast<std::size_t>(row));
        m_list[index].Index = SmsState::Opened;
        ShowRows(row);
    }
    read.DoModal();
    Refresh();
}

void CMessageBoxesDlg::Delete() {
    const int row = SelectedRow();
    if (row < 0) return;
    // What the user sees when he is asked; more may come while he thinks.
    const MessageBox::List shown = m_list;
    const SmsBox box = Box();
    CWarnDlg question(GetDesktop(), WarnCode::DeletePrompt, WarnButtonMode::OkCancel, false, true);
    if (question.DoModal() != DialogResult::Ok) return;
    MessageEditing& editing = m_context.session.Messages().Editing();
    if (question.GetDeleteChoice() == DeleteChoice::All) {
        editing.DeleteShown(box, shown);
        m_list.clear();
        ShowRows(0);
        return;
    }
    editing.Delete(box, shown, static_cast<std::size_t>(row));
    const int now = RowNow(m_list, std::span<const SmsRecord>(shown), row, IsSameMessage);
    if (now < RowCount()) m_list.erase(m_list.end() - 1 - now);
    ShowRows(now);
}

void CMessageBoxesDlg::Write() {
    CWriteMessageDlg(m_context, "", "").DoModal();
    Refresh();
}

}  // namespace varkel
