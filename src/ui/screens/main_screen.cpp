#include "ui/screens/main_screen.h"

#include <algorithm>
#include <utility>

namespace varkel {

namespace {

using Action = MainScreen::Action;
using Cell = MainScreen::Cell;

constexpr int cellWidth = 200;
constexpr int cellHeight = 215;
constexpr int firstRow = TopBar::place.height;

constexpr Rect Place(int index) {
    return {index % 4 * cellWidth, firstRow + index / 4 * cellHeight, cellWidth, cellHeight};
}

constexpr Cell idleCells[MainScreen::cellCount] = {
    {Place(0), "KeyboardSel", "IDS_DIALMODE", Action::DialPad},
    {Place(1), "ShortMessageSel", "IDS_NOTEMODE", Action::Messages},
    {Place(2), "SettingSel", "IDS_SETMODE", Action::Settings},
    {Place(3), "CallRegisterSel", "IDS_CALLNOTEMODE", Action::CallRecords},
    {Place(4), "CallBookSel", "IDS_ADDRESSLISTMODE", Action::PhoneBook},
    {Place(5), "RedailSel", "IDS_REDIALMODE", Action::Redial, "Redail"},
    {Place(6), "WinwapSel", "WinWap", Action::WinWap},
    {Place(7), "NetWorkSel", "IE", Action::Ie},
};

constexpr Cell callCells[] = {
    {Place(0), "KeyboardSel", "IDS_DTMFMODE", Action::DialPad},
    {Place(1), "HangupSel", "IDS_HANGUPMODE", Action::HangUp},
    {Place(2), "SoundSel", "IDS_SOUNDSET", Action::Settings},
    {Place(3), "ReceiverSel", "IDS_LISTEN", Action::Speaker, "Receiver"},
};
constexpr int callCellCount = 4;
constexpr int messageCell = 1;
constexpr int settingsCell = 2;
constexpr int callRecordsCell = 3;

constexpr std::string_view directory = "\\ResidentFlash2\\bin\\Gprs\\MainInterface\\";
constexpr std::string_view exitPressed = "\\ResidentFlash2\\bin\\Gprs\\Other\\ExitSel";
constexpr Rect exitPlace{730, 0, 70, 50};
constexpr Rect exitReach{731, 1, 69, 49};
constexpr Rect captionInCell{6, 136, 188, 62};
constexpr Rect badgeInCell{138, 14, 48, 34};
constexpr int badgeFont = 24;
constexpr int mostCounted = 99;
constexpr ColorRef transparent = Rgb(0xFF, 0x00, 0xFF);

constexpr Ticks second = 1000;
constexpr int secondsTimer = 1;

constexpr PlaceSpec places[] = {{MainScreen::exitControl, exitPlace}};
constexpr DialogSpec spec{.directory = directory, .places = places, .escapeClicks = MainScreen::exitControl};

std::string_view PictureOf(ScreenMode mode) {
    switch (mode) {
        case ScreenMode::Idle: return "MainInterface2";
        case ScreenMode::InCall: return "MainInterface3";
        case ScreenMode::Closed: return "MainInterface1";
    }
    return "";
}

// A finger on a seam is on no cell.
bool StrictlyInside(const Rect& place, Point at) {
    return at.x > place.x && at.x < place.Right() && at.y > place.y && at.y < place.Bottom();
}

}  // namespace

MainScreen::MainScreen(ScreenContext& context, Navigation navigation)
    : Dialog(context.desktop, spec),
      m_context(context),
      m_navigation(std::move(navigation)),
      m_bar(*this, context) {
    OnClick(exitControl, [this] { Exit(); });
}

void MainScreen::OnInitDialog() {
    m_bar.Load();
    LoadMode();
}

void MainScreen::ReloadTexts() {
    m_bar.Load();
    Invalidate();
}

void MainScreen::SetNews(int unread, int missed) {
    m_unread = unread;
    m_missed = missed;
    m_bar.SetNews(unread, missed);
    Invalidate(Place());
}

void MainScreen::LoadMode() {
    const ScreenMode mode = Mode();
    if (m_shownMode == mode && m_picture) return;
    m_shownMode = mode;
    m_pressed = m_released = noCell;
    const std::string path = std::string(directory).append(PictureOf(mode)).append(".bmp");
    m_picture.reset();
    m_picture = GetDesktop().GetGraphics().LoadBitmap(path);
    Invalidate();
}

void MainScreen::Update() {
    if (!IsOpen()) return;
    LoadMode();
    m_bar.Update();
    if (m_bar.Runs()) {
        SetTimer(secondsTimer, second, [this] { Update(); });
    } else {
        KillTimer(secondsTimer);
    }
}

const Cell& MainScreen::CellAt(int index) const {
    return Mode() == ScreenMode::InCall && index < callCellCount ? callCells[index] : idleCells[index];
}

bool MainScreen::Live(int index) const {
    switch (Mode()) {
        case ScreenMode::Idle: return true;
        case ScreenMode::InCall: return index < callCellCount;
        case ScreenMode::Closed: return index == settingsCell;
    }
    return false;
}

int MainScreen::HitTest(Point at) const {
    if (ExitLive() && exitReach.Contains(at)) return exitCell;
    for (int index = 0; index < cellCount; ++index) {
        if (Live(index) && StrictlyInside(idleCells[index].place, at)) return index;
    }
    return noCell;
}

std::vector<TouchTarget> MainScreen::Targets() const {
    std::vector<TouchTarget> targets = Dialog::Targets();
    if (ExitLive()) targets.push_back({exitControl, exitReach});
    for (int index = 0; index < cellCount; ++index) {
        if (Live(index)) targets.push_back({index, idleCells[index].place.Inset(1)});
    }
    return targets;
}

// Nothing reacts while the module starts or searches.
bool MainScreen::Inert() const {
    const std::string& status = m_bar.StatusText();
    return !status.empty() && (status == LoadText("IDS_INITING") || status == LoadText("IDS_SEARCHING"));
}

void MainScreen::OnTouch(const TouchEvent& event) {
    switch (event.action) {
        case TouchAction::Down: Press(HitTest(event.at)); break;
        case TouchAction::Move: break;
        case TouchAction::Up: Release(event.at); break;
    }
}

void MainScreen::OnTouchCancel() {
    m_pressed = noCell;
    Invalidate();
}

void MainScreen::Press(int index) {
    m_pressed = index;
    if (index == noCell) return;
    if (index == exitCell) {
        Invalidate(exitPlace);
        return;
    }
    const Cell& cell = CellAt(index);
    Invalidate(cell.place);
    if (Mode() == ScreenMode::InCall) return;
    m_context.session.GetSpeech().Announce(LoadText(cell.caption));
}

void MainScreen::Release(Point at) {
    const int pressed = std::exchange(m_pressed, noCell);
    Invalidate();
    if (pressed == noCell || Inert() || HitTest(at) != pressed) return;
    if (pressed == exitCell) {
        Exit();
        return;
    }
    if (!CellAt(pressed).released.empty()) m_released = pressed;
    Run(pressed);
}

void MainScreen::Run(int index) {
    CVarkelDlg& session = m_context.session;
    const auto open = [](const std::function<void()>& screen) {
        if (screen) screen();
    };
    switch (CellAt(index).action) {
        case Action::None: break;
        case Action::DialPad: open(m_navigation.dialPad); break;
        case Action::Messages: open(m_navigation.messages); break;
        case Action::Settings: open(m_navigation.settings); break;
        case Action::CallRecords: open(m_navigation.callRecords); break;
        case Action::PhoneBook: open(m_navigation.phoneBook); break;
        case Action::Redial: session.Calls().OnRedial(); break;
        case Action::WinWap: session.Programs().Launch("\\ResidentFlash2\\bin\\WINWAP\\winwap50.exe"); break;
        case Action::Ie: session.Programs().Launch("\\ResidentFlash2\\bin\\IE\\IE.exe"); break;
        case Action::HangUp: session.Calls().HangUp(); break;
        case Action::Speaker: session.Calls().ToggleSpeaker(); break;
    }
}

void MainScreen::Exit() {
    m_context.session.HideOrQuit();
}

void MainScreen::OnCancel() {
    if (ExitLive()) Exit();
}

void MainScreen::OnPaint(Canvas& canvas) {
    if (m_picture) canvas.BitBlt(*m_picture, {0, 0});
    m_bar.Draw(canvas);
    const auto draw = [this, &canvas](std::string_view name, const Rect& to) {
        if (const Bitmap* const picture = LoadPicture(name)) canvas.StretchBlt(*picture, to);
    };
    if (m_pressed == exitCell) draw(exitPressed, exitPlace);
    for (int index = 0; index < cellCount; ++index) {
        const Cell& cell = CellAt(index);
        const bool pressed = index == m_pressed;
        if (pressed) draw(cell.pressed, cell.place);
        if (index == m_released) draw(cell.released, cell.place);
        const Palette& colors = GetDesktop().Colors();
        const bool white = pressed || cell.action == Action::HangUp;
        DrawCaption(canvas, cell,
                    !Live(index) ? colors.disabled
                    : white      ? colors.pressedText
                                 : Colors().buttonFont);
    }
    m_released = noCell;
    if (Mode() != ScreenMode::Idle) return;
    DrawBadge(canvas, messageCell, m_unread);
    DrawBadge(canvas, callRecordsCell, m_missed);
}

// In one line when it can be read so, else in two.
void MainScreen::DrawCaption(Canvas& canvas, const Cell& cell, ColorRef color) const {
    const Rect box = {cell.place.x + captionInCell.x, cell.place.y + captionInCell.y, captionInCell.width,
                      captionInCell.height};
    const std::string text = LoadText(cell.caption);
    const LogFont font = StyleOf(TextRole::Button, Colors()).font;
    Graphics& graphics = GetDesktop().GetGraphics();
    const Size room{box.width, box.height};
    const LogFont oneLine = FittingFont(graphics, text, font, room, false);
    const TextFormat centred = TextFormat::Center | TextFormat::VCenter;
    if (graphics.MeasureText(text, oneLine).width <= room.width) {
        canvas.DrawText(text, box, centred | TextFormat::SingleLine, oneLine, color);
        return;
    }
    canvas.DrawText(text, box, centred | TextFormat::WordBreak, FittingFont(graphics, text, font, room, true),
                    color);
}

void MainScreen::DrawBadge(Canvas& canvas, int index, int count) {
    if (count <= 0) return;
    const Rect cell = idleCells[index].place;
    const Rect badge{cell.x + badgeInCell.x, cell.y + badgeInCell.y, badgeInCell.width, badgeInCell.height};
    if (const Bitmap* const picture = LoadPicture(index == m_pressed ? "BadgeSel" : "Badge"))
        canvas.TransparentImage(*picture, badge, transparent);
    const std::string text = count > mostCounted ? "99+" : std::to_string(count);
    canvas.DrawText(text, badge, TextFormat::Center | TextFormat::VCenter | TextFormat::SingleLine,
                    DialogFont(badgeFont), GetDesktop().Colors().pressedText);
}

}  // namespace varkel
