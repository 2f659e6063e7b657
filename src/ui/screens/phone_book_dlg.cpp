#include "ui/screens/phone_book_dlg.h"

#include <algorithm>
#include <utility>

#include "platform/text.h"
#include "ui/screens/edit_contact_dlg.h"
#include "ui/screens/phone_book_set.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/skin_scroll_bar.h"
#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr int countId = 1001;
constexpr int emptyId = 1002;
constexpr int searchId = 1040;
constexpr int listId = 1030;
constexpr int barId = 1031;
constexpr int newId = 1061;
constexpr int findId = 1062;
constexpr int setId = 1063;
constexpr int pageUpId = 1064;
constexpr int pageDownId = 1066;
constexpr int exitId = 1075;

constexpr Rect listRect{8, 130, 540, 344};

constexpr TextSpec texts[] = {
    form::ListTitle(1000, "IDS_ADDRESSLISTMODE"),
    form::Counter(countId),
    {emptyId,
     {24, 130, 508, 150},
     "",
     TextRole::Body,
     TextFormat::Center | TextFormat::VCenter | TextFormat::WordBreak},
};
constexpr EditSpec edits[] = {{.id = searchId, .rect = {8, 58, 592, 66}, .hint = "IDS_SEARCH"}};
constexpr ListSpec lists[] = {{listId, listRect, 86}};
constexpr PlaceSpec places[] = {{barId, {552, 130, 48, 344}}};

constexpr ButtonSpec Action(int place, int id, std::string_view picture, std::string_view caption) {
    return form::Action(place, id, picture, DisabledPicture::Dis, caption);
}
constexpr ButtonSpec buttons[] = {
    Action(0, newId, "ItemNew", "IDS_NEW"),
    Action(1, findId, "ItemFind", "IDS_SEARCH"),
    Action(2, setId, "ItemSet", "IDS_SHOW"),
    form::PageUp(pageUpId),
    form::PageDown(pageDownId),
    form::Exit(exitId),
};
constexpr DialogSpec spec{
    .directory = form::directory,
    .background = form::listBackground,
    .texts = texts,
    .buttons = buttons,
    .edits = edits,
    .lists = lists,
    .places = places,
    .returnClicks = noId,
    .escapeClicks = exitId,
    .animated = true,
};

std::string FirstNumber(const PhoneText& text) {
    const auto found = std::find_if(text.numbers.begin(), text.numbers.end(),
                                    [](const std::string& number) { return !number.empty(); });
    return found == text.numbers.end() ? std::string() : *found;
}

}  // namespace

CPhoneBookDlg::CPhoneBookDlg(ScreenContext& context, PhoneBookMode mode, WriteMessage writeMessage)
    : Dialog(context.desktop, spec),
      m_context(context),
      m_mode(mode),
      m_writeMessage(std::move(writeMessage)) {
    OnClick(newId, [this] { New(); });
    OnClick(findId, [this] { Get<EditField>(searchId).Edit(); });
    OnClick(setId, [this] { Set(); });
    OnClick(pageUpId, [this] { Get<ListBox>(listId).PageUp(); });
    OnClick(pageDownId, [this] { Get<ListBox>(listId).PageDown(); });
    OnClick(exitId, [this] { EndDialog(DialogResult::Cancel); });
}

std::optional<std::string> CPhoneBookDlg::PickNumber(ScreenContext& context) {
    CPhoneBookDlg phoneBook(context, PhoneBookMode::PickNumber);
    phoneBook.DoModal();
    return phoneBook.m_picked;
}

void CPhoneBookDlg::OnInitDialog() {
    m_picked.reset();
    m_bar = &AddControl<CSkinScrollBar>(SBS_VERT, barId);
    auto& list = Get<ListBox>(listId);
    list.onTap = [this](int row) { Tap(row); };
    list.onScroll = [this] { ShowPlace(); };
    Get<EditField>(searchId).onChange = [this] {
        Get<ListBox>(listId).SetTopRow(0);
        Filter();
    };
    list.SetModel(
        {[this] { return static_cast<int>(m_rows.size()); }, [this](int row) { return RowOf(row); }});
    Load();
}

void CPhoneBookDlg::OnSessionChanged() {
    if (TakesInput()) Load();
}

void CPhoneBookDlg::Load() {
    m_contacts.clear();
    for (PhoneEntry& entry : m_context.session.Phones().Find(GetDesktop().GetSettings().ReadCardDisp(), "")) {
        std::string key = SearchKey(entry.text);
        m_contacts.push_back({std::move(entry), std::move(key)});
    }
    Filter();
}

