// Pictures that a test writes down and reads back.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/canvas.h"

namespace varkel::test {

inline std::string LittleEndian(std::uint32_t value, int octets) {
    std::string bytes;
    for (int i = 0; i < octets; ++i)
        bytes += static_cast<char>(value >> 8 * i);
    return bytes;
}

// The pixels of a picture as rows of letters: "." black, "r", "g", "b", "w" white, "k" magenta, "?" any
// other.
using Rows = std::vector<std::string>;

inline ColorRef ColorOf(char letter) {
    switch (letter) {
        case 'r': return Rgb(255, 0, 0);
        case 'g': return Rgb(0, 255, 0);
        case 'b': return Rgb(0, 0, 255);
        case 'w': return Rgb(255, 255, 255);
        case 'k': return Rgb(255, 0, 255);
        default: return 0;
    }
}

inline char LetterOf(ColorRef color) {
    for (const char letter : {'.', 'r', 'g', 'b', 'w', 'k'}) {
        if (ColorOf(letter) == color) return letter;
    }
    return '?';
}

inline Rows RowsOf(const Bitmap& picture) {
    const Size size = picture.GetSize();
    Rows rows(static_cast<std::size_t>(size.height));
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x)
            rows[static_cast<std::size_t>(y)] += LetterOf(picture.GetPixel({x, y}));
    }
    return rows;
}

// A file of 24 bits a pixel, the lowest row first.
inline std::string Bmp(const Rows& rows) {
    const std::size_t width = rows.empty() ? 0 : rows[0].size();
    std::string pixels;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        for (const char letter : *row) {
            const ColorRef color = ColorOf(letter);
            pixels += LittleEndian(color >> 16, 1) + LittleEndian(color >> 8, 1) + LittleEndian(color, 1);
        }
        pixels.append((4 - width * 3 % 4) % 4, '\0');
    }
    const auto number = [](std::size_t value) { return LittleEndian(static_cast<std::uint32_t>(value), 4); };
    return "BM" + number(54 + pixels.size()) + number(0) + number(54) + number(40) + number(width) +
           number(rows.size()) + LittleEndian(1, 2) + LittleEndian(24, 2) + std::string(24, '\0') + pixels;
}

// As WCAG 2 defines it: 1 to 21.
inline double Contrast(ColorRef a, ColorRef b) {
    const auto luminance = [](ColorRef color) {
        const auto linear = [](ColorRef channel) {
            const double value = (channel & 0xFF) / 255.0;
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color) + 0.7152 * linear(color >> 8) + 0.0722 * linear(color >> 16);
    };
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

// The smallest rectangle around all pixels that are not black.
inline Rect Ink(const Bitmap& picture) {
    Rect ink;
    const Size size = picture.GetSize();
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            if (picture.GetPixel({x, y}) != 0) ink = Union(ink, {x, y, 1, 1});
        }
    }
    return ink;
}

}  // namespace varkel::test
