#include "simulator/submit_pdu.h"

#include <array>

#include "simulator/message_address.h"
#include "simulator/octet_reader.h"

namespace varkel::sim {

namespace {

// By the bits 4 and 3 of the first octet (9.2.3.3): none, enhanced, relative, absolute.
constexpr std::array<std::size_t, 4> validityOctets{0, 7, 1, 7};

constexpr std::uint8_t kindBits = 0x03;
constexpr std::uint8_t submit = 0x01;
constexpr std::uint8_t withHeader = 0x40;

// Reads what stands behind the service centre's address.
PduFault Read(OctetReader& reader, SubmittedMessage& message) {
    const auto first = reader.Octet();
    if (!first) return PduFault::CutShort;
    if ((*first & kindBits) != submit) return PduFault::NotSubmit;
    reader.Octet();  // the message reference, which the module sets
    const auto address = TakeAddress(reader);
    if (!address) return PduFault::CutShort;
    message.number = address->value;
    message.international = address->kind == AddressKind::International;
    reader.Octet();  // the protocol identifier
    const auto scheme = reader.Octet();
    if (!scheme || !reader.Skip(validityOctets[(*first >> 3) & 3u])) return PduFault::CutShort;
    message.scheme = *scheme;

    const auto length = reader.Octet();
    if (!length) return PduFault::CutShort;
    const TextCoding coding = CodingOf(*scheme);
    const std::size_t octets = UserDataOctets(coding, *length);
    const std::string_view data = reader.Rest();
    if (octets > longestUserData || data.size() > longestUserData) return PduFault::TextTooLong;
    if (data.size() > octets) return PduFault::LeftOver;
    auto text = DecodeUserData(coding, (*first & withHeader) != 0, *length, data);
    if (!text) return PduFault::CutShort;
    message.text = std::move(text->text);
    message.part = text->part;
    return PduFault::None;
}

bool SkipCentre(OctetReader& reader) {
    const auto centre = reader.Octet();
    return centre && reader.Skip(*centre);
}

}  // namespace

PduFault CheckSubmitPdu(std::string_view pdu, std::size_t announced) {
    OctetReader reader(pdu);
    if (!SkipCentre(reader)) return PduFault::CutShort;
    if (reader.Rest().size() != announced) return PduFault::WrongLength;
    SubmittedMessage message;
    return Read(reader, message);
}

std::string_view TextOf(PduFault fault) {
    constexpr std::array<std::string_view, 6> texts{
        "well formed", "not as long as announced",          "no SMS-SUBMIT",
        "cut short",   "more than 140 octets of user data", "more user data than its length says"};
    return texts[static_cast<std::size_t>(fault)];
}

std::optional<SubmittedMessage> DecodeSubmit(std::string_view pdu) {
    OctetReader reader(pdu);
    SubmittedMessage message;
    if (!SkipCentre(reader) || Read(reader, message) != PduFault::None) return std::nullopt;
    return message;
}

}  // namespace varkel::sim
