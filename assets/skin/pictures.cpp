#include "assets/skin/pictures.h"

#include "assets/skin/controls.h"
#include "assets/skin/screens.h"

namespace varkel::skin {

namespace {

constexpr Size screen{800, 480};
constexpr Size dialKey{155, 85};
constexpr Size codeKey{125, 98};
constexpr Size codeWide{116, 98};
constexpr Size call{116, 104};
constexpr Size action{180, 104};
constexpr Size page{88, 80};
constexpr Size wide{180, 80};
constexpr Size barButton{70, 50};
constexpr Size barWide{140, 50};
constexpr Size warnButton{60, 32};
constexpr Size option{44, 44};
constexpr Size smallOption{18, 18};
constexpr Size arrow{48, 48};
constexpr Size indicator{48, 38};
constexpr Size rowMark{56, 56};
constexpr Size softKey{66, 63};

constexpr Picture pictures[] = {
    // The main screen
    {"MainInterface/MainInterface2", Files::One, screen, DrawMainScreen, {.level = 0}},
    {"MainInterface/MainInterface3", Files::One, screen, DrawMainScreen, {.level = 1}},
    {"MainInterface/MainInterface1", Files::One, screen, DrawMainScreen, {.level = 2}},
    {"MainInterface/Keyboard", Files::Sel, cellSize, DrawCell, {.icon = "keypad"}},
    {"MainInterface/ShortMessage", Files::Sel, cellSize, DrawCell, {.icon = "message"}},
    {"MainInterface/Setting", Files::Sel, cellSize, DrawCell, {.icon = "settings"}},
    {"MainInterface/CallRegister", Files::Sel, cellSize, DrawCell, {.icon = "call_log"}},
    {"MainInterface/CallBook", Files::Sel, cellSize, DrawCell, {.icon = "contacts"}},
    {"MainInterface/Redail", Files::Two, cellSize, DrawCell, {.icon = "redial"}},
    {"MainInterface/Winwap", Files::Sel, cellSize, DrawCell, {.icon = "wap"}},
    {"MainInterface/NetWork", Files::Sel, cellSize, DrawCell, {.icon = "globe"}},
    {"MainInterface/Hangup", Files::Sel, cellSize, DrawCell, {.icon = "hangup", .tone = Tone::HangUp}},
    {"MainInterface/Sound", Files::Sel, cellSize, DrawCell, {.icon = "sound"}},
    {"MainInterface/Receiver", Files::Two, cellSize, DrawCell, {.icon = "receiver"}},
    {"MainInterface/Badge", Files::Two, {48, 34}, DrawBadge, {.ground = keyedOnTile}},

    // What the top bar tells
    {"Signal/SignalLevel0", Files::One, {52, 38}, DrawSignal, {.ground = keyedOnBar, .level = 0}},
    {"Signal/SignalLevel1", Files::One, {52, 38}, DrawSignal, {.ground = keyedOnBar, .level = 1}},
    {"Signal/SignalLevel2", Files::One, {52, 38}, DrawSignal, {.ground = keyedOnBar, .level = 2}},
    {"Signal/SignalLevel3", Files::One, {52, 38}, DrawSignal, {.ground = keyedOnBar, .level = 3}},
    {"Signal/SignalLevel4", Files::One, {52, 38}, DrawSignal, {.ground = keyedOnBar, .level = 4}},
    {"Signal/SignalLevel5", Files::One, {52, 38}, DrawSignal, {.ground = keyedOnBar, .level = 5}},
    {"Signal/DataClosed", Files::One, indicator, DrawData, {.ground = keyedOnBar, .level = 0}},
    {"Signal/DataDialling", Files::One, indicator, DrawData, {.ground = keyedOnBar, .level = 1}},
    {"Signal/DataOpen", Files::One, indicator, DrawData, {.ground = keyedOnBar, .level = 2}},
    {"Signal/NewMessage", Files::One, indicator, DrawMark, {.icon = "message_new", .ground = keyedOnBar}},
    {"Signal/MissedCall",
     Files::One,
     indicator,
     DrawMissedMark,
     {.icon = "call_missed", .ground = keyedOnBar}},

    // The dial pad
    {"Keyboard/Back", Files::One, screen, DrawDialPad},
    {"Keyboard/EmptyButton", Files::Two, dialKey, DrawKey},
    {"Keyboard/Backspace", Files::Two, dialKey, DrawKey, {.icon = "backspace"}},
    {"Keyboard/Dial", Files::Disable, dialKey, DrawKey, {.icon = "handset", .tone = Tone::Answer}},
    {"Keyboard/DialReturn", Files::Two, dialKey, DrawKey, {.icon = "return"}},

    // The incoming call
    {"Other/CallInBack", Files::One, screen, DrawIncomingCall},
    {"Other/Accept", Files::Two, call, DrawCallKey, {.icon = "handset", .tone = Tone::Answer}},
    {"Other/Reject", Files::Two, call, DrawCallKey, {.icon = "hangup", .tone = Tone::HangUp}},

    // Buttons in the top bar
    {"Other/Exit", Files::Two, barButton, DrawBarButton, {.icon = "close", .ground = onBar}},
    {"Other/CancelCall",
     Files::Two,
     barWide,
     DrawBarButton,
     {.icon = "hangup", .tone = Tone::HangUp, .ground = onBar}},
    {"Other/CancelStart", Files::Two, barWide, DrawBarButton, {.ground = onBar}},

    // Call records and messages
    {"Other/MessageCallrecordInterface", Files::One, screen, DrawListScreen},
    {"Other/Key", Files::Disable, action, DrawAction, {.icon = "handset"}},
    {"Other/Delete", Files::Disable, action, DrawAction, {.icon = "delete"}},
    {"Other/DelMsm", Files::Dis, action, DrawAction, {.icon = "delete"}},
    {"Other/MsmOpen", Files::Dis, action, DrawAction, {.icon = "message_open"}},
    {"Other/BuildMsm", Files::Dis, action, DrawAction, {.icon = "write"}},
    {"Other/PageUp", Files::Dis, page, DrawKey, {.icon = "page_up"}},
    {"Other/PageDown", Files::Dis, page, DrawKey, {.icon = "page_down"}},
    {"Other/RowMissed", Files::Two, rowMark, DrawMissedMark, {.icon = "call_missed", .ground = keyedOnRow}},
    {"Other/RowReceived", Files::Two, rowMark, DrawMark, {.icon = "call_in", .ground = keyedOnRow}},
    {"Other/RowDialled", Files::Two, rowMark, DrawMark, {.icon = "call_out", .ground = keyedOnRow}},
    {"Other/RowUnread", Files::Two, rowMark, DrawMark, {.icon = "message_new", .ground = keyedOnRow}},
    {"Other/RowRead", Files::Two, rowMark, DrawMark, {.icon = "message_read", .ground = keyedOnRow}},
    {"Other/RowSent", Files::Two, rowMark, DrawMark, {.icon = "send", .ground = keyedOnRow}},
    {"Other/RowDraft", Files::Two, rowMark, DrawMark, {.icon = "edit", .ground = keyedOnRow}},

    // Reading and writing a message, settings
    {"Other/GroupBlackList", Files::One, screen, DrawFormScreen},
    {"Other/Reply", Files::Disable, action, DrawAction, {.icon = "reply"}},
    {"Other/MsmExit", Files::Disable, action, DrawAction, {.icon = "back"}},
    {"Other/SearchItem", Files::Dis, action, DrawAction, {.icon = "find_person"}},
    {"Other/Fixed", Files::Disable, action, DrawAction, {.icon = "phrase"}},
    {"Other/Send", Files::Disable, action, DrawAction, {.icon = "send"}},
    {"Other/SmsSet", Files::Disable, action, DrawAction, {.icon = "message_centre"}},
    {"Other/NetworkSet", Files::Disable, action, DrawAction, {.icon = "network"}},
    {"Other/SoundAdd", Files::Disable, page, DrawKey, {.icon = "plus", .ground = onPanel}},
    {"Other/SoundSub", Files::Disable, page, DrawKey, {.icon = "minus", .ground = onPanel}},
    {"Other/VolumeLevel0", Files::One, {220, 72}, DrawVolume, {.ground = onPanel, .level = 0}},
    {"Other/VolumeLevel1", Files::One, {220, 72}, DrawVolume, {.ground = onPanel, .level = 1}},
    {"Other/VolumeLevel2", Files::One, {220, 72}, DrawVolume, {.ground = onPanel, .level = 2}},
    {"Other/VolumeLevel3", Files::One, {220, 72}, DrawVolume, {.ground = onPanel, .level = 3}},
    {"Other/VolumeLevel4", Files::One, {220, 72}, DrawVolume, {.ground = onPanel, .level = 4}},
    {"Other/VolumeLevel5", Files::One, {220, 72}, DrawVolume, {.ground = onPanel, .level = 5}},

    // Phrases
    {"Other/Phrase", Files::One, screen, DrawPlainScreen},
    {"Other/PhraseRow", Files::Two, {388, 80}, DrawRow},
    {"Other/Ok", Files::Two, wide, DrawKey, {.icon = "check"}},
    {"Other/Quit", Files::Two, wide, DrawKey, {.icon = "close"}},

    // Phonebook and operators
    {"Other/ItemAdd", Files::Dis, action, DrawAction, {.icon = "add_person"}},
    {"Other/ItemNew", Files::Dis, action, DrawAction, {.icon = "plus"}},
    {"Other/ItemEdit", Files::Dis, action, DrawAction, {.icon = "edit"}},
    {"Other/ItemFind", Files::Dis, action, DrawAction, {.icon = "search"}},
    {"Other/ItemSave", Files::Dis, action, DrawAction, {.icon = "save"}},
    {"Other/ItemSelect", Files::Dis, action, DrawAction, {.icon = "check"}},
    {"Other/ItemSet", Files::Dis, action, DrawAction, {.icon = "settings"}},
    {"Other/RowLocal", Files::Two, rowMark, DrawMark, {.icon = "person", .ground = keyedOnRow}},
    {"Other/RowSim", Files::Two, rowMark, DrawMark, {.icon = "sim", .ground = keyedOnRow}},
    {"Other/RowOperator", Files::Two, rowMark, DrawMark, {.icon = "operator", .ground = keyedOnRow}},

    // Codes and service messages
    {"Ussd/NumberBack", Files::One, screen, DrawNumberScreen},
    {"Ussd/Empty", Files::Two, codeKey, DrawKey},
    {"Ussd/Confirm", Files::Two, codeWide, DrawKey, {.icon = "check"}},
    {"Ussd/NumberClean", Files::Two, codeWide, DrawKey, {.icon = "backspace"}},
    {"Ussd/NumberReturn", Files::Two, codeWide, DrawKey, {.icon = "close"}},
    {"Ussd/UssdBack", Files::One, screen, DrawFormScreen},
    {"Ussd/Reply", Files::Two, action, DrawAction, {.icon = "reply"}},
    {"Ussd/Return", Files::Two, action, DrawAction, {.icon = "back"}},

    // What stands above a screen
    {"WarnBack/DeskWarn", Files::One, {300, 237}, DrawWarning},
    {"WarnBack/Ok", Files::Two, warnButton, DrawWarnKey, {.icon = "check", .ground = onDialog}},
    {"WarnBack/Cancel", Files::Two, warnButton, DrawWarnKey, {.icon = "close", .ground = onDialog}},
    {"WarnBack/DeleteChoice", Files::One, {296, 38}, DrawChoiceStrip, {.ground = onDialog}},
    {"Other/PromptDlgBack", Files::One, {300, 240}, DrawTip, {.icon = "phrase"}},
    {"Other/BoxBack", Files::One, {520, 280}, DrawTip, {.icon = "info"}},
    {"Other/BoxOk", Files::Two, wide, DrawKey, {.icon = "check", .ground = onDialog}},

    // Options, tabs, scroll bar
    {"Radio", Files::Option, option, DrawRadio, {.ground = onPanel}},
    {"Radio", Files::Tab, {196, 66}, DrawTab},
    {"PanelRadio", Files::Tab, {196, 62}, DrawTab, {.ground = onPanel}},
    {"SRadio", Files::Two, smallOption, DrawRadio, {.ground = onLabel}},
    {"Check", Files::Option, option, DrawCheck, {.ground = onPanel}},
    {"Scrollbar/VerticalScrollBarChannel", Files::One, {48, 48}, DrawChannel},
    {"Scrollbar/VerticalScrollBarUpArrow", Files::Two, arrow, DrawArrow, {.icon = "up", .ground = onChannel}},
    {"Scrollbar/VerticalScrollBarDownArrow",
     Files::Two,
     arrow,
     DrawArrow,
     {.icon = "down", .ground = onChannel}},

    // The soft keyboard
    {"Sip/Key", Files::Two, softKey, DrawSoftKey},
    {"Sip/Function", Files::Two, softKey, DrawSoftFunction},
    {"Sip/FunctionWide", Files::Two, {132, 63}, DrawSoftFunction},
    {"Sip/Shift", Files::Two, softKey, DrawSoftFunction, {.icon = "shift"}},
    {"Sip/ShiftLock", Files::Two, softKey, DrawSoftFunction, {.icon = "shift_on"}},
    {"Sip/Backspace", Files::Two, softKey, DrawSoftFunction, {.icon = "backspace"}},
    {"Sip/Done", Files::Two, softKey, DrawSoftFunction, {.icon = "keyboard_down"}},
    {"Sip/Space", Files::Two, {198, 63}, DrawSoftKey, {.icon = "space"}},
};

}  // namespace

std::span<const Picture> AllPictures() {
    return pictures;
}

}  // namespace varkel::skin
