// Bytes to lines: what is typed on the console.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace varkel::sim {

// A line longer than `longest` is cut there.
class LineReader {
  public:
    void Add(std::string_view bytes) { m_bytes += bytes; }

    // The next whole line without its end; nothing when there is none.
    std::optional<std::string> Next() {
        const std::size_t end = m_bytes.find('\n');
        if (end == std::string::npos) {
            if (m_bytes.size() > longest) m_bytes.resize(longest);
            return std::nullopt;
        }
        std::string line = m_bytes.substr(0, std::min(end, longest));
        m_bytes.erase(0, end + 1);
        if (line.ends_with('\r')) line.pop_back();
        return line;
    }

    // What stands behind the last line end.
    std::string Rest() { return std::exchange(m_bytes, {}); }

    static constexpr std::size_t longest = 4096;

  private:
    std::string m_bytes;
};

}  // namespace varkel::sim
