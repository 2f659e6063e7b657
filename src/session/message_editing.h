// What the screens change in the message boxes. The flash may take its time, so it is done on a thread of its
// own, one change after the other; whatever was asked for is done, also when the program ends.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <string_view>

#include "session/message_sending.h"
#include "session/session.h"
#include "session/worker.h"
#include "stores/message_box.h"

namespace varkel {

// A row counts in the list `shown`, which may be out of date. When a change is done the screens are told, by
// Repaint. Dialog thread.
class MessageEditing {
  public:
    // `wake` lets what was handed to `sending` go out.
    MessageEditing(Session& session, MessageBoxes& boxes, MessageSending& sending,
                   std::function<void()> wake);

    void Delete(SmsBox box, MessageBox::List shown, std::size_t row);
    void DeleteShown(SmsBox box, MessageBox::List shown);
    // Of the inbox.
    void MarkRead(MessageBox::List shown, std::size_t row);
    // UTF-8, as all texts here. The text is cut at a character to what a record holds; a number that is
    // longer is left out, because a part of it is somebody else's.
    void SaveDraft(std::string_view number, std::string_view text);
    // What the user wrote is sent whole. False, and he has been told, when the number is no good; what cannot
    // be sent otherwise stands in the outbox.
    bool Send(std::string_view number, std::string_view text);

    // What was asked for is not in the boxes yet.
    bool Changing() const { return m_changes > 0; }

  private:
    void Change(std::function<StoreResult()> change);
    void Do(std::function<void()> job);

    Session& m_session;
    MessageBoxes& m_boxes;
    MessageSending& m_sending;
    const std::function<void()> m_wake;
    std::atomic<int> m_changes = 0;
    Worker m_worker;
};

}  // namespace varkel
