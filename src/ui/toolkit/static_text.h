// A text that only stands there, and a place that is only kept. Dialog thread.
#pragma once

#include <string>
#include <string_view>

#include "ui/toolkit/control.h"
#include "ui/toolkit/dialog_spec.h"

namespace varkel {

class StaticText final : public Control {
  public:
    StaticText(Dialog& parent, const TextSpec& spec);

    void SetWindowText(std::string_view text);
    const std::string& GetWindowText() const { return m_text; }
    void SetFont(const LogFont& font);
    void SetTextColor(ColorRef color);

    void Draw(Canvas& canvas) override;

  private:
    TextFormat m_format;
    bool m_whiteGround;
    LogFont m_font;
    ColorRef m_color;
    std::string m_text;
};

class PlaceHolder final : public Control {
  public:
    PlaceHolder(Dialog& parent, const PlaceSpec& spec) : Control(parent, spec.id, spec.rect) {}
    void Draw(Canvas&) override {}
};

}  // namespace varkel
