// Places on the screen, in pixels; y grows downwards.
#pragma once

#include <algorithm>

namespace varkel {

struct Point {
    int x = 0;
    int y = 0;

    bool operator==(const Point&) const = default;
};

struct Size {
    int width = 0;
    int height = 0;

    bool operator==(const Size&) const = default;
};

struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    constexpr int Right() const { return x + width; }    // the first column beside it
    constexpr int Bottom() const { return y + height; }  // the first row below it
    constexpr bool Empty() const { return width <= 0 || height <= 0; }
    constexpr bool Contains(Point at) const {
        return at.x >= x && at.x < Right() && at.y >= y && at.y < Bottom();
    }
    constexpr Rect Moved(int dx, int dy) const { return {x + dx, y + dy, width, height}; }
    constexpr Rect Inset(int by) const { return {x + by, y + by, width - 2 * by, height - 2 * by}; }

    bool operator==(const Rect&) const = default;
};

// What two rectangles share; empty when that is nothing.
constexpr Rect Intersection(const Rect& a, const Rect& b) {
    const int x = std::max(a.x, b.x);
    const int y = std::max(a.y, b.y);
    const int width = std::min(a.Right(), b.Right()) - x;
    const int height = std::min(a.Bottom(), b.Bottom()) - y;
    return width > 0 && height > 0 ? Rect{x, y, width, height} : Rect{};
}

// The smallest rectangle that holds both; an empty one adds nothing.
constexpr Rect Union(const Rect& a, const Rect& b) {
    if (a.Empty()) return b;
    if (b.Empty()) return a;
    const int x = std::min(a.x, b.x);
    const int y = std::min(a.y, b.y);
    return {x, y, std::max(a.Right(), b.Right()) - x, std::max(a.Bottom(), b.Bottom()) - y};
}

}  // namespace varkel
