// Who a message comes from or goes to (3GPP TS 23.040, 9.1.2.5).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "simulator/octet_reader.h"

namespace varkel::sim {

enum class AddressKind { National, International, Name };

struct MessageAddress {
    AddressKind kind = AddressKind::National;
    std::string value;  // digits, * and # without a "+"; or a name in UTF-8

    // As people write it: "+8613800138000", "10086", "Varkel".
    std::string Text() const { return (kind == AddressKind::International ? "+" : "") + value; }

    static constexpr std::size_t mostDigits = 20;
    static constexpr std::size_t mostNameSeptets = 11;
};

// What is no number is a name; nothing when it is too long or has a character outside the default alphabet.
std::optional<MessageAddress> ParseAddress(std::string_view text);

// The length in semi-octets, the type of address, the value.
std::string AddressOctets(const MessageAddress& address);
std::optional<MessageAddress> TakeAddress(OctetReader& reader);

// A service centre's number with its length in octets, as it stands in front of a message; one octet 0 for
// none.
std::string CentreOctets(std::string_view number);

}  // namespace varkel::sim
