// Short messages as PDUs in hexadecimal text (3GPP TS 23.040, 9.2.2): an SMS-SUBMIT from a record, a record
// from an SMS-DELIVER. Nothing here allocates or keeps a state; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "modem/at_values.h"
#include "platform/code_page.h"
#include "platform/fixed_text.h"

namespace varkel {

enum class CodingScheme : std::uint8_t { SevenBit = 0, EightBit = 4, Ucs2 = 8 };

// Every text leaves room for a NUL.
struct SmsPduRecord {
    FixedText<16> SCA;        // digits of the service centre, without "+"
    FixedText<16> TPA;        // digits of the receiver or the sender, without "+"
    std::uint8_t TP_PID = 0;  // protocol identifier
    std::uint8_t TP_DCS = 0;  // data coding scheme
    FixedText<16> TP_SCTS;    // year, month, day, hour, minute, second, time zone: two digits each
    FixedText<161> TP_UD;     // narrow text
};
static_assert(sizeof(SmsPduRecord) == 211);
static_assert(offsetof(SmsPduRecord, TPA) == 16);
static_assert(offsetof(SmsPduRecord, TP_PID) == 32);
static_assert(offsetof(SmsPduRecord, TP_DCS) == 33);
static_assert(offsetof(SmsPduRecord, TP_SCTS) == 34);
static_assert(offsetof(SmsPduRecord, TP_UD) == 50);

// Fills a record for sending as UCS2. The centre may begin with "+" and may be empty; the number is digits
// alone. Neither is ever shortened: TooLong above 15 digits, Invalid for anything but digits, and the record
// is empty then. A text of more than 160 bytes is cut at a character.
[[nodiscard]] ValueFault MakeSubmitRecord(const CodePage& page, std::string_view serviceCentre,
                                          std::string_view number, std::string_view text,
                                          SmsPduRecord& record);

// Returns the length of the PDU in characters. 0 and an empty text when a number holds anything but digits or
// the PDU would be longer than a PduText may be: with 13 digits in both numbers, above 115 UTF-16 units.
[[nodiscard]] std::size_t EncodeSubmitPdu(const CodePage& page, const SmsPduRecord& record,
                                          FixedText<512>& pdu);

// `hex` is the rest of the modem's answer from the PDU on; what follows the PDU does no harm, and short texts
// of seven bits need it, because their length is rounded up. Returns the length that the PDU gives to the
// text: septets, UTF-16 units or octets, also where the record holds less of it. 0 when the text is empty or
// the PDU ends before a field that it announces; the record then holds the fields before that one.
[[nodiscard]] std::size_t DecodeDeliverPdu(const CodePage& page, std::string_view hex, SmsPduRecord& record);

}  // namespace varkel
