// The shared-memory block through which other programs of the unit learn the SIM's IMSI, the module's IMEI
// and the state of the data link.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/log.h"
#include "platform/named_objects.h"

namespace varkel {

// What a client sees: 1032 bytes, little-endian, under the mutex.
struct GsmDataLayout {
    std::uint32_t windowHandle;      // where to send requests
    std::uint32_t connectionStatus;  // ConnectionStatus, written on each status request
    char16_t imsi[256];              // ended by a NUL
    char16_t imei[256];
};
static_assert(sizeof(GsmDataLayout) == 1032);
static_assert(offsetof(GsmDataLayout, connectionStatus) == 4);
static_assert(offsetof(GsmDataLayout, imsi) == 8);
static_assert(offsetof(GsmDataLayout, imei) == 520);

enum class ConnectionStatus : std::uint32_t { Unknown = 0, Up = 1, NotUp = 2 };

// A named block of memory and the named mutex that guards it. What cannot be created is reported to the debug
// output and stays missing: a block without a mutex is never locked, one without a mapping has no view.
class CSharedBlock {
  public:
    CSharedBlock(NamedObjects& objects, Log& log, std::string_view mappingName, std::string_view mutexName,
                 std::size_t bytes, Ticks lockTimeout);
    virtual ~CSharedBlock();
    CSharedBlock(const CSharedBlock&) = delete;
    CSharedBlock& operator=(const CSharedBlock&) = delete;

    [[nodiscard]] bool Lock();
    bool Unlock();
    // Null when the mapping failed. To be used between Lock and Unlock only.
    void* View() const { return m_view; }

  protected:
    NamedObjects& m_objects;
    Log& m_log;

  private:
    std::unique_ptr<NamedMutex> m_mutex;
    std::unique_ptr<NamedMapping> m_mapping;
    void* m_view = nullptr;
    Ticks m_lockTimeout;
};

// The block of this program. One thread at a time.
class CGSMData : public CSharedBlock {
  public:
    CGSMData(NamedObjects& objects, Log& log);

    // Each takes the lock, writes and gives it back; false when the block could not be locked or is missing.
    bool SetWindowHandle(std::uint32_t window);
    bool SetConnectionStatus(ConnectionStatus status);
    // Writes the IMSI or the IMEI, at most 255 UTF-16 units, and signals the response before it gives the
    // lock back.
    bool AnswerImsi(std::string_view imsi);
    bool AnswerImei(std::string_view imei);
    // Forgets the identity and the state of the link, which an earlier run may have left.
    bool Clear();

    // The event is never reset here: a client resets it before it asks.
    void SignalResponse();

  private:
    // Calls action(layout) under the lock.
    template <class Action>
    bool Change(Action action);

    std::shared_ptr<Event> m_response;
};

}  // namespace varkel
