#include "platform/linux/bus.h"

#include <algorithm>
#include <cassert>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <pthread.h>
#include <systemd/sd-bus.h>
#include <time.h>
#include <utility>

#include "platform/linux/file_descriptor.h"

namespace varkel {

namespace {

using Clock = std::chrono::steady_clock;
using Micros = std::chrono::microseconds;

constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";

// What sd-bus counts its time-outs on is also what steady_clock counts on.
Micros Until(std::uint64_t moment) {
    if (moment == UINT64_MAX) return forever;
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const auto micros =
        static_cast<std::uint64_t>(now.tv_sec) * 1'000'000 + static_cast<std::uint64_t>(now.tv_nsec) / 1000;
    return Micros(moment > micros ? moment - micros : 0);
}

// Waits until the connection or `wake` (-1 = none) asks for attention, at most `limit`.
void AwaitBus(sd_bus* bus, int wake, Micros limit) {
    pollfd sources[] = {{wake, POLLIN, 0}, {-1, 0, 0}};
    if (bus) {
        sources[1] = {sd_bus_get_fd(bus), static_cast<short>(sd_bus_get_events(bus)), 0};
        std::uint64_t moment = UINT64_MAX;
        if (sd_bus_get_timeout(bus, &moment) >= 0) limit = std::min(limit, Until(moment));
    }
    Poll(sources, limit);
}

}  // namespace

// Outlives the bus for as long as requests that may still be answered refer to it.
struct Bus::Queue {
    using Work = std::function<void(sd_bus*)>;

    bool Push(Work entry, std::size_t limit) {
        {
            std::lock_guard lock(mutex);
            if (closed || work.size() >= limit) return false;
            work.push_back(std::move(entry));
        }
        wake.Signal();
        return true;
    }

    std::deque<Work> TakeAll() {
        std::lock_guard lock(mutex);
        return std::exchange(work, {});
    }

    void Close() {
        {
            std::lock_guard lock(mutex);
            closed = true;
        }
        wake.Signal();
    }

    bool Closed() {
        std::lock_guard lock(mutex);
        return closed;
    }

    WakeUp wake;
    std::mutex mutex;
    std::deque<Work> work;
    bool closed = false;
};

// A call on its way. The caller's functions are used only under the lock and while the caller still waits.
struct Bus::PendingCall {
    PendingCall(const Append& appendArguments, const Read& readResults)
        : append(appendArguments), read(readResults) {}

    void End(bool succeeded) {
        done = true;
        good = succeeded;
        ended.notify_one();
    }

    static int OnReply(sd_bus_message* reply, void* userdata, sd_bus_error*) {
        auto& call = **static_cast<std::shared_ptr<PendingCall>*>(userdata);
        std::lock_guard lock(call.mutex);
        if (!call.abandoned)
            call.End(sd_bus_message_is_method_error(reply, nullptr) == 0 && call.read(reply) >= 0);
        return 1;
    }

    static void Forget(void* userdata) { delete static_cast<std::shared_ptr<PendingCall>*>(userdata); }

    const Append& append;
    const Read& read;
    std::mutex mutex;
    std::condition_variable ended;
    bool done = false;
    bool good = false;
    bool abandoned = false;
};

struct BusRequest::Link {
    Link(std::shared_ptr<Bus::Queue> ofBus, Bus* itself, std::uint64_t number)
        : queue(std::move(ofBus)), bus(itself), id(number) {}

    void Answer(std::function<void(sd_bus_message*)> reply) {
        if (answered.exchange(true)) return;
        // Answers always find room: there are never more than requests.
        queue->Push([bus = bus, id = id, reply = std::move(reply)](sd_bus*) { bus->Answer(id, reply); },
                    SIZE_MAX);
    }

