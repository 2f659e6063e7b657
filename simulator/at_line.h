// A command line as the modem understands it: ITU-T V.250, 3GPP TS 27.007 clause 4.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varkel::sim {

// AT+X, AT+X?, AT+X=?, AT+X=1,2.
enum class Form { Execute, Read, Test, Set };

struct AtArgument {
    std::string text;  // without its quotes
    bool quoted = false;

    bool Omitted() const { return text.empty() && !quoted; }
    // The unquoted decimal number, at most nine digits.
    std::optional<int> Number() const;
};

struct AtCommand {
    std::string name;  // in capitals: "+CSQ", "&F", "E", "D"
    Form form = Form::Execute;
    // Of a Set; of "E1" the 1; of "D" all that follows.
    std::vector<AtArgument> arguments;

    // An argument that was left out, or that nobody wrote, is `otherwise`; nothing when it is no number.
    std::optional<int> Number(std::size_t index, int otherwise) const;
    // Nothing when it was left out.
    std::optional<int> Number(std::size_t index) const;
    // "" when it was left out.
    std::string_view Text(std::size_t index) const;
};

// Takes apart what stands behind "AT"; an empty line has no commands. Nothing when the line is malformed, or
// has more than `mostCommands` commands or `mostArguments` arguments in one of them.
std::optional<std::vector<AtCommand>> ParseAtLine(std::string_view line);

inline constexpr std::size_t mostCommands = 16;
inline constexpr std::size_t mostArguments = 16;

}  // namespace varkel::sim
