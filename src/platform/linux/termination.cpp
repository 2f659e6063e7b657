#include "platform/linux/termination.h"

#include <unistd.h>
#include <utility>

namespace varkel {

Termination::Termination(std::function<void()> onFirst) {
    signal(SIGPIPE, SIG_IGN);
    sigemptyset(&m_signals);
    sigaddset(&m_signals, SIGINT);
    sigaddset(&m_signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &m_signals, &m_before);
    m_thread = std::thread([this, onFirst = std::move(onFirst)] {
        pthread_setname_np(pthread_self(), "termination");
        AwaitSignals(onFirst);
    });
}

Termination::~Termination() {
    m_closing = true;
    pthread_kill(m_thread.native_handle(), SIGINT);
    m_thread.join();
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void Termination::AwaitSignals(const std::function<void()>& onFirst) {
    constexpr int interrupted = 130;
    for (bool first = true;; first = false) {
        int received = 0;
        sigwait(&m_signals, &received);
        if (m_closing) return;
        if (!first) _exit(interrupted);
        onFirst();
    }
}

}  // namespace varkel
