#include "modem/sms_pdu.h"

#include <algorithm>
#include <array>
#include <span>

#include "modem/gsm_alphabet.h"
#include "modem/hex_text.h"
#include "modem/semi_octets.h"
#include "modem/septets.h"
#include "modem/ucs2.h"

namespace varkel {

namespace {

constexpr std::uint8_t international = 0x91;     // type of address: E.164
constexpr std::uint8_t submitFirstOctet = 0x11;  // SMS-SUBMIT with a relative validity period
constexpr std::string_view concatenationHeader = "050003";
constexpr std::size_t concatenationOctets = 6;
constexpr std::size_t mostUserOctets = 256;
constexpr std::size_t longestNumber = sizeof(SmsPduRecord::TPA) - 1;

bool AllDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), IsDigit);
}

// Takes the fields of a PDU off the front of its text.
class PduReader {
  public:
    explicit PduReader(std::string_view hex) : m_rest(hex) {}

    bool Has(std::size_t characters) const { return m_rest.size() >= characters; }
    bool StartsWith(std::string_view hex) const { return m_rest.starts_with(hex); }

    // What is not there comes out shorter, or as 0; the callers have asked Has before.
    std::string_view Take(std::size_t characters) {
        const std::string_view field = m_rest.substr(0, characters);
        m_rest.remove_prefix(field.size());
        return field;
    }
    std::uint8_t TakeOctet() {
        const std::string_view field = Take(2);
        return field.size() == 2 ? HexOctet(field[0], field[1]) : std::uint8_t{0};
    }

  private:
    std::string_view m_rest;
};

// Puts the fields of a PDU one behind the other, and remembers when one had no room.
class PduWriter {
  public:
    void Octet(std::uint8_t octet) { Octets({&octet, 1}); }

    void Octets(std::span<const std::uint8_t> octets) {
        std::array<char, 2 * mostUserOctets + 1> hex;
        Text({hex.data(), BytesToHex(octets, hex)});
    }

    void Digits(std::string_view digits) {
        std::array<char, 16> swapped;
        Text({swapped.data(), SwapDigits(digits, swapped)});
    }

    bool Fits() const { return m_fits; }
    std::string_view View() const { return {m_text.data(), m_length}; }

  private:
    void Text(std::string_view text) {
        m_fits = m_fits && text.size() <= m_text.size() - m_length;
        if (!m_fits) return;
        std::copy(text.begin(), text.end(), m_text.begin() + static_cast<std::ptrdiff_t>(m_length));
        m_length += text.size();
    }

    std::array<char, PduText::longest> m_text;
    std::size_t m_length = 0;
    bool m_fits = true;
};

void WriteUserData(const CodePage& page, const SmsPduRecord& record, PduWriter& pdu) {
    const std::string_view text = record.TP_UD.View();
    std::array<std::uint8_t, mostUserOctets> octets;
    std::size_t count = 0;
    std::size_t length = 0;  // as TP-UDL counts it
    if (record.TP_DCS == static_cast<std::uint8_t>(CodingScheme::SevenBit)) {
        std::array<char, sizeof(record.TP_UD) + 1> ended{};
        std::copy(text.begin(), text.end(), ended.begin());
        count = Pack7Bit({ended.data(), text.size() + 1}, octets);
        length = text.size();
    } else if (record.TP_DCS == static_cast<std::uint8_t>(CodingScheme::Ucs2)) {
        count = EncodeUcs2(page, text, octets);
        length = count;
    } else {
        std::copy(text.begin(), text.end(), octets.begin());
        count = text.size();
        length = count;
    }
    pdu.Octet(static_cast<std::uint8_t>(length));
    pdu.Octets({octets.data(), count});
}

// A text field's beginning that leaves room for the NUL.
template <std::size_t Capacity>
void StoreDigits(std::string_view swapped, FixedText<Capacity>& field) {
    std::array<char, Capacity - 1> digits;
    field.Assign({digits.data(), UnswapDigits(swapped, digits)});
}

bool ReadServiceCentre(PduReader& pdu, SmsPduRecord& record) {
    if (!pdu.Has(2)) return false;
    // The octets that follow, the type of address among them; none at all when the module leaves it out.
    const std::size_t octets = pdu.TakeOctet();
    if (!pdu.Has(2 * octets + 2)) return false;
    PduReader address(pdu.Take(2 * octets));
    address.TakeOctet();
    StoreDigits(address.Take(2 * octets), record.SCA);
    return true;
}

bool ReadOriginator(PduReader& pdu, SmsPduRecord& record) {
    if (!pdu.Has(6)) return false;
    pdu.TakeOctet();
    const std::size_t digits = pdu.TakeOctet();
    const std::size_t characters = digits + digits % 2;
    if (!pdu.Has(2 + characters + 4)) return false;
    pdu.TakeOctet();
    StoreDigits(pdu.Take(characters), record.TPA);
    return true;
}

