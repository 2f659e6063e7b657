// Octets of a message from the front, each access checked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace varkel::sim {

class OctetReader {
  public:
    explicit OctetReader(std::string_view octets) : m_rest(octets) {}

    std::optional<std::uint8_t> Octet() {
        if (m_rest.empty()) return std::nullopt;
        const auto octet = static_cast<std::uint8_t>(m_rest.front());
        m_rest.remove_prefix(1);
        return octet;
    }

    std::optional<std::string_view> Octets(std::size_t count) {
        if (count > m_rest.size()) return std::nullopt;
        const std::string_view octets = m_rest.substr(0, count);
        m_rest.remove_prefix(count);
        return octets;
    }

    bool Skip(std::size_t count) { return Octets(count).has_value(); }
    std::string_view Rest() const { return m_rest; }

  private:
    std::string_view m_rest;
};

}  // namespace varkel::sim
