#include "ui/toolkit/soft_keyboard.h"

#include <algorithm>
#include <utility>

#include "platform/text.h"
#include "ui/toolkit/edit_field.h"

namespace varkel {

namespace {

constexpr int holdTimer = 1;
constexpr Rect dockedUp{1, 1, 798, 194};
constexpr Rect dockedDown{1, 285, 798, 194};
constexpr DialogSpec spec{
    .rect = dockedDown,
    .directory = "\\ResidentFlash2\\bin\\Gprs\\Sip\\",
    .scope = DialogScope::OwnPlace,
};
constexpr std::string_view pictures[] = {"Key",       "Function", "FunctionWide", "Shift",
                                         "ShiftLock", "Space",    "Backspace",    "Done"};

constexpr auto centred = TextFormat::Center | TextFormat::VCenter | TextFormat::SingleLine;

// The pictures of the keys that have one of their own, and the labels of those that change the page.
struct FunctionKey {
    KeyAction action;
    std::string_view picture;
    std::string_view label;
};
constexpr FunctionKey functionKeys[] = {
    {KeyAction::Shift, "Shift", ""},       {KeyAction::Back, "Backspace", ""},
    {KeyAction::Done, "Done", ""},         {KeyAction::Latin, "Function", "ABC"},
    {KeyAction::National, "Function", ""}, {KeyAction::Symbols, "Function", "123"},
};

const FunctionKey* FunctionOf(KeyAction action) {
    const auto found = std::find_if(std::begin(functionKeys), std::end(functionKeys),
                                    [action](const FunctionKey& key) { return key.action == action; });
    return found == std::end(functionKeys) ? nullptr : found;
}

int IdOf(const KeyboardKey& key) {
    return key.action == KeyAction::Type ? static_cast<int>(Utf16FromUtf8(ChoiceOf(key, 0)).front())
                                         : SoftKeyboard::firstFunctionId + static_cast<int>(key.action);
}

int Covered(const Rect& dock, const Rect& field) {
    return Intersection(dock, field).height;
}

}  // namespace

SoftKeyboard::SoftKeyboard(Desktop& desktop) : Dialog(desktop, spec) {
    desktop.hooks.sipShowIM = [this](bool on, Dialog& owner) { SipShowIM(on, owner); };
}

SoftKeyboard::~SoftKeyboard() {
    GetDesktop().hooks.sipShowIM = nullptr;
}

void SoftKeyboard::SipShowIM(bool on, Dialog& owner) {
    if (!on) {
        if (m_owner != &owner) return;
        m_owner = nullptr;
        CancelPress();
        ShowWindow(false);
        owner.OnSoftKeyboard(false);
        return;
    }
    const auto* const field = dynamic_cast<const EditField*>(owner.Focus());
    if (!field) return;
    if (m_owner && m_owner != &owner) m_owner->OnSoftKeyboard(false);
    m_owner = &owner;
    m_shift = Shift::Off;
    // It may make room, which decides where the keyboard docks.
    owner.OnSoftKeyboard(true);
    const bool text = field->Spec().input == EditInput::Text;
    const std::string language = GetDesktop().Texts().GetLanguage();
    m_national = NationalPage(language);

    // At the bottom, unless the field would be seen better with the keyboard at the top.
    const bool up = Covered(dockedUp, field->Place()) < Covered(dockedDown, field->Place());
    MoveTo(up ? dockedUp : dockedDown);
    ShowPage(text ? FirstPage(language) : KeyboardPage::Symbols);
    if (IsOpen()) {
        ShowWindow(true);
        BringToTop();
    } else {
        Show();
    }
    PostToOwner(up ? "UM_UMOVESIPUP" : "UM_UMOVESIPDOWN");
    PostToOwner("UM_UMODIFYFOCUS");
}

void SoftKeyboard::PostToOwner(std::string_view name) {
    WindowMessages& windows = GetDesktop().Windows();
    windows.PostMessage(m_owner->Window(), {windows.RegisterWindowMessage(name), 0, 0});
}

void SoftKeyboard::ShowPage(KeyboardPage page) {
    m_page = page;
    CancelPress();
    PlaceKeys();
    Invalidate();
}

void SoftKeyboard::PlaceKeys() {
    m_keys.clear();
    const auto rows = RowsOf(m_page);
    const Rect inside = Place().Inset(1);
    const auto left = [&inside](int column) { return inside.x + inside.width * column / keyboardColumns; };
    const auto top = [&inside](int row) { return inside.y + inside.height * row / keyboardRows; };
    for (int row = 0; row < keyboardRows; ++row) {
        int column = 0;
        for (const KeyboardKey& key : rows[static_cast<std::size_t>(row)]) {
            const int end = column + key.columns;
            m_keys.push_back(
                {key, {left(column), top(row), left(end) - left(column), top(row + 1) - top(row)}});
            column = end;
        }
    }
}

std::vector<TouchTarget> SoftKeyboard::Targets() const {
    std::vector<TouchTarget> targets;
    for (const PlacedKey& key : m_keys)
        targets.push_back({IdOf(key.key), key.place});
    return targets;
}

Rect SoftKeyboard::PlaceOf(std::string_view character) const {
    const auto found = std::find_if(m_keys.begin(), m_keys.end(), [character](const PlacedKey& key) {
        return key.key.action == KeyAction::Type && ChoiceOf(key.key, 0) == character;
    });
    return found == m_keys.end() ? Rect{} : found->place;
}

Rect SoftKeyboard::PlaceOf(KeyAction action) const {
    const auto found = std::find_if(m_keys.begin(), m_keys.end(),
                                    [action](const PlacedKey& key) { return key.key.action == action; });
    return found == m_keys.end() ? Rect{} : found->place;
}

void SoftKeyboard::OnInitDialog() {
    for (const std::string_view picture : pictures) {
        for (const char* state : {"", "Sel"}) {
            const std::string name = std::string(picture) + state;
            m_pictures[name] = LoadPicture(name);
        }
    }
}

void SoftKeyboard::OnPaint(Canvas& canvas) {
    canvas.FillRect(Place(), GetDesktop().Colors().bar);
    for (std::size_t i = 0; i < m_keys.size(); ++i)
        DrawKey(canvas, m_keys[i], static_cast<int>(i) == m_pressed);
}

void SoftKeyboard::DrawKey(Canvas& canvas, const PlacedKey& key, bool pressed) const {
    const bool lit = pressed || (key.key.action == KeyAction::Shift && m_shift != Shift::Off);
    if (const Bitmap* const picture = PictureOf(key.key, lit)) canvas.StretchBlt(*picture, key.place);
    const Palette& palette = GetDesktop().Colors();
    const LogFont font{"SimSun & NSimSun", key.key.action == KeyAction::Type ? 36 : 26, 400};
    canvas.DrawText(LabelOf(key, pressed), key.place, centred, font,
                    lit ? palette.pressedText : palette.text);
}

const Bitmap* SoftKeyboard::PictureOf(const KeyboardKey& key, bool lit) const {
    std::string name = "Key";
    if (const FunctionKey* const function = FunctionOf(key.action)) name = function->picture;
    if (key.types == " " && key.columns > 1) name = "Space";
    if (key.action == KeyAction::Shift && m_shift == Shift::Locked) name = "ShiftLock";
    if (name == "Function" && key.columns > 1) name += "Wide";
    const auto found = m_pictures.find(lit ? name + "Sel" : name);
    return found == m_pictures.end() ? nullptr : found->second;
}

std::string SoftKeyboard::LabelOf(const PlacedKey& key, bool pressed) const {
    if (key.key.action == KeyAction::National) return m_national == KeyboardPage::Arabic ? "ابت" : "АБВ";
    if (const FunctionKey* const function = FunctionOf(key.key.action)) return std::string(function->label);
    if (key.key.types != " ") return Typed(key.key, pressed ? m_held : 0);
    return key.key.columns > 1 ? "" : "\u2423";
}

std::string SoftKeyboard::Typed(const KeyboardKey& key, int step) const {
    const std::string_view choice = ChoiceOf(key, step);
    return m_shift == Shift::Off ? std::string(choice) : UpperCase(choice);
}

int SoftKeyboard::KeyAt(Point at) const {
    const auto found = std::find_if(m_keys.begin(), m_keys.end(),
                                    [at](const PlacedKey& key) { return key.place.Contains(at); });
    return found == m_keys.end() ? -1 : static_cast<int>(found - m_keys.begin());
}

void SoftKeyboard::OnTouch(const TouchEvent& event) {
    const int key = KeyAt(event.at);
    if (event.action == TouchAction::Down) {
        Press(key);
    } else if (event.action == TouchAction::Up) {
        const int pressed = m_pressed;
        if (pressed >= 0 && key == pressed) Release(m_keys[static_cast<std::size_t>(pressed)].key);
        CancelPress();
    } else if (m_pressed != key) {
        CancelPress();
    }
}

void SoftKeyboard::CancelPress() {
    KillTimer(holdTimer);
    m_held = 0;
    if (m_pressed < 0) return;
    m_pressed = -1;
    Invalidate();
}

void SoftKeyboard::Press(int key) {
    CancelPress();
    if (key < 0 || !m_owner) return;
    m_pressed = key;
    const PlacedKey& pressed = m_keys[static_cast<std::size_t>(key)];
    Invalidate(pressed.place);
    if (pressed.key.action == KeyAction::Back) {
        SendKey({KeyCode::Back, {}});
        SetTimer(holdTimer, holdTime, [this] { HoldBackspace(); });
    } else if (ChoiceOf(pressed.key, 0) != pressed.key.types) {
        SetTimer(holdTimer, holdTime, [this] {
            ++m_held;
            Invalidate();
        });
    }
}

void SoftKeyboard::HoldBackspace() {
    SendKey({KeyCode::Back, {}});
    if (++m_held >= mostBackspaces) {
        KillTimer(holdTimer);
        return;
    }
    SetTimer(holdTimer, backspaceTime, [this] { HoldBackspace(); });
}

void SoftKeyboard::Release(const KeyboardKey& key) {
    switch (key.action) {
        case KeyAction::Type: {
            const std::string typed = Typed(key, m_held);
            if (m_shift == Shift::Once) {
                m_shift = Shift::Off;
                Invalidate();
            }
            SendKey({KeyCode::None, typed});
            break;
        }
        case KeyAction::Shift:
            m_shift = m_shift == Shift::Locked ? Shift::Off : Shift(static_cast<int>(m_shift) + 1);
            Invalidate();
            break;
        case KeyAction::Back: break;
        case KeyAction::Done:
            if (m_owner) SipShowIM(false, *m_owner);
            break;
        case KeyAction::Latin: ShowPage(KeyboardPage::Latin); break;
        case KeyAction::National: ShowPage(m_national); break;
        case KeyAction::Symbols: ShowPage(KeyboardPage::Symbols); break;
    }
}

void SoftKeyboard::SendKey(const KeyEvent& event) {
    if (m_owner) m_owner->OnKeyEvent(event);
}

}  // namespace varkel
