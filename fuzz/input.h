// Cuts a fuzzer's bytes into pieces.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace varkel {

class FuzzInput {
  public:
    FuzzInput(const std::uint8_t* bytes, std::size_t size)
        : m_rest(reinterpret_cast<const char*>(bytes), size) {}

    bool Empty() const { return m_rest.empty(); }

    std::uint8_t Byte() {
        if (m_rest.empty()) return 0;
        const auto byte = static_cast<std::uint8_t>(m_rest.front());
        m_rest.remove_prefix(1);
        return byte;
    }

    // The next piece: its length stands in two bytes before it.
    std::string_view Piece() {
        const std::size_t length = Byte() * 256u + Byte();
        const std::string_view piece = m_rest.substr(0, std::min(length, m_rest.size()));
        m_rest.remove_prefix(piece.size());
        return piece;
    }

  private:
    std::string_view m_rest;
};

}  // namespace varkel
