// What every display of this backend has in common: the picture, what of it is to be painted anew, the input.
#pragma once

#include <memory>

#include "platform/display.h"
#include "platform/linux/cairo_canvas.h"
#include "platform/linux/cairo_graphics.h"
#include "platform/linux/display_input.h"

namespace varkel {

// Dialog thread.
class PaintedDisplay : public Display {
  public:
    ~PaintedDisplay() override;

    void SetClient(DisplayClient client) override;
    void ShowWindow(bool show) override;
    bool IsShown() const override { return m_shown; }
    void InvalidateRect(const Rect& rect) override;
    void UpdateWindow() override;
    Point GetCursorPos() const override { return m_input->GetCursorPos(); }
    Graphics& GetGraphics() override { return m_graphics; }

  protected:
    // Hidden at first.
    PaintedDisplay(MessageLoop& loop, UnitFiles& files);

    // Those pixels of the picture are new.
    virtual void Present(const Rect& damage) = 0;
    virtual void ShowOnScreen(bool show) = 0;

    const CairoBitmap& BackBuffer() const { return *m_picture; }
    const std::shared_ptr<DisplayInput>& Input() const { return m_input; }

  private:
    void PaintSoon();
    void Handle(const InputEvent& event);

    MessageLoop& m_loop;
    CairoGraphics m_graphics;
    const std::unique_ptr<CairoBitmap> m_picture;
    CairoCanvas m_canvas;
    const std::shared_ptr<DisplayInput> m_input;
    std::shared_ptr<const DisplayClient> m_client;  // held while one of its functions runs
    const std::shared_ptr<PaintedDisplay*> m_self;  // posted work finds nobody there afterwards
    Rect m_damage;
    bool m_shown = false;
    bool m_touched = false;
    bool m_posted = false;
    bool m_painting = false;
};

}  // namespace varkel
