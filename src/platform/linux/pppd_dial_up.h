// Dial-up networking by the program pppd, or one that behaves as it does.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/dial_up.h"
#include "platform/linux/problem_sink.h"
#include "platform/message_loop.h"
#include "platform/runtime.h"

namespace varkel {

// RasDial starts
//
//     PROGRAM call ENTRY nodetach nopersist logfd 1 file /dev/stdin
//
// as a child in a process group of its own, and a thread follows what it prints. The entry names the modem's
// data port, the number and the script that dials (data/peers has an example). User and password are options
// in memory that only the child can read: they stand on no command line, in no environment and in no file.
// Nothing in the group outlives PROGRAM, so a script in its place ends by "exec pppd".
class PppdDialUp final : public DialUp {
  public:
    // Runtime and loop outlive the object. `onProblem` hears, on any thread, why a link did not come or has
    // ended. A program that is asked to end has `patience` until it is killed.
    PppdDialUp(Runtime& runtime, MessageLoop& loop, std::vector<std::string> program, ProblemSink onProblem,
               std::chrono::milliseconds patience = std::chrono::seconds(5));
    // Hangs up.
    ~PppdDialUp() override;

    // Busy while a program of an earlier call still runs.
    RasError RasDial(const RasDialParams& params, std::function<void(RasState)> notifier,
                     RasHandle& handle) override;
    void RasHangUp(RasHandle handle) override;
    std::string PeerAddress(RasHandle handle) override;

  private:
    class Connection;

    std::shared_ptr<Connection> Find(RasHandle handle);

    Runtime& m_runtime;
    MessageLoop& m_loop;
    const std::vector<std::string> m_program;
    const ProblemSink m_onProblem;
    const std::chrono::milliseconds m_patience;
    std::mutex m_mutex;
    std::uint32_t m_lastHandle = 0;            // under the mutex, as the next one
    std::shared_ptr<Connection> m_connection;  // the latest; it may be over
};

}  // namespace varkel
