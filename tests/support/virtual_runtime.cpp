// Compiled without ThreadSanitizer, which would otherwise take the baton for a lock around everything and
// find no race at all. What really orders two threads (an event, a message, a thread's end) is announced to
// it by hand.
#include "tests/support/virtual_runtime.h"

#include <cassert>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <linux/futex.h>
#include <sched.h>
#include <sys/syscall.h>
#include <thread>
#include <time.h>
#include <unistd.h>
#include <utility>
#include <vector>

#ifdef VARKEL_TSAN
extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);
#endif

namespace varkel::test {

namespace {

void AnnounceAcquire([[maybe_unused]] void* address) {
#ifdef VARKEL_TSAN
    __tsan_acquire(address);
#endif
}

void AnnounceRelease([[maybe_unused]] void* address) {
#ifdef VARKEL_TSAN
    __tsan_release(address);
#endif
}

using Micros = std::uint64_t;
constexpr Micros never = ~Micros{0};
// Reading the clock costs a little time, so that a loop which only polls gets on.
constexpr Micros clockReadCost = 1000 / 64;

class VirtualThread;
thread_local VirtualThread* currentThread = nullptr;

// SplitMix64. A generator of its own, because the library's is shared with code that ThreadSanitizer watches.
class Random {
  public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}
    std::uint64_t operator()() {
        std::uint64_t z = m_state += 0x9E3779B97F4A7C15ull;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }

  private:
    std::uint64_t m_state;
};

// What a blocked thread waits for; a plain function, so that nothing here is shared with instrumented code.
struct Condition {
    bool (*holds)(const void*) = nullptr;
    const void* subject = nullptr;
};

class VirtualThread final : public Thread {
  public:
    VirtualThread(VirtualRuntime::Scheduler& scheduler, ThreadId id, const char* name);

    ThreadId Id() const override { return m_id; }
    void ResumeThread() override;
    WaitResult Wait(Ticks timeout) override;

    void AwaitBaton() {
        while (__atomic_load_n(&m_baton, __ATOMIC_ACQUIRE) == 0) {
            syscall(SYS_futex, &m_baton, FUTEX_WAIT_PRIVATE, 0, nullptr, nullptr, 0);
        }
        __atomic_store_n(&m_baton, 0, __ATOMIC_RELAXED);
    }

    void GiveBaton() {
        __atomic_store_n(&m_baton, 1, __ATOMIC_RELEASE);
        syscall(SYS_futex, &m_baton, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
    }

    bool CanRun(Micros now) const {
        if (ended) return false;
        return !blocked || now >= deadline || (condition.holds && condition.holds(condition.subject));
    }

    VirtualRuntime::Scheduler& scheduler;
    std::thread body;
    char name[16] = {};
    bool ended = false;
    bool resumed = false;
    bool blocked = false;
    const char* waitsFor = "";
    Condition condition;
    Micros deadline = never;
    std::deque<ThreadMessage> messages;

  private:
    const ThreadId m_id;
    int m_baton = 0;
};

}  // namespace

struct VirtualRuntime::Scheduler {
    Scheduler(std::uint64_t chosenSeed, Ticks startTick)
        : seed(chosenSeed), start(startTick), random(chosenSeed) {
        // Some seeds switch at nearly every point, some let a thread run on for long.
        static constexpr unsigned chances[] = {2, 8, 64};
        stayChance = chances[random() % 3];
    }

    // Chooses who runs next, lets time pass when nobody can, and hands the baton over.
    void Switch() {
        VirtualThread* const self = currentThread;
        VirtualThread* const next = Choose(self);
        hash = (hash ^ static_cast<std::uint64_t>(next->Id())) * 0x100000001B3ull;
        hash ^= now;
        if (next == self) return;
        const bool leaves = self->ended;
        next->GiveBaton();
        if (!leaves) self->AwaitBaton();
    }

