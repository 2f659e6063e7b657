#include "ui/terminal/headless_messages.h"

#include "platform/text.h"

namespace varkel {

namespace {

const char* NameOf(SmsBox box) {
    switch (box) {
        case SmsBox::Inbox: return "inbox";
        case SmsBox::Outbox: return "outbox";
        case SmsBox::Drafts: return "drafts";
    }
    return "";
}

}  // namespace

MessageBox& HeadlessMessages::Box(SmsBox box) {
    MessageBoxes& boxes = m_dialog.Messages().Boxes();
    switch (box) {
        case SmsBox::Outbox: return boxes.outbox;
        case SmsBox::Drafts: return boxes.drafts;
        default: return boxes.inbox;
    }
}

void HeadlessMessages::Load(SmsBox box) {
    m_box = box;
    m_list = Box(box).FindSmsRecord();
}

std::string HeadlessMessages::Shown(std::string_view narrow) const {
    return Utf8FromNarrow(m_page, narrow);
}

void HeadlessMessages::List(SmsBox box) {
    constexpr std::size_t shownText = 60;
    Load(box);
    m_terminal.PrintLine("[" + std::string(NameOf(box)) + "] " + std::to_string(m_list.size()) +
                         (m_list.size() == 1 ? " message" : " messages"));
    for (std::size_t row = 0; row < m_list.size(); ++row) {
        const SmsRecord& record = *AtRow(m_list, row);
        const std::string text = Shown(record.szContent.View());
        m_terminal.PrintLine("  " + std::to_string(row + 1) +
                             (record.Index == SmsState::Unread ? " * " : "   ") +
                             Shown(record.szTime.View()) + "  " + Shown(record.szPhoneNo.View()) + "  " +
                             std::string(CutUtf8(text, shownText)) + (text.size() > shownText ? "..." : ""));
    }
}

void HeadlessMessages::Show(const SmsRecord& record) {
    m_terminal.PrintLine("[message] " + Shown(record.szTime.View()) +
                         (m_box == SmsBox::Inbox ? " from " : " to ") + Shown(record.szPhoneNo.View()));
    m_terminal.PrintLine("  " + Shown(record.szContent.View()));
}

std::optional<std::size_t> HeadlessMessages::RowOf(std::string_view number) {
    int row = 0;
    if (m_list.empty()) Load(m_box);
    if (ParseInt(number, row) && row >= 1 && static_cast<std::size_t>(row) <= m_list.size())
        return static_cast<std::size_t>(row) - 1;
    m_terminal.PrintLine(std::string("[error] the ") + NameOf(m_box) + " has no message \"" +
                         std::string(CutUtf8(number, 20)) + "\"");
    return std::nullopt;
}

void HeadlessMessages::Read(std::string_view number) {
    const auto row = RowOf(number);
    if (!row) return;
    Show(*AtRow(m_list, *row));
    if (m_box == SmsBox::Inbox) Report(Box(m_box).MarkRead(m_list, *row));
}

void HeadlessMessages::Delete(std::string_view which) {
    if (which == "all") {
        Report(Box(m_box).DeleteAll());
    } else {
        const auto row = RowOf(which);
        if (!row) return;
        Report(Box(m_box).Delete(m_list, *row));
    }
    List(m_box);
}

void HeadlessMessages::ShowNew() {
    const int count = m_dialog.State().m_nNewMessages.exchange(0);
    if (count >= 2) {
        List(SmsBox::Inbox);
        return;
    }
    Load(SmsBox::Inbox);
    if (const SmsRecord* const newest = AtRow(m_list, 0)) Show(*newest);
}

void HeadlessMessages::Send(std::string_view numberAndText) {
    const std::string_view number = numberAndText.substr(0, numberAndText.find(' '));
    const std::string_view text = Trimmed(numberAndText.substr(number.size()));
    if (text.empty()) {
        m_terminal.PrintLine("[error] usage: send NUMBER TEXT");
        return;
    }
    m_dialog.Messages().SendSMDll(number, text);
}

void HeadlessMessages::Report(StoreResult result) {
    switch (result) {
        case StoreResult::Done: break;
        case StoreResult::NotFound: m_terminal.PrintLine("[error] that message is gone"); break;
        default: m_terminal.PrintLine("[error] the flash cannot be written"); break;
    }
}

}  // namespace varkel
