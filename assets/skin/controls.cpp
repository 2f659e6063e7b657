#include "assets/skin/controls.h"

#include <algorithm>

namespace varkel::skin {

namespace {

Rect Whole(const Picture& picture) {
    return {0, 0, picture.size.width, picture.size.height};
}

IconBox Centred(const Rect& rect, double size) {
    return {rect.x + (rect.width - size) / 2, rect.y + (rect.height - size) / 2, size};
}

bool HasIcon(const Picture& picture) {
    return picture.detail.icon[0] != '\0';
}

Look PlainLook(State state, const Palette& colors) {
    switch (state) {
        case State::Normal: return {colors.tile, {colors.edge}, {colors.text, colors.accent}};
        // A pressed face needs no edge, so it has one of its own colour.
        case State::Sel: return {colors.pressed, {colors.pressed}, {colors.pressedText, colors.pressedText}};
        case State::Disabled:
        case State::SelDisabled: break;
    }
    return {colors.tileOff, {colors.line}, {colors.disabled, colors.disabled}};
}

}  // namespace

Look LookOf(Tone tone, State state, const Palette& colors) {
    if (tone == Tone::Plain || state == State::Disabled) return PlainLook(state, colors);
    const bool answer = tone == Tone::Answer;
    const Color normal = answer ? colors.answer : colors.hangup;
    const Color pressed = answer ? colors.answerPressed : colors.hangupPressed;
    const Color face = state == State::Sel ? pressed : normal;
    return {face, {state == State::Sel ? normal : face, 3}, {colors.callText, colors.callText}};
}

void DrawTile(Painter& painter, Point cell, const char* icon, const Look& look) {
    constexpr int inset = 6;
    constexpr double radius = 12, iconSize = 96, iconTop = 33;
    painter.RoundRect(Rect{cell.x, cell.y, cellSize.width, cellSize.height}.Inset(inset), radius, look.face,
                      look.edge);
    painter.Icon(icon, {cell.x + (cellSize.width - iconSize) / 2, cell.y + iconTop, iconSize}, look.icon);
}

void DrawCell(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    DrawTile(painter, {}, picture.detail.icon, LookOf(picture.detail.tone, state, colors));
}

void DrawKey(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    const Look look = LookOf(picture.detail.tone, state, colors);
    const int least = std::min(picture.size.width, picture.size.height);
    painter.RoundRect(Whole(picture), std::min(12, least / 5), look.face, look.edge);
    if (HasIcon(picture))
        painter.Icon(picture.detail.icon, Centred(Whole(picture), least * 9 / 16), look.icon);
}

void DrawWarnKey(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    constexpr int dialogEdge = 2, gap = 3;
    const Look look = LookOf(picture.detail.tone, state, colors);
    const Rect whole = Whole(picture);
    painter.Fill({0, whole.height - dialogEdge, whole.width, dialogEdge}, colors.edge);
    const Rect face{0, 0, whole.width, whole.height - dialogEdge - gap};
    painter.RoundRect(face, 6, look.face, look.edge);
    painter.Icon(picture.detail.icon, Centred(face, 24), look.icon);
}

void DrawCallKey(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    const Look look = LookOf(picture.detail.tone, state, colors);
    painter.RoundRect(Whole(picture), 26, look.face, look.edge);
    painter.Icon(picture.detail.icon, Centred(Whole(picture), 68), look.icon);
}

void DrawSoftKey(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    const Look look = LookOf(picture.detail.tone, state, colors);
    painter.RoundRect(Whole(picture).Inset(2), 8, look.face);
    if (HasIcon(picture)) painter.Icon(picture.detail.icon, Centred(Whole(picture), 36), look.icon);
}

void DrawSoftFunction(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    Look look = LookOf(picture.detail.tone, state, colors);
    if (state == State::Normal) look.face = colors.line;
    painter.RoundRect(Whole(picture).Inset(2), 8, look.face);
    if (HasIcon(picture)) painter.Icon(picture.detail.icon, Centred(Whole(picture), 36), look.icon);
}

void DrawAction(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    constexpr double radius = 12, iconSize = 48, iconTop = 12;
    const Look look = LookOf(picture.detail.tone, state, colors);
    painter.RoundRect(Whole(picture), radius, look.face, look.edge);
    painter.Icon(picture.detail.icon, {(picture.size.width - iconSize) / 2, iconTop, iconSize}, look.icon);
}

void DrawBarButton(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    Look look = LookOf(picture.detail.tone, state, colors);
    if (picture.detail.tone == Tone::Plain && state == State::Normal) {
        look.face = colors.barButton;
        look.icon = {colors.text, colors.text};
    }
    painter.Fill({0, picture.size.height - 1, picture.size.width, 1}, colors.line);
    painter.RoundRect(Whole(picture).Inset(3), 9, look.face);
    if (HasIcon(picture)) painter.Icon(picture.detail.icon, Centred(Whole(picture), 34), look.icon);
}

void DrawTab(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    Look look = LookOf(Tone::Plain, state, colors);
    if (state == State::Normal) look.face = colors.tileOff;
    painter.RoundRect(Whole(picture), 12, look.face, look.edge);
}

void DrawRow(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    const Look look = LookOf(Tone::Plain, state, colors);
    painter.RoundRect(Whole(picture), 10, look.face, look.edge);
}

void DrawRadio(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    const bool small = picture.size.width < 30;
    const bool on = state == State::Sel || state == State::SelDisabled;
    const bool off = state == State::Disabled || state == State::SelDisabled;
    // The small pair stands on a light strip, in the colour of its texts.
    const Color line = off ? colors.disabled : small ? colors.choice : on ? colors.accent : colors.text;
    const double centre = picture.size.width / 2.0;
    const double radius = small ? centre - 0.5 : centre - 4;
    painter.Ring(centre, centre, radius, {line, small ? 2.0 : 4.0});
    if (on) painter.Disc(centre, centre, small ? radius - 4.5 : radius - 9, line);
}

void DrawCheck(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    const bool on = state == State::Sel || state == State::SelDisabled;
    const bool off = state == State::Disabled || state == State::SelDisabled;
    const Color line = off ? colors.disabled : on ? colors.accent : colors.text;
    const Rect box = Whole(picture).Inset(5);
    painter.RoundRect(box, 8, on ? line : colors.well, {line, 4});
    if (on) painter.Icon("check", Centred(box, 28), {colors.well, colors.well});
}

void DrawArrow(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    const bool pressed = state == State::Sel;
    const Color line = pressed ? colors.pressedText : colors.thumbText;
    painter.RoundRect(Whole(picture), 10, pressed ? colors.pressed : colors.thumb);
    painter.Icon(picture.detail.icon, Centred(Whole(picture), 30), {line, line});
}

void DrawChannel(Painter& painter, const Palette& colors, const Picture& picture, State) {
    painter.Fill(Whole(picture), colors.channel);
}

void DrawMark(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    const IconColors icon = LookOf(Tone::Plain, state, colors).icon;
    painter.Icon(picture.detail.icon, Centred(Whole(picture), picture.size.height - 4), icon);
}

void DrawMissedMark(Painter& painter, const Palette& colors, const Picture& picture, State state) {
    const bool selected = state == State::Sel;
    const IconColors icon{selected ? colors.pressedText : colors.text,
                          selected ? colors.pressedText : colors.warning};
    painter.Icon(picture.detail.icon, Centred(Whole(picture), picture.size.height - 4), icon);
}

void DrawBadge(Painter& painter, const Palette& colors, const Picture& picture, State) {
    painter.RoundRect(Whole(picture), picture.size.height / 2.0, colors.hangup, {colors.callText, 2});
}

void DrawSignal(Painter& painter, const Palette& colors, const Picture& picture, State) {
    constexpr int bars = 5, width = 7, pitch = 10, lowest = 9, step = 6;
    const int left = (picture.size.width - (bars - 1) * pitch - width) / 2;
    const int bottom = picture.size.height - 2;
    for (int bar = 0; bar < bars; ++bar) {
        const int height = lowest + step * bar;
        painter.RoundRect({left + bar * pitch, bottom - height, width, height}, 2.5,
                          bar < picture.detail.level ? colors.text : colors.line);
    }
    if (picture.detail.level > 0) return;
    const IconBox place{3, 1, 22};
    painter.Icon("close", place, {colors.warning, colors.warning});
}

void DrawVolume(Painter& painter, const Palette& colors, const Picture& picture, State) {
    constexpr int bars = 5, width = 32, pitch = 44, lowest = 20, step = 10;
    const int left = (picture.size.width - (bars - 1) * pitch - width) / 2;
    for (int bar = 0; bar < bars; ++bar) {
        const int height = lowest + step * bar;
        painter.RoundRect({left + bar * pitch, picture.size.height - 4 - height, width, height}, 6,
                          bar < picture.detail.level ? colors.accent : colors.line);
    }
}

void DrawData(Painter& painter, const Palette& colors, const Picture& picture, State) {
    const Color closed = colors.disabled;
    const IconColors looks[] = {{closed, closed}, {colors.warning, closed}, {colors.accent, colors.accent}};
    painter.Icon("data", Centred(Whole(picture), picture.size.height - 4), looks[picture.detail.level]);
}

}  // namespace varkel::skin
