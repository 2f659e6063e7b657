// A screen with a list: tabs that choose what is listed, the rows, the newest first, with a scroll bar and
// large buttons for whole pages, and the count in the bar. The screens of messages and calls stand on it.
// Dialog thread.
#pragma once

#include <map>
#include <optional>

#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"
#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/list_box.h"
#include "ui/toolkit/skin_scroll_bar.h"

namespace varkel {

// The row that was tapped last, for a short time: a second tap on it opens it. A process has one for each
// kind of list.
struct LastTap {
    int row = -1;

    static constexpr Ticks time = 150;
};

class ListScreen : public Dialog {
  public:
    static constexpr int exitId = 1075;
    static constexpr int tabsId = 1100;
    static constexpr int listId = 1101;
    static constexpr int barPlaceId = 1102;
    static constexpr int titleId = 1103;
    static constexpr int counterId = 1104;
    static constexpr int emptyId = 1105;
    static constexpr int pageUpId = 1106;
    static constexpr int pageDownId = 1107;

    // The rows of the derived screen's tables that all such screens have. Every screen needs all of them.
    static constexpr RadioSpec Tabs(std::span<const std::string_view> captions) {
        return {.id = tabsId,
                .rect = {8, 58, 600, 66},
                .item = {200, 66},
                .picture = "\\ResidentFlash2\\bin\\GPRS\\Radio1",
                .captions = captions,
                .look = RadioLook::Tab,
                .role = TextRole::Button};
    }
    static constexpr TextSpec Title(std::string_view caption) { return form::ListTitle(titleId, caption); }
    static constexpr TextSpec Counter() { return form::Counter(counterId); }
    // What stands in place of the rows when there are none.
    static constexpr TextSpec Empty(std::string_view caption) {
        return {emptyId, {24, 258, 508, 88}, caption, TextRole::Body, inTheMiddle};
    }
    // A button of the column at the right, counted from 0.
    static constexpr auto Action = form::Action;
    static constexpr ButtonSpec PageUp() { return form::PageUp(pageUpId); }
    static constexpr ButtonSpec PageDown() { return form::PageDown(pageDownId); }
    static constexpr ButtonSpec Exit() { return form::Exit(exitId); }
    static constexpr ListSpec List() { return {listId, {8, 130, 540, 344}, 86}; }
    static constexpr PlaceSpec BarPlace() { return {barPlaceId, {552, 130, 48, 344}}; }

    static constexpr std::string_view directory = form::directory;
    static constexpr std::string_view background = form::listBackground;

    // Another program or the modem may have changed what is listed.
    void OnSessionChanged() override { Refresh(); }

  protected:
    ListScreen(ScreenContext& context, const DialogSpec& spec, LastTap& lastTap);

    // Reads the records of the tab from their file.
    virtual void Load(int tab) = 0;
    // Reads them again; when they are other ones than before, answers in which row the record that stood in
    // `row` stands now, or its place was.
    virtual std::optional<int> LoadAgain(int row) = 0;
    virtual int RowCount() const = 0;
    // Asked once for each row that is seen, until the rows change.
    virtual ListRow MakeRow(int row) = 0;
    // The second tap.
    virtual void OnOpenRow(int row) = 0;
    // The rows are another ones now; there are none or one of them is selected.
    virtual void OnRowsShown() = 0;
    // What this screen has changed itself is not in the file yet.
    virtual bool Changing() const { return false; }

    void OnInitDialog() override;
    void OnDestroy() override;
    void OnVScroll(ScrollCode code, int position, CSkinScrollBar& bar) override;

    // On the open screen, or before it opens.
    void SelectTab(int tab);
    int Tab() const { return m_tab; }
    // -1 when there is none.
    int SelectedRow() const { return Get<ListBox>(listId).SelectedRow(); }
    // Shows the rows after the screen itself has changed them, with this one selected.
    void ShowRows(int selected);
    // Reads what is listed again, and keeps the selection on its record.
    void Refresh();

    ScreenContext& m_context;

  private:
    static constexpr auto inTheMiddle = TextFormat::Center | TextFormat::VCenter | TextFormat::WordBreak;

    void OnTap(int row);
    void ForgetTap();
    void ShowCounter();
    void ShowPlace();
    void TurnPage(int by);
    const ListRow& RowOf(int row);

    LastTap& m_lastTap;
    CSkinScrollBar* m_bar = nullptr;  // while the screen is open
    int m_tab = 0;
    std::map<int, ListRow> m_rows;  // that were seen

    static constexpr std::size_t mostRows = 256;  // kept, so that they are not made for each paint
};

}  // namespace varkel
