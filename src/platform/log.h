// The process's log file.
#pragma once

#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/runtime.h"
#include "platform/unit_files.h"

namespace varkel {

// The levels and their letters in a line: "?", "C", "W", "I", "T", "D".
enum class LogLevel { None, Critical, Warning, Info, Trace, Debug };

// A line is the local time and the level's letter, "%02d:%02d:%02d %c", a blank and the message. The file is
// begun anew at every start and has each line as soon as Write returns. When it would grow past its limit it
// is set aside under the name "<base>.old.ini", over an older one, and begun anew, so that the newest lines
// are always there.
//
// Any thread may write.
class Log {
  public:
    Log(Runtime& runtime, UnitFiles& files);

    // Begins the file "<base>.ini". False when it cannot be written; the log then drops its lines.
    bool Open(std::string_view base, std::size_t limit, LogLevel level);

    bool Wants(LogLevel level) const { return level <= m_level.load(std::memory_order_relaxed); }
    // At most `longestMessage` bytes of the message are written.
    void Write(LogLevel level, const char* format, ...) __attribute__((format(printf, 3, 4)));
    // A message of the program's own running, as nearly all are: level 4.
    void Trace(const char* format, ...) __attribute__((format(printf, 2, 3)));

    // The platform's debug output (OutputDebugString): nobody sees it unless a sink is set, before any thread
    // starts.
    void DebugOutput(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void SetDebugSink(std::function<void(std::string_view)> sink) { m_debugSink = std::move(sink); }

    // While digits are masked, LogText shows each as "*". The AT channel switches this on from a command that
    // carries a PIN, PUK or password to its final result, because the modem's echo brings the code back.
    void MaskDigits(bool mask) { m_maskDigits = mask; }
    bool DigitsMasked() const { return m_maskDigits; }

    static constexpr std::size_t longestMessage = 512;

  private:
    void WriteList(LogLevel level, const char* format, std::va_list arguments);
    void WriteLine(LogLevel level, std::string_view message);

    Runtime& m_runtime;
    UnitFiles& m_files;
    std::atomic<LogLevel> m_level = LogLevel::None;
    std::atomic<bool> m_maskDigits = false;
    std::function<void(std::string_view)> m_debugSink;

    std::mutex m_mutex;
    std::string m_base;
    std::size_t m_limit = 0;
    std::size_t m_size = 0;
    std::unique_ptr<AppendFile> m_file;
};

// Text from outside as a log line may show it: without NULs, which would hide what follows, and without the
// digits while these are masked. For one call of Log::Write; longer text is cut to what a message holds.
class LogText {
  public:
    LogText(const Log& log, std::string_view text);
    const char* CStr() const { return m_bytes; }

  private:
    char m_bytes[Log::longestMessage + 1];
};

}  // namespace varkel
