#include "assets/skin/screens.h"

#include "assets/skin/controls.h"

namespace varkel::skin {

namespace {

constexpr Rect screen{0, 0, 800, 480};
constexpr int barHeight = 50;
constexpr Rect exitPlace{730, 0, 70, 50};

// Left of the column of buttons, which begins at 612.
constexpr Rect panel{8, 58, 596, 416};
constexpr Rect listWell{8, 130, 540, 344};

void DrawBar(Painter& painter, const Palette& colors) {
    painter.Fill(screen, colors.background);
    painter.Fill({0, 0, screen.width, barHeight}, colors.bar);
    painter.Fill({0, barHeight - 1, screen.width, 1}, colors.line);
}

void DrawPanel(Painter& painter, const Palette& colors, const Rect& rect) {
    painter.RoundRect(rect, 12, colors.well, {colors.line});
}

struct MainCell {
    const char* icon;
    bool live;
    Tone tone = Tone::Plain;
};

constexpr MainCell mainCells[3][8] = {
    {{"keypad", true},
     {"message", true},
     {"settings", true},
     {"call_log", true},
     {"contacts", true},
     {"redial", true},
     {"wap", true},
     {"globe", true}},
    {{"keypad", true},
     {"hangup", true, Tone::HangUp},
     {"sound", true},
     {"receiver", true},
     {"contacts", false},
     {"redial", false},
     {"wap", false},
     {"globe", false}},
    {{"keypad", false},
     {"message", false},
     {"settings", true},
     {"call_log", false},
     {"contacts", false},
     {"redial", false},
     {"wap", false},
     {"globe", false}},
};

void DrawDialog(Painter& painter, const Palette& colors, const Picture& picture) {
    const Rect whole{0, 0, picture.size.width, picture.size.height};
    painter.Fill(whole, colors.edge);
    painter.Fill(whole.Inset(2), colors.dialog);
}

}  // namespace

void DrawMainScreen(Painter& painter, const Palette& colors, const Picture& picture, State) {
    DrawBar(painter, colors);
    int index = 0;
    for (const MainCell& cell : mainCells[picture.detail.level]) {
        const Point place{index % 4 * cellSize.width, barHeight + index / 4 * cellSize.height};
        DrawTile(painter, place, cell.icon,
                 LookOf(cell.tone, cell.live ? State::Normal : State::Disabled, colors));
        ++index;
    }
    if (picture.detail.level == 1) return;
    painter.RoundRect(exitPlace.Inset(3), 9, colors.barButton);
    painter.Icon("close", {exitPlace.x + 18.0, 8, 34}, {colors.text, colors.text});
}

void DrawDialPad(Painter& painter, const Palette& colors, const Picture&, State) {
    painter.Fill(screen, colors.background);
    // As wide as the keys below it; the number itself has the place 119, 15, 530 x 55.
    painter.RoundRect({85, 8, 632, 66}, 12, colors.field, {colors.edge});
}

void DrawIncomingCall(Painter& painter, const Palette& colors, const Picture&, State) {
    painter.Fill(screen, colors.background);
    // Between the buttons, and below the place of the caller's text, which takes the upper 160 rows.
    constexpr double x = 400, y = 282;
    for (const double radius : {118.0, 98.0})
        painter.Ring(x, y, radius, {colors.ring, 3});
    painter.Disc(x, y, 78, colors.ring);
    painter.Icon("person", {x - 48, y - 52, 96}, {colors.secondary, colors.secondary});
}

void DrawListScreen(Painter& painter, const Palette& colors, const Picture&, State) {
    DrawBar(painter, colors);
    painter.Fill(listWell, colors.well);
    painter.Fill({listWell.Right() + 4, listWell.y, 48, listWell.height}, colors.channel);
}

void DrawFormScreen(Painter& painter, const Palette& colors, const Picture&, State) {
    DrawBar(painter, colors);
    DrawPanel(painter, colors, panel);
}

void DrawPlainScreen(Painter& painter, const Palette& colors, const Picture&, State) {
    DrawBar(painter, colors);
}

void DrawNumberScreen(Painter& painter, const Palette& colors, const Picture&, State) {
    DrawBar(painter, colors);
    DrawPanel(painter, colors, {8, 58, 386, 304});
}

void DrawWarning(Painter& painter, const Palette& colors, const Picture& picture, State) {
    DrawDialog(painter, colors, picture);
    painter.Icon("warning", {(picture.size.width - 30) / 2.0, 6, 30}, {colors.warning, colors.warning});
}

void DrawTip(Painter& painter, const Palette& colors, const Picture& picture, State) {
    DrawDialog(painter, colors, picture);
    painter.Icon(picture.detail.icon, {(picture.size.width - 44) / 2.0, 14, 44},
                 {colors.text, colors.accent});
}

void DrawChoiceStrip(Painter& painter, const Palette& colors, const Picture& picture, State) {
    painter.Fill({0, 0, picture.size.width, picture.size.height}, colors.label);
}

}  // namespace varkel::skin
