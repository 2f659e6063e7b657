#include "session/message_editing.h"

#include <string>
#include <utility>

namespace varkel {

MessageEditing::MessageEditing(Session& session, MessageBoxes& boxes, MessageSending& sending,
                               std::function<void()> wake)
    : m_session(session),
      m_boxes(boxes),
      m_sending(sending),
      m_wake(std::move(wake)),
      m_worker(session.platform.runtime, "message boxes", AtEnd::FinishJobs) {}

void MessageEditing::Do(std::function<void()> job) {
    ++m_changes;
    const auto work = [this, job = std::move(job)] {
        job();
        --m_changes;
        m_session.screens.Repaint();
    };
    // Late is better than never.
    if (!m_worker.Post(work)) work();
}

void MessageEditing::Change(std::function<StoreResult()> change) {
    Do([this, change = std::move(change)] {
        if (change() == StoreResult::VolumeFull) m_session.screens.Warn(WarnCode::NandFull);
    });
}

void MessageEditing::Delete(SmsBox box, MessageBox::List shown, std::size_t row) {
    Change([&target = m_boxes.Of(box), shown = std::move(shown), row] { return target.Delete(shown, row); });
}

void MessageEditing::DeleteShown(SmsBox box, MessageBox::List shown) {
    Change([&target = m_boxes.Of(box), shown = std::move(shown)] { return target.DeleteShown(shown); });
}

void MessageEditing::MarkRead(MessageBox::List shown, std::size_t row) {
    Change([this, shown = std::move(shown), row] { return m_boxes.inbox.MarkRead(shown, row); });
}

void MessageEditing::SaveDraft(std::string_view number, std::string_view text) {
    const CodePage& page = m_session.platform.codePage;
    const SmsTime time = SmsTimeFromLocal(m_session.platform.runtime.GetLocalTime());
    const std::string narrowNumber = NarrowFromUtf8(page, number);
    const bool fits = narrowNumber.size() < sizeof(SmsRecord::szPhoneNo);
    const SmsRecord draft =
        MakeSmsRecord(time, fits ? narrowNumber : "",
                      NarrowFromUtf8(page, text, sizeof(SmsRecord::szContent) - 1), SmsState::Opened);
    Change([this, draft] { return m_boxes.drafts.WriteSmsRecord(draft); });
}

bool MessageEditing::Send(std::string_view number, std::string_view text) {
    FixedText<16> destination;
    if (!m_sending.CheckNumber(number, destination)) return false;
    Do([this, number = std::string(number), text = std::string(text)] {
        if (m_sending.SendWritten(number, text)) m_wake();
    });
    return true;
}

}  // namespace varkel
