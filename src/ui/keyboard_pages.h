// What the keys of the soft keyboard type, as tables.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace varkel {

enum class KeyAction { Type, Shift, Back, Done, Latin, Cyrillic, Symbols };

struct KeyboardKey {
    // UTF-8 characters: the one that the key types, and those that follow one another while it is held.
    std::string_view types{};
    KeyAction action = KeyAction::Type;
    int columns = 1;
};

enum class KeyboardPage { Latin, Cyrillic, Symbols };

inline constexpr int keyboardRows = 3;
inline constexpr int keyboardColumns = 12;

std::array<std::span<const KeyboardKey>, keyboardRows> RowsOf(KeyboardPage page);

// The choice of a key that has been held for that many steps; the last one stays.
std::string_view ChoiceOf(const KeyboardKey& key, int step);

// One character in upper case, Latin or Cyrillic; any other stays.
std::string UpperCase(std::string_view character);

}  // namespace varkel
