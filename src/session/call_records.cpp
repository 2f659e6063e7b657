// What becomes of the lists of calls.
#include <utility>

#include "platform/text.h"
#include "session/call_control.h"

namespace varkel {

CallRecord CallControl::RecordOf(std::string_view number, std::string_view name) const {
    constexpr std::size_t field = 40;
    const CodePage& page = m_session.platform.codePage;
    return MakeCallRecord(m_session.platform.runtime.GetLocalTime(), NarrowFromUtf8(page, name, field),
                          NarrowFromUtf8(page, number, field));
}

bool CallControl::Append(CallList& list, const CallRecord& record) {
    const StoreResult result = list.WriteCallRecord(record);
    if (result == StoreResult::VolumeFull) m_session.screens.Warn(WarnCode::NandFull);
    m_session.screens.Repaint();
    return result == StoreResult::Done;
}

void CallControl::CountMissed() {
    m_session.settings.WriteNewMissed(static_cast<std::uint32_t>(++m_newMissed));
    m_session.screens.Repaint();
}

void CallControl::ForgetNewMissed() {
    if (m_newMissed.exchange(0) == 0) return;
    m_worker.Post([this] { m_session.settings.WriteNewMissed(static_cast<std::uint32_t>(m_newMissed)); });
    m_session.screens.Repaint();
}

void CallControl::DeleteRecord(CallKind kind, CallList::List shown, std::size_t row, RecordsDone done) {
    ChangeRecords(
        [&list = m_lists.Of(kind), shown = std::move(shown), row] { return list.Delete(shown, row); },
        std::move(done));
}

void CallControl::DeleteRecords(CallKind kind, CallList::List shown, RecordsDone done) {
    ChangeRecords([&list = m_lists.Of(kind), shown = std::move(shown)] { return list.DeleteShown(shown); },
                  std::move(done));
}

void CallControl::ChangeRecords(std::function<StoreResult()> change, RecordsDone done) {
    MessageLoop& loop = m_session.platform.loop;
    const auto job = [&loop, change = std::move(change), done] {
        const StoreResult result = change();
        loop.Post([done, result] { done(result); });
    };
    if (!m_worker.Post(job)) loop.Post([done = std::move(done)] { done(StoreResult::WriteFailed); });
}

}  // namespace varkel
