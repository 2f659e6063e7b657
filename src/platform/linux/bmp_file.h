// Pictures in .bmp files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/geometry.h"

namespace varkel {

struct BmpPicture {
    Size size;
    std::vector<std::uint32_t> pixels;  // 0x00RRGGBB, row by row from the top

    static constexpr int largestSide = 2000;
    // The largest picture and any header.
    static constexpr std::size_t largestFile = std::size_t{4} * largestSide * largestSide + 4096;
};

// Nothing unless the file is whole: 24 or 32 bits a pixel, uncompressed, rows from either end, no side longer
// than `largestSide`. A fourth byte of a pixel is ignored.
std::optional<BmpPicture> ReadBmp(std::string_view file);

}  // namespace varkel
