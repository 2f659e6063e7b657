#include "ui/screens/dial_pad.h"

#include "modem/at_values.h"
#include "ui/toolkit/key_pad.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr int displayId = 1006;
constexpr int nameId = 1100;
constexpr int backspaceId = 1010;
constexpr int dialId = 1022;
constexpr int returnId = 1075;

// No longer number can be dialled.
constexpr std::size_t mostCharacters = DialString::longest;
constexpr int smallestDigits = 32;  // pixels
constexpr std::string_view ellipsis = "\u2026";

constexpr ButtonSpec At(int column, int row, int id, std::string_view picture, std::string_view caption,
                        DisabledPicture disabled = DisabledPicture::Sel) {
    constexpr int lefts[] = {85, 244, 403, 562};
    constexpr int tops[] = {80, 169, 258, 347};
    return {.id = id,
            .rect = {lefts[column], tops[row], 155, 85},
            .picture = picture,
            .disabled = disabled,
            .caption = caption,
            .role = TextRole::Key};
}

constexpr ButtonSpec Key(int column, int row, int id, std::string_view caption) {
    return At(column, row, id, "EmptyButton", caption);
}

constexpr ButtonSpec buttons[] = {
    Key(0, 0, 1007, "1"), Key(1, 0, 1008, "2"),
    Key(2, 0, 1009, "3"), At(3, 0, backspaceId, "Backspace", ""),
    Key(0, 1, 1011, "4"), Key(1, 1, 1012, "5"),
    Key(2, 1, 1013, "6"), At(3, 1, returnId, "DialReturn", ""),
    Key(0, 2, 1015, "7"), Key(1, 2, 1016, "8"),
    Key(2, 2, 1017, "9"), Key(3, 2, 1018, "+"),
    Key(0, 3, 1019, "*"), Key(1, 3, 1020, "0"),
    Key(2, 3, 1021, "#"), At(3, 3, dialId, "Dial", "", DisabledPicture::Disable),
};

constexpr auto centred = TextFormat::Center | TextFormat::VCenter | TextFormat::SingleLine;
constexpr TextSpec texts[] = {
    {displayId, {119, 15, 530, 55}, "", TextRole::Digits, centred},
    {nameId, {85, 438, 632, 36}, "", TextRole::Secondary, centred},
};

constexpr DialogSpec spec{
    .directory = "\\ResidentFlash2\\bin\\Gprs\\Keyboard\\",
    .background = "Back",
    .texts = texts,
    .buttons = buttons,
    .returnClicks = dialId,
    .escapeClicks = returnId,
    .animated = true,
};

// What is typed last stays in sight: a text that is too long loses its beginning.
std::string FittingEnd(Graphics& graphics, std::string_view text, const LogFont& font, int width) {
    std::string end(text);
    for (std::size_t cut = 1; cut < text.size() && graphics.MeasureText(end, font).width > width; ++cut)
        end = std::string(ellipsis).append(text.substr(cut));
    return end;
}

}  // namespace

CDialPad::CDialPad(ScreenContext& context) : Dialog(context.desktop, spec), m_session(context.session) {
    for (const ButtonSpec& button : buttons) {
        if (IsPadKey(button)) OnClick(button.id, [this, key = button.caption] { Press(key); });
    }
    OnClick(backspaceId, [this] { Backspace(); });
    OnClick(dialId, [this] { Dial(); });
    OnClick(returnId, [this] { EndDialog(DialogResult::Cancel); });
}

void CDialPad::OnInitDialog() {
    m_number.clear();
    OnSessionChanged();
}

void CDialPad::OnSessionChanged() {
    if (!IsOpen()) return;
    Get<CSkinButton>(dialId).EnableWindow(!InCall());
    ShowName();
}

void CDialPad::Press(std::string_view key) {
    if (InCall()) {
        m_session.Calls().SendTone(key);
        // Only the last ones can be seen, and none of them is dialled.
        if (m_number.size() == mostCharacters) m_number.erase(0, 1);
    }
    if (m_number.size() < mostCharacters) m_number += key;
    ShowNumber();
}

void CDialPad::Backspace() {
    if (m_number.empty()) return;
    m_number.pop_back();
    ShowNumber();
}

void CDialPad::Dial() {
    if (!m_session.Calls().Dial(m_number)) return;
    m_number.clear();
    ShowNumber();
    EndDialog(DialogResult::Ok);
}

void CDialPad::ShowNumber() {
    auto& display = Get<StaticText>(displayId);
    display.SetWindowText(
        FittingEnd(GetDesktop().GetGraphics(), m_number, HeiFont(smallestDigits), display.Place().width));
    ShowName();
}

void CDialPad::ShowName() {
    std::string text;
    if (InCall()) {
        text = LoadText("IDS_IN_CALL") + "  " + m_session.Calls().OtherParty();
    } else if (!m_number.empty()) {
        const std::string name = m_session.Phones().NameOf(m_number);
        if (name != m_number) text = name;
    }
    Get<StaticText>(nameId).SetWindowText(text);
}

bool CDialPad::OnKey(const KeyEvent& event) {
    if (event.code == KeyCode::Back) {
        Click(backspaceId);
        return true;
    }
    for (const char character : event.text)
        Click(PadKeyOf(buttons, character));
    return event.code == KeyCode::None;
}

}  // namespace varkel
