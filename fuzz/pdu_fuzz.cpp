// Received messages of any shape, and sent ones from records of any content. The first byte chooses the code
// page and what the rest is: the text of a PDU, its octets, or the fields of a record.
#include <cassert>
#include <string>
#include <vector>

#include "fuzz/input.h"
#include "modem/hex_text.h"
#include "tests/modem/walled_record.h"
#include "tests/support/code_pages.h"

namespace {

using namespace varkel;
using namespace varkel::test;

// What may be sent is one command's PDU.
void Encode(const CodePage& page, const SmsPduRecord& record) {
    FixedText<512> pdu;
    const std::size_t length = EncodeSubmitPdu(page, record, pdu);
    assert(length == pdu.Length());
    PduText value;
    assert(length == 0 || (length % 2 == 0 && PduText::Parse(pdu.View(), value) == ValueFault::None));
}

void Decode(const CodePage& page, std::string_view hex) {
    // A copy without room behind it, so that a read past its end is seen.
    const std::vector<char> exact(hex.begin(), hex.end());
    Walled walled;
    const std::size_t result = DecodeDeliverPdu(page, {exact.data(), exact.size()}, walled.record);
    assert(walled.Stands());
    const SmsPduRecord& record = walled.record;
    assert(result <= 255);
    const std::string_view text = record.TP_UD.View();
    assert(text.size() <= 160 && text.size() <= 4 * result);
    assert(result == 0 || hex.size() >= 2 * result * 7 / 8);
    // Whole characters; octets of eight bits are whatever the sender meant.
    const bool eightBit = (record.TP_DCS & 0x04) != 0;
    assert(eightBit || NarrowFromUtf8(page, Utf8FromNarrow(page, text)) == text);
    Encode(page, record);
}

// Fields without a NUL among them.
void EncodeFields(const CodePage& page, FuzzInput input) {
    SmsPduRecord record;
    record.TP_DCS = static_cast<std::uint8_t>(input.Byte());
    record.SCA.Assign(input.Piece());
    record.TPA.Assign(input.Piece());
    record.TP_UD.Assign(input.Piece());
    Encode(page, record);
    SmsPduRecord made;
    if (MakeSubmitRecord(page, record.SCA.View(), record.TPA.View(), record.TP_UD.View(), made) ==
        ValueFault::None) {
        assert(made.TPA == record.TPA.View() && made.TP_UD.Length() <= 160);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const CodePage* const pages[] = {&CodePageNamed("GB18030"), &CodePageNamed("CP1251")};
    FuzzInput input(bytes, size);
    const unsigned choice = input.Byte();
    const CodePage& page = *pages[choice & 1];
    const std::span<const std::uint8_t> rest(bytes, size);
    if (choice & 2) {
        EncodeFields(page, input);
    } else if (choice & 4) {
        const std::string_view text(reinterpret_cast<const char*>(bytes), size);
        Decode(page, text.substr(std::min<std::size_t>(1, size)));
    } else {
        std::string hex(2 * size + 1, '\0');
        hex.resize(BytesToHex(rest.subspan(std::min<std::size_t>(1, size)), hex));
        Decode(page, choice & 8 ? hex + "\r\n\r\nOK\r\n" : hex);
    }
    return 0;
}