// The narrow text that the buffer holds up to its NUL.
void StoreText(const std::array<char, sizeof(SmsPduRecord::TP_UD)>& text, SmsPduRecord& record) {
    record.TP_UD.Assign(std::string_view(text.data(), text.size() - 1));
}

std::size_t ReadSevenBit(const CodePage& page, PduReader& pdu, std::size_t septets, SmsPduRecord& record) {
    const std::size_t characters = septets * 7 / 4 + (septets % 8 != 0 ? 2 : 0);
    if (!pdu.Has(characters)) return 0;
    std::array<std::uint8_t, mostUserOctets> octets;
    const std::size_t count = HexToBytes(pdu.Take(characters), octets);
    std::array<char, mostUserOctets + 1> codes;
    const std::size_t unpacked = Unpack7Bit({octets.data(), count}, codes);
    std::array<char, sizeof(record.TP_UD)> text{};
    NarrowFromGsm(page, {codes.data(), std::min(unpacked, septets)}, text);
    StoreText(text, record);
    return septets;
}

std::size_t ReadUcs2(const CodePage& page, PduReader& pdu, std::size_t octets, SmsPduRecord& record) {
    if (pdu.StartsWith(concatenationHeader)) {
        if (octets < concatenationOctets) return 0;
        octets -= concatenationOctets;
        pdu.Take(2 * concatenationOctets);
    }
    if (!pdu.Has(2 * octets)) return 0;
    std::array<std::uint8_t, mostUserOctets> bytes;
    const std::size_t count = HexToBytes(pdu.Take(2 * octets), bytes);
    std::array<char, sizeof(record.TP_UD)> text{};
    const std::size_t units = DecodeUcs2(page, {bytes.data(), count}, text);
    StoreText(text, record);
    return units;
}

std::size_t ReadEightBit(const CodePage& page, PduReader& pdu, std::size_t octets, SmsPduRecord& record) {
    if (!pdu.Has(2 * octets)) return 0;
    std::array<std::uint8_t, mostUserOctets> bytes;
    const std::size_t count = HexToBytes(pdu.Take(2 * octets), bytes);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), count);
    record.TP_UD.Assign(CutNarrow(page, text, sizeof(record.TP_UD) - 1));
    return count;
}

}  // namespace

ValueFault MakeSubmitRecord(const CodePage& page, std::string_view serviceCentre, std::string_view number,
                            std::string_view text, SmsPduRecord& record) {
    record = {};
    if (serviceCentre.starts_with('+')) serviceCentre.remove_prefix(1);
    if (number.empty() || !AllDigits(number) || !AllDigits(serviceCentre)) return ValueFault::Invalid;
    if (number.size() > longestNumber || serviceCentre.size() > longestNumber) return ValueFault::TooLong;
    record.SCA.Assign(serviceCentre);
    record.TPA.Assign(number);
    record.TP_DCS = static_cast<std::uint8_t>(CodingScheme::Ucs2);
    record.TP_UD.Assign(CutNarrow(page, text, sizeof(record.TP_UD) - 1));
    return ValueFault::None;
}

std::size_t EncodeSubmitPdu(const CodePage& page, const SmsPduRecord& record, FixedText<512>& pdu) {
    pdu.Clear();
    const std::string_view centre = record.SCA.View();
    const std::string_view number = record.TPA.View();
    if (!AllDigits(centre) || !AllDigits(number)) return 0;
    PduWriter writer;
    writer.Octet(static_cast<std::uint8_t>((centre.size() + 1) / 2 + 1));
    writer.Octet(international);
    writer.Digits(centre);
    writer.Octet(submitFirstOctet);
    writer.Octet(0);  // TP-MR
    writer.Octet(static_cast<std::uint8_t>(number.size()));
    writer.Octet(international);
    writer.Digits(number);
    writer.Octet(record.TP_PID);
    writer.Octet(record.TP_DCS);
    writer.Octet(0);  // TP-VP: five minutes
    WriteUserData(page, record, writer);
    if (!writer.Fits()) return 0;
    pdu.Assign(writer.View());
    return writer.View().size();
}

std::size_t DecodeDeliverPdu(const CodePage& page, std::string_view hex, SmsPduRecord& record) {
    record = {};
    PduReader pdu(hex);
    if (!ReadServiceCentre(pdu, record) || !ReadOriginator(pdu, record)) return 0;
    if (!pdu.Has(20)) return 0;
    record.TP_PID = pdu.TakeOctet();
    record.TP_DCS = pdu.TakeOctet();
    StoreDigits(pdu.Take(14), record.TP_SCTS);
    const std::size_t length = pdu.TakeOctet();
    switch (record.TP_DCS & 0x0C) {
        case static_cast<int>(CodingScheme::SevenBit): return ReadSevenBit(page, pdu, length, record);
        case static_cast<int>(CodingScheme::Ucs2): return ReadUcs2(page, pdu, length, record);
        default: return ReadEightBit(page, pdu, length, record);
    }
}

}  // namespace varkel
