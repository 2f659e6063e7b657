// What the keys of the soft keyboard type, as tables.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace varkel {

enum class KeyAction { Type, Shift, Back, Done, Latin, National, Symbols };

struct KeyboardKey {
    // UTF-8 characters: the one that the key types, and those that follow one another while it is held.
    std::string_view types{};
    KeyAction action = KeyAction::Type;
    int columns = 1;
};

enum class KeyboardPage { Latin, Cyrillic, Arabic, Symbols };

inline constexpr int keyboardRows = 3;
inline constexpr int keyboardColumns = 12;

std::array<std::span<const KeyboardKey>, keyboardRows> RowsOf(KeyboardPage page);

// The letters that the National key brings: those of the language, or Cyrillic ones where it is written in
// Latin ones.
KeyboardPage NationalPage(std::string_view language);
// The page that the keyboard of a language begins with.
KeyboardPage FirstPage(std::string_view language);

// The choice of a key that has been held for that many steps; the last one stays.
std::string_view ChoiceOf(const KeyboardKey& key, int step);

// One character in upper case, Latin or Cyrillic; any other stays.
std::string UpperCase(std::string_view character);

}  // namespace varkel
