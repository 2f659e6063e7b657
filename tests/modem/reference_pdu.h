// The rules of the SMS-DELIVER decoder, written down as plainly as possible: positions in the text, bits in
// the octets, and no bound on any field until the very end.
#pragma once

#include <string>
#include <string_view>

#include "modem/gsm_alphabet.h"
#include "modem/sms_pdu.h"

namespace varkel::test {

struct DecodedPdu {
    std::size_t result = 0;
    std::string sca, tpa, scts, ud;
    int pid = 0;
    int dcs = 0;
};

class ReferencePdu {
  public:
    ReferencePdu(const CodePage& page, std::string_view hex) : m_page(page), m_hex(hex) {}

    DecodedPdu Decode() {
        DecodedPdu pdu;
        const long length = static_cast<long>(m_hex.size());
        if (length < 2) return pdu;
        const long smscDigits = 2 * (Octet(0) - 1);
        if (length - 2 < smscDigits + 4) return pdu;
        pdu.sca = Digits(4, smscDigits);
        const long start = 4 + smscDigits;
        if (length - start < 6) return pdu;
        const long digits = (Octet(start + 2) + 1) / 2 * 2;
        if (length - start < 10 + digits) return pdu;
        pdu.tpa = Digits(start + 6, digits);
        const long header = start + 6 + digits;
        if (length - header < 20) return pdu;
        pdu.pid = Octet(header);
        pdu.dcs = Octet(header + 2);
        pdu.scts = Digits(header + 4, 14);
        ReadText(pdu, header + 20, Octet(header + 18));
        return pdu;
    }

  private:
    void ReadText(DecodedPdu& pdu, long at, long udl) {
        const long left = static_cast<long>(m_hex.size()) - at;
        if ((pdu.dcs & 0x0C) == 0) {
            if (left < udl * 7 / 4 + (udl % 8 ? 2 : 0)) return;
            pdu.ud = Cut(SevenBit(at, udl));
            pdu.result = static_cast<std::size_t>(udl);
        } else if ((pdu.dcs & 0x0C) == 8) {
            const bool header = left >= 6 && m_hex.substr(static_cast<std::size_t>(at), 6) == "050003";
            const long octets = header ? udl - 6 : udl;
            const long skipped = header ? 12 : 0;
            if (octets < 0 || left - skipped < 2 * octets) return;
            std::u16string wide;
            for (long i = 0; i + 1 < octets; i += 2) {
                const int unit = Octet(at + skipped + 2 * i) << 8 | Octet(at + skipped + 2 * i + 2);
                wide.push_back(static_cast<char16_t>(unit == 0x2029 ? ' ' : unit));
            }
            std::string narrow(4 * wide.size(), '\0');
            narrow.resize(m_page.WideCharToMultiByte(wide, narrow));
            pdu.ud = Cut(narrow);
            pdu.result = wide.size();
        } else {
            if (left < 2 * udl) return;
            std::string bytes;
            for (long i = 0; i < udl; ++i)
                bytes.push_back(static_cast<char>(Octet(at + 2 * i)));
            pdu.ud = Cut(bytes);
            pdu.result = bytes.size();
        }
    }

    std::string SevenBit(long at, long septets) const {
        std::string codes;
        for (long i = 0; i < septets; ++i) {
            int code = 0;
            for (long bit = 7 * i; bit < 7 * i + 7; ++bit)
                code |= (Octet(at + bit / 8 * 2) >> (bit % 8) & 1) << (bit - 7 * i);
            codes.push_back(static_cast<char>(code));
        }
        std::string narrow(4 * codes.size() + 1, '\0');
        narrow.resize(NarrowFromGsm(m_page, codes, narrow));
        return narrow;
    }

    // Every field ends at a NUL, and the text at 160 bytes.
    std::string Cut(std::string_view text) const { return std::string(CutNarrow(m_page, text, 160)).c_str(); }

    std::string Digits(long at, long count) const {
        std::string digits;
        for (long i = 0; i < count; ++i)
            digits.push_back(m_hex[static_cast<std::size_t>(at + (i % 2 ? i - 1 : i + 1))]);
        if (!digits.empty() && digits.back() == 'F') digits.pop_back();
        return digits.substr(0, 15).c_str();
    }

    int Octet(long at) const {
        const auto value = [this](long i) {
            const char c = m_hex[static_cast<std::size_t>(i)];
            return c >= '0' && c <= '9' ? c - '0' : c - 55;
        };
        return (value(at) * 16 + value(at + 1)) & 0xFF;
    }

    const CodePage& m_page;
    std::string_view m_hex;
};

}  // namespace varkel::test
