#include "modem/ussd_answer.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "modem/gsm_alphabet.h"
#include "modem/hex_text.h"
#include "modem/septets.h"
#include "platform/text.h"

namespace varkel {

namespace {

constexpr std::string_view keyword = "+CUSD:";
constexpr int defaultScheme = 15;
constexpr int ucs2WithLanguage = 0x11;
constexpr std::size_t npos = std::string_view::npos;

struct Words {
    std::string_view text;
    int scheme = defaultScheme;
};

// The words may hold quotes, and other lines with quotes may follow: the one that ends them is the first
// behind which the line ends, with or without the coding scheme.
Words WordsOf(std::string_view line) {
    const std::size_t begin = line.find('"');
    if (begin == npos) return {};
    line.remove_prefix(begin + 1);
    for (std::size_t end = line.find('"'); end != npos; end = line.find('"', end + 1)) {
        Words words{line.substr(0, end)};
        std::string_view rest = line.substr(end + 1);
        if (rest.starts_with(',')) {
            rest.remove_prefix(1);
            ParseInt(rest, words.scheme);
            rest.remove_prefix(std::min(rest.find_first_not_of("0123456789"), rest.size()));
        }
        if (rest.empty() || rest.front() == '\r' || rest.front() == '\n') return words;
    }
    return {};
}

// The coding groups of 3GPP TS 23.038, 5, that say UCS2.
bool IsUcs2(int scheme) {
    const int group = scheme >> 4;
    const bool general = (group >= 4 && group <= 7) || group == 9;
    return scheme == ucs2WithLanguage || (general && (scheme & 0x0C) == 0x08);
}

bool IsHex(std::string_view text) {
    const auto isDigit = [](char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); };
    return text.size() % 2 == 0 && std::all_of(text.begin(), text.end(), isDigit);
}

std::vector<std::uint8_t> OctetsOf(std::string_view hex) {
    std::vector<std::uint8_t> octets(hex.size() / 2);
    HexToBytes(hex, octets);
    return octets;
}

std::string FromUcs2(const std::vector<std::uint8_t>& octets, bool withLanguage) {
    std::u16string units;
    for (std::size_t i = withLanguage ? 2 : 0; i + 1 < octets.size(); i += 2)
        units += static_cast<char16_t>(octets[i] << 8 | octets[i + 1]);
    return Utf8FromUtf16(units);
}

std::string FromGsm(std::string_view codes) {
    std::u16string units(codes.size(), u'\0');
    units.resize(Utf16FromGsm(codes, units));
    return Utf8FromUtf16(units);
}

// Words that happen to be hexadecimal digits are rare; packed ones are long, hold letters and make sense.
bool IsPacked(std::string_view text, std::string_view unpacked) {
    constexpr std::size_t shortest = 8;
    const auto readable = [](char c) { return c >= ' ' || c == '\n' || c == '\r'; };
    return text.size() >= shortest && text.find_first_of("ABCDEF") != npos &&
           text.find_first_of("0123456789") != npos &&
           std::all_of(unpacked.begin(), unpacked.end(), readable);
}

std::string Decode(const Words& words, const CodePage& page) {
    std::string upper(words.text);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c; });
    if (IsHex(upper)) {
        const std::vector<std::uint8_t> octets = OctetsOf(upper);
        if (IsUcs2(words.scheme)) return FromUcs2(octets, words.scheme == ucs2WithLanguage);
        std::string unpacked(octets.size() * 8 / 7 + 2, '\0');
        unpacked.resize(Unpack7Bit(octets, unpacked));
        if (IsPacked(words.text, unpacked)) return FromGsm(unpacked);
    }
    const bool septets = std::all_of(words.text.begin(), words.text.end(),
                                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    return septets ? FromGsm(words.text) : Utf8FromNarrow(page, words.text);
}

}  // namespace

UssdAnswer ParseUssdAnswer(std::string_view line, const CodePage& page) {
    UssdAnswer answer;
    if (line.starts_with(keyword)) line.remove_prefix(keyword.size());
    int status = 0;
    if (ParseInt(Trimmed(line), status) && status >= 0 && status <= static_cast<int>(UssdStatus::TimedOut))
        answer.status = static_cast<UssdStatus>(status);
    answer.text = Trimmed(Decode(WordsOf(line), page));
    return answer;
}

}  // namespace varkel
