// Messages from the network: texts to SMS-DELIVER and back (3GPP TS 23.040, 9.2.2.1).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/message_address.h"
#include "simulator/message_text.h"

namespace varkel::sim {

struct DeliverOptions {
    MessageAddress from;
    std::string centre;                // "+8613800100500"; "" for none
    std::string timeStamp;             // seven octets, see TimeStampOctets
    std::optional<TextCoding> coding;  // else the default alphabet where the text allows it, UCS2 where not
    std::uint8_t reference = 0;        // of the parts of a long text
};

// The octets of one message, or of all parts of a long one, the service centre's address first. None when the
// coding has no place for a character or the text needs more than `mostParts`.
std::vector<std::string> DeliverPdus(std::string_view text, const DeliverOptions& options);

struct DeliveredMessage {
    MessageAddress from;
    std::uint8_t scheme = 0;
    std::string time;  // see TimeStampText
    std::string text;  // UTF-8; 8-bit data as it is
    std::optional<TextPart> part;
};

// Nothing when a field reaches past the end, or it is another kind of message.
std::optional<DeliveredMessage> DecodeDeliver(std::string_view pdu);

}  // namespace varkel::sim