void CPhoneBookDlg::Filter() {
    const std::string sought = FoldCase(Trimmed(Get<EditField>(searchId).GetWindowText()));
    m_rows.clear();
    for (std::size_t i = 0; i < m_contacts.size(); ++i) {
        if (m_contacts[i].key.find(sought) != std::string::npos) m_rows.push_back(i);
    }
    const bool unreachable = m_context.session.State().MainScreenMode == ScreenMode::Closed &&
                             GetDesktop().GetSettings().ReadCardDisp() == PhoneBooks::Sim;
    const std::string_view none = unreachable          ? "IDS_MODULE_OFF"
                                  : m_contacts.empty() ? "IDS_NO_CONTACTS"
                                                       : "IDS_NOFINDSTR";
    Get<StaticText>(emptyId).SetWindowText(LoadText(none));
    Get<StaticText>(emptyId).ShowWindow(m_rows.empty());
    Get<StaticText>(countId).SetWindowText(m_rows.empty() ? "" : std::to_string(m_rows.size()));
    auto& list = Get<ListBox>(listId);
    list.Reload();
    m_bar->SetScrollRange(0, std::max(0, list.Count() - list.VisibleRows()), list.VisibleRows());
    ShowPlace();
}

void CPhoneBookDlg::ShowPlace() {
    auto& list = Get<ListBox>(listId);
    m_bar->SetScrollPos(list.TopRow());
    Get<CSkinButton>(pageUpId).EnableWindow(list.TopRow() > 0);
    Get<CSkinButton>(pageDownId).EnableWindow(list.TopRow() + list.VisibleRows() < list.Count());
}

void CPhoneBookDlg::OnVScroll(ScrollCode code, int position, CSkinScrollBar&) {
    auto& list = Get<ListBox>(listId);
    switch (code) {
        case ScrollCode::LineUp: list.SetTopRow(list.TopRow() - 1); break;
        case ScrollCode::LineDown: list.SetTopRow(list.TopRow() + 1); break;
        case ScrollCode::ThumbTrack: list.SetTopRow(position); break;
    }
}

ListRow CPhoneBookDlg::RowOf(int row) {
    const PhoneEntry& entry = m_contacts[m_rows[static_cast<std::size_t>(row)]].entry;
    const bool onSim = entry.book == PhoneBookKind::Sim;
    ListRow content{.text = entry.text.name, .detail = FirstNumber(entry.text)};
    if (content.text.empty()) content.text = std::exchange(content.detail, "");
    if (onSim) content.note = "(SIM)";
    content.picture = LoadPicture(onSim ? "RowSim" : "RowLocal");
    content.selectedPicture = LoadPicture(onSim ? "RowSimSel" : "RowLocalSel");
    return content;
}

bool CPhoneBookDlg::OnKey(const KeyEvent& event) {
    if (event.code != KeyCode::Return) return false;
    const int row = Get<ListBox>(listId).SelectedRow();
    if (row >= 0) Tap(row);
    return true;
}

void CPhoneBookDlg::Tap(int row) {
    const PhoneEntry entry = m_contacts[m_rows[static_cast<std::size_t>(row)]].entry;
    SetFocus(&Get<ListBox>(listId));
    const auto& numbers = entry.text.numbers;
    const auto several = std::count_if(numbers.begin(), numbers.end(),
                                       [](const std::string& number) { return !number.empty(); }) > 1;
    if (m_mode == PhoneBookMode::PickNumber && !several) {
        Pick(FirstNumber(entry.text));
        return;
    }
    CContactDlg contact(m_context, entry, m_mode, m_writeMessage);
    contact.DoModal();
    switch (contact.GetOutcome()) {
        case CContactDlg::Outcome::Dialled: EndDialog(DialogResult::Ok); break;
        case CContactDlg::Outcome::Picked: Pick(contact.Number()); break;
        case CContactDlg::Outcome::Changed:
        case CContactDlg::Outcome::None: Load(); break;
    }
}

void CPhoneBookDlg::Pick(std::string number) {
    if (number.empty()) return;
    m_picked = std::move(number);
    EndDialog(DialogResult::Ok);
}

void CPhoneBookDlg::New() {
    CEditContactDlg(m_context, PhoneText{}).DoModal();
    Load();
}

void CPhoneBookDlg::Set() {
    CPhoneBookSet(m_context).DoModal();
    Load();
}

}  // namespace varkel
