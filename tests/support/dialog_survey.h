// What a dialog looks like to its user: what can be touched, and every text with its box and its ground.
#pragma once

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "tests/platform/pictures.h"
#include "ui/toolkit/dialog.h"

namespace varkel::test {

// A skin and a language: every test of the rules runs in all of them.
using Look = std::tuple<const char*, std::string_view>;

inline auto AllLooks() {
    return testing::Combine(testing::Values("night", "day"), testing::ValuesIn(languageNames));
}
inline std::string NameOfLook(const testing::TestParamInfo<Look>& run) {
    const auto& [skin, languageName] = run.param;
    return std::string(skin) + "_" + std::string(languageName);
}

struct ShownText {
    std::string text;
    Rect box;
    TextFormat format = TextFormat::Left;
    LogFont font;
    ColorRef color = 0;
    ColorRef ground = 0;  // the colour that most of the box has, where the text stands
    bool fits = false;
};

// Draws on a surface, and writes down each text before it is drawn.
class TextSurvey final : public Canvas {
  public:
    explicit TextSurvey(Graphics& graphics)
        : m_graphics(graphics), m_surface(graphics.CreateSurface(Display::screen)) {}

    std::vector<ShownText> texts;

    void PushClip(const Rect& clip) override { Target().PushClip(clip); }
    void PopClip() override { Target().PopClip(); }
    void FillRect(const Rect& rect, ColorRef color) override { Target().FillRect(rect, color); }
    void RoundRect(const Rect& rect, int radius, ColorRef fill, ColorRef edge, double width) override {
        Target().RoundRect(rect, radius, fill, edge, width);
    }
    void BitBlt(const Bitmap& picture, Point at) override { Target().BitBlt(picture, at); }
    void BitBlt(const Bitmap& picture, const Rect& part, Point at) override {
        Target().BitBlt(picture, part, at);
    }
    void StretchBlt(const Bitmap& picture, const Rect& to) override { Target().StretchBlt(picture, to); }
    void TransparentImage(const Bitmap& picture, const Rect& to, ColorRef key) override {
        Target().TransparentImage(picture, to, key);
    }
    void DrawText(std::string_view text, const Rect& rect, TextFormat format, const LogFont& font,
                  ColorRef color) override {
        if (!text.empty()) {
            const bool breaks = Has(format, TextFormat::WordBreak);
            const Size needed = m_graphics.MeasureText(text, font, breaks ? rect.width : 0);
            const bool fits = needed.width <= rect.width && needed.height <= rect.height;
            texts.push_back({std::string(text), rect, format, font, color, Ground(rect, needed), fits});
        }
        Target().DrawText(text, rect, format, font, color);
    }

  private:
    Canvas& Target() { return m_surface->GetCanvas(); }

    // Of the middle of the box, as large as the text.
    ColorRef Ground(const Rect& box, Size text) const {
        const Rect at = Intersection(box, {box.x + (box.width - text.width) / 2,
                                           box.y + (box.height - text.height) / 2, text.width, text.height});
        std::map<ColorRef, int> counts;
        for (int y = at.y; y < at.Bottom(); y += 2) {
            for (int x = at.x; x < at.Right(); x += 2)
                ++counts[m_surface->Picture().GetPixel({x, y})];
        }
        const auto most = std::max_element(counts.begin(), counts.end(),
                                           [](const auto& a, const auto& b) { return a.second < b.second; });
        return most == counts.end() ? 0 : most->first;
    }

    Graphics& m_graphics;
    std::unique_ptr<Surface> m_surface;
};

// The texts of an open dialog.
inline std::vector<ShownText> TextsOf(Dialog& dialog) {
    TextSurvey survey(dialog.GetDesktop().GetGraphics());
    dialog.Paint(survey, {0, 0, Display::screen.width, Display::screen.height});
    return survey.texts;
}

// What breaks the rules of an open dialog: targets too small for a finger, texts that do not fit their boxes,
// are too small or hard to tell from their ground. A caption in the disabled colour may be fainter.
inline std::vector<std::string> FaultsOf(Dialog& dialog) {
    constexpr int finger = 63;
    std::vector<std::string> faults;
    for (const TouchTarget& target : dialog.Targets()) {
        if (target.rect.width < finger || target.rect.height < finger) {
            faults.push_back("target " + std::to_string(target.id) + " is too small");
        }
    }
    for (const ShownText& shown : TextsOf(dialog)) {
        if (!shown.fits) faults.push_back("\"" + shown.text + "\" does not fit");
        if (shown.font.height < 22) faults.push_back("\"" + shown.text + "\" is too small");
        const bool disabled =
            shown.color == SkinColors::disabled || shown.color == dialog.GetDesktop().Colors().disabled;
        const double least = disabled ? 3 : 4.5;
        if (Contrast(shown.color, shown.ground) < least) faults.push_back("\"" + shown.text + "\" is faint");
    }
    return faults;
}

}  // namespace varkel::test
