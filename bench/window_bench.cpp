// What the user of the window waits for, and what the window takes. To be run on a message bus:
//
//     dbus-run-session -- build/release/bench/window_bench VARKEL-SIM VARKEL
#include <fcntl.h>
#include <thread>

#include "bench/times.h"
#include "platform/linux/child_process.h"
#include "tests/platform/display_server.h"
#include "tests/ui/gallery.h"

namespace {

using namespace varkel;
using namespace varkel::test;

// The window stands in the middle of the display. Both places have a colour of their own on their screens.
constexpr Point OnGlass(Point at) {
    return {(DisplayServer::size.width - Display::screen.width) / 2 + at.x,
            (DisplayServer::size.height - Display::screen.height) / 2 + at.y};
}
constexpr Point inATile = OnGlass({30, 70});
constexpr Point inTheAcceptButton = OnGlass({176, 375});

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "in vain: %s\n", what.c_str());
    std::exit(1);
}

// A program that is typed to, and read by lines.
class Talk {
  public:
    // Tells its own number first.
    explicit Talk(const std::string& command) {
        int in[2], out[2];
        if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) std::abort();
        const FileDescriptor input(in[0]), output(out[1]);
        m_input = FileDescriptor(in[1]);
        m_output = FileDescriptor(out[0]);
        m_process.emplace(*ChildProcess::Start({"sh", "-c", "echo $$; exec " + command},
                                               {.input = input.Get(), .output = output.Get()}));
    }
    ~Talk() {
        m_process->Kill();
        m_process->Wait(forever);
    }

    void Type(const std::string& line) {
        const std::string bytes = line + "\n";
        (void)!write(m_input.Get(), bytes.data(), bytes.size());
    }
    std::string ReadLine() {
        std::string line;
        for (char byte = 0;; line += byte) {
            if (read(m_output.Get(), &byte, 1) != 1) Fail("a program has ended");
            if (byte == '\n') return line;
        }
    }
    void Await(std::string_view text) {
        while (ReadLine().find(text) == std::string::npos) {
        }
    }

  private:
    FileDescriptor m_input, m_output;
    std::optional<ChildProcess> m_process;
};

template <class Holds>
void AwaitGlass(const char* what, Holds holds) {
    const auto limit = Times::Clock::now() + std::chrono::seconds(20);
    while (!holds()) {
        if (Times::Clock::now() > limit) Fail(what);
        std::this_thread::sleep_for(std::chrono::microseconds(300));
    }
}

void Paint() {
    Gallery gallery("night", "english");
    const auto main = gallery.OpenMain(ScreenMode::Idle);
    OffscreenDisplay& display = gallery.display;
    Times whole, pressed;
    for (int round = 0; round < 300; ++round) {
        whole.Take([&] {
            display.InvalidateRect({0, 0, Display::screen.width, Display::screen.height});
            display.UpdateWindow();
        });
        const ColorRef before = display.Picture().GetPixel({30, 70});
        pressed.Take([&] {
            display.Touch(TouchAction::Down, {100, 150});
            gallery.RunUntil([&] { return display.Picture().GetPixel({30, 70}) != before; }, 1000);
        });
        display.Touch(TouchAction::Up, {0, 0});
        gallery.RunFor(10);
    }
    whole.Report("full repaint of the main screen");
    pressed.Report("touch to the pressed look");
}

// Each program is ended at once, as it opens the modem.
void Start(const DisplayServer& server, const std::string& program) {
    Times window, touchable;
    const ColorRef nothing = server.PixelAt(inATile);
    for (int round = 0; round < 10; ++round) {
        touchable.Take([&] {
            Talk talk(program);
            window.Take([&] { AwaitGlass("a frame", [&] { return server.PixelAt(inATile) != nothing; }); });
            talk.Type("targets");
            talk.Await("[robot]");
        });
        AwaitGlass("an empty display", [&] { return server.PixelAt(inATile) == nothing; });
    }
    window.Report("start to the first frame on the glass");
    touchable.Report("start to a main screen that can be touched");
}

void Ring(const DisplayServer& server, const std::string& program, Talk& simulator) {
    Talk talk(program);
    const std::string pid = talk.ReadLine();
    talk.Await("[screen] the modem is open");
    std::this_thread::sleep_for(std::chrono::seconds(5));
    Times rings;
    for (int round = 0; round < 20; ++round) {
        const ColorRef before = server.PixelAt(inTheAcceptButton);
        rings.Take([&] {
            simulator.Type("urc RING");
            AwaitGlass("an incoming call", [&] { return server.PixelAt(inTheAcceptButton) != before; });
        });
        simulator.Type("urc NO CARRIER");
        AwaitGlass("its end", [&] { return server.PixelAt(inTheAcceptButton) == before; });
        std::this_thread::sleep_for(std::chrono::milliseconds(700 + 37 * round));
    }
    rings.Report("RING on the line to the incoming call on the glass");
    std::ifstream status("/proc/" + pid + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS") || line.starts_with("RssAnon")) std::puts(line.c_str());
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return std::fputs("window_bench VARKEL-SIM VARKEL\n", stderr), 2;
    Paint();
    const DisplayServer server;
    const ScratchDirectory unit;
    Talk simulator(std::string(argv[1]) + " --quiet --unit-dir " + unit.Path() + " --assets " VARKEL_ASSETS);
    simulator.Await("unit file");
    const std::string program = std::string(argv[2]) + " --unit-file " + unit / "unit.conf";
    Start(server, program);
    Ring(server, program, simulator);
    return 0;
}
