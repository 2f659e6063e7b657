// The short messages on the SIM card, kept as the PDUs that came (3GPP TS 31.102, EF SMS).
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace varkel::sim {

// The numbers are those of AT+CMGL and of "+CMGR:" in PDU mode.
enum class MessageStatus { Unread = 0, Read = 1, Unsent = 2, Sent = 3 };

struct StoredMessage {
    MessageStatus status = MessageStatus::Unread;
    std::string pdu;  // octets, the service centre's address first
};

// Slots are numbered from 1.
class MessageStore {
  public:
    explicit MessageStore(int slots);

    int Slots() const { return static_cast<int>(m_messages.size()); }
    int Used() const;
    bool Has(int slot) const { return slot >= 1 && slot <= Slots(); }
    // Null when the slot is empty or there is no such slot.
    StoredMessage* Find(int slot);
    // The slot that took it; nothing when all are full.
    std::optional<int> Add(StoredMessage message);
    void Delete(int slot);
    void Clear();

    static constexpr int mostSlots = 255;

  private:
    std::vector<std::optional<StoredMessage>> m_messages;
};

}  // namespace varkel::sim
