#include "ui/screens/call_records_dlg.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"
#include "ui/screens/edit_contact_dlg.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {

namespace {

constexpr std::string_view captions[] = {"IDS_NOACCEPTPHONE", "IDS_ACCEPTEDPHONE", "IDS_DAILEDPHONE"};
constexpr CallKind kinds[] = {CallKind::Missed, CallKind::Received, CallKind::Dialled};
constexpr std::string_view marks[] = {"RowMissed", "RowReceived", "RowDialled"};
constexpr std::string_view selectedMarks[] = {"RowMissedSel", "RowReceivedSel", "RowDialledSel"};

// One of each for a list.
constexpr int radioIds[] = {1027, 1028, 1029};
constexpr int deleteIds[] = {1079, 1033, 1034};

constexpr TextSpec texts[] = {ListScreen::Title("IDS_CALLNOTEMODE"), ListScreen::Counter(),
                              ListScreen::Empty("IDS_NO_CALLS")};
constexpr RadioSpec radios[] = {ListScreen::Tabs(captions)};
constexpr ListSpec lists[] = {ListScreen::List()};
constexpr PlaceSpec places[] = {
    ListScreen::BarPlace(),
    {radioIds[0], {8, 58, 196, 66}},
    {radioIds[1], {208, 58, 196, 66}},
    {radioIds[2], {408, 58, 196, 66}},
};

constexpr ButtonSpec DeleteButton(int id) {
    return ListScreen::Action(2, id, "Delete", DisabledPicture::Disable, "IDS_DELETE");
}
constexpr ButtonSpec buttons[] = {
    ListScreen::Action(0, CCallRecordsDlg::callId, "Key", DisabledPicture::Disable, "IDS_CALL"),
    ListScreen::Action(1, CCallRecordsDlg::addId, "ItemAdd", DisabledPicture::Dis, "IDS_ADD"),
    DeleteButton(deleteIds[0]),
    DeleteButton(deleteIds[1]),
    DeleteButton(deleteIds[2]),
    ListScreen::PageUp(),
    ListScreen::PageDown(),
    ListScreen::Exit(),
};
constexpr DialogSpec spec{
    .directory = ListScreen::directory,
    .background = ListScreen::background,
    .texts = texts,
    .buttons = buttons,
    .lists = lists,
    .radios = radios,
    .places = places,
    .returnClicks = CCallRecordsDlg::callId,
    .escapeClicks = ListScreen::exitId,
    .animated = true,
};

LastTap lastTap;

bool SameRecords(const CallList::List& a, const CallList::List& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), SameBytes());
}

}  // namespace

CCallRecordsDlg::CCallRecordsDlg(ScreenContext& context)
    : ListScreen(context, spec, lastTap), m_self(std::make_shared<CCallRecordsDlg*>(this)) {
    for (int tab = 0; tab < 3; ++tab) {
        OnClick(radioIds[tab], [this, tab] { SelectTab(tab); });
        OnClick(deleteIds[tab], [this] { Delete(); });
    }
    OnClick(callId, [this] { CallBack(SelectedRow()); });
    OnClick(addId, [this] { AddToPhoneBook(); });
}

CCallRecordsDlg::~CCallRecordsDlg() = default;

CallKind CCallRecordsDlg::Kind() const {
    return kinds[Tab()];
}

const CallRecord* CCallRecordsDlg::RecordAt(int row) const {
    return row < 0 ? nullptr : AtRow(m_records, static_cast<std::size_t>(row));
}

void CCallRecordsDlg::Load(int) {
    m_records = m_context.session.Calls().Lists().Of(Kind()).FindCallRecord();
    m_newRows = 0;
    TakeNews();
}

void CCallRecordsDlg::TakeNews() {
    if (Kind() != CallKind::Missed) return;
    m_newRows += m_context.session.Calls().NewMissed();
    m_context.session.Calls().ForgetNewMissed();
}

std::optional<int> CCallRecordsDlg::LoadAgain(int row) {
    CallList::List records = m_context.session.Calls().Lists().Of(Kind()).FindCallRecord();
    if (SameRecords(records, m_records)) {
        TakeNews();
        return std::nullopt;
    }
    int now = row;
    if (const CallRecord* const selected = RecordAt(row)) {
        const auto position = static_cast<std::size_t>(selected - m_records.data());
        if (const CallRecord* const found = FindSeen(records, *selected, position))
            now = static_cast<int>(records.data() + records.size() - 1 - found);
    }
    m_records = std::move(records);
    TakeNews();
    return std::min(now, RowCount() - 1);
}

