#include "simulator/at_line.h"

#include <algorithm>
#include <charconv>

namespace varkel::sim {

namespace {

bool Digit(char c) {
    return c >= '0' && c <= '9';
}

bool Letter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

char Capital(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Characters of an extended command's name behind its "+" (V.250, 5.4.1).
bool InName(char c) {
    return Letter(c) || Digit(c) || std::string_view("!%-./:_").find(c) != std::string_view::npos;
}

class LineParser {
  public:
    explicit LineParser(std::string_view line) : m_rest(line) {}

    std::optional<std::vector<AtCommand>> Run() {
        for (SkipBlanks(); !m_rest.empty(); SkipBlanks()) {
            if (Take(';')) continue;
            AtCommand command;
            const bool well = m_rest.front() == '+' ? Extended(command) : Basic(command);
            if (!well || m_commands.size() == mostCommands) return std::nullopt;
            m_commands.push_back(std::move(command));
        }
        return std::move(m_commands);
    }

  private:
    void SkipBlanks() {
        while (!m_rest.empty() && m_rest.front() == ' ')
            m_rest.remove_prefix(1);
    }

    bool Take(char c) {
        if (m_rest.empty() || m_rest.front() != c) return false;
        m_rest.remove_prefix(1);
        return true;
    }

    // A basic command: one letter, maybe behind "&", and a number. "D" takes the rest of the line.
    bool Basic(AtCommand& command) {
        if (Take('&')) command.name = "&";
        if (m_rest.empty() || !Letter(m_rest.front())) return false;
        command.name += Capital(m_rest.front());
        m_rest.remove_prefix(1);
        AtArgument argument;
        if (command.name == "D") {
            argument.text = m_rest;
            m_rest = {};
        }
        while (!m_rest.empty() && Digit(m_rest.front())) {
            argument.text += m_rest.front();
            m_rest.remove_prefix(1);
        }
        if (!argument.Omitted()) command.arguments.push_back(std::move(argument));
        return true;
    }

    bool Extended(AtCommand& command) {
        const auto end = std::find_if_not(m_rest.begin() + 1, m_rest.end(), InName);
        const auto length = static_cast<std::size_t>(end - m_rest.begin());
        if (length < 2) return false;
        std::transform(m_rest.begin(), end, std::back_inserter(command.name), Capital);
        m_rest.remove_prefix(length);
        SkipBlanks();
        if (Take('?')) {
            command.form = Form::Read;
        } else if (Take('=')) {
            SkipBlanks();
            command.form = Take('?') ? Form::Test : Form::Set;
            if (command.form == Form::Set && !Arguments(command)) return false;
        }
        SkipBlanks();
        return m_rest.empty() || m_rest.front() == ';';
    }

    bool Arguments(AtCommand& command) {
        do {
            SkipBlanks();
            AtArgument argument;
            if (!One(argument) || command.arguments.size() == mostArguments) return false;
            command.arguments.push_back(std::move(argument));
            SkipBlanks();
        } while (Take(','));
        return true;
    }

    bool One(AtArgument& argument) {
        if (!Take('"')) {
            const std::size_t end = std::min(m_rest.find_first_of(",;\""), m_rest.size());
            argument.text = m_rest.substr(0, end);
            argument.text.erase(argument.text.find_last_not_of(' ') + 1);
            m_rest.remove_prefix(end);
            return m_rest.empty() || m_rest.front() != '"';
        }
        const std::size_t end = m_rest.find('"');
        if (end == std::string_view::npos) return false;
        argument.quoted = true;
        argument.text = m_rest.substr(0, end);
        m_rest.remove_prefix(end + 1);
        return true;
    }

    std::string_view m_rest;
    std::vector<AtCommand> m_commands;
};

}  // namespace

std::optional<int> AtArgument::Number() const {
    const bool digits = !text.empty() && text.size() <= 9 && std::all_of(text.begin(), text.end(), Digit);
    if (quoted || !digits) return std::nullopt;
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::optional<int> AtCommand::Number(std::size_t index, int otherwise) const {
    if (index >= arguments.size() || arguments[index].Omitted()) return otherwise;
    return arguments[index].Number();
}

std::optional<int> AtCommand::Number(std::size_t index) const {
    if (index >= arguments.size()) return std::nullopt;
    return arguments[index].Number();
}

std::string_view AtCommand::Text(std::size_t index) const {
    return index < arguments.size() ? std::string_view(arguments[index].text) : std::string_view();
}

std::optional<std::vector<AtCommand>> ParseAtLine(std::string_view line) {
    return LineParser(line).Run();
}

}  // namespace varkel::sim
