// Makes the files of one skin: make_skin PALETTE ICONS DIRECTORY
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>
#include <string>

#include "assets/skin/icon_set.h"
#include "assets/skin/painter.h"
#include "assets/skin/palette.h"
#include "assets/skin/pictures.h"

namespace {

using namespace varkel;
using namespace varkel::skin;

struct Variant {
    std::string_view suffix;
    State state;
};

std::span<const Variant> VariantsOf(Files files) {
    static constexpr Variant dis[] = {{"", State::Normal}, {"Sel", State::Sel}, {"Dis", State::Disabled}};
    static constexpr Variant option[] = {{"", State::Normal},
                                         {"Sel", State::Sel},
                                         {"Disable", State::Disabled},
                                         {"SelDisable", State::SelDisabled}};
    static constexpr Variant tab[] = {{"1", State::Normal}, {"Sel1", State::Sel}};
    const std::span all(option);
    switch (files) {
        case Files::One: return all.first(1);
        case Files::Sel: return all.subspan(1, 1);
        case Files::Two: return all.first(2);
        case Files::Disable: return all.first(3);
        case Files::Option: return all;
        case Files::Dis: return dis;
        case Files::Tab: break;
    }
    return tab;
}

std::optional<std::string> Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    return std::string{std::istreambuf_iterator<char>(file), {}};
}

bool Write(const std::filesystem::path& path, const std::string& bytes) {
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    return bool(file);
}

bool WritePicture(const Picture& picture, const Variant& variant, const Palette& colors, IconSet& icons,
                  const std::filesystem::path& directory) {
    constexpr Color magenta{0xFF, 0x00, 0xFF};
    Painter painter(picture.size, icons);
    picture.draw(painter, colors, picture, variant.state);
    const bool selected = variant.state == State::Sel;
    const Color ground = colors.*(selected ? picture.detail.ground.sel : picture.detail.ground.normal);
    const std::string name = std::string(picture.name) + std::string(variant.suffix) + ".bmp";
    return Write(directory / name, painter.Bmp(ground, picture.detail.ground.keyed ? magenta : ground));
}

int Fail(const std::string& what) {
    std::fprintf(stderr, "make_skin: %s\n", what.c_str());
    return EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) return Fail("usage: make_skin PALETTE ICONS DIRECTORY");
    const auto text = Read(argv[1]);
    if (!text) return Fail(std::string(argv[1]) + " cannot be read");
    std::string problem;
    const auto colors = Palette::Parse(*text, problem);
    if (!colors) return Fail(std::string(argv[1]) + ": " + problem);

    IconSet icons(argv[2]);
    const std::filesystem::path directory = argv[3];
    const auto pictures = directory / "ResidentFlash2" / "bin" / "Gprs";
    for (const Picture& picture : AllPictures()) {
        for (const Variant& variant : VariantsOf(picture.files)) {
            if (!WritePicture(picture, variant, *colors, icons, pictures))
                return Fail(std::string(picture.name) + " cannot be written");
        }
    }
    // Last of all: the build takes it as the sign that everything is there.
    if (!Write(pictures / "palette.txt", *text) ||
        !Write(directory / "registry.txt", colors->CharacterAttr()))
        return Fail("the palette cannot be written");
    return EXIT_SUCCESS;
}
