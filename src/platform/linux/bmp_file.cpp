#include "platform/linux/bmp_file.h"

namespace varkel {

namespace {

constexpr std::size_t fileHeader = 14;
constexpr std::size_t infoHeader = 40;  // the smallest one with all fields that are read

std::uint32_t Number(std::string_view bytes, std::size_t at, std::size_t octets) {
    std::uint32_t number = 0;
    for (std::size_t i = octets; i > 0; --i)
        number = number << 8 | static_cast<std::uint8_t>(bytes[at + i - 1]);
    return number;
}

struct Header {
    std::size_t pixelsAt = 0;
    Size size;
    bool topDown = false;
    std::size_t pixelBytes = 0;

    // A row fills whole words.
    std::size_t RowBytes() const { return (static_cast<std::size_t>(size.width) * pixelBytes + 3) / 4 * 4; }
};

// The masks behind the header say where in a pixel a colour stands; only the usual order is taken.
bool UsualMasks(std::string_view file) {
    constexpr std::size_t at = fileHeader + infoHeader;
    return file.size() >= at + 12 && Number(file, at, 4) == 0xFF0000 && Number(file, at + 4, 4) == 0xFF00 &&
           Number(file, at + 8, 4) == 0xFF;
}

std::optional<Header> ReadHeader(std::string_view file) {
    if (file.size() < fileHeader + infoHeader || !file.starts_with("BM")) return std::nullopt;
    if (Number(file, 14, 4) < infoHeader || Number(file, 26, 2) != 1) return std::nullopt;
    const auto width = static_cast<std::int32_t>(Number(file, 18, 4));
    const auto height = static_cast<std::int32_t>(Number(file, 22, 4));
    constexpr int largest = BmpPicture::largestSide;
    if (width < 1 || width > largest || height == 0 || height < -largest || height > largest)
        return std::nullopt;

    constexpr std::uint32_t plain = 0;
    constexpr std::uint32_t masked = 3;
    const std::uint32_t bits = Number(file, 28, 2);
    const std::uint32_t coding = Number(file, 30, 4);
    if (bits != 24 && bits != 32) return std::nullopt;
    if (coding != plain && !(coding == masked && bits == 32 && UsualMasks(file))) return std::nullopt;

    Header header;
    header.pixelsAt = Number(file, 10, 4);
    header.size = {width, height < 0 ? -height : height};
    header.topDown = height < 0;
    header.pixelBytes = bits / 8;
    const std::size_t bytes = header.RowBytes() * static_cast<std::size_t>(header.size.height);
    if (header.pixelsAt < fileHeader + infoHeader || header.pixelsAt > file.size() ||
        file.size() - header.pixelsAt < bytes) {
        return std::nullopt;
    }
    return header;
}

}  // namespace

std::optional<BmpPicture> ReadBmp(std::string_view file) {
    const auto header = ReadHeader(file);
    if (!header) return std::nullopt;
    const auto rows = static_cast<std::size_t>(header->size.height);
    const auto columns = static_cast<std::size_t>(header->size.width);
    BmpPicture picture{header->size, std::vector<std::uint32_t>(rows * columns)};
    auto pixel = picture.pixels.begin();
    for (std::size_t y = 0; y < rows; ++y) {
        const std::size_t row = header->topDown ? y : rows - 1 - y;
        std::size_t at = header->pixelsAt + row * header->RowBytes();
        for (std::size_t x = 0; x < columns; ++x, at += header->pixelBytes)
            *pixel++ = Number(file, at, 3);
    }
    return picture;
}

}  // namespace varkel
