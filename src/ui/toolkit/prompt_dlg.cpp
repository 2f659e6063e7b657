#include "ui/toolkit/prompt_dlg.h"

#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr int textId = 1065;

constexpr TextSpec texts[] = {
    {textId,
     {20, 60, 260, 160},
     "",
     TextRole::Body,
     TextFormat::Center | TextFormat::VCenter | TextFormat::WordBreak},
};

constexpr DialogSpec spec{
    .rect = {250, 120, 300, 240},
    .directory = "\\ResidentFlash2\\bin\\Gprs\\Other\\",
    .background = "PromptDlgBack",
    .windowText = "MsgTipDlg",
    .texts = texts,
    .scope = DialogScope::OwnPlace,
};

}  // namespace

CPromptDlg::CPromptDlg(Desktop& desktop) : Dialog(desktop, spec) {}

void CPromptDlg::ShowTip(std::string_view text) {
    m_text = text;
    if (IsOpen()) {
        Get<StaticText>(textId).SetWindowText(m_text);
    } else {
        Show();
    }
}

void CPromptDlg::OnInitDialog() {
    Get<StaticText>(textId).SetWindowText(m_text);
}

void CPromptDlg::OnTouch(const TouchEvent& event) {
    if (event.action == TouchAction::Up) Hide();
}

}  // namespace varkel
