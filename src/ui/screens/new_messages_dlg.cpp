#include "ui/screens/new_messages_dlg.h"

#include "ui/toolkit/text_lines.h"

namespace varkel {

void CNewMessagesDlg::Show() {
    const int come = m_context.session.State().m_nNewMessages.exchange(0);
    if (!m_message && !m_boxes) m_count = 0;
    m_count += come;
    if (m_boxes) {
        m_boxes->SetNewCount(m_count);
    } else if (m_message) {
        if (m_count < 2) return;
        m_message->SetTitle(WithNumber(m_message->LoadText("IDS_NOTEPROMPT1"), m_count));
    } else if (m_count < 2) {
        ShowNewest();
    } else {
        ShowInbox();
    }
}

void CNewMessagesDlg::ShowInbox() {
    m_boxes.emplace(m_context);
    m_boxes->SetNewCount(m_count);
    m_boxes->Show([this](DialogResult) { m_boxes.reset(); });
}

void CNewMessagesDlg::ShowNewest() {
    MessageHandling& messages = m_context.session.Messages();
    const MessageBox::List inbox = messages.Boxes().inbox.FindSmsRecord();
    const SmsRecord* const newest = AtRow(inbox, 0);
    // On a full volume it is not there yet, and what has been read is no news.
    if (!newest || newest->Index != SmsState::Unread) return;
    m_message.emplace(m_context, SmsBox::Inbox, *newest);
    m_message->SetTitle(m_message->LoadText("IDS_NOTEPROMPT"));
    messages.Editing().MarkRead(inbox, 0);
    m_message->Show([this](DialogResult) {
        m_message.reset();
        if (m_count >= 2) ShowInbox();
    });
}

}  // namespace varkel
