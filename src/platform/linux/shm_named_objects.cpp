#include "platform/linux/shm_named_objects.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <linux/futex.h>
#include <new>
#include <pthread.h>
#include <sys/syscall.h>
#include <thread>
#include <time.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/name_encoding.h"
#include "platform/linux/shm_object.h"

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace varkel {

namespace {

thread_local std::uint32_t lastError = 0;

template <class Result>
Result Failed(int error, Result result) {
    lastError = static_cast<std::uint32_t>(error);
    return result;
}

struct SharedMutex {
    std::uint32_t magic;
    pthread_mutex_t mutex;
};

// `changes` counts every Set of a reset event and every Reset of a set one, so an odd number means signalled,
// and a waiter does not miss an event that was set and reset again before it got to run.
struct SharedEvent {
    std::uint32_t magic;
    std::atomic<std::uint32_t> changes;
};
static_assert(sizeof(SharedEvent) == 8 && std::atomic<std::uint32_t>::is_always_lock_free);

constexpr std::uint32_t mutexMagic = 0x314D4B56;  // "VKM1"
constexpr std::uint32_t eventMagic = 0x31454B56;  // "VKE1"

void InitialiseMutex(std::span<std::byte> bytes) {
    auto* const shared = new (bytes.data()) SharedMutex{};
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    // The owner may take it again, and only the owner can release it.
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&shared->mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    shared->magic = mutexMagic;
}

void InitialiseEvent(std::span<std::byte> bytes) {
    new (bytes.data()) SharedEvent{eventMagic, 0};
}

// The moment on CLOCK_MONOTONIC that lies `timeout` ahead.
timespec Deadline(std::chrono::microseconds timeout) {
    timespec deadline{};
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    const std::int64_t nanos = deadline.tv_nsec + timeout.count() % 1'000'000 * 1000;
    deadline.tv_sec += timeout.count() / 1'000'000 + nanos / 1'000'000'000;
    deadline.tv_nsec = static_cast<long>(nanos % 1'000'000'000);
    return deadline;
}

// ThreadSanitizer of GCC 12 sees the unlock but not this way of locking.
void AnnounceLocked([[maybe_unused]] pthread_mutex_t* mutex) {
#ifdef __SANITIZE_THREAD__
    __tsan_mutex_pre_lock(mutex, __tsan_mutex_try_lock | __tsan_mutex_write_reentrant);
    __tsan_mutex_post_lock(mutex, __tsan_mutex_try_lock | __tsan_mutex_write_reentrant, 1);
#endif
}

class ShmMapping final : public NamedMapping {
  public:
    explicit ShmMapping(std::unique_ptr<ShmObject> object) : m_object(std::move(object)) {}
    std::span<std::byte> MapViewOfFile() override { return m_object->Bytes(); }

  private:
    const std::unique_ptr<ShmObject> m_object;
};

class ShmMutex final : public NamedMutex {
  public:
    ShmMutex(LinuxRuntime& runtime, std::unique_ptr<ShmObject> object)
        : m_runtime(runtime), m_object(std::move(object)) {}

    // A mutex that this thread still holds is released, because the C library keeps a list of those that a
    // thread holds, inside the mapping that goes away here.
    ~ShmMutex() override {
        while (ReleaseMutex()) {
        }
    }

    WaitResult Wait(Ticks timeout) override {
        int error = 0;
        if (timeout == infiniteTicks) {
            error = pthread_mutex_lock(Mutex());
        } else {
            const timespec deadline = Deadline(m_runtime.RealTime(timeout));
            error = pthread_mutex_clocklock(Mutex(), CLOCK_MONOTONIC, &deadline);
            if (error == 0 || error == EOWNERDEAD) AnnounceLocked(Mutex());
        }
        if (error == EOWNERDEAD) error = pthread_mutex_consistent(Mutex());
        if (error != 0) return Failed(error, error == ETIMEDOUT ? WaitResult::Timeout : WaitResult::Failed);
        m_owner = std::this_thread::get_id();
        ++m_depth;
        return WaitResult::Object0;
    }

    bool ReleaseMutex() override {
        if (m_owner != std::this_thread::get_id()) return Failed(EPERM, false);
        if (--m_depth == 0) m_owner = std::thread::id();
        const int error = pthread_mutex_unlock(Mutex());
        return error == 0 || Failed(error, false);
    }

  private:
    pthread_mutex_t* Mutex() const {
        return &reinterpret_cast<SharedMutex*>(m_object->Bytes().data())->mutex;
    }

    LinuxRuntime& m_runtime;
    const std::unique_ptr<ShmObject> m_object;
    // Which thread holds it through this object, and how many times; the count is that thread's own.
    std::atomic<std::thread::id> m_owner;
    int m_depth = 0;
};

class ShmEvent final : public Event {
  public:
    ShmEvent(LinuxRuntime& runtime, std::unique_ptr<ShmObject> object)
        : m_runtime(runtime), m_object(std::move(object)) {}

    void Set() override {
        if (Change(0)) Futex(FUTEX_WAKE, INT_MAX, nullptr);
    }

    void Reset() override { Change(1); }

    WaitResult Wait(Ticks timeout) override {
        const std::uint32_t start = Changes().load(std::memory_order_acquire);
        if (start % 2 == 1) return WaitResult::Object0;
        const bool bounded = timeout != infiniteTicks;
        const timespec deadline =
            Deadline(bounded ? m_runtime.RealTime(timeout) : std::chrono::microseconds(0));
        while (Changes().load(std::memory_order_acquire) == start) {
            if (Futex(FUTEX_WAIT_BITSET, start, bounded ? &deadline : nullptr) == 0) continue;
            if (errno == ETIMEDOUT) return Failed(ETIMEDOUT, WaitResult::Timeout);
            if (errno != EAGAIN && errno != EINTR) return Failed(errno, WaitResult::Failed);
        }
        return WaitResult::Object0;
    }

  private:
    std::atomic<std::uint32_t>& Changes() const {
        return reinterpret_cast<SharedEvent*>(m_object->Bytes().data())->changes;
    }

    // Changes the event's state if it is `from` (0 or 1); false when it is the other one already.
    bool Change(std::uint32_t from) {
        std::uint32_t seen = Changes().load(std::memory_order_relaxed);
        while (seen % 2 == from) {
            if (Changes().compare_exchange_weak(seen, seen + 1, std::memory_order_acq_rel)) return true;
        }
        return false;
    }

    // Not one of the private kind: other processes wait on the same word. The deadline is absolute.
    long Futex(int operation, std::uint32_t value, const timespec* deadline) {
        return syscall(SYS_futex, &Changes(), operation, value, deadline, nullptr, FUTEX_BITSET_MATCH_ANY);
    }

    LinuxRuntime& m_runtime;
    const std::unique_ptr<ShmObject> m_object;
};

// The object when its first word is `magic`, else null.
std::unique_ptr<ShmObject> WithMagic(std::unique_ptr<ShmObject> object, std::uint32_t magic) {
    if (!object) return Failed(errno, std::unique_ptr<ShmObject>());
    if (*reinterpret_cast<const std::uint32_t*>(object->Bytes().data()) == magic) return object;
    return Failed(EINVAL, std::unique_ptr<ShmObject>());
}

}  // namespace

ShmNamedObjects::ShmNamedObjects(LinuxRuntime& runtime, std::string prefix)
    : m_runtime(runtime), m_prefix(std::move(prefix)) {}

std::unique_ptr<NamedMapping> ShmNamedObjects::CreateFileMapping(std::string_view name, std::size_t bytes) {
    const std::string file = FileName("mapping", name);
    if (file.empty() || bytes == 0) return Failed(EINVAL, std::unique_ptr<NamedMapping>());
    auto object = ShmObject::Open(file, bytes, [](std::span<std::byte>) {});
    if (!object) return Failed(errno, std::unique_ptr<NamedMapping>());
    return std::make_unique<ShmMapping>(std::move(object));
}

std::unique_ptr<NamedMutex> ShmNamedObjects::CreateMutex(std::string_view name) {
    const std::string file = FileName("mutex", name);
    if (file.empty()) return Failed(EINVAL, std::unique_ptr<NamedMutex>());
    auto object = WithMagic(ShmObject::Open(file, sizeof(SharedMutex), InitialiseMutex), mutexMagic);
    if (!object) return nullptr;
    return std::make_unique<ShmMutex>(m_runtime, std::move(object));
}

std::shared_ptr<Event> ShmNamedObjects::CreateEvent(std::string_view name) {
    const std::string file = FileName("event", name);
    if (file.empty()) return Failed(EINVAL, std::shared_ptr<Event>());
    auto object = WithMagic(ShmObject::Open(file, sizeof(SharedEvent), InitialiseEvent), eventMagic);
    if (!object) return nullptr;
    return std::make_shared<ShmEvent>(m_runtime, std::move(object));
}

std::uint32_t ShmNamedObjects::GetLastError() {
    return lastError;
}

void ShmNamedObjects::Remove(const std::string& prefix) {
    ShmObject::RemoveAll(prefix);
}

std::string ShmNamedObjects::FileName(std::string_view kind, std::string_view name) const {
    constexpr std::size_t longestPrefix = 64;
    constexpr std::size_t longestFileName = 255;
    if (m_prefix.empty() || m_prefix.size() > longestPrefix || name.empty()) return {};
    if (EncodedName(m_prefix, '%') != m_prefix) return {};
    std::string file = m_prefix + "." + std::string(kind) + "." + EncodedName(name, '%');
    return file.size() <= longestFileName ? file : std::string();
}

}  // namespace varkel
