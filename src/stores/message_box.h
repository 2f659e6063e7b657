// The inbox, the outbox and the drafts.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "stores/record_file.h"
#include "stores/sms_record.h"

namespace varkel {

// Records in one box. More are cut from the front, the oldest first, when the box is written.
inline constexpr std::size_t SmsBoxCapacity = 150;

enum class SmsBox { Inbox, Outbox, Drafts };

// One box and its file. The program has one object for each box, which the controller and the screens share;
// a screen's list is a copy and may be out of date, which is why a row is always named together with the list
// that it was seen in. Any thread may call; a call that changes the box takes as long as the flash needs.
class MessageBox {
  public:
    using List = std::vector<SmsRecord>;

    MessageBox(UnitFiles& files, Log& log, SmsBox box);

    // All records, the oldest first; AtRow() is the order of the screens. None when the box cannot be read.
    List FindSmsRecord() { return m_file.Load(); }
    std::size_t Count() { return FindSmsRecord().size(); }
    std::size_t UnreadCount();

    // Adds the newest one. Needs 1 MiB of free space, or is VolumeFull.
    [[nodiscard]] StoreResult WriteSmsRecord(const SmsRecord& record);

    // Row 0 of the list `shown` is its newest record. These work on a full volume. NotFound when the record
    // has left the box since; that it was marked read meanwhile makes it no other.
    [[nodiscard]] StoreResult Delete(std::span<const SmsRecord> shown, std::size_t row);
    // Makes an unread message of the inbox an opened one; leaves everything else as it is.
    [[nodiscard]] StoreResult MarkRead(std::span<const SmsRecord> shown, std::size_t row);
    // All that were shown, and none that came since.
    [[nodiscard]] StoreResult DeleteShown(std::span<const SmsRecord> shown);
    [[nodiscard]] StoreResult DeleteAll() { return m_file.DeleteAll(); }

  private:
    const SmsBox m_box;
    RecordFile<SmsRecord> m_file;
};

struct MessageBoxes {
    MessageBoxes(UnitFiles& files, Log& log)
        : inbox(files, log, SmsBox::Inbox),
          outbox(files, log, SmsBox::Outbox),
          drafts(files, log, SmsBox::Drafts) {}

    MessageBox& Of(SmsBox box) {
        switch (box) {
            case SmsBox::Inbox: return inbox;
            case SmsBox::Outbox: return outbox;
            case SmsBox::Drafts: break;
        }
        return drafts;
    }

    MessageBox inbox;
    MessageBox outbox;
    MessageBox drafts;
};

}  // namespace varkel
