#include "simulator/deliver_pdu.h"

#include "platform/text.h"
#include "simulator/charset.h"
#include "simulator/network_clock.h"
#include "simulator/octet_reader.h"

namespace varkel::sim {

namespace {

// In the first octet: the kind of message, nothing more waits, the text begins with a header.
constexpr std::uint8_t kindBits = 0x03;
constexpr std::uint8_t deliver = 0x00;
constexpr std::uint8_t nothingMore = 0x04;
constexpr std::uint8_t withHeader = 0x40;

constexpr char protocol = 0;
constexpr std::size_t timeStampOctets = 7;

}  // namespace

std::vector<std::string> DeliverPdus(std::string_view text, const DeliverOptions& options) {
    const std::u16string units = Utf16FromUtf8(text);
    const bool plain = GsmFromUtf16(units).has_value();
    const TextCoding coding = options.coding.value_or(plain ? TextCoding::SevenBit : TextCoding::Ucs2);
    const auto parts = UserDataOf(units, coding, options.reference);
    if (!parts) return {};
    std::vector<std::string> pdus;
    for (const UserData& part : *parts) {
        std::string pdu = CentreOctets(options.centre);
        pdu += static_cast<char>(deliver | nothingMore | (part.header ? withHeader : 0));
        pdu += AddressOctets(options.from);
        pdu += protocol;
        pdu += static_cast<char>(SchemeOf(coding));
        std::string stamp = options.timeStamp;
        stamp.resize(timeStampOctets);
        pdu += stamp;
        pdu += static_cast<char>(part.length);
        pdu += part.octets;
        pdus.push_back(std::move(pdu));
    }
    return pdus;
}

std::optional<DeliveredMessage> DecodeDeliver(std::string_view pdu) {
    OctetReader reader(pdu);
    const auto centre = reader.Octet();
    if (!centre || !reader.Skip(*centre)) return std::nullopt;
    const auto first = reader.Octet();
    if (!first || (*first & kindBits) != deliver) return std::nullopt;
    const auto from = TakeAddress(reader);
    if (!from || !reader.Octet()) return std::nullopt;
    const auto scheme = reader.Octet();
    const auto stamp = reader.Octets(timeStampOctets);
    const auto length = reader.Octet();
    if (!scheme || !stamp || !length) return std::nullopt;
    const bool header = (*first & withHeader) != 0;
    auto text = DecodeUserData(CodingOf(*scheme), header, *length, reader.Rest());
    if (!text) return std::nullopt;
    return DeliveredMessage{*from, *scheme, TimeStampText(*stamp), std::move(text->text), text->part};
}

}  // namespace varkel::sim
