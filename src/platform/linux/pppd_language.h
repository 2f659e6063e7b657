// What is said to the program pppd, and what it says: its options, its progress, its exit codes.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dial_up.h"

namespace varkel {

// An options file that gives pppd the user and the password. Nothing when one of them cannot stand there: it
// has control characters, or more bytes than the 255 that pppd keeps.
std::optional<std::string> PppdOptions(const RasDialParams& params);

// pppd takes the name for a path below its directory of entries; this one cannot leave it.
bool IsPppdEntry(std::string_view name);

// What became of pppd, for people. -1 stands for a signal that ended it.
std::string PppdExitText(int code);

// Reads along while one pppd runs. Any bytes may come; a line is kept up to `longestLine` bytes.
class PppdProgress {
  public:
    // The states that were reached with these bytes. Each is reached once, and none after a later one.
    std::vector<RasState> Feed(std::string_view bytes);

    // The other end's address as of now, "" while pppd has not told it.
    const std::string& PeerAddress() const { return m_peerAddress; }
    // The last line that may say why it ended, in printable ASCII.
    std::string LastWords() const;

    static constexpr std::size_t longestLine = 256;

  private:
    void TakeLine(std::vector<RasState>& reached);

    std::string m_line;
    std::string m_lastWords;
    std::string m_peerAddress;
    RasState m_state = RasState::ConnectDevice;
};

}  // namespace varkel
