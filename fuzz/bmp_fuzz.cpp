// A picture file of any content: it is refused, or all its pixels are there.
#include <cassert>
#include <cstddef>
#include <cstdint>

#include "platform/linux/bmp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace varkel;
    const auto picture = ReadBmp({reinterpret_cast<const char*>(bytes), size});
    if (!picture) return 0;
    const auto [width, height] = picture->size;
    assert(width > 0 && width <= BmpPicture::largestSide && height > 0 && height <= BmpPicture::largestSide);
    assert(picture->pixels.size() == static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (const std::uint32_t pixel : picture->pixels)
        assert(pixel <= 0xFFFFFF);
    return 0;
}
