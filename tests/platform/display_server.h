// A display server of a test's own, whose glass can be read.
#pragma once

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/canvas.h"
#include "platform/linux/child_process.h"
#include "platform/text.h"
#include "tests/platform/own_server.h"
#include "tests/support/scratch.h"

namespace varkel::test {

// DISPLAY names it while it lives.
class DisplayServer {
  public:
    static constexpr Size size{1024, 768};

    DisplayServer() { setenv("DISPLAY", (":" + std::string(Trimmed(m_server.Line()))).c_str(), 1); }
    ~DisplayServer() {
        Stop();
        unsetenv("DISPLAY");
    }

    void Stop() { m_server.Stop(); }

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
    OwnServer m_server{{"Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten", "tcp",
                        "-fbdir", m_directory.Path()}};
};

}  // namespace varkel::test
