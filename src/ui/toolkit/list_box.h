// A list of which only the rows that are seen are asked for and drawn. Dialog thread.
#pragma once

#include <functional>
#include <string>

#include "ui/toolkit/control.h"
#include "ui/toolkit/dialog_spec.h"

namespace varkel {

struct ListRow {
    std::string text{};
    std::string detail{};                     // below the text, smaller
    std::string note{};                       // at the right, smaller
    const Bitmap* picture = nullptr;          // before the text
    const Bitmap* selectedPicture = nullptr;  // the same on a selected row
    bool emphasised = false;                  // in the accent colour, as what is unread
};

// What the list shows. Both run whenever it is drawn or moved, so they are quick.
struct ListModel {
    std::function<int()> count;
    std::function<ListRow(int row)> row;
};

// A finger that is lifted where it came down selects that row and taps it; one that moves drags the list.
class ListBox final : public Control {
  public:
    ListBox(Dialog& parent, const ListSpec& spec);

    void SetModel(ListModel model);
    // The model's rows have changed: what is selected or at the top stays where there still is such a row.
    void Reload();
    int Count() const { return m_model.count ? m_model.count() : 0; }

    // -1 = none. SelectRow brings the row into sight; neither call taps.
    int SelectedRow() const { return m_selected; }
    void SelectRow(int row);
    int TopRow() const { return m_offset / m_rowHeight; }
    void SetTopRow(int row);
    int VisibleRows() const { return Place().height / m_rowHeight; }
    void PageUp() { SetTopRow(TopRow() - VisibleRows()); }
    void PageDown() { SetTopRow(TopRow() + VisibleRows()); }

    std::function<void(int row)> onTap;
    // A key has selected another row.
    std::function<void()> onSelect;
    // The top row is another one than before, whoever moved it.
    std::function<void()> onScroll;

    void Draw(Canvas& canvas) override;
    void AppendTargets(std::vector<TouchTarget>& targets) const override;
    void OnTouchDown(Point at) override;
    void OnTouchMove(Point at) override;
    void OnTouchUp(Point at) override;
    void OnTouchCancel() override { m_dragging = false; }
    bool TakesFocus() const override { return true; }
    bool OnKey(const KeyEvent& event) override;

  private:
    void SetOffset(int offset);
    void SelectByKey(int row);
    Rect PlaceOf(int row) const;
    void DrawRow(Canvas& canvas, int row) const;

    int m_rowHeight;
    ListModel m_model;
    int m_selected = -1;
    int m_offset = 0;  // pixels of the list above the first that is seen
    Point m_down;
    int m_downOffset = 0;
    bool m_dragging = false;
};

}  // namespace varkel
