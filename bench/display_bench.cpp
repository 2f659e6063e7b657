// What a picture costs: a full repaint of eight labelled tiles on a bitmap and the repaint of one that is
// pressed, and how long a program that has just started needs to its first frame, in which memory.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

#include "platform/linux/child_process.h"
#include "platform/linux/linux_runtime.h"
#include "platform/linux/offscreen_display.h"
#include "platform/linux/sdl_display.h"
#include "tests/platform/display_server.h"
#include "tests/platform/pictures.h"
#include "tests/support/memory_files.h"

namespace {

using namespace varkel;
using Clock = std::chrono::steady_clock;

constexpr ColorRef ground = Rgb(0, 0, 255);
constexpr const char* labels[] = {"Dial pad", "Messages", "短消息设置", "Телефонная книга",
                                  "رسائل",    "Settings", "通讯录",     "Internet"};

Rect Tile(int index) {
    return Rect{index % 4 * 200, 50 + index / 4 * 215, 200, 215}.Inset(6);
}

class Scene {
  public:
    explicit Scene(Graphics& graphics, test::MemoryFiles& files) {
        files.WriteWhole("ground", test::Bmp(test::Rows(480, std::string(800, 'b'))));
        files.WriteWhole("icon", test::Bmp(test::Rows(96, std::string(48, 'w') + std::string(48, 'k'))));
        m_ground = graphics.LoadBitmap("ground");
        m_icon = graphics.LoadBitmap("icon");
    }

    void Paint(Canvas& canvas, const Rect& damage) const {
        canvas.BitBlt(*m_ground, damage, {damage.x, damage.y});
        for (int i = 0; i < 8; ++i) {
            const Rect tile = Tile(i);
            if (Intersection(tile, damage).Empty()) continue;
            canvas.RoundRect(tile, 12, Rgb(0x18, 0x22, 0x2C), Rgb(0x5F, 0x73, 0x85), 1.5);
            canvas.TransparentImage(*m_icon, {tile.x + 46, tile.y + 30, 96, 96}, Rgb(255, 0, 255));
            canvas.DrawText(labels[i], {tile.x + 6, tile.y + 140, tile.width - 12, 40},
                            TextFormat::Center | TextFormat::VCenter | TextFormat::SingleLine, {"", 28},
                            Rgb(0xF2, 0xF5, 0xF7));
        }
    }

  private:
    std::shared_ptr<const Bitmap> m_ground;
    std::shared_ptr<const Bitmap> m_icon;
};

double Milliseconds(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

void Report(const char* what, int rounds, const std::function<double()>& measure) {
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round)
        times.push_back(measure());
    std::sort(times.begin(), times.end());
    std::printf("%s: median %.2f ms, worst %.2f ms of %d\n", what, times[times.size() / 2], times.back(),
                rounds);
}

void Repaints() {
    LinuxRuntime runtime;
    MessageLoop loop(runtime);
    test::MemoryFiles files;
    OffscreenDisplay display(loop, files);
    const Scene scene(display.GetGraphics(), files);
    display.SetClient({.onPaint = [&](Canvas& canvas, const Rect& damage) { scene.Paint(canvas, damage); }});
    display.ShowWindow(true);
    display.UpdateWindow();
    const auto repaint = [&](const Rect& part) {
        const auto start = Clock::now();
        display.InvalidateRect(part);
        display.UpdateWindow();
        return Milliseconds(Clock::now() - start);
    };
    Report("full repaint", 500, [&] { return repaint({0, 0, 800, 480}); });
    Report("pressed tile", 500, [&] { return repaint(Tile(2)); });
}

// A program that shows the scene until it is killed.
int ShowFrame(bool window) {
    LinuxRuntime runtime;
    MessageLoop loop(runtime);
    test::MemoryFiles files;
    std::unique_ptr<PaintedDisplay> display;
    if (window) {
        display = SdlDisplay::Create(runtime, loop, files, {});
    } else {
        display = std::make_unique<OffscreenDisplay>(loop, files);
    }
    if (!display) return 1;
    const Scene scene(display->GetGraphics(), files);
    display->SetClient({.onPaint = [&](Canvas& canvas, const Rect& damage) { scene.Paint(canvas, damage); }});
    display->ShowWindow(true);
    display->UpdateWindow();
    std::puts("painted");
    std::fflush(stdout);
    loop.SetTimer(1, 300, [&] {
        loop.KillTimer(1);
        std::ifstream status("/proc/self/status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with("VmRSS")) std::puts(line.c_str());
        }
        std::fflush(stdout);
    });
    loop.Run([] { return false; });
    return 0;
}

std::string ReadLine(int fd) {
    std::string line;
    for (char byte = 0; read(fd, &byte, 1) == 1 && byte != '\n';)
        line += byte;
    return line;
}

// From the start of such a program until `shown`, which gets its output. The last one tells its memory.
void FirstFrames(const char* kind, const char* what, const std::function<void(int output)>& shown) {
    std::string memory;
    Report(what, 20, [&] {
        int ends[2];
        if (pipe(ends) != 0) std::abort();
        const FileDescriptor output(ends[0]);
        FileDescriptor input(ends[1]);
        const auto start = Clock::now();
        auto program = *ChildProcess::Start({"/proc/self/exe", kind}, {.output = input.Get()});
        input.Reset();
        shown(output.Get());
        const double time = Milliseconds(Clock::now() - start);
        while (memory = ReadLine(output.Get()), !memory.empty() && !memory.starts_with("VmRSS")) {
        }
        program.Kill();
        program.Wait(forever);
        return time;
    });
    std::printf("  %s\n", memory.c_str());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 1) return ShowFrame(argv[1] == std::string_view("window"));
    Repaints();
    FirstFrames("offscreen", "first frame, offscreen, painted", [](int output) { ReadLine(output); });
    const test::DisplayServer server;
    const Point inTheMiddle{512, 384};
    FirstFrames("window", "first frame, in a window, on the glass", [&](int) {
        while (server.PixelAt(inTheMiddle) != ground)
            std::this_thread::sleep_for(std::chrono::microseconds(500));
    });
    return 0;
}
