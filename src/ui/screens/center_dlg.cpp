#include "ui/screens/center_dlg.h"

#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {

namespace {

constexpr auto oneLine = TextFormat::Left | TextFormat::VCenter | TextFormat::SingleLine;
constexpr TextSpec texts[] = {
    {1100, {14, 0, 702, 50}, "IDS_SERVERNUM", TextRole::Title, oneLine},
    {1102, {24, 76, 560, 44}, "IDS_NUMBER", TextRole::Body, oneLine, TextGround::Static},
};
constexpr EditSpec edits[] = {
    {.id = CCenterDlg::numberId,
     .rect = {24, 130, 560, 80},
     .input = EditInput::PhoneNumber,
     .maxUnits = UserChoices::longestCenter,
     .height = 40},
};
constexpr ButtonSpec buttons[] = {
    form::Save(idOk),
    form::Exit(CCenterDlg::exitId),
};
constexpr DialogSpec spec{
    .directory = form::directory,
    .background = form::background,
    .texts = texts,
    .buttons = buttons,
    .edits = edits,
    .escapeClicks = CCenterDlg::exitId,
};

}  // namespace

CCenterDlg::CCenterDlg(ScreenContext& context) : Dialog(context.desktop, spec), m_context(context) {
    OnClick(idOk, [this] { Save(); });
    OnClick(exitId, [this] { EndDialog(DialogResult::Cancel); });
}

void CCenterDlg::OnInitDialog() {
    auto& number = Get<EditField>(numberId);
    number.SetWindowText(m_context.session.Choices().ServiceCenter());
    SetFocus(&number);
}

void CCenterDlg::Save() {
    const std::string& number = Get<EditField>(numberId).GetWindowText();
    if (number.empty()) {
        Warn(GetDesktop(), WarnCode::NoNumber);
        return;
    }
    // The number stays in the field until there is somebody to tell it to.
    if (m_context.session.State().MainScreenMode == ScreenMode::Closed) {
        Warn(GetDesktop(), WarnCode::NetClosed);
        return;
    }
    const ValueFault fault = m_context.session.Choices().SetServiceCenter(number);
    if (fault != ValueFault::None) {
        Warn(GetDesktop(), static_cast<WarnCode>(fault));
        return;
    }
    EndDialog(DialogResult::Ok);
}

}  // namespace varkel
