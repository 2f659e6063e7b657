#include "simulator/message_address.h"

#include <cstdint>

#include "platform/text.h"
#include "simulator/charset.h"
#include "simulator/septets.h"

namespace varkel::sim {

namespace {

// By the value of their semi-octet; 15 fills the last octet up.
constexpr std::string_view digitsBySemiOctet = "0123456789*#abc";
constexpr std::uint8_t filler = 15;

constexpr std::uint8_t international = 0x91;
constexpr std::uint8_t unknownType = 0x81;
constexpr std::uint8_t alphanumeric = 0xD0;

std::string SemiOctets(std::string_view digits) {
    std::string octets;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const std::size_t low = digitsBySemiOctet.find(digits[i]);
        const std::size_t high = i + 1 < digits.size() ? digitsBySemiOctet.find(digits[i + 1]) : filler;
        octets += static_cast<char>(high << 4 | low);
    }
    return octets;
}

std::string DigitsOf(std::string_view octets, std::size_t count) {
    std::string digits;
    for (std::size_t i = 0; i < count; ++i) {
        const auto octet = static_cast<std::uint8_t>(octets[i / 2]);
        const std::uint8_t value = i % 2 == 0 ? octet & 0x0Fu : octet >> 4;
        if (value < digitsBySemiOctet.size()) digits += digitsBySemiOctet[value];
    }
    return digits;
}

std::uint8_t TypeOf(AddressKind kind) {
    switch (kind) {
        case AddressKind::National: return unknownType;
        case AddressKind::International: return international;
        case AddressKind::Name: return alphanumeric;
    }
    return unknownType;
}

// By the type of number in the bits 7 to 5.
AddressKind KindOf(std::uint8_t type) {
    switch (type & 0x70u) {
        case 0x10: return AddressKind::International;
        case 0x50: return AddressKind::Name;
        default: return AddressKind::National;
    }
}

}  // namespace

std::optional<MessageAddress> ParseAddress(std::string_view text) {
    const bool plus = text.starts_with('+');
    const std::string_view digits = text.substr(plus ? 1 : 0);
    if (digits.empty()) return std::nullopt;
    if (digits.find_first_not_of("0123456789*#") == std::string_view::npos) {
        if (digits.size() > MessageAddress::mostDigits) return std::nullopt;
        return MessageAddress{plus ? AddressKind::International : AddressKind::National, std::string(digits)};
    }
    const auto septets = GsmFromUtf16(Utf16FromUtf8(text));
    if (!septets || septets->size() > MessageAddress::mostNameSeptets) return std::nullopt;
    return MessageAddress{AddressKind::Name, std::string(text)};
}

std::string AddressOctets(const MessageAddress& address) {
    std::string value;
    std::size_t semiOctets = address.value.size();
    if (address.kind == AddressKind::Name) {
        const std::string septets = GsmFromUtf16(Utf16FromUtf8(address.value)).value_or("");
        value = PackSeptets(septets);
        semiOctets = (septets.size() * 7 + 3) / 4;
    } else {
        value = SemiOctets(address.value);
    }
    return std::string{static_cast<char>(semiOctets), static_cast<char>(TypeOf(address.kind))} + value;
}

std::optional<MessageAddress> TakeAddress(OctetReader& reader) {
    const auto semiOctets = reader.Octet();
    const auto type = reader.Octet();
    if (!semiOctets || !type || *semiOctets > MessageAddress::mostDigits) return std::nullopt;
    const auto value = reader.Octets((*semiOctets + 1u) / 2);
    if (!value) return std::nullopt;
    const AddressKind kind = KindOf(*type);
    if (kind != AddressKind::Name) return MessageAddress{kind, DigitsOf(*value, *semiOctets)};
    const std::string septets = UnpackSeptets(*value, *semiOctets * 4u / 7);
    return MessageAddress{kind, Utf8FromUtf16(Utf16FromGsm(septets))};
}

std::string CentreOctets(std::string_view number) {
    const auto centre = ParseAddress(number);
    if (!centre || centre->kind == AddressKind::Name) return std::string(1, '\0');
    const std::string value = SemiOctets(centre->value);
    return std::string{static_cast<char>(value.size() + 1), static_cast<char>(TypeOf(centre->kind))} + value;
}

}  // namespace varkel::sim
