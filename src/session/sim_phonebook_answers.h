// What the modem says of the SIM's phonebook (3GPP TS 27.007, 8.11 to 8.14), read into values.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace varkel {

struct SimEntry {
    int slot = 0;  // 0..999
    std::string number;
    std::string name;  // UTF-8

    bool operator==(const SimEntry&) const = default;
};

// "+CPBS: "SM",used,total". Nothing unless both are numbers of 0 and more.
struct SimBookSize {
    int used = 0;
    int total = 0;
};
std::optional<SimBookSize> ParseSimBookSize(std::string_view text);

// "+CPBW: (1-250),20,(129,145),20": the longest number in digits and the longest name in octets. 0 = the SIM
// does not say, or says something impossible.
struct SimBookLimits {
    int number = 0;
    int name = 0;
};
SimBookLimits ParseSimBookLimits(std::string_view text);

// The line "+CPBR: index,"number",type,"name"", whose name is UCS2 in hexadecimal. Nothing when a quote is
// missing or the index is none. A name that is no hexadecimal text is taken as it stands: some modules do not
// heed the character set.
std::optional<SimEntry> ParseSimEntry(std::string_view line);

}  // namespace varkel
