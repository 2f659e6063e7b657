// Values from outside that go into AT command lines. Each type holds only text that fits its command's buffer
// and can neither end the line nor close a quote nor leave a message prompt, so that a builder sends exactly
// one command.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/fixed_text.h"

namespace varkel {

// Why a value was refused. The numbers are the warnings that the user is shown (IDS_NUMBER_LONG,
// IDS_NUMBER_INVALID).
enum class ValueFault { None = 0, TooLong = 25, Invalid = 26 };

// Text of at most Rules::longest characters, all of them among those that Rules::Allows.
template <class Rules>
class AtValue {
  public:
    // None and the value, or the fault and the value as it was.
    [[nodiscard]] static ValueFault Parse(std::string_view text, AtValue& value) {
        if (text.size() > Rules::longest) return ValueFault::TooLong;
        if (text.size() < Rules::shortest) return ValueFault::Invalid;
        for (const char c : text) {
            if (!Rules::Allows(c)) return ValueFault::Invalid;
        }
        value.m_text.Assign(text);
        return ValueFault::None;
    }

    std::string_view View() const { return m_text.View(); }
    const char* CStr() const { return m_text.View().data(); }

    static constexpr std::size_t longest = Rules::longest;
    using Text = FixedText<Rules::longest + 1>;  // its View() is always followed by a NUL

  private:
    Text m_text;
};

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// What a user may dial, as given: digits, "*", "#", "+", "A" to "D", the pauses "p" and "w", and separators.
struct DialRules {
    static constexpr std::size_t shortest = 1;
    static constexpr std::size_t longest = 195;  // "ATD", ";" and the NUL fill up 200 bytes
    static constexpr bool Allows(char c) {
        return IsDigit(c) || std::string_view("*#+ABCDpw").find(c) != std::string_view::npos ||
               IsSeparator(c);
    }
    // Left out of the command line only.
    static constexpr bool IsSeparator(char c) {
        return std::string_view("()-./ ").find(c) != std::string_view::npos;
    }
};
using DialString = AtValue<DialRules>;

// A PIN, PUK or personalisation code: digits only (3GPP TS 31.101, 22.022).
template <std::size_t Longest>
struct CodeRules {
    static constexpr std::size_t shortest = 4;
    static constexpr std::size_t longest = Longest;
    static constexpr bool Allows(char c) { return IsDigit(c); }
};
using PinCode = AtValue<CodeRules<8>>;
using PhCode = AtValue<CodeRules<16>>;

// A facility of +CLCK, such as "SC" (3GPP TS 27.007, 7.4).
struct FacilityRules {
    static constexpr std::size_t shortest = 2;
    static constexpr std::size_t longest = 2;
    static constexpr bool Allows(char c) { return (c >= 'A' && c <= 'Z') || IsDigit(c); }
};
using Facility = AtValue<FacilityRules>;

// Printable ASCII without the quote: a USSD string in the character set "GSM".
struct UssdRules {
    static constexpr std::size_t shortest = 1;
    static constexpr std::size_t longest = 200;
    static constexpr bool Allows(char c) { return c >= ' ' && c <= '~' && c != '"'; }
};
using UssdString = AtValue<UssdRules>;

// The number of a service centre or of a phonebook entry.
template <std::size_t Longest>
struct NumberRules {
    static constexpr std::size_t shortest = 1;
    static constexpr std::size_t longest = Longest;
    static constexpr bool Allows(char c) { return IsDigit(c) || c == '+' || c == '*' || c == '#'; }
};
using CenterNumber = AtValue<NumberRules<29>>;  // with its NUL it fills the controller's 30 bytes
using SimNumber = AtValue<NumberRules<40>>;

// A phonebook name that goes out unchanged: printable ASCII without the quote.
struct SimNameRules {
    static constexpr std::size_t shortest = 0;
    static constexpr std::size_t longest = 192;
    static constexpr bool Allows(char c) { return UssdRules::Allows(c); }
};
using SimName = AtValue<SimNameRules>;

// The name of an access point (3GPP TS 23.003, 9.1).
struct ApnRules {
    static constexpr std::size_t shortest = 1;
    static constexpr std::size_t longest = 100;
    static constexpr bool Allows(char c) {
        return IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '.' ||
               c == '_';
    }
};
using ApnName = AtValue<ApnRules>;

// One key of the tone pad.
struct DtmfRules {
    static constexpr std::size_t shortest = 1;
    static constexpr std::size_t longest = 1;
    static constexpr bool Allows(char c) {
        return IsDigit(c) || std::string_view("*#+ABCD").find(c) != std::string_view::npos;
    }
};
using DtmfKey = AtValue<DtmfRules>;

// A PDU in hexadecimal text, as +CMGS takes it: whole octets that begin with the service-centre field.
struct PduRules {
    static constexpr std::size_t shortest = 2;
    static constexpr std::size_t longest = 510;  // with Ctrl-Z and the NUL it fills 512 bytes
    static constexpr bool Allows(char c) { return IsDigit(c) || (c >= 'A' && c <= 'F'); }
};
using PduText = AtValue<PduRules>;

// A place on the SIM: a phonebook entry or a message. Three digits, as the command buffers have room for.
class SimSlot {
  public:
    static constexpr int largest = 999;

    static std::optional<SimSlot> From(int number) {
        if (number < 0 || number > largest) return std::nullopt;
        return SimSlot(number);
    }
    int Number() const { return m_number; }

  private:
    explicit SimSlot(int number) : m_number(number) {}
    int m_number;
};

// A name as UCS2 in hexadecimal, four lower-case digits for each UTF-16 unit. TooLong above 48 units, which
// is what the phonebook command has room for.
[[nodiscard]] ValueFault Ucs2HexName(std::string_view utf8, SimName& name);

}  // namespace varkel
