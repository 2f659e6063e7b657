#include "ui/screens/write_message_dlg.h"

#include <vector>

#include "platform/text.h"
#include "ui/screens/phrase_dlg.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr int recipientId = 1018;
constexpr int phoneBookId = 1019;
constexpr int textId = 1021;
constexpr int sendId = 1022;
constexpr int phraseId = 1023;
constexpr int exitId = 1025;
constexpr int counterId = 1100;

constexpr auto right = TextFormat::Right | TextFormat::VCenter | TextFormat::SingleLine;

// Both fields stand above the soft keyboard while it is there, and so do sending and the phrases.
constexpr Rect textPlace{24, 138, 564, 324};
constexpr Rect textAboveKeyboard{24, 138, 564, 144};

constexpr TextSpec texts[] = {
    {.rect = {7, 0, 300, 50}, .caption = "IDS_SENDSMS", .role = TextRole::Title},
    {counterId, {530, 0, 186, 50}, "", TextRole::Secondary, right},
    form::Label({24, 68, 110, 64}, "IDS_SENDONE"),
};
constexpr EditSpec edits[] = {
    {.id = recipientId, .rect = {142, 68, 446, 64}, .input = EditInput::PhoneNumber, .maxUnits = 29},
    {.id = textId,
     .rect = textPlace,
     .maxUnits = CWriteMessageDlg::mostUnits,
     .multiLine = true,
     .height = 28},
};
constexpr ButtonSpec buttons[] = {
    form::Action(0, sendId, "Send", DisabledPicture::Disable, "Send"),
    form::Action(1, phraseId, "Fixed", DisabledPicture::Disable, "Phrase"),
    form::ActionAt(290, phoneBookId, "SearchItem", DisabledPicture::Dis, "PhoneBook"),
    form::Exit(exitId),
};
constexpr DialogSpec spec{
    .directory = form::directory,
    .background = form::background,
    .texts = texts,
    .buttons = buttons,
    .edits = edits,
    .returnClicks = noId,
    .escapeClicks = exitId,
};

std::size_t UnitsOf(const std::string& text) {
    return Utf16FromUtf8(text).size();
}

}  // namespace

CWriteMessageDlg::CWriteMessageDlg(ScreenContext& context, std::string_view recipient, std::string_view text)
    : Dialog(context.desktop, spec), m_context(context), m_recipient(recipient), m_text(text) {
    OnClick(phoneBookId, [this] { PickRecipient(); });
    OnClick(phraseId, [this] { PickPhrase(); });
    OnClick(sendId, [this] { Send(); });
    OnClick(exitId, [this] { Exit(); });
}

void CWriteMessageDlg::OnInitDialog() {
    auto& recipient = Get<EditField>(recipientId);
    auto& text = Get<EditField>(textId);
    recipient.SetWindowText(m_recipient);
    text.SetWindowText(m_text);
    text.onChange = [this] { ShowCounter(); };
    Get<CSkinButton>(phoneBookId).EnableWindow(m_context.pickNumber != nullptr);
    ShowCounter();
    SetFocus(m_recipient.empty() ? &recipient : &text);
    // Below the keyboard stands the phonebook, where most recipients come from.
    if (m_recipient.empty() && m_context.pickNumber) LowerKeyboard();
}

void CWriteMessageDlg::OnSoftKeyboard(bool up) {
    Get<EditField>(textId).SetPlace(up ? textAboveKeyboard : textPlace);
}

void CWriteMessageDlg::ShowCounter() {
    const std::size_t units = UnitsOf(Get<EditField>(textId).GetWindowText());
    auto& counter = Get<StaticText>(counterId);
    counter.SetWindowText(std::to_string(units) + "/" + std::to_string(mostUnits));
    counter.SetTextColor(units > warnUnits ? GetDesktop().Colors().warning : Colors().subMenu);
}

void CWriteMessageDlg::OnFocusChanged(int id) {
    if (id != textId || UnitsOf(Get<EditField>(textId).GetWindowText()) <= warnUnits) return;
    // Beside the message loop, so that the touch that gave the focus goes on.
    m_warning = std::make_unique<CWarnDlg>(GetDesktop(), WarnCode::SmsCharacter, WarnButtonMode::Ok);
    m_warning->Show();
}

void CWriteMessageDlg::LowerKeyboard() {
    if (const auto& sipShowIM = GetDesktop().hooks.sipShowIM) sipShowIM(false, *this);
}

void CWriteMessageDlg::PickRecipient() {
    LowerKeyboard();
    const std::optional<std::string> number = m_context.pickNumber();
    if (number && IsOpen()) Get<EditField>(recipientId).SetWindowText(*number);
}

void CWriteMessageDlg::PickPhrase() {
    LowerKeyboard();
    CPhraseDlg phrases(GetDesktop());
    if (phrases.DoModal() != DialogResult::Ok || !IsOpen()) return;
    auto& text = Get<EditField>(textId);
    // Half a phrase would say something else.
    if (UnitsOf(text.GetWindowText()) + UnitsOf(phrases.Phrase()) > mostUnits) {
        Warn(GetDesktop(), WarnCode::SmsCharacter);
        return;
    }
    text.Insert(phrases.Phrase());
}

void CWriteMessageDlg::Send() {
    auto& recipient = Get<EditField>(recipientId);
    auto& text = Get<EditField>(textId);
    if (Trimmed(recipient.GetWindowText()).empty()) {
        Warn(GetDesktop(), WarnCode::NoNumber);
        return;
    }
    if (text.GetWindowText().empty()) {
        Warn(GetDesktop(), WarnCode::NoMessage);
        return;
    }
    if (!m_context.session.Messages().Editing().Send(recipient.GetWindowText(), text.GetWindowText())) return;
    recipient.SetWindowText("");
    text.SetWindowText("");
    EndDialog(DialogResult::Ok);
}

void CWriteMessageDlg::Exit() {
    LowerKeyboard();
    const std::string text = Get<EditField>(textId).GetWindowText();
    if (!text.empty() &&
        Warn(GetDesktop(), WarnCode::ExitPrompt, WarnButtonMode::OkCancel) == DialogResult::Ok) {
        m_context.session.Messages().Editing().SaveDraft(Get<EditField>(recipientId).GetWindowText(), text);
    }
    EndDialog(DialogResult::Cancel);
}

void CWriteMessageDlg::HideForCall() {
    if (!IsOpen() || !IsWindowVisible()) return;
    LowerKeyboard();
    m_hiddenForCall = true;
    ShowWindow(false);
}

void CWriteMessageDlg::OnSessionChanged() {
    if (!m_hiddenForCall || m_context.session.State().m_bCallActive) return;
    m_hiddenForCall = false;
    ShowWindow(true);
}

void HideWriteMessage(Desktop& desktop) {
    const std::vector<Dialog*> dialogs = desktop.Stack();
    for (Dialog* const dialog : dialogs) {
        if (auto* const write = dynamic_cast<CWriteMessageDlg*>(dialog)) write->HideForCall();
    }
}

}  // namespace varkel
