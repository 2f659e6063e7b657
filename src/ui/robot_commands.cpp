#include "ui/robot_commands.h"

#include <algorithm>
#include <charconv>
#include <utility>
#include <vector>

#include "platform/text.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

namespace {

// Takes a number off the front of a text; false when there is none.
bool TakeNumber(std::string_view& text, int& number) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

Point MiddleOf(const TouchTarget& target) {
    return {target.rect.x + target.rect.width / 2, target.rect.y + target.rect.height / 2};
}

}  // namespace

RobotCommands::RobotCommands(Desktop& desktop, Terminal& terminal, Robot robot)
    : m_desktop(desktop), m_terminal(terminal), m_robot(std::move(robot)) {}

bool RobotCommands::Run(std::string_view line) {
    struct Command {
        std::string_view name;
        void (RobotCommands::*run)(std::string_view);
    };
    static constexpr Command commands[] = {{"tap", &RobotCommands::Tap},
                                           {"touch", &RobotCommands::Touch},
                                           {"keys", &RobotCommands::Keys},
                                           {"key", &RobotCommands::Key},
                                           {"picture", &RobotCommands::Picture}};
    if (line == "targets") {
        Targets();
        return true;
    }
    const std::string_view name = line.substr(0, line.find(' '));
    for (const Command& command : commands) {
        if (command.name != name) continue;
        if (!m_robot.tap) {
            Say("this window has a user of its own");
            return true;
        }
        (this->*command.run)(line.substr(std::min(name.size() + 1, line.size())));
        return true;
    }
    return false;
}

void RobotCommands::Say(std::string_view text) {
    m_terminal.PrintLine("[robot] " + std::string(text));
}

std::vector<TouchTarget> RobotCommands::WithinReach() const {
    std::vector<TouchTarget> targets;
    const std::vector<Dialog*>& stack = m_desktop.Stack();
    for (auto dialog = stack.rbegin(); dialog != stack.rend(); ++dialog) {
        if (!(*dialog)->IsWindowVisible()) continue;
        if ((*dialog)->TakesInput()) {
            const auto hidden = [above = std::vector(stack.rbegin(), dialog)](const TouchTarget& target) {
                return std::any_of(above.begin(), above.end(), [&target](const Dialog* other) {
                    return other->IsWindowVisible() && other->Reach().Contains(MiddleOf(target));
                });
            };
            std::vector<TouchTarget> own = (*dialog)->Targets();
            std::erase_if(own, hidden);
            targets.insert(targets.end(), own.begin(), own.end());
        }
        if ((*dialog)->Spec().scope == DialogScope::Everything) break;
    }
    return targets;
}

void RobotCommands::Tap(std::string_view id) {
    int wanted = 0;
    if (!TakeNumber(id, wanted)) {
        Say("tap what?");
        return;
    }
    for (const TouchTarget& target : WithinReach()) {
        if (target.id != wanted) continue;
        m_robot.tap(MiddleOf(target));
        return;
    }
    Say("nothing with the id " + std::to_string(wanted) + " can be touched now");
}

void RobotCommands::Touch(std::string_view place) {
    Point at;
    if (!TakeNumber(place, at.x) || !TakeNumber(place, at.y)) {
        Say("touch where?");
        return;
    }
    m_robot.tap(at);
}

void RobotCommands::Keys(std::string_view text) {
    while (!text.empty()) {
        const std::size_t size = FirstCharacterBytes(text);
        m_robot.key({KeyCode::None, std::string(text.substr(0, size))});
        text.remove_prefix(size);
    }
}

void RobotCommands::Key(std::string_view name) {
    constexpr std::pair<std::string_view, KeyCode> keys[] = {{"escape", KeyCode::Escape},
                                                             {"return", KeyCode::Return},
                                                             {"back", KeyCode::Back},
                                                             {"tab", KeyCode::Tab}};
    for (const auto& [known, code] : keys) {
        if (known == name) m_robot.key({code, {}});
    }
}

void RobotCommands::Targets() {
    for (const TouchTarget& target : WithinReach()) {
        const Rect& rect = target.rect;
        Say(std::to_string(target.id) + " at " + std::to_string(rect.x) + ", " + std::to_string(rect.y) +
            ", " + std::to_string(rect.width) + " x " + std::to_string(rect.height));
    }
}

void RobotCommands::Picture(std::string_view file) {
    if (m_robot.picture && m_robot.picture(std::string(file))) {
        Say("picture " + std::string(file));
    } else {
        Say(std::string(file) + " cannot be written");
    }
}

}  // namespace varkel
