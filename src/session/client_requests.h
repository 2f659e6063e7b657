// What other programs ask by the fixed window messages and by copied data: the SIM's and the module's
// identity, the state of the data link, to be told of it, and to send a message.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "modem/one_shot.h"
#include "modem/shared_block.h"
#include "session/command_turn.h"
#include "session/data_link.h"
#include "session/listeners.h"
#include "session/message_handling.h"
#include "session/session.h"
#include "session/sim_card.h"
#include "session/worker.h"

namespace varkel {

// The handlers run on the dialog thread and return at once. Answers go through the shared block, whose lock
// another program may hold for seconds: so a worker writes them. A request that is made again before it was
// answered is answered once, because every program reads the same block.
class ClientRequests {
  public:
    ClientRequests(Session& session, CommandTurn& turn, CGSMData& block, SimCard& sim, DataLink& link,
                   Listeners& listeners, MessageHandling& messages);

    // WM_USER + 1000 to + 1005; false for any other message.
    bool OnMessage(const WindowMessage& message);
    // WM_COPYDATA; 1 when it was accepted, 0 when it was refused or means nothing.
    std::uint32_t OnCopyData(std::uint32_t dwData, std::span<const std::byte> data);

    // Bytes of a block of copied data that holds a message.
    static constexpr std::size_t smallestBlock = 66;
    static constexpr std::size_t largestBlock = 4096;

  private:
    enum class Reply { Imsi, Imei, ConnectStatus };

    void OnAddListenWnd(WindowHandle window);
    void OnRemoveListenWnd(WindowHandle window) { m_listeners.Remove(window); }
    void OnGetIMSI() { AnswerIdentity(IdQuery::Imsi); }
    void OnGetIMEI() { AnswerIdentity(IdQuery::Imei); }
    void OnGetConnectStatus() { PostReply(Reply::ConnectStatus); }
    void AnswerIdentity(IdQuery which);
    void OnIdentity(IdQuery which);
    void PostReply(Reply reply);
    void WriteReply(Reply reply);
    bool SendShortMessage(std::span<const std::byte> data);

    Session& m_session;
    CommandTurn& m_turn;
    CGSMData& m_block;
    DataLink& m_link;
    Listeners& m_listeners;
    MessageHandling& m_messages;

    OneShot m_imsiAwaited;
    OneShot m_imeiAwaited;
    std::array<std::atomic<bool>, 3> m_replyPosted{};  // by Reply
    Worker m_worker;                                   // last: its thread ends first
};

}  // namespace varkel
