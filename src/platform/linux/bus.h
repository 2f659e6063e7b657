// The connection to the message bus over which the unit's programs talk.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "platform/linux/problem_sink.h"

struct sd_bus;
struct sd_bus_message;

namespace varkel {

enum class BusKind { Session, System, Address, None };

struct BusOptions {
    BusKind kind = BusKind::Session;
    std::string address;  // for BusKind::Address, such as "unix:path=/run/unit/bus"
};

// A method of another program's object.
struct BusMethod {
    std::string destination;
    std::string path;
    std::string interface;
    std::string member;
};

class Bus;

// A method call from another program that is answered later, from any thread. Dropped without an answer, it
// is answered with an error; so is everything that waits when the bus ends.
class BusRequest {
  public:
    ~BusRequest();
    BusRequest(const BusRequest&) = delete;
    BusRequest& operator=(const BusRequest&) = delete;

    // `append` adds the results to the answer; it runs on the bus thread. Of several answers the first
    // counts.
    void Return(std::function<int(sd_bus_message*)> append);
    // `name` is an error name of the bus, a literal.
    void Fail(const char* name, std::string text);

  private:
    friend class Bus;
    struct Link;
    explicit BusRequest(std::unique_ptr<Link> link);

    std::unique_ptr<Link> m_link;
};

inline constexpr const char* busErrorBusy = "org.varkel.Error.Busy";
inline constexpr const char* busErrorFailed = "org.varkel.Error.Failed";
inline constexpr const char* busErrorInvalid = "org.varkel.Error.InvalidArguments";

// One connection, served by a thread of its own that sleeps until something arrives or is to be sent. Without
// a bus, and from the moment that it is lost, Available() is false, every call fails at once and nothing is
// retried; `onProblem` hears of it once.
//
// Whoever uses a Bus ends before it does.
class Bus {
  public:
    // Connects, which takes at most `longestCall`.
    Bus(const BusOptions& options, ProblemSink onProblem);
    // Sends what is queued, for at most 200 ms.
    ~Bus();

    bool Available() const { return m_available; }
    // ":1.42"; "" when there never was a bus. It stays what it was when the bus is lost.
    const std::string& UniqueName() const { return m_uniqueName; }

    // Queues work for the bus thread: sending, for the most part. It must not wait for anything. False when
    // there is no bus or `mostPosted` wait already. Any thread.
    bool Post(std::function<void(sd_bus*)> work);
    // Runs work on the bus thread and waits until it is done: afterwards what it has taken off the bus is not
    // called any more. False, and it was not run, when there never was a bus. Any thread but the bus thread.
    bool Run(const std::function<void(sd_bus*)>& work);

    // Calls a method and waits for the answer. `append` adds the arguments and `read` takes the results; both
    // run on the bus thread, while the caller waits, and return a negative number on a failure. False when
    // there was no good answer in time or `mostCalls` wait already. Any thread but the bus thread.
    using Append = std::function<int(sd_bus_message*)>;
    using Read = std::function<int(sd_bus_message*)>;
    bool Call(const BusMethod& method, const Append& append, const Read& read,
              std::chrono::milliseconds timeout = longestCall);

    // Keeps a call, from inside its handler, to be answered later. Null when `mostRequests` wait already.
    // Bus thread only.
    std::shared_ptr<BusRequest> Defer(sd_bus_message* call);

    // Asks for a well-known name; true when it is ours now, otherwise it will be once its owners before us
    // give it up. Waits like Call.
    bool RequestName(const std::string& name);
    void ReleaseName(const std::string& name);

    static constexpr std::chrono::milliseconds longestCall{1000};
    static constexpr std::size_t mostPosted = 1024;
    static constexpr std::size_t mostCalls = 64;
    static constexpr std::size_t mostRequests = 64;
    static constexpr std::size_t mostUnsent = 1024;  // messages that the bus does not take

  private:
    friend struct BusRequest::Link;
    struct Queue;
    struct PendingCall;

    bool Connect(const BusOptions& options);
    void Serve();
    void ServePosted();
    bool ProcessArrived();
    void LoseBus();
    void Finish();
    void Answer(std::uint64_t request, const std::function<void(sd_bus_message*)>& reply);
    void StartCall(const std::shared_ptr<PendingCall>& call, const BusMethod& method,
                   std::chrono::milliseconds timeout);

    const ProblemSink m_onProblem;
    const std::shared_ptr<Queue> m_queue;
    std::string m_uniqueName;
    std::atomic<bool> m_available = false;
    std::atomic<bool> m_congested = false;  // more than `mostUnsent` messages wait
    std::atomic<std::size_t> m_calls = 0;

    // From here on the bus thread's alone, once it runs.
    sd_bus* m_bus = nullptr;
    std::uint64_t m_lastRequest = 0;
    std::map<std::uint64_t, sd_bus_message*> m_requests;
    std::thread m_thread;
};

}  // namespace varkel
