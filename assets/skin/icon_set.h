// The line icons, in any size and in two colours.
#pragma once

#include <librsvg/rsvg.h>
#include <map>
#include <memory>
#include <string>

#include "assets/skin/palette.h"

namespace varkel::skin {

// The lines of an icon, and the detail that tells what it is about.
struct IconColors {
    Color line;
    Color accent;
};

// A place for an icon, which is square.
struct IconBox {
    double x;
    double y;
    double size;
};

// The .svg files of a directory. Their lines get thicker, in relation, the smaller an icon is drawn, so that
// all icons of a screen look drawn by one pen.
class IconSet {
  public:
    explicit IconSet(std::string directory) : m_directory(std::move(directory)) {}
    ~IconSet();
    IconSet(const IconSet&) = delete;
    IconSet& operator=(const IconSet&) = delete;

    // Ends the program, with a message, when there is no such icon.
    void Draw(cairo_t* cairo, const std::string& name, const IconBox& box, const IconColors& colors);

  private:
    RsvgHandle* Load(const std::string& name);

    const std::string m_directory;
    std::map<std::string, RsvgHandle*> m_loaded;
};

}  // namespace varkel::skin
