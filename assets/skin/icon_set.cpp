#include "assets/skin/icon_set.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace varkel::skin {

namespace {

constexpr double unit = 96;  // an icon's own size

// 7 at 96 pixels and above, so much more below that a line never gets thinner than 3 pixels.
double PenOf(double size) {
    const double pixels = std::max(3.0, 3.0 + 4.0 * (size - 32) / (unit - 32));
    return std::min(13.0, pixels * unit / size);
}

// The files give their width of line in em and mark by class what has the accent and what is filled.
std::string StyleSheet(double pen, const IconColors& colors) {
    const std::string line = Hex(colors.line);
    const std::string accent = Hex(colors.accent);
    // Tenths are enough, and the same text in every locale.
    const auto tenths = static_cast<int>(std::lround(pen * 10));
    return "svg{font-size:" + std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) +
           "px;stroke:" + line + "}.accent{stroke:" + accent + "}.dot{fill:" + line +
           ";stroke:none}.accent.dot{fill:" + accent + ";stroke:none}";
}

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "make_skin: %s\n", what.c_str());
    std::exit(EXIT_FAILURE);
}

}  // namespace

IconSet::~IconSet() {
    for (const auto& [name, handle] : m_loaded)
        g_object_unref(handle);
}

RsvgHandle* IconSet::Load(const std::string& name) {
    RsvgHandle*& handle = m_loaded[name];
    if (!handle) handle = rsvg_handle_new_from_file((m_directory + "/" + name + ".svg").c_str(), nullptr);
    if (!handle) Fail(name + ".svg cannot be read");
    return handle;
}

void IconSet::Draw(cairo_t* cairo, const std::string& name, const IconBox& box, const IconColors& colors) {
    RsvgHandle* const handle = Load(name);
    const std::string style = StyleSheet(PenOf(box.size), colors);
    const auto* const bytes = reinterpret_cast<const guint8*>(style.data());
    const RsvgRectangle place{box.x, box.y, box.size, box.size};
    if (!rsvg_handle_set_stylesheet(handle, bytes, style.size(), nullptr) ||
        !rsvg_handle_render_document(handle, cairo, &place, nullptr))
        Fail(name + ".svg cannot be drawn");
}

}  // namespace varkel::skin
