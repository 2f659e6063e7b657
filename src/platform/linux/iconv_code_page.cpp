#include "platform/linux/iconv_code_page.h"

#include <algorithm>
#include <iconv.h>
#include <optional>

namespace varkel {

namespace {

constexpr char16_t replacement = 0xFFFD;
constexpr char16_t euroSign = 0x20AC;
constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.:";

constexpr bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// The four-byte codes of GB18030 count up like the digits of a number: first and third byte from 0x81 to
// 0xFE, second and fourth from "0" to "9". The first 39,420 are characters up to U+FFFF in an order of their
// own, and from the 189,000th on stand those above, in theirs.
constexpr std::uint32_t nearPositions = 39'420;
constexpr std::uint32_t farStart = 189'000;

constexpr bool IsFourByteCode(std::span<const unsigned char, 4> bytes) {
    const auto isFirst = [](unsigned char byte) { return byte >= 0x81 && byte <= 0xFE; };
    const auto isSecond = [](unsigned char byte) { return byte >= '0' && byte <= '9'; };
    return isFirst(bytes[0]) && isSecond(bytes[1]) && isFirst(bytes[2]) && isSecond(bytes[3]);
}

constexpr std::uint32_t PositionOf(std::span<const unsigned char, 4> bytes) {
    return ((bytes[0] - 0x81u) * 10 + (bytes[1] - 0x30u)) * 1260 + (bytes[2] - 0x81u) * 10 +
           (bytes[3] - 0x30u);
}

constexpr std::array<unsigned char, 4> CodeAt(std::uint32_t position) {
    return {static_cast<unsigned char>(0x81 + position / 12'600),
            static_cast<unsigned char>(0x30 + position / 1260 % 10),
            static_cast<unsigned char>(0x81 + position / 10 % 126),
            static_cast<unsigned char>(0x30 + position % 10)};
}

// One direction of iconv, a character at a time.
template <class To>
class Conversion {
  public:
    Conversion(const char* to, const char* from) : m_handle(iconv_open(to, from)) {}
    ~Conversion() {
        if (Known()) iconv_close(m_handle);
    }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;

    bool Known() const { return m_handle != reinterpret_cast<iconv_t>(-1); }

    // What the character becomes by itself; nothing when it is not one.
    template <class From>
    std::optional<std::span<const To>> Convert(std::span<const From> character) {
        auto* in = const_cast<char*>(reinterpret_cast<const char*>(character.data()));
        std::size_t inLeft = character.size_bytes();
        char* out = reinterpret_cast<char*>(m_out.data());
        std::size_t outLeft = sizeof(m_out);
        if (iconv(m_handle, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1)) {
            iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
            return std::nullopt;
        }
        // Some pages hold a letter back, for a mark that may follow.
        if (outLeft == sizeof(m_out)) iconv(m_handle, nullptr, nullptr, &out, &outLeft);
        return std::span(m_out).first((sizeof(m_out) - outLeft) / sizeof(To));
    }

  private:
    iconv_t m_handle;
    std::array<To, 16> m_out{};
};

}  // namespace

// Fills the tables of one page.
class IconvCodePage::Builder {
  public:
    Builder(const std::string& name, IconvCodePage& page)
        : m_page(page), m_toWide(wideName, name.c_str()), m_toNarrow(name.c_str(), wideName) {}

    // False when the page cannot be held.
    bool Build() {
        if (!m_toWide.Known() || !m_toNarrow.Known()) return false;
        if (!TakeUnits() || !HoldsAscii()) return false;
        TakeSingles();
        TakeDoubles();
        TakeFours();
        // Where these are the system's code page, 0x80 has always been the euro sign as well.
        if (!m_page.m_four.empty() && m_page.m_single[0x80] == 0) m_page.m_single[0x80] = euroSign;
        return true;
    }

  private:
    // A char32_t of this machine. It needs no file of the C library, and so ASCII can always be had.
    static constexpr const char* wideName = "WCHAR_T";

    bool HoldsAscii() {
        for (unsigned byte = 1; byte < 0x80; ++byte) {
            if (m_page.m_narrow[byte] != byte || m_page.m_hasFour[byte]) return false;
            if (WideOf({static_cast<unsigned char>(byte)}) != byte) return false;
        }
        return true;
    }

    // The codes of all characters up to U+FFFF.
    bool TakeUnits() {
        for (char32_t value = 1; value <= 0xFFFF; ++value) {
            if (IsHighSurrogate(value) || IsLowSurrogate(value)) continue;
            const auto code = m_toNarrow.Convert<char32_t>(std::span(&value, 1));
            if (code && !TakeCode(value, *code)) return false;
        }
        return true;
    }

    bool TakeCode(char32_t unit, std::span<const unsigned char> code) {
        switch (code.size()) {
            case 1: m_page.m_narrow[unit] = code[0]; return true;
            case 2:
                m_page.m_narrow[unit] = static_cast<std::uint16_t>(code[0] << 8 | code[1]);
                return code[0] >= 0x80;
            case 4: {
                const auto bytes = code.first<4>();
                if (!IsFourByteCode(bytes) || PositionOf(bytes) >= nearPositions) return false;
                m_page.m_narrow[unit] = static_cast<std::uint16_t>(PositionOf(bytes));
                m_page.m_hasFour[unit] = true;
                m_page.m_four.resize(nearPositions);
                return true;
            }
            default: return false;
        }
    }

    // The other direction is asked for as well: several codes may stand for one character.
    void TakeSingles() {
        for (unsigned byte = 0x80; byte <= 0xFF; ++byte)
            m_page.m_single[byte] = static_cast<char16_t>(WideOf({static_cast<unsigned char>(byte)}));
    }

