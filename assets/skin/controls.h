// The drawing of buttons, marks and indicators. Each is a Draw.
#pragma once

#include "assets/skin/picture.h"

namespace varkel::skin {

// A cell of the main screen, 200 x 215: the tile is inset by 6; the icon stands above the place of a caption.
constexpr Size cellSize{200, 215};
void DrawTile(Painter& painter, Point cell, const char* icon, const Look& look);
void DrawCell(Painter& painter, const Palette& colors, const Picture& picture, State state);

// A face with nothing, or an icon in its middle.
void DrawKey(Painter& painter, const Palette& colors, const Picture& picture, State state);
// The quieter key of the soft keyboard, 2 pixels smaller than its picture all around.
void DrawSoftKey(Painter& painter, const Palette& colors, const Picture& picture, State state);
void DrawSoftFunction(Painter& painter, const Palette& colors, const Picture& picture, State state);
// Its place reaches the lower edge of the warning dialog, which goes on below its face.
void DrawWarnKey(Painter& painter, const Palette& colors, const Picture& picture, State state);
// As DrawKey, rounder and with a larger icon.
void DrawCallKey(Painter& painter, const Palette& colors, const Picture& picture, State state);
// An icon in the upper part, the place of a caption below.
void DrawAction(Painter& painter, const Palette& colors, const Picture& picture, State state);
// In the top bar, without an edge.
void DrawBarButton(Painter& painter, const Palette& colors, const Picture& picture, State state);
// A tab above a list; the one whose list is shown looks pressed.
void DrawTab(Painter& painter, const Palette& colors, const Picture& picture, State state);
// A line of choices.
void DrawRow(Painter& painter, const Palette& colors, const Picture& picture, State state);

void DrawRadio(Painter& painter, const Palette& colors, const Picture& picture, State state);
void DrawCheck(Painter& painter, const Palette& colors, const Picture& picture, State state);
void DrawArrow(Painter& painter, const Palette& colors, const Picture& picture, State state);
void DrawChannel(Painter& painter, const Palette& colors, const Picture& picture, State state);

// Icons without a face.
void DrawMark(Painter& painter, const Palette& colors, const Picture& picture, State state);
void DrawMissedMark(Painter& painter, const Palette& colors, const Picture& picture, State state);
// A red pill for a number.
void DrawBadge(Painter& painter, const Palette& colors, const Picture& picture, State state);
// `level` 0 to 5.
void DrawSignal(Painter& painter, const Palette& colors, const Picture& picture, State state);
void DrawVolume(Painter& painter, const Palette& colors, const Picture& picture, State state);
// `level` 0 closed, 1 being dialled, 2 open.
void DrawData(Painter& painter, const Palette& colors, const Picture& picture, State state);

}  // namespace varkel::skin
