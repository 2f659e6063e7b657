#include "ui/screens/edit_contact_dlg.h"

#include <algorithm>
#include <utility>

#include "platform/text.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/static_text.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {

namespace {

constexpr int titleId = 1000;
constexpr int nameId = 1040;  // the numbers follow
constexpr int labelId = 1050;
constexpr int saveId = 1060;
constexpr int exitId = 1075;
constexpr int rows = 5;

constexpr Rect FieldRect(int row) {
    return {184, 70 + row * 80, 408, 72};
}
constexpr TextSpec Label(int row, std::string_view caption) {
    return {.id = labelId + row,
            .rect = {20, FieldRect(row).y + 14, 156, 44},
            .caption = caption,
            .role = TextRole::Secondary,
            .format = TextFormat::Left | TextFormat::VCenter | TextFormat::SingleLine,
            .ground = TextGround::Static};
}
constexpr EditSpec Field(int row, EditInput input) {
    return {
        .id = nameId + row, .rect = FieldRect(row), .input = input, .maxUnits = PhoneBookRecord::longestText};
}

constexpr TextSpec texts[] = {
    {titleId, {14, 0, 700, 50}, "", TextRole::Title},
    Label(0, "IDS_NAME"),
    Label(1, "IDS_NUMBER_MOBILE"),
    Label(2, "IDS_NUMBER_HOME"),
    Label(3, "IDS_NUMBER_WORK"),
    Label(4, "IDS_NUMBER_OTHER"),
};
constexpr EditSpec edits[] = {
    Field(0, EditInput::Text),        Field(1, EditInput::PhoneNumber), Field(2, EditInput::PhoneNumber),
    Field(3, EditInput::PhoneNumber), Field(4, EditInput::PhoneNumber),
};
constexpr ButtonSpec buttons[] = {
    form::Save(saveId),
    form::Exit(exitId),
};
constexpr DialogSpec spec{
    .directory = form::directory,
    .background = form::background,
    .texts = texts,
    .buttons = buttons,
    .edits = edits,
    .returnClicks = saveId,
    .escapeClicks = exitId,
};

bool SameTexts(const PhoneText& a, const PhoneText& b) {
    return a.name == b.name && a.numbers == b.numbers;
}

}  // namespace

CEditContactDlg::CEditContactDlg(ScreenContext& context, PhoneBookKind book, PhoneText text)
    : Dialog(context.desktop, spec),
      m_phones(context.session.Phones()),
      m_book(book),
      m_text(std::move(text)),
      m_wait(context.desktop) {
    OnClick(saveId, [this] { Save(); });
    OnClick(exitId, [this] { Leave(); });
}

CEditContactDlg::CEditContactDlg(ScreenContext& context, PhoneText text)
    : CEditContactDlg(context, context.desktop.GetSettings().ReadCardSaveTo(), std::move(text)) {}

CEditContactDlg::CEditContactDlg(ScreenContext& context, PhoneEntry seen)
    : CEditContactDlg(context, seen.book, seen.text) {
    m_seen = std::move(seen);
}

void CEditContactDlg::OnInitDialog() {
    const bool onSim = m_book == PhoneBookKind::Sim;
    std::string title = LoadText(m_seen ? "IDS_EDIT_CONTACT" : "IDS_NEW_CONTACT");
    if (onSim) title += " (SIM)";
    Get<StaticText>(titleId).SetWindowText(title);
    if (onSim) Get<StaticText>(labelId + 1).SetWindowText(LoadText("IDS_NUMBER"));
    for (int row = 0; row < rows; ++row) {
        const bool shown = !onSim || row < 2;
        Get<StaticText>(labelId + row).ShowWindow(shown);
        Get<EditField>(nameId + row).ShowWindow(shown);
        const std::size_t number = static_cast<std::size_t>(row) - 1;
        Get<EditField>(nameId + row).SetWindowText(row == 0 ? m_text.name : m_text.numbers[number]);
    }
    // What was too long for a field counts as it is shown, so that leaving asks for nothing.
    m_text = Written();
}

PhoneText CEditContactDlg::Written() const {
    PhoneText text;
    text.name = Trimmed(Get<EditField>(nameId).GetWindowText());
    int id = nameId;
    for (std::string& number : text.numbers)
        number = Get<EditField>(++id).GetWindowText();
    return text;
}

bool CEditContactDlg::NameIsTaken(const std::string& name) const {
    if (name.empty() || (m_seen && m_seen->text.name == name)) return false;
    const PhoneBooks book = m_book == PhoneBookKind::Sim ? PhoneBooks::Sim : PhoneBooks::Local;
    const std::vector<PhoneEntry> found = m_phones.Find(book, name);
    return std::any_of(found.begin(), found.end(),
                       [&name](const PhoneEntry& entry) { return entry.text.name == name; });
}

void CEditContactDlg::Save() {
    if (m_wait.Pending()) return;
    const PhoneText text = Written();
    if (std::all_of(text.numbers.begin(), text.numbers.end(), [](const auto& it) { return it.empty(); })) {
        Warn(GetDesktop(), WarnCode::NoNumber);
        return;
    }
    if (NameIsTaken(text.name) &&
        Warn(GetDesktop(), WarnCode::PhonebookNameExists, WarnButtonMode::OkCancel) != DialogResult::Ok) {
        return;
    }
    const auto done = m_wait.Begin(WarnCode::AddFail, [this] { EndDialog(DialogResult::Ok); });
    if (m_seen) {
        m_phones.Change(*m_seen, text, done);
    } else {
        m_phones.Add(m_book, text, done);
    }
}

void CEditContactDlg::Leave() {
    const bool ask = !m_wait.Pending() && !SameTexts(Written(), m_text);
    if (ask && Warn(GetDesktop(), WarnCode::WritePrompt, WarnButtonMode::OkCancel) == DialogResult::Ok) {
        Save();
        return;
    }
    EndDialog(DialogResult::Cancel);
}

}  // namespace varkel
