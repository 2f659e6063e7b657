#include "platform/key_file.h"

#include <algorithm>

#include "platform/text.h"

namespace varkel {

KeyFile KeyFile::Parse(std::string_view text) {
    KeyFile file;
    std::string section;
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    for (int line = 1; !text.empty(); ++line) {
        const std::size_t end = text.find('\n');
        const std::string_view content = Trimmed(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (content.empty() || content.front() == '#') continue;
        if (content.front() == '[') {
            if (content.back() == ']') {
                section = Trimmed(content.substr(1, content.size() - 2));
            } else {
                file.AddError(line, "a heading without its closing bracket");
            }
            continue;
        }
        const std::size_t equals = content.find('=');
        const std::string_view key = Trimmed(content.substr(0, equals));
        if (equals == std::string_view::npos || key.empty()) {
            file.AddError(line, "neither \"key = value\" nor a heading");
            continue;
        }
        file.m_entries.push_back(
            {section, std::string(key), std::string(Trimmed(content.substr(equals + 1))), line});
    }
    return file;
}

std::optional<std::string> KeyFile::Find(std::string_view section, std::string_view key) const {
    const auto found = std::find_if(m_entries.rbegin(), m_entries.rend(), [&](const Entry& entry) {
        return EqualIgnoringCase(entry.section, section) && EqualIgnoringCase(entry.key, key);
    });
    if (found == m_entries.rend()) return std::nullopt;
    return found->value;
}

std::string KeyFile::Get(std::string_view section, std::string_view key, std::string_view otherwise) const {
    return Find(section, key).value_or(std::string(otherwise));
}

void KeyFile::AddError(int line, std::string_view text) {
    constexpr std::size_t mostErrors = 20;
    if (m_errors.size() < mostErrors)
        m_errors.push_back("line " + std::to_string(line) + ": " + std::string(text));
}

}  // namespace varkel
