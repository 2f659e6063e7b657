#include "modem/gsm_alphabet.h"

#include <algorithm>
#include <array>

namespace varkel {

namespace {

constexpr std::size_t mostCodes = 256;
constexpr char16_t escape = 0x1B;

// By code. The escape stands for itself here and never gets out.
constexpr char16_t alphabet[] =
    u"@£$¥èéùìòÇ\nØø\rÅå"
    u"Δ_ΦΓΛΩΠΨΣΘΞ\u001BÆæßÉ"
    u" !\"#¤%&'()*+,-./"
    u"0123456789:;<=>?"
    u"¡ABCDEFGHIJKLMNO"
    u"PQRSTUVWXYZÄÖÑÜ§"
    u"¿abcdefghijklmno"
    u"pqrstuvwxyzäöñüà";
static_assert(std::size(alphabet) == 128 + 1 && alphabet[escape] == escape);

struct Extension {
    char code;
    char16_t unit;
};
constexpr Extension extensions[] = {
    {0x0A, u'\f'}, {0x14, u'^'}, {0x28, u'{'}, {0x29, u'}'}, {0x2F, u'\\'},
    {0x3C, u'['},  {0x3D, u'~'}, {0x3E, u']'}, {0x40, u'|'}, {0x65, u'€'},
};

// A code behind an escape. One that the table does not know is read without the escape; a second escape is a
// blank.
char16_t Extended(char code) {
    const auto* const found =
        std::find_if(std::begin(extensions), std::end(extensions),
                     [code](const Extension& extension) { return extension.code == code; });
    if (found != std::end(extensions)) return found->unit;
    return code == escape ? u' ' : alphabet[code & 0x7F];
}

}  // namespace

std::size_t Utf16FromGsm(std::string_view codes, std::span<char16_t> units) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < codes.size() && count < units.size(); ++i) {
        const char16_t unit = alphabet[codes[i] & 0x7F];
        if (unit != escape)
            units[count++] = unit;
        else
            units[count++] = ++i < codes.size() ? Extended(codes[i]) : u' ';
    }
    return count;
}

std::size_t NarrowFromGsm(const CodePage& page, std::string_view codes, std::span<char> narrow) {
    if (narrow.empty()) return 0;
    std::array<char16_t, mostCodes> wide;
    const std::size_t units = Utf16FromGsm(codes.substr(0, mostCodes), wide);
    const std::size_t bytes = page.WideCharToMultiByte({wide.data(), units}, narrow.first(narrow.size() - 1));
    narrow[bytes] = '\0';
    return bytes;
}

}  // namespace varkel
