// Text in a field of a fixed number of bytes, as records, shared memory and protocol buffers hold it.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace varkel {

// char[Capacity], padded with NULs. The text ends at the first NUL or, in a full field, at the last byte: no
// byte after the field is ever read or written. Trivially copyable, so that it can stand in a record.
template <std::size_t Capacity>
class FixedText {
  public:
    FixedText() = default;
    explicit FixedText(std::string_view text) { Assign(text); }

    // Keeps what fits and fills the rest with NULs; false when something was left out.
    bool Assign(std::string_view text) {
        Clear();
        return Append(text);
    }

    bool Append(std::string_view text) {
        const std::size_t start = Length();
        const std::size_t count = std::min(text.size(), Capacity - start);
        std::copy_n(text.begin(), count, m_bytes.begin() + static_cast<std::ptrdiff_t>(start));
        return count == text.size();
    }

    void Clear() { m_bytes.fill('\0'); }

    std::size_t Length() const {
        return static_cast<std::size_t>(std::find(m_bytes.begin(), m_bytes.end(), '\0') - m_bytes.begin());
    }

    std::string_view View() const { return {m_bytes.data(), Length()}; }
    bool Empty() const { return m_bytes[0] == '\0'; }

    bool operator==(std::string_view text) const { return View() == text; }

  private:
    std::array<char, Capacity> m_bytes{};
};

}  // namespace varkel
