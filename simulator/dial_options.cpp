#include "simulator/dial_options.h"

#include <algorithm>

#include "platform/text.h"

namespace varkel::sim {

namespace {

// Takes the options of one source, the command line or a file.
class Source {
  public:
    Source(DialOptions& options, std::span<const std::string> words) : m_options(options), m_words(words) {}

    // `readFile` is null inside a file.
    void Read(const ReadFile* readFile) {
        while (m_options.fault.empty() && !m_words.empty()) {
            const std::string name = Next();
            if (name == "nodetach" || name == "nopersist") continue;
            if (name == "call") {
                m_options.entry = Value(name);
            } else if (name == "user") {
                m_options.user = Value(name);
            } else if (name == "password") {
                m_options.password = Value(name);
            } else if (name == "logfd") {
                if (!ParseInt(Value(name), m_options.logDescriptor)) m_options.fault = "logfd is no number";
            } else if (name == "file" && readFile) {
                ReadFrom(Value(name), *readFile);
            } else {
                m_options.fault = "unrecognized option '" + name + "'";
            }
        }
    }

  private:
    std::string Next() {
        const std::string& word = m_words.front();
        m_words = m_words.subspan(1);
        return word;
    }

    std::string Value(std::string_view name) {
        if (!m_words.empty()) return Next();
        m_options.fault = "too few parameters for option " + std::string(name);
        return {};
    }

    void ReadFrom(const std::string& path, const ReadFile& readFile) {
        if (!m_options.fault.empty()) return;
        const auto text = readFile(path);
        const auto words = text ? OptionWords(*text) : std::nullopt;
        if (!words) {
            m_options.fault = "Can't read options file " + path;
            return;
        }
        Source(m_options, *words).Read(nullptr);
    }

    DialOptions& m_options;
    std::span<const std::string> m_words;
};

bool Blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

}  // namespace

DialOptions ParseDialOptions(std::span<const std::string> arguments, const ReadFile& readFile) {
    DialOptions options;
    Source(options, arguments).Read(&readFile);
    if (options.fault.empty() && options.entry.empty()) options.fault = "no device specified";
    return options;
}

std::optional<std::vector<std::string>> OptionWords(std::string_view text) {
    std::vector<std::string> words;
    bool inWord = false;
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!quoted && Blank(text[i])) {
            inWord = false;
            continue;
        }
        if (!inWord && text[i] == '#') {
            i = std::min(text.find('\n', i), text.size());
            continue;
        }
        if (!inWord) words.emplace_back();
        inWord = true;
        if (text[i] == '"') {
            quoted = !quoted;
            continue;
        }
        if (text[i] == '\\' && i + 1 < text.size()) ++i;
        words.back() += text[i];
    }
    if (quoted) return std::nullopt;
    return words;
}

}  // namespace varkel::sim
