#include "platform/linux/pppd_language.h"

#include <algorithm>
#include <arpa/inet.h>

#include "platform/text.h"

namespace varkel {

namespace {

struct Step {
    std::string_view words;  // with which the line begins
    RasState state;
};

constexpr Step steps[] = {
    {"Serial connection established", RasState::DeviceConnected},
    {"Connect: ", RasState::Authenticate},
    {"PAP authentication succeeded", RasState::Authenticated},
    {"CHAP authentication succeeded", RasState::Authenticated},
    {"EAP authentication succeeded", RasState::Authenticated},
    {"local  IP address ", RasState::Connected},
};

// How lines begin that come at every end and do not say why.
constexpr std::string_view farewells[] = {"Connect time ", "Sent ", "Connection terminated", "Exit."};

constexpr std::string_view peerWords = "remote IP address ";

// By exit code, as pppd's manual lists them.
constexpr std::string_view exitTexts[] = {
    "the other end has closed the link",
    "pppd met a fatal error",
    "pppd does not take its options",
    "pppd may not run for this user",
    "the kernel does not support PPP",
    "pppd was told to end",
    "the modem's data port is in use",
    "the modem's data port cannot be opened",
    "the script that dials has failed",
    "the command that stands for the modem cannot be run",
    "the negotiation has failed",
    "the other end did not show who it is",
    "the link was idle",
    "the link's time was over",
    "the other end will call back",
    "the other end does not answer any more",
    "the modem has hung up",
    "the line returns what is sent",
    "the script that prepares the modem has failed",
    "user or password were refused",
};

bool IsControl(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
}

// A word of an options file, in the quotes that keep blanks and hashes what they are.
std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + "\"";
}

}  // namespace

std::optional<std::string> PppdOptions(const RasDialParams& params) {
    constexpr std::size_t longest = 255;
    std::string options;
    for (const auto& [name, text] :
         {std::pair("user ", &params.userName), std::pair("password ", &params.password)}) {
        if (text->size() > longest || std::any_of(text->begin(), text->end(), IsControl)) return std::nullopt;
        if (!text->empty()) options += name + Quoted(*text) + "\n";
    }
    return options;
}

bool IsPppdEntry(std::string_view name) {
    constexpr std::size_t longest = 64;
    return !name.empty() && name.size() <= longest && name.front() != '.' &&
           std::none_of(name.begin(), name.end(), [](char c) { return c == '/' || IsControl(c); });
}

std::string PppdExitText(int code) {
    if (code < 0) return "pppd was killed";
    const auto index = static_cast<std::size_t>(code);
    const std::string_view text = index < std::size(exitTexts) ? exitTexts[index] : "pppd has ended";
    return std::string(text) + " (" + std::to_string(code) + ")";
}

std::vector<RasState> PppdProgress::Feed(std::string_view bytes) {
    std::vector<RasState> reached;
    for (const char c : bytes) {
        if (c == '\n' || c == '\r') {
            TakeLine(reached);
            m_line.clear();
        } else if (m_line.size() < longestLine) {
            m_line += c;
        }
    }
    return reached;
}

void PppdProgress::TakeLine(std::vector<RasState>& reached) {
    const std::string_view line = Trimmed(m_line);
    const bool farewell = std::any_of(std::begin(farewells), std::end(farewells),
                                      [line](std::string_view words) { return line.starts_with(words); });
    if (line.empty() || farewell) return;
    m_lastWords = line;
    for (const Step& step : steps) {
        if (!line.starts_with(step.words) || step.state <= m_state) continue;
        m_state = step.state;
        reached.push_back(step.state);
    }
    if (!line.starts_with(peerWords)) return;
    const std::string address(Trimmed(line.substr(peerWords.size())));
    in_addr number{};
    if (inet_pton(AF_INET, address.c_str(), &number) == 1) m_peerAddress = address;
}

std::string PppdProgress::LastWords() const {
    std::string words = m_lastWords;
    std::replace_if(
        words.begin(), words.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return words;
}

}  // namespace varkel
