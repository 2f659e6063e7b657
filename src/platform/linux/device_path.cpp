#include "platform/linux/device_path.h"

#include "platform/text.h"

namespace varkel {

std::vector<std::string> SplitDevicePath(std::string_view path) {
    constexpr std::size_t mostNames = 32;
    constexpr std::string_view forbidden("/\0", 2);
    if (path.find_first_of(forbidden) != std::string_view::npos) return {};
    std::vector<std::string> names;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('\\'), path.size());
        const std::string_view name = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (name == "." || name == "..") return {};
        if (!name.empty()) names.emplace_back(name);
        if (names.size() > mostNames) return {};
    }
    return names;
}

std::string PlainDevicePath(std::string_view path) {
    std::string plain;
    for (const std::string& name : SplitDevicePath(path))
        plain += (plain.empty() ? "" : "\\") + LowerAscii(name);
    return plain;
}

}  // namespace varkel