    std::shared_ptr<Bus::Queue> queue;
    Bus* bus;  // lives whenever the queue runs something
    std::uint64_t id;
    std::atomic<bool> answered = false;
};

BusRequest::BusRequest(std::unique_ptr<Link> link) : m_link(std::move(link)) {}

BusRequest::~BusRequest() {
    Fail(busErrorFailed, "nobody has answered");
}

void BusRequest::Return(std::function<int(sd_bus_message*)> append) {
    m_link->Answer([append = std::move(append)](sd_bus_message* call) {
        sd_bus_message* answer = nullptr;
        if (sd_bus_message_new_method_return(call, &answer) >= 0 && append(answer) >= 0)
            sd_bus_send(nullptr, answer, nullptr);
        sd_bus_message_unref(answer);
    });
}

void BusRequest::Fail(const char* name, std::string text) {
    m_link->Answer([name, text = std::move(text)](sd_bus_message* call) {
        const sd_bus_error error{name, text.c_str(), 0};
        sd_bus_reply_method_error(call, &error);
    });
}

Bus::Bus(const BusOptions& options, ProblemSink onProblem)
    : m_onProblem(std::move(onProblem)), m_queue(std::make_shared<Queue>()) {
    if (options.kind == BusKind::None || !Connect(options)) {
        m_queue->Close();
        return;
    }
    m_available = true;
    m_thread = std::thread([this] {
        pthread_setname_np(pthread_self(), "bus");
        Serve();
    });
}

Bus::~Bus() {
    m_queue->Close();
    if (m_thread.joinable()) m_thread.join();
    sd_bus_close_unref(m_bus);
}

bool Bus::Connect(const BusOptions& options) {
    int result = 0;
    if (options.kind == BusKind::Address) {
        result = sd_bus_new(&m_bus);
        if (result >= 0) result = sd_bus_set_address(m_bus, options.address.c_str());
        if (result >= 0) result = sd_bus_set_bus_client(m_bus, 1);
        if (result >= 0) result = sd_bus_start(m_bus);
    } else {
        result = options.kind == BusKind::System ? sd_bus_open_system(&m_bus) : sd_bus_open_user(&m_bus);
    }
    const auto deadline = Clock::now() + longestCall;
    while (result >= 0 && sd_bus_is_ready(m_bus) <= 0) {
        result = sd_bus_process(m_bus, nullptr);
        if (result != 0) continue;
        const auto left = std::chrono::duration_cast<Micros>(deadline - Clock::now());
        if (left.count() <= 0) result = -ETIMEDOUT;
        if (result == 0) AwaitBus(m_bus, -1, left);
    }
    const char* name = nullptr;
    if (result >= 0) result = sd_bus_get_unique_name(m_bus, &name);
    if (result >= 0) {
        m_uniqueName = name;
        return true;
    }
    Report(m_onProblem,
           std::string("no message bus, other programs cannot be reached: ") + std::strerror(-result));
    m_bus = sd_bus_close_unref(m_bus);
    return false;
}

void Bus::Serve() {
    while (!m_queue->Closed()) {
        ServePosted();
        if (!ProcessArrived()) AwaitBus(m_available ? m_bus : nullptr, m_queue->wake.Get(), forever);
    }
    Finish();
}

void Bus::ServePosted() {
    // Cleared before the queue is emptied, so that work which comes now wakes the thread again.
    m_queue->wake.Clear();
    for (const auto& work : m_queue->TakeAll())
        work(m_bus);
    std::uint64_t unsent = 0;
    m_congested = sd_bus_get_n_queued_write(m_bus, &unsent) >= 0 && unsent > mostUnsent;
}

// Handles what has arrived, some of it if it is much; true when there may be more.
bool Bus::ProcessArrived() {
    constexpr int mostAtOnce = 64;
    for (int i = 0; i < mostAtOnce && m_available; ++i) {
        const int result = sd_bus_process(m_bus, nullptr);
        if (result == 0) return false;
        if (result < 0) LoseBus();
    }
    return m_available;
}

void Bus::LoseBus() {
    m_available = false;
    sd_bus_close(m_bus);
    for (const auto& [id, call] : m_requests)
        sd_bus_message_unref(call);
    m_requests.clear();
    Report(m_onProblem, "the message bus is lost, other programs cannot be reached any more");
}

void Bus::Finish() {
    ServePosted();
    while (!m_requests.empty()) {
        Answer(m_requests.begin()->first, [](sd_bus_message* call) {
            const sd_bus_error error{busErrorFailed, "the program ends", 0};
            sd_bus_reply_method_error(call, &error);
        });
    }
    const auto deadline = Clock::now() + std::chrono::milliseconds(200);
    std::uint64_t unsent = 0;
    while (m_available && sd_bus_get_n_queued_write(m_bus, &unsent) >= 0 && unsent > 0 &&
           Clock::now() < deadline) {
        if (sd_bus_process(m_bus, nullptr) == 0)
            AwaitBus(m_bus, -1, std::chrono::duration_cast<Micros>(deadline - Clock::now()));
    }
    m_available = false;
}

bool Bus::Post(std::function<void(sd_bus*)> work) {
    return m_available && !m_congested && m_queue->Push(std::move(work), mostPosted);
}

bool Bus::Run(const std::function<void(sd_bus*)>& work) {
    assert(std::this_thread::get_id() != m_thread.get_id());
    std::mutex mutex;
    std::condition_variable ended;
    bool done = false;
    // One for each waiting thread, so no limit is needed.
    const bool queued = m_queue->Push(
        [&](sd_bus* bus) {
            work(bus);
            std::lock_guard lock(mutex);
            done = true;
            ended.notify_one();
        },
        SIZE_MAX);
    if (!queued) return false;
    std::unique_lock lock(mutex);
    ended.wait(lock, [&] { return done; });
    return true;
}

bool Bus::Call(const BusMethod& method, const Append& append, const Read& read,
               std::chrono::milliseconds timeout) {
    assert(std::this_thread::get_id() != m_thread.get_id());
    const auto deadline = Clock::now() + timeout;
    if (m_calls.fetch_add(1) >= mostCalls) {
        --m_calls;
        return false;
    }
    const auto call = std::make_shared<PendingCall>(append, read);
    bool good = false;
    if (Post([this, call, method, timeout](sd_bus*) { StartCall(call, method, timeout); })) {
        std::unique_lock lock(call->mutex);
        call->ended.wait_until(lock, deadline, [&] { return call->done; });
        call->abandoned = true;
        good = call->good;
    }
    --m_calls;
    return good;
}

void Bus::StartCall(const std::shared_ptr<PendingCall>& call, const BusMethod& method,
                    std::chrono::milliseconds timeout) {
    std::lock_guard lock(call->mutex);
    if (call->abandoned) return;
    sd_bus_message* message = nullptr;
    int result =
        sd_bus_message_new_method_call(m_bus, &message, method.destination.c_str(), method.path.c_str(),
                                       method.interface.c_str(), method.member.c_str());
    if (result >= 0) result = sd_bus_message_set_auto_start(message, 0);
    if (result >= 0) result = call->append(message);
    if (result >= 0) {
        auto userdata = std::make_unique<std::shared_ptr<PendingCall>>(call);
        sd_bus_slot* slot = nullptr;
        result = sd_bus_call_async(m_bus, &slot, message, PendingCall::OnReply, userdata.get(),
                                   static_cast<std::uint64_t>(Micros(timeout).count()));
        if (result >= 0) {
            // The slot goes, and the call with it, after the reply, the time-out or the end of the bus.
            sd_bus_slot_set_destroy_callback(slot, PendingCall::Forget);
            sd_bus_slot_set_floating(slot, 1);
            sd_bus_slot_unref(slot);
            static_cast<void>(userdata.release());
        }
    }
    sd_bus_message_unref(message);
    if (result < 0) call->End(false);
}

std::shared_ptr<BusRequest> Bus::Defer(sd_bus_message* call) {
    if (m_requests.size() >= mostRequests) return nullptr;
    const std::uint64_t id = ++m_lastRequest;
    m_requests[id] = sd_bus_message_ref(call);
    auto link = std::make_unique<BusRequest::Link>(m_queue, this, id);
    return std::shared_ptr<BusRequest>(new BusRequest(std::move(link)));
}

void Bus::Answer(std::uint64_t request, const std::function<void(sd_bus_message*)>& reply) {
    const auto found = m_requests.find(request);
    if (found == m_requests.end()) return;
    reply(found->second);
    sd_bus_message_unref(found->second);
    m_requests.erase(found);
}

bool Bus::RequestName(const std::string& name) {
    std::uint32_t owner = 0;
    const bool answered = Call(
        {busName, busPath, busName, "RequestName"},
        [&](sd_bus_message* m) { return sd_bus_message_append(m, "su", name.c_str(), 0u); },
        [&](sd_bus_message* m) { return sd_bus_message_read(m, "u", &owner); });
    constexpr std::uint32_t primaryOwner = 1;
    constexpr std::uint32_t alreadyOwner = 4;
    return answered && (owner == primaryOwner || owner == alreadyOwner);
}

void Bus::ReleaseName(const std::string& name) {
    Post([name](sd_bus* bus) {
        sd_bus_message* message = nullptr;
        if (sd_bus_message_new_method_call(bus, &message, busName, busPath, busName, "ReleaseName") >= 0 &&
            sd_bus_message_append(message, "s", name.c_str()) >= 0)
            sd_bus_send(bus, message, nullptr);
        sd_bus_message_unref(message);
    });
}

}  // namespace varkel
