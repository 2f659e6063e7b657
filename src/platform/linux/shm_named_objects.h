// Named mappings, mutexes and events in POSIX shared memory.
//
// An object named "CGSMData RESP EVENT" below the prefix "varkel-1000" is the file
// /dev/shm/varkel-1000.event.CGSMData%20RESP%20EVENT. A mapping's file holds the block and nothing else. A
// mutex and an event begin with a magic number; behind it stand a robust process-shared pthread mutex and a
// futex word.
#pragma once

#include <string>

#include "platform/linux/linux_runtime.h"
#include "platform/named_objects.h"

namespace varkel {

class ShmNamedObjects final : public NamedObjects {
  public:
    // Programs that name the same prefix share their objects. A prefix holds ASCII letters, digits, "-" and
    // "_", at most 64 of them; with another one no object can be made.
    ShmNamedObjects(LinuxRuntime& runtime, std::string prefix);

    std::unique_ptr<NamedMapping> CreateFileMapping(std::string_view name, std::size_t bytes) override;
    std::unique_ptr<NamedMutex> CreateMutex(std::string_view name) override;
    std::shared_ptr<Event> CreateEvent(std::string_view name) override;
    std::uint32_t GetLastError() override;

    // Removes all objects of a prefix; for tests and for the simulated unit's power cycle. Programs that have
    // one open keep it and do not meet those that open it anew.
    static void Remove(const std::string& prefix);

  private:
    // "" when prefix or name cannot be used.
    std::string FileName(std::string_view kind, std::string_view name) const;

    LinuxRuntime& m_runtime;
    const std::string m_prefix;
};

}  // namespace varkel
