// The SIM's phonebook as it stands in memory, and the reading of it.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/guarded.h"
#include "session/open_waits.h"
#include "session/session.h"
#include "session/sim_phonebook_answers.h"

namespace varkel {

// Read at every opening of the module, empty while it is closed. At most 1000 entries.
class SimPhonebook {
  public:
    explicit SimPhonebook(Session& session);

    // The event that is set whenever lines of entries were taken in. Before the module is opened first.
    void SetContentEvent(std::shared_ptr<Event> content) { m_content = std::move(content); }

    // Reads the entries in blocks of ten, each of which takes at most 2000 ms. False when it was cancelled.
    // Open thread.
    [[nodiscard]] bool Read(OpenWaits& waits);
    // Another SIM may be in the unit when the module opens again. Any thread.
    void OnModuleClosed();

    // What arrived, before the channel sees it: puts together the lines that are spread over chunks.
    void OnChunk(std::string_view chunk);
    // The answers to "AT+CPBS?", "AT+CPBW=?" and "AT+CPBR". Read thread, as OnChunk().
    void OnPhoneBookNum(std::string_view text);
    void OnPhoneBookTest(std::string_view text);
    void OnPhoneBookContent(std::string_view text);

    // Any thread.
    std::vector<SimEntry> Entries() const { return m_entries.Get(); }
    // The name of the first entry with exactly this number; nothing for an empty number.
    std::optional<std::string> FindName(std::string_view number);
    SimBookLimits Limits() const { return m_limits.Get(); }
    // The slots that the SIM has, as far as commands can name them.
    int Slots() const;

    // For the editor: what it has put on the SIM, or taken off. Any thread.
    void Put(const SimEntry& entry);
    void Erase(int slot);
    bool Holds(const SimEntry& entry);
    // Whether all that is on the SIM stands in memory, so that any other slot is free.
    bool Complete();
    // Whether entries have come since ForgetContent(), even such as could not be read.
    bool ContentCame() { return m_content->Wait(0) == WaitResult::Object0; }
    void ForgetContent() { m_content->Reset(); }

  private:
    bool ReadBlock(int first, int last, OpenWaits& waits);
    void TakeLine(std::string_view line);

    Session& m_session;
    std::shared_ptr<Event> m_content;
    Guarded<std::vector<SimEntry>> m_entries;  // in the order in which they were read
    Guarded<SimBookLimits> m_limits;
    std::atomic<bool> m_reading = false;

    // The unfinished line at the end of the last chunk; read thread.
    std::string m_unfinished;
};

}  // namespace varkel
