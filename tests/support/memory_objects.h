// Named objects inside one process, in the time of the given runtime.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/named_objects.h"

namespace varkel::test {

class MemoryObjects final : public NamedObjects {
  public:
    explicit MemoryObjects(Runtime& runtime) : m_runtime(runtime) {}

    std::unique_ptr<NamedMapping> CreateFileMapping(std::string_view name, std::size_t bytes) override {
        if (refuseMapping) return nullptr;
        std::lock_guard lock(m_mutex);
        auto& memory = m_memory[std::string(name)];
        memory.resize(bytes);
        return std::make_unique<Mapping>(refuseView ? std::span<std::byte>() : std::span(memory));
    }

    std::unique_ptr<NamedMutex> CreateMutex(std::string_view name) override {
        if (refuseMutex) return nullptr;
        std::lock_guard lock(m_mutex);
        auto& free = m_mutexes[std::string(name)];
        if (!free) {
            free = m_runtime.CreateEvent(EventReset::Automatic);
            free->Set();
        }
        return std::make_unique<Mutex>(free);
    }

    std::shared_ptr<Event> CreateEvent(std::string_view name) override {
        std::lock_guard lock(m_mutex);
        auto& event = m_events[std::string(name)];
        if (!event) event = m_runtime.CreateEvent(EventReset::Manual);
        return event;
    }

    std::uint32_t GetLastError() override { return 0; }

    bool refuseMapping = false;
    bool refuseView = false;
    bool refuseMutex = false;

  private:
    struct Mapping final : NamedMapping {
        explicit Mapping(std::span<std::byte> bytes) : view(bytes) {}
        std::span<std::byte> MapViewOfFile() override { return view; }
        std::span<std::byte> view;
    };

    struct Mutex final : NamedMutex {
        explicit Mutex(std::shared_ptr<Event> event) : free(std::move(event)) {}
        WaitResult Wait(Ticks timeout) override {
            const WaitResult result = free->Wait(timeout);
            held = held || result == WaitResult::Object0;
            return result;
        }
        bool ReleaseMutex() override {
            if (!held) return false;
            held = false;
            free->Set();
            return true;
        }
        std::shared_ptr<Event> free;
        bool held = false;
    };

    Runtime& m_runtime;
    std::mutex m_mutex;
    std::map<std::string, std::vector<std::byte>> m_memory;
    std::map<std::string, std::shared_ptr<Event>> m_mutexes;
    std::map<std::string, std::shared_ptr<Event>> m_events;
};

}  // namespace varkel::test
