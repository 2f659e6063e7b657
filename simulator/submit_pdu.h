// What the module looks at before it sends a message: the fields of SMS-SUBMIT (3GPP TS 23.040, 9.2.2.2).
#pragma once

#include <cstddef>
#include <string_view>

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

inline constexpr std::size_t longestUserData = 140;

// `pdu` is octets, the service centre's address first; `announced` counts those behind that address.
PduFault CheckSubmitPdu(std::string_view pdu, std::size_t announced);
std::string_view TextOf(PduFault fault);

}  // namespace varkel::sim
