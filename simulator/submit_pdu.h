// Messages from the module: SMS-SUBMIT checked field by field and read (3GPP TS 23.040, 9.2.2.2).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/message_text.h"

namespace varkel::sim {

// Why a message is not sent.
enum class PduFault {
    None,
    WrongLength,  // not as long as AT+CMGS announced
    NotSubmit,    // another kind of message
    CutShort,     // a field reaches past the end
    TextTooLong,  // user data of more than 140 octets
    LeftOver,     // more user data than its length says
};

struct SubmittedMessage {
    std::string number;  // digits without a "+"; a name for an alphanumeric address
    bool international = false;
    std::uint8_t scheme = 0;
    std::string text;  // UTF-8; 8-bit data as it is
    std::optional<TextPart> part;
};

// `pdu` is octets, the service centre's address first; `announced` counts those behind that address.
PduFault CheckSubmitPdu(std::string_view pdu, std::size_t announced);
std::string_view TextOf(PduFault fault);

// Nothing when any fault but the announced length is found.
std::optional<SubmittedMessage> DecodeSubmit(std::string_view pdu);

}  // namespace varkel::sim
