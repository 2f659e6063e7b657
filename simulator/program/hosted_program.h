// The program that runs on the simulated unit, as a child with pipes.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

#include "platform/linux/file_descriptor.h"

namespace varkel::sim {

// A process group of its own: Ctrl-C on the terminal reaches the simulator alone, which hands it on once. The
// program goes with the simulator, however that ends.
class HostedProgram {
  public:
    // Null when it cannot be started, and `fault` says why.
    static std::unique_ptr<HostedProgram> Start(const std::vector<std::string>& command, std::string& fault);
    // Kills what still runs.
    ~HostedProgram();
    HostedProgram(const HostedProgram&) = delete;
    HostedProgram& operator=(const HostedProgram&) = delete;

    // Readable when the program has ended.
    int EndDescriptor() const { return m_end.Get(); }
    // The reading ends of its standard output and error; -1 once closed.
    int Output() const { return m_output.Get(); }
    int Errors() const { return m_errors.Get(); }
    // What it wrote; "" at the end, and the descriptor is closed then.
    std::string ReadOutput() { return Read(m_output); }
    std::string ReadErrors() { return Read(m_errors); }

    // The writing end of its standard input; -1 once closed.
    int Input() const { return m_input.Get(); }
    bool Waiting() const { return !m_waiting.empty(); }
    // False when it does not read what it was given.
    bool Type(std::string_view bytes);
    void FlushInput();
    // After what waits has been read.
    void CloseInput();

    void Signal(int number);
    // The exit code, or 128 and the number of the signal, once it has ended.
    std::optional<int> Collect();

    static constexpr std::size_t mostWaiting = 64 * 1024;

  private:
    HostedProgram() = default;
    static std::string Read(FileDescriptor& from);

    pid_t m_pid = -1;  // -1 once it has been collected
    FileDescriptor m_end;
    FileDescriptor m_input;
    FileDescriptor m_output;
    FileDescriptor m_errors;
    std::string m_waiting;
    bool m_inputEnds = false;
};

}  // namespace varkel::sim
