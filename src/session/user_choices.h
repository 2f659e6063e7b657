// What the user chooses in the settings screens, and what the modem must be told of it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "modem/at_values.h"
#include "platform/guarded.h"
#include "session/command_turn.h"
#include "session/data_link.h"
#include "session/message_handling.h"
#include "session/rings.h"
#include "session/session.h"
#include "session/value_table.h"
#include "session/worker.h"
#include "stores/store_file.h"

namespace varkel {

// What the settings screen leaves to be done when it closes.
struct ChangeRequests {
    bool turnOn = false;
    bool turnOff = false;
    bool closeData = false;
    bool openData = false;
};

// Registry values are written at once. Commands and files are jobs of a worker: a command waits until no
// request is under way whose outcome is the next final result, and is dropped when the module is not open.
// Dialog thread, except where it says otherwise.
class UserChoices {
  public:
    UserChoices(Session& session, CommandTurn& turn, DataLink& data, MessageHandling& messages);

    // The volume of calls, 0..5: "GPRSVol" of the value table "Software\GPRSHDVol\", read and written under
    // the table's lock. A level beyond the range is moved into it. Any thread.
    int Volume();
    // Keeps the level, sends it, and answers with what it has become.
    int SetVolume(int level);
    void SendVolume();

    // "GPRS\NetworkMode": 1..4, anything else is the automatic mode.
    std::uint32_t NetworkMode() {
        return m_session.settings.ReadDword(Settings::networkModeKey, "NetworkMode");
    }
    void SetNetworkMode(std::uint32_t mode);

    // The service centre that messages are sent through, at most 16 characters.
    std::string ServiceCenter() const { return m_messages.ServiceCenter(); }
    // Takes effect at once; otherwise says what is wrong with the number.
    [[nodiscard]] ValueFault SetServiceCenter(std::string_view text);

    // Plays the choice, too, so that the user hears it; not while there is a call.
    void SetRing(RingKind kind, int choice);

    // Asks for the signal once; the answer shows in the session's state.
    void RefreshSignal();

    // The operators' list. `done` learns the outcome on the dialog thread.
    using Done = std::function<void(StoreResult)>;
    void AddOperator(const ISP_Struct& isp, Done done);
    void ChangeOperator(const ISP_Struct& seen, std::size_t index, const ISP_Struct& changed, Done done);
    void DeleteOperator(const ISP_Struct& seen, std::size_t index, Done done);

    static constexpr int loudest = 5;
    static constexpr std::size_t longestCenter = 16;

  private:
    void Send(std::function<void(CATChannel&)> command);
    void Start(std::function<StoreResult()> work, Done done);

    Session& m_session;
    CommandTurn& m_turn;
    DataLink& m_data;
    MessageHandling& m_messages;
    Guarded<ValueTable> m_volumes;
    std::atomic<bool> m_volumeWaits = false;  // a job that will send the volume as it is then
    Worker m_worker;                          // last: its thread ends first
};

}  // namespace varkel