    void TakeDoubles() {
        for (unsigned first = 0x80; first <= 0xFF; ++first) {
            if (m_page.m_single[first] != 0) continue;
            for (unsigned second = 0x30; second <= 0xFF; ++second) {
                const char32_t wide =
                    WideOf({static_cast<unsigned char>(first), static_cast<unsigned char>(second)});
                if (wide > 0xFFFF)
                    m_page.m_far.push_back({wide, static_cast<std::uint16_t>(first << 8 | second)});
                else
                    m_page.m_double[(first - 0x80) << 8 | second] = static_cast<char16_t>(wide);
            }
        }
    }

    void TakeFours() {
        for (std::uint32_t position = 0; position < m_page.m_four.size(); ++position) {
            const auto code = CodeAt(position);
            m_page.m_four[position] = static_cast<char16_t>(WideOf({code[0], code[1], code[2], code[3]}));
        }
    }

    // The one character that the bytes are; 0 when they are anything else.
    char32_t WideOf(std::initializer_list<unsigned char> bytes) {
        const auto wide = m_toWide.Convert<unsigned char>(std::span(bytes.begin(), bytes.size()));
        return wide && wide->size() == 1 ? (*wide)[0] : 0;
    }

    IconvCodePage& m_page;
    Conversion<char32_t> m_toWide;
    Conversion<unsigned char> m_toNarrow;
};

IconvCodePage::IconvCodePage() : m_double(0x80 * 0x100), m_narrow(0x10000) {}

std::unique_ptr<IconvCodePage> IconvCodePage::Create(const std::string& name) {
    // An empty name would be the locale's page, and one with a slash carries options.
    if (name.empty() || name.find_first_not_of(letters) != std::string::npos) return nullptr;
    std::unique_ptr<IconvCodePage> page(new IconvCodePage);
    return Builder(name, *page).Build() ? std::move(page) : nullptr;
}

IconvCodePage::Character IconvCodePage::First(std::string_view narrow) const {
    const auto first = static_cast<unsigned char>(narrow[0]);
    if (first < 0x80) return {first, 1};
    if (m_single[first] != 0) return {m_single[first], 1};
    if (narrow.size() < 2) return {replacement, 1};
    const auto second = static_cast<unsigned char>(narrow[1]);
    if (const char16_t unit = m_double[(first - 0x80u) << 8 | second]; unit != 0) return {unit, 2};
    for (const FarCharacter& far : m_far) {
        if (far.code == (first << 8 | second)) return {far.value, 2};
    }
    return FirstOfFour(narrow);
}

IconvCodePage::Character IconvCodePage::FirstOfFour(std::string_view narrow) const {
    constexpr Character none = {replacement, 1};
    if (m_four.empty() || narrow.size() < 4) return none;
    const std::span<const unsigned char, 4> bytes(reinterpret_cast<const unsigned char*>(narrow.data()), 4);
    if (!IsFourByteCode(bytes)) return none;
    const std::uint32_t position = PositionOf(bytes);
    if (position < nearPositions) return m_four[position] != 0 ? Character{m_four[position], 4} : none;
    if (position >= farStart && position - farStart <= 0x10FFFF - 0x10000)
        return {0x10000 + (position - farStart), 4};
    return none;
}

IconvCodePage::Bytes IconvCodePage::BytesOf(char32_t character) const {
    constexpr Bytes none = {'?', 1};
    const auto four = [](std::uint32_t position) {
        const auto code = CodeAt(position);
        return Bytes{std::uint32_t{code[0]} << 24 | std::uint32_t{code[1]} << 16 |
                         std::uint32_t{code[2]} << 8 | code[3],
                     4};
    };
    if (character < 0x80) return {character, 1};
    if (character <= 0xFFFF) {
        const std::uint16_t code = m_narrow[character];
        if (m_hasFour[character]) return four(code);
        if (code == 0) return none;
        return {code, code < 0x100 ? 1u : 2u};
    }
    for (const FarCharacter& far : m_far) {
        if (far.value == character) return {far.code, 2};
    }
    return m_four.empty() ? none : four(farStart + (character - 0x10000));
}

std::size_t IconvCodePage::MultiByteToWideChar(std::string_view narrow, std::span<char16_t> wide) const {
    std::size_t units = 0;
    while (!narrow.empty() && units < wide.size()) {
        const Character character = First(narrow);
        narrow.remove_prefix(character.bytes);
        if (character.value <= 0xFFFF) {
            wide[units++] = static_cast<char16_t>(character.value);
            continue;
        }
        if (wide.size() - units < 2) break;
        wide[units++] = static_cast<char16_t>(0xD800 + ((character.value - 0x10000) >> 10));
        wide[units++] = static_cast<char16_t>(0xDC00 + ((character.value - 0x10000) & 0x3FF));
    }
    return units;
}

std::size_t IconvCodePage::WideCharToMultiByte(std::u16string_view wide, std::span<char> narrow) const {
    std::size_t written = 0;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        // Half a pair is in no table.
        char32_t character = wide[i];
        if (IsHighSurrogate(character) && i + 1 < wide.size() && IsLowSurrogate(wide[i + 1]))
            character = 0x10000 + ((character - 0xD800) << 10) + (char32_t{wide[++i]} - 0xDC00);
        const Bytes bytes = BytesOf(character);
        if (narrow.size() - written < bytes.count) break;
        for (std::size_t left = bytes.count; left > 0; --left)
            narrow[written++] = static_cast<char>(bytes.value >> (8 * (left - 1)));
    }
    return written;
}

std::size_t IconvCodePage::CharNext(std::string_view narrow) const {
    return narrow.empty() ? 0 : First(narrow).bytes;
}

}  // namespace varkel
