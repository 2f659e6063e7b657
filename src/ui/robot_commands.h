// A user of the screens who types what his finger does: for tours and tests of a program that nobody looks
// at.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/display.h"
#include "platform/terminal.h"
#include "ui/toolkit/control.h"
#include "ui/toolkit/desktop.h"

namespace varkel {

// What the display lets itself be told; empty where it has a real user.
struct Robot {
    std::function<void(Point)> tap;
    std::function<void(const KeyEvent&)> key;
    // Writes what is seen as a PNG file; false when that fails.
    std::function<bool(const std::string& file)> picture;
};

//     tap ID          the target of that id on the screen that is open
//     touch X Y       any place
//     keys TEXT       the keys of a keyboard
//     key NAME        escape, return, back or tab
//     targets         what can be touched now
//     picture FILE    what is seen
class RobotCommands {
  public:
    RobotCommands(Desktop& desktop, Terminal& terminal, Robot robot);

    // False when the line is none of these. Dialog thread.
    bool Run(std::string_view line);

  private:
    // From the topmost dialog down to the one that covers all others.
    std::vector<TouchTarget> WithinReach() const;
    void Tap(std::string_view id);
    void Touch(std::string_view place);
    void Keys(std::string_view text);
    void Key(std::string_view name);
    void Targets();
    void Picture(std::string_view file);
    void Say(std::string_view text);

    Desktop& m_desktop;
    Terminal& m_terminal;
    const Robot m_robot;
};

}  // namespace varkel
