#include "modem/secret_watch.h"

#include <algorithm>

namespace varkel {

namespace {

constexpr std::size_t longestTail = 64;

// Cuts everything up to and with the first of the words off `text`; false when none occurs.
bool Pass(std::string& text, std::initializer_list<std::string_view> words) {
    std::size_t end = std::string::npos;
    for (const std::string_view word : words) {
        const std::size_t at = text.find(word);
        if (at != std::string::npos) end = std::min(end, at + word.size());
    }
    if (end == std::string::npos) return false;
    text.erase(0, end);
    return true;
}

}  // namespace

void SecretWatch::CommandSent(Ticks now) {
    std::lock_guard lock(m_mutex);
    ++m_outstanding;
    m_lastSent = now;
    m_log.MaskDigits(true);
}

void SecretWatch::Received(std::string_view chunk, Ticks now) {
    std::lock_guard lock(m_mutex);
    m_tail.append(chunk);
    for (;;) {
        if (!m_echoSeen) {
            if (Pass(m_tail, {"AT+CPIN=", "AT+CLCK=", "AT+CUSD="})) {
                m_echoSeen = true;
            } else if (TicksSince(now, m_lastSent) >= patience && Pass(m_tail, {"\r\nOK\r\n", "ERROR"})) {
                m_outstanding = 0;
                break;
            } else {
                break;
            }
        }
        if (!Pass(m_tail, {"\r\nOK\r\n", "ERROR"})) break;
        m_echoSeen = false;
        m_outstanding = std::max(0, m_outstanding - 1);
    }
    if (m_outstanding == 0) {
        m_log.MaskDigits(false);
        m_tail.clear();
        m_echoSeen = false;
    } else if (m_tail.size() > longestTail) {
        m_tail.erase(0, m_tail.size() - longestTail);
    }
}

}  // namespace varkel
