#include "ui/screens/list_screen.h"

#include <algorithm>
#include <string>

#include "ui/toolkit/radio_group.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr int tapTimer = 1;

// The scroll bar goes on for that many steps behind the last row.
constexpr int spareSteps = 5;

}  // namespace

ListScreen::ListScreen(ScreenContext& context, const DialogSpec& spec, LastTap& lastTap)
    : Dialog(context.desktop, spec), m_context(context), m_lastTap(lastTap) {
    OnClick(tabsId, [this] { SelectTab(Get<RadioGroup>(tabsId).Selected()); });
    OnClick(pageUpId, [this] { TurnPage(-1); });
    OnClick(pageDownId, [this] { TurnPage(1); });
    OnClick(exitId, [this] { EndDialog(DialogResult::Ok); });
}

void ListScreen::OnInitDialog() {
    m_bar = &AddControl<CSkinScrollBar>(SBS_VERT, barPlaceId);
    auto& list = Get<ListBox>(listId);
    list.SetModel({[this] { return RowCount(); }, [this](int row) { return RowOf(row); }});
    list.onTap = [this](int row) { OnTap(row); };
    list.onSelect = [this] { ShowCounter(); };
    list.onScroll = [this] { ShowPlace(); };
    Get<RadioGroup>(tabsId).Select(m_tab);
    Load(m_tab);
    ShowRows(0);
    SetFocus(&list);
}

void ListScreen::OnDestroy() {
    ForgetTap();
    m_rows.clear();
    m_bar = nullptr;
}

void ListScreen::SelectTab(int tab) {
    if (tab == m_tab) return;
    m_tab = tab;
    if (!IsOpen()) return;
    Get<RadioGroup>(tabsId).Select(tab);
    Load(tab);
    Get<ListBox>(listId).SetTopRow(0);
    ShowRows(0);
}

void ListScreen::ShowRows(int selected) {
    ForgetTap();
    m_rows.clear();
    const int count = RowCount();
    Get<StaticText>(emptyId).ShowWindow(count == 0);
    m_bar->SetScrollRange(0, count + spareSteps, 1);
    auto& list = Get<ListBox>(listId);
    list.Reload();
    list.SelectRow(std::max(0, selected));
    ShowPlace();
    ShowCounter();
    OnRowsShown();
}

void ListScreen::Refresh() {
    if (!m_bar || Changing()) return;
    auto& list = Get<ListBox>(listId);
    const int top = list.TopRow();
    const int before = list.SelectedRow();
    const std::optional<int> now = LoadAgain(before);
    if (!now) return;
    ShowRows(*now);
    // What came in is seen by those who look at the top, and moves nothing that is read further down.
    list.SetTopRow(top > 0 ? top + std::max(0, *now - before) : 0);
}

void ListScreen::OnTap(int row) {
    if (row == m_lastTap.row) {
        ForgetTap();
        OnOpenRow(row);
        return;
    }
    ShowCounter();
    m_lastTap.row = row;
    SetTimer(tapTimer, LastTap::time, [this] { ForgetTap(); });
}

void ListScreen::ForgetTap() {
    KillTimer(tapTimer);
    m_lastTap.row = -1;
}

void ListScreen::ShowCounter() {
    Get<StaticText>(counterId).SetWindowText(std::to_string(SelectedRow() + 1) + "/" +
                                             std::to_string(RowCount()));
}

void ListScreen::ShowPlace() {
    const auto& list = Get<ListBox>(listId);
    const int top = list.TopRow();
    m_bar->SetScrollPos(top);
    Get<CSkinButton>(pageUpId).EnableWindow(top > 0);
    Get<CSkinButton>(pageDownId).EnableWindow(top + list.VisibleRows() < RowCount());
}

void ListScreen::TurnPage(int by) {
    auto& list = Get<ListBox>(listId);
    by < 0 ? list.PageUp() : list.PageDown();
}

void ListScreen::OnVScroll(ScrollCode code, int position, CSkinScrollBar& bar) {
    auto& list = Get<ListBox>(listId);
    switch (code) {
        case ScrollCode::LineUp: list.SetTopRow(list.TopRow() - 1); break;
        case ScrollCode::LineDown: list.SetTopRow(list.TopRow() + 1); break;
        case ScrollCode::ThumbTrack:
            list.SetTopRow(position);
            // The thumb stays below the finger, also on the spare steps.
            bar.SetScrollPos(position);
            break;
    }
}

const ListRow& ListScreen::RowOf(int row) {
    if (m_rows.size() >= mostRows) m_rows.clear();
    const auto found = m_rows.find(row);
    if (found != m_rows.end()) return found->second;
    return m_rows.emplace(row, MakeRow(row)).first->second;
}

}  // namespace varkel
