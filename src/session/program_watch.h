// Waits for a program that was started from the main screen to end, and then brings the window back.
#pragma once

#include <atomic>
#include <memory>
#include <string_view>

#include "platform/guarded.h"
#include "session/session.h"

namespace varkel {

class ProgramWatch {
  public:
    explicit ProgramWatch(Session& session);
    ~ProgramWatch();

    // Creates the detect thread, suspended and of the lowest priority; false when the system refuses.
    bool Start();
    // Hides the window and starts the program of that device path; the window comes back when it has ended,
    // and at once, with a message box, when it cannot be started. Dialog thread.
    void Launch(std::string_view path);

  private:
    void Watch(std::shared_ptr<Process> program);
    void DetectThread();

    Session& m_session;
    Guarded<std::shared_ptr<Process>> m_program;
    std::atomic<bool> m_ending = false;
    std::shared_ptr<Thread> m_thread;
};

}  // namespace varkel
