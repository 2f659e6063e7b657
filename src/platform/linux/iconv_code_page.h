// Code pages as the C library's iconv knows them.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/code_page.h"

namespace varkel {

// A page read into tables when it is made, because iconv keeps a state between calls and takes 50 ns and more
// for each of them: 3 ms and 285 KB for GB18030, 2 ms and 210 KB for the others.
class IconvCodePage : public CodePage {
  public:
    // Null when iconv does not know `name`, or not as a page that holds ASCII unchanged and has characters of
    // one or two bytes, or the four bytes of GB18030, without shift states.
    static std::unique_ptr<IconvCodePage> Create(const std::string& name);

    std::size_t MultiByteToWideChar(std::string_view narrow, std::span<char16_t> wide) const override;
    std::size_t WideCharToMultiByte(std::u16string_view wide, std::span<char> narrow) const override;
    std::size_t CharNext(std::string_view narrow) const override;

  private:
    class Builder;

    // A character and the bytes it takes in the page.
    struct Character {
        char32_t value;
        std::size_t bytes;
    };
    // The bytes of a character, the last in the lowest eight bits.
    struct Bytes {
        std::uint32_t value;
        std::size_t count;
    };
    // A character above U+FFFF that has two bytes. GB18030 has six.
    struct FarCharacter {
        char32_t value;
        std::uint16_t code;
    };

    IconvCodePage();
    Character First(std::string_view narrow) const;
    Character FirstOfFour(std::string_view narrow) const;
    Bytes BytesOf(char32_t character) const;

    // In every table 0 says that there is none.
    std::array<char16_t, 256> m_single{};  // by byte
    std::vector<char16_t> m_double;        // by both bytes, the first less 0x80
    std::vector<char16_t> m_four;          // by position among the codes of four bytes; empty without those
    std::vector<std::uint16_t> m_narrow;   // by unit: the byte or bytes, or the position of four
    std::bitset<0x10000> m_hasFour;        // by unit: its code has four bytes
    std::vector<FarCharacter> m_far;
};

}  // namespace varkel
