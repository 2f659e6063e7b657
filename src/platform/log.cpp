#include "platform/log.h"

#include <algorithm>
#include <cstdio>

#include "platform/text.h"

namespace varkel {

namespace {

// Formats into a buffer that holds one message; returns what was written.
template <std::size_t Size>
std::string_view Format(char (&buffer)[Size], const char* format, std::va_list arguments) {
    const int length = std::vsnprintf(buffer, Size, format, arguments);
    if (length < 0) return {};
    return CutUtf8({buffer, std::min(static_cast<std::size_t>(length), Size - 1)}, Log::longestMessage);
}

constexpr std::string_view levelLetters = "?CWITD";

}  // namespace

Log::Log(Runtime& runtime, UnitFiles& files) : m_runtime(runtime), m_files(files) {}

bool Log::Open(std::string_view base, std::size_t limit, LogLevel level) {
    std::lock_guard lock(m_mutex);
    m_base = base;
    m_limit = limit;
    m_size = 0;
    m_file = m_files.StartFile(m_base + ".ini");
    m_level = m_file ? level : LogLevel::None;
    return m_file != nullptr;
}

void Log::Write(LogLevel level, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    WriteList(level, format, arguments);
    va_end(arguments);
}

void Log::Trace(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    WriteList(LogLevel::Trace, format, arguments);
    va_end(arguments);
}

void Log::WriteList(LogLevel level, const char* format, std::va_list arguments) {
    if (!Wants(level)) return;
    char buffer[longestMessage + 4];
    WriteLine(level, Format(buffer, format, arguments));
}

void Log::DebugOutput(const char* format, ...) {
    if (!m_debugSink) return;
    char buffer[longestMessage + 4];
    std::va_list arguments;
    va_start(arguments, format);
    const std::string_view message = Format(buffer, format, arguments);
    va_end(arguments);
    m_debugSink(message);
}

void Log::WriteLine(LogLevel level, std::string_view message) {
    const LocalTime time = m_runtime.GetLocalTime();
    char line[longestMessage + 32];
    const auto letter = levelLetters[static_cast<std::size_t>(level)];
    const int head =
        std::snprintf(line, sizeof line, "%02d:%02d:%02d %c ", time.hour, time.minute, time.second, letter);
    const auto start = static_cast<std::size_t>(head);
    std::copy(message.begin(), message.end(), line + start);
    line[start + message.size()] = '\n';
    const std::string_view bytes(line, start + message.size() + 1);

    std::lock_guard lock(m_mutex);
    if (m_size + bytes.size() > m_limit) {
        m_file.reset();
        m_files.Rename(m_base + ".ini", m_base + ".old.ini");
        m_file = m_files.StartFile(m_base + ".ini");
        m_size = 0;
    }
    if (!m_file) return;
    m_file->Append(bytes);
    m_size += bytes.size();
}

LogText::LogText(const Log& log, std::string_view text) {
    const bool mask = log.DigitsMasked();
    const std::size_t length = std::min(text.size(), Log::longestMessage);
    for (std::size_t i = 0; i < length; ++i) {
        const char c = text[i];
        const bool digit = c >= '0' && c <= '9';
        m_bytes[i] = c == '\0' ? '.' : digit && mask ? '*' : c;
    }
    m_bytes[length] = '\0';
}

}  // namespace varkel
