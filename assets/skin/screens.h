// The grounds of screens and dialogs. Each is a Draw.
#pragma once

#include "assets/skin/picture.h"

namespace varkel::skin {

// `level` is MainScreenMode: 0 idle, 1 in a call, 2 module closed.
void DrawMainScreen(Painter& painter, const Palette& colors, const Picture& picture, State state);
void DrawDialPad(Painter& painter, const Palette& colors, const Picture& picture, State state);
void DrawIncomingCall(Painter& painter, const Palette& colors, const Picture& picture, State state);
// Tabs, a list with its scroll bar, and a column of buttons.
void DrawListScreen(Painter& painter, const Palette& colors, const Picture& picture, State state);
// One panel and a column of buttons.
void DrawFormScreen(Painter& painter, const Palette& colors, const Picture& picture, State state);
// Nothing but the bar on top.
void DrawPlainScreen(Painter& painter, const Palette& colors, const Picture& picture, State state);
// Two dark fields on the left, whose colour is the unit's in every skin; keys stand on the right.
void DrawNumberScreen(Painter& painter, const Palette& colors, const Picture& picture, State state);
// What stands above a screen: a panel with a sign on top.
void DrawWarning(Painter& painter, const Palette& colors, const Picture& picture, State state);
void DrawTip(Painter& painter, const Palette& colors, const Picture& picture, State state);
// The light strip below the choice of what is deleted.
void DrawChoiceStrip(Painter& painter, const Palette& colors, const Picture& picture, State state);

}  // namespace varkel::skin
