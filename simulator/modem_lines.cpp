// The modem's ear and mouth: bytes to command lines, command lines to answers.
#include <algorithm>
#include <utility>

#include "platform/text.h"
#include "simulator/bytes.h"
#include "simulator/modem.h"

namespace varkel::sim {

namespace {

constexpr char carriageReturn = '\r';
constexpr char lineFeed = '\n';
constexpr char backspace = '\b';
constexpr char controlZ = '\x1A';
constexpr char escape = '\x1B';

// What stands behind the first "AT"; nothing when there is none.
std::optional<std::string_view> BehindAt(std::string_view line) {
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const bool a = line[i] == 'A' || line[i] == 'a';
        const bool t = line[i + 1] == 'T' || line[i + 1] == 't';
        if (a && t) return line.substr(i + 2);
    }
    return std::nullopt;
}

// A command line for those who watch: the digits of codes are nobody's business.
std::string Shown(std::string_view asked) {
    std::string line = Visible(asked);
    for (const std::string_view secret : {"+CPIN=", "+CLCK=", "+CPWD="}) {
        const std::size_t at = LowerAscii(line).find(LowerAscii(secret));
        if (at == std::string::npos) continue;
        for (std::size_t i = at; i < line.size(); ++i) {
            if (line[i] >= '0' && line[i] <= '9') line[i] = '*';
        }
    }
    return line;
}

}  // namespace

void Modem::Receive(std::string_view bytes, Millis now) {
    if (!m_booted) return;
    m_input += bytes;
    Pump(now);
    if (m_input.size() > longestInput) m_input.resize(longestInput);
}

void Modem::Pump(Millis now) {
    std::size_t taken = 0;
    const bool echo = m_settings.echo;
    while (m_mode != Mode::Busy && taken < m_input.size()) {
        const char byte = m_input[taken++];
        if (m_mode == Mode::Entry) {
            TakeEntryByte(byte, now);
        } else {
            TakeLineByte(byte, now);
        }
    }
    if (echo) m_wire.Send(std::string_view(m_input).substr(0, taken), Burst::Echo, now);
    m_input.erase(0, taken);
}

void Modem::TakeLineByte(char byte, Millis now) {
    if (byte == carriageReturn) {
        FinishLine(now);
    } else if (byte == backspace) {
        if (!m_line.empty()) m_line.pop_back();
    } else if (byte != lineFeed && m_line.size() <= longestLine) {
        m_line += byte;
    }
}

void Modem::TakeEntryByte(char byte, Millis now) {
    if (byte == controlZ) {
        FinishEntry(now);
    } else if (byte == escape) {
        m_line.clear();
        BusyFor(m_config.times.reply, now,
                [this](Millis then) { Conclude("<ESC>", {}, Outcome::Ok(), then); });
    } else if (m_line.size() <= longestLine) {
        m_line += byte;
    }
}

void Modem::FinishLine(Millis now) {
    const std::string line = std::exchange(m_line, {});
    const auto behind = BehindAt(line);
    if (!behind) {
        if (!line.empty()) Say("no command line: " + Shown(line));
        return;
    }
    if (m_hooks.command) m_hooks.command(line);
    // Too long is as bad as malformed; an empty list of commands is well.
    auto commands = line.size() > longestLine ? std::nullopt : ParseAtLine(*behind);
    const Millis time = commands ? TimeFor(*commands) : m_config.times.reply;
    BusyFor(time, now, [this, line, parsed = std::move(commands)](Millis then) {
        std::string answer;
        const Outcome outcome = parsed ? Execute(*parsed, answer, then) : Outcome::Error();
        Conclude(line, std::move(answer), outcome, then);
    });
}

void Modem::FinishEntry(Millis now) {
    const std::string text = std::exchange(m_line, {});
    if (m_hooks.command) m_hooks.command(text);
    BusyFor(m_config.times.send + m_config.messageFaults.late, now, [this, text](Millis then) {
        const AtCommand none;
        Exchange exchange{*this, none, then, {}};
        const Outcome outcome = m_entry.entered(exchange, text);
        std::string answer;
        for (const std::string& info : exchange.info)
            answer += "\r\n" + info + "\r\n";
        Conclude(text, std::move(answer), outcome, then);
    });
}

void Modem::BusyFor(Millis time, Millis now, std::function<void(Millis)> work) {
    m_mode = Mode::Busy;
    m_agenda.At(now + time, Topic::Reply, std::move(work));
}

// The slowest command decides.
Millis Modem::TimeFor(const std::vector<AtCommand>& commands) const {
    const ModemTimes& times = m_config.times;
    Millis time = commands.empty() ? times.reply : 0;
    for (const AtCommand& command : commands) {
        const CommandEntry* const entry = FindCommand(command.name, m_config.kind);
        switch (entry ? entry->pace : Pace::Quick) {
            case Pace::Quick: time = std::max(time, times.reply); break;
            case Pace::Sim: time = std::max(time, times.simReply); break;
            case Pace::Dial: time = std::max(time, times.dial); break;
        }
    }
    return time;
}

// Carries out one command after the other, up to the first that fails or that asks for a text.
Outcome Modem::Execute(const std::vector<AtCommand>& commands, std::string& answer, Millis now) {
    for (const AtCommand& command : commands) {
        Exchange exchange{*this, command, now, {}};
        const Outcome outcome = CarryOut(FindCommand(command.name, m_config.kind), exchange);
        for (std::size_t i = 0; i < exchange.info.size(); ++i)
            answer += (i == 0 ? "\r\n" : "") + exchange.info[i] + "\r\n";
        if (outcome.kind != Outcome::Kind::Ok) return outcome;
    }
    return Outcome::Ok();
}

void Modem::Conclude(std::string_view asked, std::string answer, const Outcome& outcome, Millis now) {
    const bool prompt = outcome.kind == Outcome::Kind::Prompt;
    const bool later = outcome.kind == Outcome::Kind::Later;
    if (outcome.kind == Outcome::Kind::Silent) {
        answer.clear();
    } else if (!later) {
        answer += prompt ? "\r\n> " : "\r\n" + FinalResult(outcome, m_settings.errors) + "\r\n";
    }
    m_wire.Send(answer, Burst::Answer, now);
    if (m_hooks.say)
        Say(Shown(asked) + " -> " + (later ? "(later)" : answer.empty() ? "(silence)" : Visible(answer)));
    m_mode = prompt ? Mode::Entry : Mode::Line;
    m_holding = prompt;
    m_entry = outcome;
    while (!m_holding && !m_held.empty()) {
        Unsolicited(m_held.front(), now);
        m_held.pop_front();
    }
    Pump(now);
}

}  // namespace varkel::sim