ListRow CCallRecordsDlg::MakeRow(int row) {
    const CallRecord& record = *RecordAt(row);
    const CodePage& page = m_context.platform.codePage;
    const std::string name = Utf8FromNarrow(page, record.name.View());
    const std::string number = Utf8FromNarrow(page, record.number.View());
    const std::string date = Utf8FromNarrow(page, record.date.View());
    const bool named = !name.empty() && name != number;
    const auto tab = static_cast<std::size_t>(Tab());
    // The seconds are of no use to anybody.
    return {.text = named ? name : number,
            .detail = named ? number + "   " + date : date,
            .note = Utf8FromNarrow(page, record.time.View().substr(0, 5)),
            .picture = LoadPicture(marks[tab]),
            .selectedPicture = LoadPicture(selectedMarks[tab]),
            .emphasised = row < m_newRows};
}

void CCallRecordsDlg::OnRowsShown() {
    for (int tab = 0; tab < 3; ++tab) {
        auto& button = Get<CSkinButton>(deleteIds[tab]);
        button.ShowWindow(tab == Tab());
        button.EnableWindow(RowCount() > 0);
    }
    for (const int id : {callId, addId})
        Get<CSkinButton>(id).EnableWindow(RowCount() > 0);
}

void CCallRecordsDlg::CallBack(int row) {
    const CallRecord* const record = RecordAt(row);
    if (record && m_context.session.Calls().CallBack(*record)) EndDialog(DialogResult::Ok);
}

// A number that has an entry already opens that one.
void CCallRecordsDlg::AddToPhoneBook() {
    const CallRecord* const record = RecordAt(SelectedRow());
    if (!record) return;
    const CodePage& page = m_context.platform.codePage;
    const std::string number = Utf8FromNarrow(page, record->number.View());
    const std::string name = Utf8FromNarrow(page, record->name.View());
    const auto has = [&number](const PhoneEntry& entry) {
        const auto& numbers = entry.text.numbers;
        return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
    };
    const std::vector<PhoneEntry> entries = m_context.session.Phones().Find(PhoneBooks::Both, number);
    const auto known = std::find_if(entries.begin(), entries.end(), has);
    if (known != entries.end()) {
        CEditContactDlg(m_context, *known).DoModal();
        return;
    }
    CEditContactDlg(m_context, PhoneText{name == number ? "" : name, {number}}).DoModal();
}

void CCallRecordsDlg::Delete() {
    const int row = SelectedRow();
    if (!RecordAt(row) || m_deleting) return;
    // What comes in while the question stands was not meant.
    CallList::List shown = m_records;
    CWarnDlg question(GetDesktop(), WarnCode::DeletePrompt, WarnButtonMode::OkCancel, false, true);
    if (question.DoModal() != DialogResult::Ok) return;
    m_deleting = true;
    const auto done = [self = std::weak_ptr(m_self), tab = Tab(), row](StoreResult result) {
        if (const auto there = self.lock()) (*there)->OnDeleted(tab, row, result);
    };
    CallControl& calls = m_context.session.Calls();
    if (question.GetDeleteChoice() == DeleteChoice::All) {
        calls.DeleteRecords(Kind(), std::move(shown), done);
    } else {
        calls.DeleteRecord(Kind(), std::move(shown), static_cast<std::size_t>(row), done);
    }
}

void CCallRecordsDlg::OnDeleted(int tab, int row, StoreResult result) {
    m_deleting = false;
    if (!IsOpen()) return;
    if (tab == Tab() && result == StoreResult::Done) {
        if (row < m_newRows) --m_newRows;
        LoadAgain(row);
        ShowRows(std::max(0, row - 1));
    } else {
        Refresh();
    }
    // A record that is gone already is what was wanted.
    const bool failed = result != StoreResult::Done && result != StoreResult::NotFound;
    if (failed) Warn(GetDesktop(), WarnCode::DeleteFail);
}

}  // namespace varkel
