// The options of the unit's dialling program, which are those of pppd that a program needs to dial an entry.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace varkel::sim {

struct DialOptions {
    std::string entry;
    std::string user;
    std::string password;
    int logDescriptor = 1;
    std::string fault;  // "" when all were understood
};

// "call", "user", "password" and "logfd" with a value, "file" with the name of a file of options, "nodetach",
// "nopersist". `readFile` gives the content of a file; a file may not name another one.
using ReadFile = std::function<std::optional<std::string>(const std::string& path)>;
DialOptions ParseDialOptions(std::span<const std::string> arguments, const ReadFile& readFile);

// The words of an options file: blanks part them unless they stand in double quotes, a backslash takes the
// next character as it is, "#" in front of a word begins a comment. Nothing when quotes stay open.
std::optional<std::vector<std::string>> OptionWords(std::string_view text);

}  // namespace varkel::sim