    VirtualThread* Choose(VirtualThread* self) {
        for (;;) {
            std::size_t count = 0;
            for (const auto& thread : threads) {
                if (thread->CanRun(now)) candidates[count++] = thread.get();
            }
            if (count > 0) {
                const bool selfCan = self->CanRun(now);
                if (selfCan && (count == 1 || random() % stayChance != 0)) return self;
                return candidates[random() % count];
            }
            Micros nearest = never;
            for (const auto& thread : threads) {
                if (!thread->ended && thread->deadline < nearest) nearest = thread->deadline;
            }
            if (nearest == never) GiveUp("deadlock");
            now = nearest;
        }
    }

    // Returns whether the condition holds; else the time is up.
    bool Block(Condition condition, Ticks timeout, const char* waitsFor) {
        VirtualThread* const self = currentThread;
        self->condition = condition;
        self->deadline = timeout == infiniteTicks ? never : now + Micros{timeout} * 1000;
        self->waitsFor = waitsFor;
        self->blocked = true;
        Switch();
        self->blocked = false;
        self->deadline = never;
        return condition.holds && condition.holds(condition.subject);
    }

    void ForgetEnded() {
        std::erase_if(threads, [](const auto& thread) {
            if (thread->ended) thread->body.join();
            return thread->ended;
        });
    }

    // Ends the process with what each thread waits for.
    [[noreturn]] void GiveUp(const char* why) const {
        std::fprintf(stderr, "%s at %llu ms, seed %llu\n", why, static_cast<unsigned long long>(now / 1000),
                     static_cast<unsigned long long>(seed));
        for (const auto& thread : threads) {
            if (!thread->ended) std::fprintf(stderr, "  %s waits for %s\n", thread->name, thread->waitsFor);
        }
        std::abort();
    }

    static constexpr std::size_t mostThreads = 64;

    const std::uint64_t seed;
    const Ticks start;
    Random random;
    unsigned stayChance = 8;
    Micros now = 0;
    std::uint64_t hash = 0xCBF29CE484222325ull;
    std::uint32_t lastId = 0;
    VirtualThread* candidates[mostThreads] = {};
    std::vector<std::shared_ptr<VirtualThread>> threads;
};

namespace {

class VirtualEvent final : public Event {
  public:
    VirtualEvent(VirtualRuntime::Scheduler& scheduler, EventReset reset)
        : m_scheduler(scheduler), m_reset(reset) {}

    void Set() override {
        AnnounceRelease(this);
        m_signalled = true;
        m_scheduler.Switch();
    }

    void Reset() override {
        m_signalled = false;
        m_scheduler.Switch();
    }

    WaitResult Wait(Ticks timeout) override {
        const auto signalled = [](const void* event) {
            return static_cast<const VirtualEvent*>(event)->m_signalled;
        };
        if (!m_scheduler.Block({signalled, this}, timeout, "an event")) return WaitResult::Timeout;
        if (m_reset == EventReset::Automatic) m_signalled = false;
        AnnounceAcquire(this);
        return WaitResult::Object0;
    }

