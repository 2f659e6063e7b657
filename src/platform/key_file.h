// Text files of "key = value" lines under "[section]" headings: the unit file, the language files, the
// initial registry.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varkel {

// A line is blank, a comment (its first character is "#"), a heading or "key = value". The value is
// everything behind the first "=", without the blanks around it. Keys and sections are compared without
// regard to ASCII case; of two equal keys the later one holds. A line that is none of these is left out and
// reported.
class KeyFile {
  public:
    struct Entry {
        std::string section;
        std::string key;
        std::string value;
        int line = 0;
    };

    static KeyFile Parse(std::string_view text);

    std::optional<std::string> Find(std::string_view section, std::string_view key) const;
    std::string Get(std::string_view section, std::string_view key, std::string_view otherwise) const;
    // In the order of the file.
    const std::vector<Entry>& Entries() const { return m_entries; }
    // "line 3: ..." for each line that was left out; at most 20.
    const std::vector<std::string>& Errors() const { return m_errors; }

  private:
    void AddError(int line, std::string_view text);

    std::vector<Entry> m_entries;
    std::vector<std::string> m_errors;
};

}  // namespace varkel
