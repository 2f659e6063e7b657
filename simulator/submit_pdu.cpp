#include "simulator/submit_pdu.h"

#include <array>
#include <cstdint>
#include <optional>

namespace varkel::sim {

namespace {

// Octets from the front, each access checked.
class OctetReader {
  public:
    explicit OctetReader(std::string_view octets) : m_rest(octets) {}

    std::optional<std::uint8_t> Octet() {
        if (m_rest.empty()) return std::nullopt;
        const auto octet = static_cast<std::uint8_t>(m_rest.front());
        m_rest.remove_prefix(1);
        return octet;
    }

    bool Skip(std::size_t octets) {
        if (octets > m_rest.size()) return false;
        m_rest.remove_prefix(octets);
        return true;
    }

    std::size_t Left() const { return m_rest.size(); }

  private:
    std::string_view m_rest;
};

// By the bits 4 and 3 of the first octet (9.2.3.3): none, enhanced, relative, absolute.
constexpr std::array<std::size_t, 4> validityOctets{0, 7, 1, 7};

// Seven bits a character in the general group and in the message class group (TS 23.038, 4).
bool SevenBit(std::uint8_t scheme) {
    if ((scheme & 0xC0u) == 0) return (scheme & 0x0Cu) == 0;
    if ((scheme & 0xF0u) == 0xF0) return (scheme & 0x04u) == 0;
    return (scheme & 0xF0u) != 0xE0;
}

}  // namespace

PduFault CheckSubmitPdu(std::string_view pdu, std::size_t announced) {
    OctetReader reader(pdu);
    const auto centre = reader.Octet();
    if (!centre || !reader.Skip(*centre)) return PduFault::CutShort;
    if (reader.Left() != announced) return PduFault::WrongLength;

    const auto first = reader.Octet();
    if (!first) return PduFault::CutShort;
    constexpr std::uint8_t submit = 1;
    if ((*first & 3u) != submit) return PduFault::NotSubmit;
    reader.Octet();  // the message reference, which the module sets
    const auto digits = reader.Octet();
    constexpr std::size_t mostDigits = 20;
    if (!digits || *digits > mostDigits || !reader.Skip(1u + (*digits + 1u) / 2)) return PduFault::CutShort;
    reader.Octet();  // the protocol identifier
    const auto scheme = reader.Octet();
    if (!scheme || !reader.Skip(validityOctets[(*first >> 3) & 3u])) return PduFault::CutShort;

    const auto length = reader.Octet();
    if (!length) return PduFault::CutShort;
    const std::size_t octets = SevenBit(*scheme) ? (*length * 7u + 7u) / 8 : *length;
    if (octets > longestUserData || reader.Left() > longestUserData) return PduFault::TextTooLong;
    if (reader.Left() < octets) return PduFault::CutShort;
    return reader.Left() > octets ? PduFault::LeftOver : PduFault::None;
}

std::string_view TextOf(PduFault fault) {
    constexpr std::array<std::string_view, 6> texts{
        "well formed", "not as long as announced",          "no SMS-SUBMIT",
        "cut short",   "more than 140 octets of user data", "more user data than its length says"};
    return texts[static_cast<std::size_t>(fault)];
}

}  // namespace varkel::sim
