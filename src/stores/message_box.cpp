#include "stores/message_box.h"

#include <algorithm>

namespace varkel {

namespace {

std::string_view PathOf(SmsBox box) {
    switch (box) {
        case SmsBox::Inbox: return "NandFlash\\System\\Phone\\InboxMs.msm";
        case SmsBox::Outbox: return "NandFlash\\System\\Phone\\OutboxMs.msm";
        case SmsBox::Drafts: break;
    }
    return "NandFlash\\System\\Phone\\DraftsMs.msm";
}

}  // namespace

MessageBox::MessageBox(UnitFiles& files, Log& log, SmsBox box)
    : m_box(box), m_file(files, log, {.path = PathOf(box), .capacity = SmsBoxCapacity}) {}

std::size_t MessageBox::UnreadCount() {
    const List list = FindSmsRecord();
    return static_cast<std::size_t>(std::count_if(
        list.begin(), list.end(), [](const SmsRecord& record) { return record.Index == SmsState::Unread; }));
}

StoreResult MessageBox::WriteSmsRecord(const SmsRecord& record) {
    return m_file.Append(record, SpaceGuard::On);
}

StoreResult MessageBox::Delete(std::span<const SmsRecord> shown, std::size_t row) {
    return m_file.Delete(shown, row, IsSameMessage);
}

StoreResult MessageBox::DeleteShown(std::span<const SmsRecord> shown) {
    return m_file.DeleteShown(shown, offsetof(SmsRecord, Index));
}

StoreResult MessageBox::MarkRead(std::span<const SmsRecord> shown, std::size_t row) {
    if (m_box != SmsBox::Inbox) return StoreResult::Done;
    const auto open = [](List&, SmsRecord& record) {
        if (record.Index == SmsState::Unread) record.Index = SmsState::Opened;
    };
    return m_file.UpdateRow(SpaceGuard::Off, shown, row, open, IsSameMessage);
}

}  // namespace varkel