  private:
    VirtualRuntime::Scheduler& m_scheduler;
    const EventReset m_reset;
    bool m_signalled = false;
};

VirtualThread::VirtualThread(VirtualRuntime::Scheduler& owner, ThreadId id, const char* threadName)
    : scheduler(owner), m_id(id) {
    std::snprintf(name, sizeof name, "%s", threadName);
}

void VirtualThread::ResumeThread() {
    AnnounceRelease(&resumed);
    resumed = true;
    scheduler.Switch();
}

WaitResult VirtualThread::Wait(Ticks timeout) {
    const auto hasEnded = [](const void* thread) { return static_cast<const VirtualThread*>(thread)->ended; };
    if (!scheduler.Block({hasEnded, this}, timeout, name)) return WaitResult::Timeout;
    AnnounceAcquire(&ended);
    return WaitResult::Object0;
}

// One core does the whole process's work: a hand-over between two cores costs several times as much.
void PinToOneCore() {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(static_cast<std::size_t>(sched_getcpu()), &set);
    sched_setaffinity(0, sizeof set, &set);
}

}  // namespace

VirtualRuntime::VirtualRuntime(std::uint64_t seed, Ticks start)
    : m_scheduler(std::make_unique<Scheduler>(seed, start)) {
    PinToOneCore();
    auto first = std::make_shared<VirtualThread>(*m_scheduler, ThreadId{++m_scheduler->lastId}, "dialog");
    currentThread = first.get();
    m_scheduler->threads.push_back(std::move(first));
}

VirtualRuntime::~VirtualRuntime() {
    for (const auto& thread : m_scheduler->threads) {
        if (thread.get() != currentThread && !thread->ended) m_scheduler->GiveUp("a thread has not ended");
    }
    m_scheduler->ForgetEnded();
    currentThread = nullptr;
}

Ticks VirtualRuntime::GetTickCount() {
    m_scheduler->now += clockReadCost;
    m_scheduler->Switch();
    return m_scheduler->start + static_cast<Ticks>(m_scheduler->now / 1000);
}

void VirtualRuntime::Sleep(Ticks milliseconds) {
    m_scheduler->Block({}, milliseconds, "the time to pass");
}

LocalTime VirtualRuntime::GetLocalTime() {
    constexpr time_t firstSecond = 1772906700;  // 2026-03-07 18:05:00
    const time_t second = firstSecond + static_cast<time_t>(m_scheduler->now / 1'000'000);
    tm fields{};
    gmtime_r(&second, &fields);
    return {fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday,
            fields.tm_hour,        fields.tm_min,     fields.tm_sec};
}

std::shared_ptr<Event> VirtualRuntime::CreateEvent(EventReset reset) {
    return std::make_shared<VirtualEvent>(*m_scheduler, reset);
}

std::shared_ptr<Thread> VirtualRuntime::CreateThread(const ThreadOptions& options,
                                                     std::function<void()> body) {
    if (!m_refused.empty() && options.name == m_refused) return nullptr;
    m_scheduler->ForgetEnded();
    assert(m_scheduler->threads.size() < Scheduler::mostThreads);
    auto thread =
        std::make_shared<VirtualThread>(*m_scheduler, ThreadId{++m_scheduler->lastId}, options.name.c_str());
    m_scheduler->threads.push_back(thread);
    thread->body =
        std::thread([this, thread, suspended = options.suspended, body = std::move(body)]() mutable {
            currentThread = thread.get();
            thread->AwaitBaton();
            if (suspended) SuspendThread();
            body();
            body = nullptr;
            thread->messages.clear();
            AnnounceRelease(&thread->ended);
            thread->ended = true;
            m_scheduler->Switch();
        });
    m_scheduler->Switch();
    return thread;
}

ThreadId VirtualRuntime::CurrentThreadId() {
    return currentThread->Id();
}

void VirtualRuntime::SuspendThread() {
    const auto isResumed = [](const void* thread) {
        return static_cast<const VirtualThread*>(thread)->resumed;
    };
    m_scheduler->Block({isResumed, currentThread}, infiniteTicks, "ResumeThread");
    AnnounceAcquire(&currentThread->resumed);
    currentThread->resumed = false;
}

bool VirtualRuntime::PostThreadMessage(ThreadId id, ThreadMessage& message) {
    for (const auto& thread : m_scheduler->threads) {
        if (thread->Id() != id || thread->ended || thread->messages.size() >= threadQueueLimit) continue;
        AnnounceAcquire(&thread->messages);
        thread->messages.push_back(std::move(message));
        AnnounceRelease(&thread->messages);
        m_scheduler->Switch();
        return true;
    }
    m_scheduler->Switch();
    return false;
}

ThreadMessage VirtualRuntime::GetMessage() {
    const auto hasMessage = [](const void* thread) {
        return !static_cast<const VirtualThread*>(thread)->messages.empty();
    };
    m_scheduler->Block({hasMessage, currentThread}, infiniteTicks, "a thread message");
    AnnounceAcquire(&currentThread->messages);
    ThreadMessage message = std::move(currentThread->messages.front());
    currentThread->messages.pop_front();
    AnnounceRelease(&currentThread->messages);
    return message;
}

std::uint64_t VirtualRuntime::Elapsed() const {
    return m_scheduler->now / 1000;
}
std::uint64_t VirtualRuntime::TraceHash() const {
    return m_scheduler->hash;
}

}  // namespace varkel::test
