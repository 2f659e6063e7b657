// A display server of a test's own, whose glass can be read.
#pragma once

#include <array>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <unistd.h>

#include "platform/canvas.h"
#include "platform/linux/child_process.h"
#include "platform/text.h"
#include "tests/support/scratch.h"

namespace varkel::test {

// DISPLAY names it while it lives.
class DisplayServer {
  public:
    static constexpr Size size{1024, 768};

    DisplayServer() {
        int ends[2];
        if (pipe(ends) != 0) std::abort();
        const FileDescriptor ready(ends[0]);
        FileDescriptor output(ends[1]);
        // A test that crashes takes its server along.
        m_server.emplace(
            *ChildProcess::Start({"setpriv", "--pdeathsig", "KILL", "Xvfb", "-displayfd", "1", "-screen", "0",
                                  "1024x768x24", "-nolisten", "tcp", "-fbdir", m_directory.Path()},
                                 {.output = output.Get()}));
        output.Reset();
        // It writes its number, and ends the line, once it listens.
        std::string number;
        for (char digit = 0; digit != '\n'; number += digit) {
            if (read(ready.Get(), &digit, 1) != 1) std::abort();
        }
        setenv("DISPLAY", (":" + std::string(Trimmed(number))).c_str(), 1);
    }
    ~DisplayServer() {
        Stop();
        unsetenv("DISPLAY");
    }

    void Stop() {
        if (!m_server) return;
        m_server->Kill();
        m_server->Wait(forever);
        m_server.reset();
    }

    // What stands on the glass: the file is the frame buffer itself, behind a header of numbers.
    ColorRef PixelAt(Point at) const {
        std::ifstream file(m_directory / "Xvfb_screen0", std::ios::binary);
        const auto bytes = [&](std::size_t place) {
            std::array<unsigned char, 4> four{};
            file.seekg(static_cast<std::streamoff>(place));
            file.read(reinterpret_cast<char*>(four.data()), four.size());
            return four;
        };
        const auto number = [&](std::size_t index) -> std::size_t {
            const auto four = bytes(index * 4);
            return static_cast<std::size_t>(four[0] << 24 | four[1] << 16 | four[2] << 8 | four[3]);
        };
        constexpr std::size_t colorBytes = 12;
        const std::size_t pixels = number(0) + number(19) * colorBytes;
        const auto pixel =
            bytes(pixels + static_cast<std::size_t>(at.y) * number(12) + static_cast<std::size_t>(at.x) * 4);
        return Rgb(pixel[2], pixel[1], pixel[0]);
    }

    // The user: commands of xdotool, which are carried out in turn. True when they were.
    static bool Do(std::vector<std::string> commands) {
        commands.insert(commands.begin(), "xdotool");
        auto process = ChildProcess::Start(commands);
        return process && process->Wait(std::chrono::seconds(20)) && process->ExitCode() == 0;
    }

  private:
    ScratchDirectory m_directory;
    std::optional<ChildProcess> m_server;
};

}  // namespace varkel::test
