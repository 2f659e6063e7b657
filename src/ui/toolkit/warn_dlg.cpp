#include "ui/toolkit/warn_dlg.h"

#include "ui/toolkit/radio_group.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"
#include "ui/toolkit/warn_texts.h"

namespace varkel {

namespace {

constexpr int textId = 1065;
constexpr int choiceId = 1066;
constexpr int closeTimer = 1;

constexpr TextSpec texts[] = {
    {textId,
     {5, 36, 290, 120},
     "",
     TextRole::Caller,
     TextFormat::Center | TextFormat::VCenter | TextFormat::WordBreak},
};

constexpr ButtonSpec buttons[] = {
    {idOk, {194, 205, 60, 32}, "Ok"},
    {idCancel, {200, 205, 60, 32}, "Cancel"},
};

constexpr std::string_view choices[] = {"IDS_DEL_THE_ITEM", "IDS_DEL_ALL"};
constexpr RadioSpec radios[] = {
    {choiceId, {5, 160, 300, 18}, {150, 18}, "\\ResidentFlash2\\bin\\GPRS\\SRadio", choices},
};

constexpr DialogSpec spec{
    .rect = {250, 122, 300, 237},
    .directory = "\\residentflash2\\bin\\Gprs\\WarnBack\\",
    .background = "DeskWarn",
    .texts = texts,
    .buttons = buttons,
    .radios = radios,
};

}  // namespace

CWarnDlg::CWarnDlg(Desktop& desktop, WarnCode code, WarnButtonMode mode, bool autoClose,
                   bool wantDeleteChoice)
    : Dialog(desktop, spec),
      m_code(code),
      m_mode(mode),
      m_autoClose(autoClose),
      m_wantDeleteChoice(wantDeleteChoice) {
    OnClick(choiceId, [this] { m_choice = DeleteChoice(Get<RadioGroup>(choiceId).Selected()); });
}

void CWarnDlg::OnInitDialog() {
    LayOutButtons();
    Get<StaticText>(textId).SetWindowText(DispRightToLeft(WarnText(m_code, GetDesktop().Texts())));

    auto& choice = Get<RadioGroup>(choiceId);
    choice.SetTextStyle({DialogFont(18), SkinColors::highlight});
    choice.ShowWindow(m_wantDeleteChoice);
    m_choice = DeleteChoice::ThisItem;

    if (!m_autoClose) return;
    SetTimer(closeTimer, autoCloseTime, [this] {
        KillTimer(closeTimer);
        if (!IsWindowVisible()) return;
        m_autoClose = false;
        EndDialog(DialogResult::Ok);
    });
}

void CWarnDlg::LayOutButtons() {
    auto& ok = Get<CSkinButton>(idOk);
    auto& cancel = Get<CSkinButton>(idCancel);
    ok.ShowWindow(m_mode != WarnButtonMode::None);
    cancel.ShowWindow(m_mode == WarnButtonMode::OkCancel);
    // OK alone stands at the right.
    if (m_mode == WarnButtonMode::OkCancel) ok.MoveWindow({40, 205, 60, 32});
}

void CWarnDlg::OnPaint(Canvas& canvas) {
    const Bitmap* const panel = m_wantDeleteChoice ? LoadPicture("DeleteChoice") : nullptr;
    if (panel) canvas.BitBlt(*panel, {Place().x + 2, Place().y + 150});
}

void CWarnDlg::OnTouch(const TouchEvent& event) {
    if (m_mode == WarnButtonMode::None && event.action == TouchAction::Up) EndDialog(DialogResult::Cancel);
}

bool CWarnDlg::OnKey(const KeyEvent& event) {
    if (m_mode == WarnButtonMode::OkCancel) return false;
    if (event.code != KeyCode::Return && event.code != KeyCode::Escape) return false;
    // There is nothing to refuse.
    EndDialog(m_mode == WarnButtonMode::None ? DialogResult::Cancel : DialogResult::Ok);
    return true;
}

}  // namespace varkel
