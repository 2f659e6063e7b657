#include "ui/screens/network_set_dlg.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "session/isp_text.h"
#include "ui/screens/isp_dlg.h"
#include "ui/screens/network_mode.h"
#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/radio_group.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {

namespace {

constexpr int barPlaceId = 1106;
constexpr int pageUpId = 1107;
constexpr int pageDownId = 1108;
constexpr int builtInRow = 0;
constexpr std::string_view account = "Account";

enum Tab : int { ModeTab = 0, OperatorsTab = 1 };

constexpr auto oneLine = TextFormat::Left | TextFormat::VCenter | TextFormat::SingleLine;
constexpr TextSpec texts[] = {{1110, {14, 0, 702, 50}, "IDS_NETWORK_MODE", TextRole::Title, oneLine}};

constexpr std::string_view tabCaptions[] = {"IDS_NETWORK_MODE", "IDS_LIST_ISP"};
constexpr RadioSpec radios[] = {
    {.id = CDlgNetworkSet::tabsId,
     .rect = {8, 58, 400, 66},
     .item = {200, 66},
     .picture = "\\ResidentFlash2\\bin\\GPRS\\Radio1",
     .captions = tabCaptions,
     .look = RadioLook::Tab,
     .role = TextRole::Button},
    {.id = CDlgNetworkSet::modesId,
     .rect = {24, 134, 516, 335},
     .item = {516, 67},
     .picture = "\\ResidentFlash2\\bin\\GPRS\\Radio",
     .captions = networkModeKeys},
};

constexpr ListSpec lists[] = {{CDlgNetworkSet::listId, {8, 130, 540, 344}, 86}};
constexpr Rect barPlace{552, 130, 48, 344};
constexpr PlaceSpec places[] = {{barPlaceId, barPlace}};

constexpr ButtonSpec buttons[] = {
    form::Action(0, CDlgNetworkSet::useId, "ItemSelect", DisabledPicture::Dis, "IDS_USE"),
    form::Action(1, CDlgNetworkSet::editId, "ItemEdit", DisabledPicture::Dis, "IDS_EDIT"),
    form::Action(2, CDlgNetworkSet::newId, "ItemNew", DisabledPicture::Dis, "IDS_NEW"),
    form::PageUp(pageUpId),
    form::PageDown(pageDownId),
    form::Exit(CDlgNetworkSet::exitId),
};

constexpr DialogSpec spec{
    .directory = form::directory,
    .background = form::listBackground,
    .texts = texts,
    .buttons = buttons,
    .lists = lists,
    .radios = radios,
    .places = places,
    .returnClicks = noId,
    .escapeClicks = CDlgNetworkSet::exitId,
};

bool Same(const ISP_Struct& a, const ISP_Struct& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

CDlgNetworkSet::CDlgNetworkSet(ScreenContext& context) : Dialog(context.desktop, spec), m_context(context) {
    OnClick(tabsId, [this] { ShowTab(); });
    OnClick(useId, [this] { Use(); });
    OnClick(newId, [this] { Edit(true); });
    OnClick(editId, [this] { Edit(false); });
    OnClick(pageUpId, [this] { Get<ListBox>(listId).PageUp(); });
    OnClick(pageDownId, [this] { Get<ListBox>(listId).PageDown(); });
    OnClick(exitId, [this] { Close(); });
}

void CDlgNetworkSet::OnInitDialog() {
    m_bar = &AddControl<CSkinScrollBar>(SBS_VERT, barPlaceId);
    m_picture = LoadPicture("RowOperator");
    m_selectedPicture = LoadPicture("RowOperatorSel");
    auto& list = Get<ListBox>(listId);
    list.SetModel({[this] { return static_cast<int>(m_operators.size()) + 1; },
                   [this](int row) { return MakeRow(row); }});
    list.onTap = [this](int) { OnSelect(); };
    list.onScroll = [this] { ShowPlace(); };
    ShowMode();
    Load();
    list.SelectRow(m_inUse);
    ShowTab();
}

// The background has the channel of the list's scroll bar.
void CDlgNetworkSet::OnPaint(Canvas& canvas) {
    if (Get<RadioGroup>(tabsId).Selected() == ModeTab)
        canvas.FillRect(barPlace, GetDesktop().Colors().background);
}

void CDlgNetworkSet::OnDestroy() {
    m_bar = nullptr;
    m_picture = m_selectedPicture = nullptr;
    m_operators.clear();
}

// A change of the mode would end a call.
void CDlgNetworkSet::OnSessionChanged() {
    if (!IsOpen()) return;
    const bool inCall = m_context.session.State().m_bCallActive;
    if (inCall) ShowMode();
    Get<RadioGroup>(modesId).EnableWindow(!inCall);
}

void CDlgNetworkSet::ShowMode() {
    const std::size_t item = NetworkModeItem(m_context.session.Choices().NetworkMode());
    Get<RadioGroup>(modesId).Select(static_cast<int>(item));
}

void CDlgNetworkSet::ShowTab() {
    const bool operators = Get<RadioGroup>(tabsId).Selected() == OperatorsTab;
    Invalidate(barPlace);
    Get<RadioGroup>(modesId).ShowWindow(!operators);
    Get<ListBox>(listId).ShowWindow(operators);
    m_bar->ShowWindow(operators);
    for (const int id : {useId, newId, editId, pageUpId, pageDownId})
        Get<CSkinButton>(id).ShowWindow(operators);
    if (operators) SetFocus(&Get<ListBox>(listId));
}

void CDlgNetworkSet::Load() {
    m_operators = m_context.session.Data().Operators().Load();
    m_inUse = RowInUse(m_context.session.Data().CurrentIsp());
    auto& list = Get<ListBox>(listId);
    list.Reload();
    const int rows = list.Count();
    m_bar->SetScrollRange(0, std::max(0, rows - list.VisibleRows()), list.VisibleRows());
    OnSelect();
    ShowPlace();
}

// Of several that look alike, the one that was chosen; -1 when the one in use is not in the list any more.
int CDlgNetworkSet::RowInUse(const ISP_Struct& current) const {
    const auto chosen = static_cast<std::size_t>(
        m_context.session.GetSettings().ReadDword(Settings::networkModeKey, account));
    if (chosen >= 1 && chosen <= m_operators.size() && Same(m_operators[chosen - 1], current))
        return static_cast<int>(chosen);
    for (std::size_t i = 0; i < m_operators.size(); ++i) {
        if (Same(m_operators[i], current)) return static_cast<int>(i) + 1;
    }
    return Same(DefaultIsp(), current) ? builtInRow : -1;
}

ListRow CDlgNetworkSet::MakeRow(int row) const {
    const ISP_Struct* const isp = OperatorOf(row);
    const IspText text = IspTextOf(m_context.platform.codePage, isp ? *isp : DefaultIsp());
    ListRow shown;
    shown.text = isp ? text.name : LoadText("IDS_ISP_BUILT_IN");
    shown.detail = text.accessPoint;
    if (!text.operatorCode.empty()) shown.detail += "  " + text.operatorCode;
    if (row == m_inUse) shown.note = LoadText("IDS_IN_USE");
    shown.picture = m_picture;
    shown.selectedPicture = m_selectedPicture;
    shown.emphasised = row == m_inUse;
    return shown;
}

const ISP_Struct* CDlgNetworkSet::OperatorOf(int row) const {
    const auto index = static_cast<std::size_t>(row - 1);
    return row > builtInRow && index < m_operators.size() ? &m_operators[index] : nullptr;
}

void CDlgNetworkSet::OnSelect() {
    const int row = Get<ListBox>(listId).SelectedRow();
    Get<CSkinButton>(useId).EnableWindow(row >= 0 && row != m_inUse);
    Get<CSkinButton>(editId).EnableWindow(OperatorOf(row) != nullptr);
}

void CDlgNetworkSet::ShowPlace() {
    const auto& list = Get<ListBox>(listId);
    const int top = list.TopRow();
    m_bar->SetScrollPos(top);
    Get<CSkinButton>(pageUpId).EnableWindow(top > 0);
    Get<CSkinButton>(pageDownId).EnableWindow(top + list.VisibleRows() < list.Count());
}

void CDlgNetworkSet::OnVScroll(ScrollCode code, int position, CSkinScrollBar&) {
    auto& list = Get<ListBox>(listId);
    switch (code) {
        case ScrollCode::LineUp: list.SetTopRow(list.TopRow() - 1); break;
        case ScrollCode::LineDown: list.SetTopRow(list.TopRow() + 1); break;
        case ScrollCode::ThumbTrack: list.SetTopRow(position); break;
    }
    ShowPlace();
}

void CDlgNetworkSet::Use() {
    const int row = Get<ListBox>(listId).SelectedRow();
    const ISP_Struct* const isp = OperatorOf(row);
    m_context.session.GetSettings().WriteDword(Settings::networkModeKey, account,
                                               static_cast<std::uint32_t>(row));
    SetISPToReg(isp ? *isp : DefaultIsp());
}

void CDlgNetworkSet::SetISPToReg(const ISP_Struct& isp) {
    const bool kept = m_context.session.Data().SetISPToReg(isp);
    Load();
    if (kept) CWarnDlg(GetDesktop(), WarnCode::IspChanged, WarnButtonMode::Ok, true).DoModal();
}

void CDlgNetworkSet::Edit(bool isNew) {
    auto& list = Get<ListBox>(listId);
    const int row = list.SelectedRow();
    const ISP_Struct* const seen = isNew ? nullptr : OperatorOf(row);
    if (!isNew && !seen) return;
    const bool wasInUse = !isNew && row == m_inUse;
    CDlgISP dialog(m_context);
    if (seen) dialog.SetOperator(*seen, static_cast<std::size_t>(row - 1));
    const DialogResult result = dialog.DoModal();
    if (!IsOpen()) return;
    Load();
    if (result != DialogResult::Ok) return;
    if (isNew) list.SelectRow(builtInRow + 1);
    OnSelect();
    // The one in use stays in use as it is now.
    if (wasInUse && dialog.Saved()) SetISPToReg(*dialog.Saved());
}

void CDlgNetworkSet::Close() {
    UserChoices& choices = m_context.session.Choices();
    const auto item = static_cast<std::size_t>(Get<RadioGroup>(modesId).Selected());
    const bool inCall = m_context.session.State().m_bCallActive;
    if (!inCall && item != NetworkModeItem(choices.NetworkMode()))
        choices.SetNetworkMode(NetworkModeOf(item));
    EndDialog(DialogResult::Ok);
}

}  // namespace varkel
