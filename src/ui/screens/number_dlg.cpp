#include "ui/screens/number_dlg.h"

#include <array>
#include <utility>

#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/key_pad.h"
#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr int titleId = 1100;
constexpr int labelIds[] = {1102, 1103};
constexpr int fieldIds[] = {1104, 1105};
constexpr int messageId = 1106;
constexpr int backspaceId = 1071;
constexpr int returnId = 1072;

constexpr ColorRef fieldText = 0xFFFFFF;
constexpr ColorRef fieldGround = 0x333333;

constexpr auto oneLine = TextFormat::Left | TextFormat::VCenter | TextFormat::SingleLine;
constexpr TextSpec texts[] = {
    {titleId, {14, 0, 772, 50}, "", TextRole::Title, oneLine},
    {labelIds[0], {24, 66, 354, 40}, "", TextRole::Body, oneLine, TextGround::Static},
    {labelIds[1], {24, 198, 354, 40}, "", TextRole::Body, oneLine, TextGround::Static},
    {messageId, {24, 156, 354, 198}, "", TextRole::Secondary, TextFormat::Left | TextFormat::WordBreak},
};

constexpr EditSpec Field(int id, int top) {
    return {.id = id,
            .rect = {24, top, 354, 72},
            .input = EditInput::PhoneNumber,
            .softKeyboard = false,
            .height = 40};
}
constexpr EditSpec edits[] = {Field(fieldIds[0], 108), Field(fieldIds[1], 240)};
// Of the first field when it has no label.
constexpr Rect unlabelledField{24, 74, 354, 72};

constexpr ButtonSpec Key(int column, int row, int id, std::string_view caption) {
    constexpr int lefts[] = {402, 534, 666};
    constexpr int tops[] = {58, 164, 270, 376};
    return {.id = id,
            .rect = {lefts[column], tops[row], 125, 98},
            .picture = "Empty",
            .caption = caption,
            .role = TextRole::Key};
}

constexpr ButtonSpec buttons[] = {
    Key(0, 0, 1059, "1"),
    Key(1, 0, 1033, "2"),
    Key(2, 0, 1034, "3"),
    Key(0, 1, 1060, "4"),
    Key(1, 1, 1061, "5"),
    Key(2, 1, 1064, "6"),
    Key(0, 2, 1065, "7"),
    Key(1, 2, 1066, "8"),
    Key(2, 2, 1067, "9"),
    Key(0, 3, 1069, "*"),
    Key(1, 3, 1068, "0"),
    Key(2, 3, 1070, "#"),
    {.id = returnId, .rect = {8, 376, 116, 98}, .picture = "NumberReturn"},
    {.id = backspaceId, .rect = {143, 376, 116, 98}, .picture = "NumberClean"},
    {.id = idOk, .rect = {278, 376, 116, 98}, .picture = "Confirm"},
};

constexpr DialogSpec spec{
    .directory = "\\ResidentFlash2\\bin\\Gprs\\Ussd\\",
    .background = "NumberBack",
    .texts = texts,
    .buttons = buttons,
    .edits = edits,
    .escapeClicks = returnId,
};

}  // namespace

CNumberDlg::CNumberDlg(ScreenContext& context, CodeRequest request, NumberMode mode, std::string message)
    : Dialog(context.desktop, spec),
      m_request(std::move(request)),
      m_mode(mode),
      m_message(std::move(message)) {
    for (const ButtonSpec& button : buttons) {
        if (IsPadKey(button)) OnClick(button.id, [this, key = button.caption] { Append(key); });
    }
    OnClick(backspaceId, [this] { Backspace(); });
    OnClick(returnId, [this] { EndDialog(DialogResult::Cancel); });
    OnClick(idOk, [this] { OnOk(); });
}

void CNumberDlg::OnInitDialog() {
    const std::string_view given = m_request.title.empty() ? "IDS_INPUT" : std::string_view(m_request.title);
    Get<StaticText>(titleId).SetWindowText(
        LoadText(m_mode == NumberMode::UssdReply ? "IDS_USSD_CALL" : given));
    const std::string* const labels[] = {&m_request.firstLabel, &m_request.secondLabel};
    for (std::size_t i = 0; i < std::size(labels); ++i) {
        auto& label = Get<StaticText>(labelIds[i]);
        label.SetWindowText(LoadText(*labels[i]));
        label.ShowWindow(!labels[i]->empty());
        Get<EditField>(fieldIds[i]).SetColors(fieldText, fieldGround);
    }
    auto& first = Get<EditField>(fieldIds[0]);
    if (m_request.firstLabel.empty()) first.MoveWindow(unlabelledField);
    Get<EditField>(fieldIds[1]).ShowWindow(!m_request.secondLabel.empty());
    Get<StaticText>(messageId).SetWindowText(m_message);
    m_entry = {};
    SetFocus(&first);
}

void CNumberDlg::OnDestroy() {
    m_warning.reset();
}

void CNumberDlg::OnFocusChanged(int id) {
    for (int field = 0; field < 2; ++field) {
        if (id == fieldIds[field]) m_activeField = field;
    }
}

void CNumberDlg::Append(std::string_view character) {
    auto& field = Get<EditField>(fieldIds[m_activeField]);
    field.SetWindowText(field.GetWindowText() + std::string(character));
}

// Of the first field, whichever is active.
void CNumberDlg::Backspace() {
    auto& first = Get<EditField>(fieldIds[0]);
    std::string text = first.GetWindowText();
    if (text.empty()) return;
    text.pop_back();
    first.SetWindowText(text);
}

void CNumberDlg::OnOk() {
    CodeEntry entry{Get<EditField>(fieldIds[0]).GetWindowText(), Get<EditField>(fieldIds[1]).GetWindowText()};
    const auto fault = m_request.check ? m_request.check(entry.first, entry.second) : std::nullopt;
    if (fault) {
        // The second field has no key that corrects it, so it begins anew.
        Get<EditField>(fieldIds[1]).SetWindowText("");
        // Not modal, so that whoever closes this dialog need not wait for the user.
        m_warning = std::make_unique<CWarnDlg>(GetDesktop(), *fault, WarnButtonMode::Ok);
        m_warning->Show([this](DialogResult) { m_warning.reset(); });
        return;
    }
    m_entry = std::move(entry);
    EndDialog(DialogResult::Ok);
}

// What is typed while no field has the keys goes to the one that had them last.
bool CNumberDlg::OnKey(const KeyEvent& event) {
    for (const char character : event.text)
        Click(PadKeyOf(buttons, character));
    return event.code == KeyCode::None;
}

}  // namespace varkel
