// What the session needs of the screens, whether these are pictures or lines on a terminal.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/runtime.h"
#include "session/warn_code.h"

namespace varkel {

// Where the main window stands.
enum class WindowPlace {
    FullScreen,  // 0, 0, 800 x 480
    TopMost,     // the same, above all others
    ZeroSize,    // 0, 0, 0 x 0: a start in the background
    Hidden,      // at the bottom and not shown
};

// The steps of the open sequence that the user can watch.
enum class OpenStep { PowerOn, OpenLink, AwaitModule, AwaitSim, SearchNetwork, Initialise };

// What the tip window says of a message that is being sent.
enum class SendTip : int { Hidden = 0, Sending = 1, Sent = 2, Failed = 3 };

// A dialog in which the user types a code, or a code and a new one.
struct CodeRequest {
    std::string title;
    std::string firstLabel;
    std::string secondLabel;  // empty: one field only
    // Says what is wrong with an entry; the dialog shows it and stays open.
    std::function<std::optional<WarnCode>(std::string_view first, std::string_view second)> check;
    // Whether the request is void. Asked once the dialog stands where CancelPrompts finds it, so that no
    // cancel is missed.
    std::function<bool()> cancelled;
};

struct CodeEntry {
    std::string first;
    std::string second;
};

// Any thread may call; what shows something only posts and returns at once.
class Screens {
  public:
    virtual ~Screens() = default;

    // The status line; an empty text clears it.
    virtual void SetStatusText(std::string_view text) = 0;
    virtual void ShowStatusLine(bool show) = 0;
    // The step that the open sequence has reached, and how long it may wait there; 0 = no limit of its own.
    virtual void ShowOpenStep(OpenStep step, Ticks limit) = 0;
    // 0..5.
    virtual void SetSignalLevel(int level) = 0;
    // Something that the main screen paints from has changed.
    virtual void Repaint() = 0;
    virtual void EnableWindow(bool enable) = 0;
    virtual bool IsWindowEnabled() const = 0;
    // The language has changed: every text is loaded anew.
    virtual void ReloadTexts() = 0;
    virtual void PlaceWindow(WindowPlace place) = 0;
    // A warning with nothing to choose. One that is on the screen already is not shown again.
    virtual void Warn(WarnCode code) = 0;
    // The incoming-call screen, above all others.
    virtual void ShowIncomingCall(bool show) = 0;
    // Who calls; an empty text forgets it.
    virtual void SetCallerText(std::string_view text) = 0;
    // What the network answers to a service code, and whether it waits for a reply. An empty text says that
    // the dialogue has ended.
    virtual void ShowUssd(std::string_view text, bool replyExpected) = 0;
    // True when the screen stood there.
    virtual bool HideUssd() = 0;
    virtual void HideWriteMessage() = 0;
    virtual void ShowSendTip(SendTip tip) = 0;
    // The new-message screen, which sets m_nNewMessages to 0 when it opens.
    virtual void ShowNewMessages() = 0;

    // Waits for the user; nothing when he cancels or CancelPrompts is called. Not on the read thread.
    virtual std::optional<CodeEntry> AskCodes(const CodeRequest& request) = 0;
    virtual void CancelPrompts() = 0;
};

}  // namespace varkel
