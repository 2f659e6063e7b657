// Objects that programs of the unit share by name: memory, mutexes and events.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "platform/runtime.h"

namespace varkel {

// CreateFileMapping, MapViewOfFile. The destructor unmaps the view and closes the mapping; the object itself
// stays for the other programs.
class NamedMapping {
  public:
    virtual ~NamedMapping() = default;
    // The whole object, writable, zero-filled when it was new. Empty when it cannot be mapped.
    virtual std::span<std::byte> MapViewOfFile() = 0;
};

// CreateMutex. A holder that dies gives the mutex back: the next Wait repairs it and reports it as obtained.
class NamedMutex {
  public:
    virtual ~NamedMutex() = default;
    virtual WaitResult Wait(Ticks timeout) = 0;
    virtual bool ReleaseMutex() = 0;
};

// Each call opens the object of that name or makes it; null when neither is possible. Any thread.
class NamedObjects {
  public:
    virtual ~NamedObjects() = default;
    virtual std::unique_ptr<NamedMapping> CreateFileMapping(std::string_view name, std::size_t bytes) = 0;
    virtual std::unique_ptr<NamedMutex> CreateMutex(std::string_view name) = 0;
    // Manual reset, non-signalled when it was new.
    virtual std::shared_ptr<Event> CreateEvent(std::string_view name) = 0;
    // Why the last call on this thread failed, as the system numbers it.
    virtual std::uint32_t GetLastError() = 0;
};

}  // namespace varkel
