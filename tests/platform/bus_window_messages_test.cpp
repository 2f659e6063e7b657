#include "platform/linux/bus_window_messages.h"

#include <atomic>
#include <future>
#include <systemd/sd-bus.h>
#include <thread>
#include <vector>

#include "tests/platform/dialog_fixture.h"
#include "tests/platform/private_bus.h"

namespace varkel {
namespace {

// One program of the unit; all of them live on the test's thread.
struct Program {
    Program(const BusOptions& options, MessageLoop& loop)
        : bus(options, nullptr), windows(bus, loop, [this](std::string_view) { ++problems; }) {}

    WindowHandle Create(std::string_view title) {
        return windows.CreateWindow(title,
                                    {[this](const WindowMessage& message) { received.push_back(message); },
                                     [this](std::uint32_t dwData, std::span<const std::byte> data) {
                                         copied.emplace_back(dwData, data.size());
                                         return answer;
                                     }});
    }

    Bus bus;
    std::atomic<int> problems = 0;
    std::vector<WindowMessage> received;
    std::vector<std::pair<std::uint32_t, std::size_t>> copied;
    std::uint32_t answer = 77;
    BusWindowMessages windows;
};

class BusWindowMessagesTest : public test::DialogFixture {
  protected:
    std::optional<std::uint32_t> CopyData(WindowHandle to, std::uint32_t dwData, std::size_t size) {
        const std::vector<std::byte> data(size);
        return Elsewhere([&] { return other.windows.SendCopyData(to, dwData, data); });
    }

    // Calls a method of the phone's window, as a client of another kind would.
    bool CallRaw(const char* member, const Bus::Append& append, const char* path = "/org/varkel/window/1") {
        const BusMethod method{phone.bus.UniqueName(), path, "org.varkel.Window1", member};
        return Elsewhere([&] { return other.bus.Call(method, append, [](sd_bus_message*) { return 0; }); });
    }

    test::PrivateBus daemon;
    Program phone{daemon.Options(), loop};
    Program other{daemon.Options(), loop};
};

TEST_F(BusWindowMessagesTest, PostsReachWindowsOfAnyProgramInOrder) {
    const WindowHandle dialog = phone.Create("3Gwindow");
    const WindowHandle main = other.Create("MainWindow");
    EXPECT_NE(dialog, main);
    const MessageId quit = phone.windows.RegisterWindowMessage("3Gwindow_QUIT");
    EXPECT_EQ(phone.windows.RegisterWindowMessage("3Gwindow_QUIT"), quit);
    EXPECT_NE(phone.windows.RegisterWindowMessage("3Gwindow_HIDE"), quit);
    // The other program has its own numbers.
    other.windows.RegisterWindowMessage("something else");
    const MessageId othersQuit = other.windows.RegisterWindowMessage("3Gwindow_QUIT");
    EXPECT_NE(quit, othersQuit);

    for (std::uint32_t i = 0; i < 100; ++i)
        EXPECT_TRUE(other.windows.PostMessage(dialog, {WM_USER + 1000, i, 0xFFFFFFFF}));
    EXPECT_TRUE(phone.windows.PostMessage(main, {quit, 1, 2}));
    EXPECT_TRUE(ServeUntil([&] { return phone.received.size() == 100 && !other.received.empty(); }));
    for (std::uint32_t i = 0; i < 100; ++i)
        ASSERT_EQ(phone.received[i], (WindowMessage{WM_USER + 1000, i, 0xFFFFFFFF}));
    EXPECT_EQ(other.received, std::vector<WindowMessage>({{othersQuit, 1, 2}}));
}

TEST_F(BusWindowMessagesTest, ABroadcastReachesEveryWindowOnce) {
    Program deaf(daemon.Options(), loop);
    phone.Create("one");
    phone.Create("two");
    other.Create("three");
    deaf.Create("four");
    const MessageId callIn = phone.windows.RegisterWindowMessage("UM_CALLIN");
    other.windows.RegisterWindowMessage("UM_CALLIN");
    EXPECT_TRUE(phone.windows.PostMessage(WindowHandle::Broadcast, {callIn, 1, 1}));
    EXPECT_TRUE(ServeUntil([&] { return !other.received.empty(); }));
    // Whatever else was on its way has arrived when a message sent later has.
    EXPECT_TRUE(other.windows.PostMessage(phone.windows.FindWindow("one"), {WM_USER, 0, 0}));
    EXPECT_TRUE(ServeUntil([&] { return phone.received.size() >= 3; }));
    ServePosted();
    EXPECT_EQ(phone.received.size(), 3u) << "one for each window of the sender, and the later message";
    EXPECT_EQ(other.received.size(), 1u);
    EXPECT_TRUE(deaf.received.empty()) << "it has not registered the name";
    EXPECT_FALSE(phone.windows.PostMessage(WindowHandle::Broadcast, {WM_USER + 1, 0, 0}));
}

TEST_F(BusWindowMessagesTest, FindsWindowsByTitleInAnyProgramAndReadsTitles) {
    const std::string longTitle(1000, 'x');
    for (const char* title : {"3Gwindow", "a b/c.d", "\xE8\x99\xAB"}) {
        const WindowHandle handle = phone.Create(title);
        for (Program* const asking : {&phone, &other})
            EXPECT_EQ(asking->windows.FindWindow(title), handle) << title;
    }
    for (const std::string& none : {std::string("nobody"), std::string(), std::string("3gWINDOW"), longTitle})
        EXPECT_EQ(other.windows.FindWindow(none), WindowHandle::None) << none;
    const WindowHandle handle = phone.Create(longTitle);
    EXPECT_EQ(phone.windows.FindWindow(longTitle), handle);

    const WindowHandle renamed = phone.windows.FindWindow("3Gwindow");
    for (Program* const asking : {&phone, &other})
        EXPECT_EQ(asking->windows.GetWindowText(renamed), "3Gwindow");
    phone.windows.SetWindowText(renamed, "later");
    EXPECT_EQ(other.windows.FindWindow("later"), renamed);
    EXPECT_EQ(other.windows.FindWindow("3Gwindow"), WindowHandle::None);
    phone.windows.DestroyWindow(renamed);
    for (const WindowHandle none : {renamed, WindowHandle::None, WindowHandle::Broadcast})
        EXPECT_EQ(other.windows.GetWindowText(none), std::nullopt);
    EXPECT_EQ(other.windows.FindWindow("later"), WindowHandle::None);
    EXPECT_NE(phone.Create("later"), renamed) << "handles are never given twice";
}

TEST_F(BusWindowMessagesTest, CopiedDataRunsOnTheDialogThreadAndBringsItsResultBack) {
    const WindowHandle dialog = phone.Create("3Gwindow");
    for (const std::size_t size : {0u, 1u, 66u, 4096u}) {
        EXPECT_EQ(CopyData(dialog, 3, size), 77u) << size;
        EXPECT_EQ(phone.copied.back(), std::pair(3u, size));
    }
    EXPECT_EQ(CopyData(dialog, 3, 4097), std::nullopt);
    const std::vector<std::byte> large(4097);
    EXPECT_FALSE(CallRaw("CopyData", [&](sd_bus_message* m) {
        const int appended = sd_bus_message_append(m, "u", 0u);
        return appended < 0 ? appended : sd_bus_message_append_array(m, 'y', large.data(), large.size());
    })) << "and not from a client of another kind either";
    EXPECT_EQ(phone.copied.size(), 4u);
    EXPECT_EQ(CopyData(WindowHandle{(1u << 20) << 8 | 1u}, 0, 4), std::nullopt) << "nobody";
    EXPECT_EQ(CopyData(WindowHandle{static_cast<std::uint32_t>(dialog) + 1}, 0, 4), std::nullopt);

    // The window goes while the data waits for the dialog thread.
    auto result = std::async(std::launch::async, [&] {
        return other.windows.SendCopyData(dialog, 1, std::span<const std::byte>());
    });
    other.bus.Run([](sd_bus*) {});
    phone.windows.DestroyWindow(dialog);
    EXPECT_TRUE(
        ServeUntil([&] { return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    EXPECT_EQ(result.get(), std::nullopt);
}

TEST_F(BusWindowMessagesTest, AFloodIsBoundedAndLeavesRoomForTheProgramsOwnWork) {
    const WindowHandle dialog = phone.Create("3Gwindow");
    for (int i = 0; i < 5000; ++i) {
        while (!other.windows.PostMessage(dialog, {WM_USER, 0, 0}))
            std::this_thread::yield();
    }
    // The last one waits for its answer, so all before it have been handled.
    EXPECT_FALSE(other.bus.Call(
        {phone.bus.UniqueName(), "/org/varkel/window/1", "org.varkel.Window1", "Post"},
        [](sd_bus_message* m) { return sd_bus_message_append(m, "uuu", 1024u, 0u, 0u); },
        [](sd_bus_message*) { return 0; }))
        << "the flooded window answers with an error";
    EXPECT_TRUE(loop.Post([] {}));
    EXPECT_EQ(phone.problems, 1) << "one line for all of them";
    ServePosted();
    EXPECT_EQ(phone.received.size(), WindowTable::mostWaiting);
    EXPECT_TRUE(other.windows.PostMessage(dialog, {WM_USER + 1, 0, 0}));
    EXPECT_TRUE(ServeUntil([&] { return phone.received.back().id == WM_USER + 1; }));
}

TEST_F(BusWindowMessagesTest, RefusesWhatMakesNoSense) {
    phone.Create("3Gwindow");
    phone.windows.RegisterWindowMessage("known");
    const auto post = [](std::uint32_t id) {
        return [id](sd_bus_message* m) { return sd_bus_message_append(m, "uuu", id, 1u, 2u); };
    };
    const auto postNamed = [](const char* name) {
        return [name](sd_bus_message* m) { return sd_bus_message_append(m, "suu", name, 1u, 2u); };
    };
    EXPECT_TRUE(CallRaw("Post", post(WM_USER)));
    EXPECT_TRUE(CallRaw("PostRegistered", postNamed("known")));
    EXPECT_TRUE(CallRaw("PostRegistered", postNamed("unknown")));
    EXPECT_FALSE(CallRaw("Post", post(firstRegisteredMessage))) << "a registered number";
    EXPECT_FALSE(CallRaw("Post", postNamed("known"))) << "wrong types";
    EXPECT_FALSE(CallRaw("Send", post(WM_USER)));
    EXPECT_FALSE(CallRaw("Post", post(WM_USER), "/org/varkel/window/2"));
    EXPECT_FALSE(CallRaw("Post", post(WM_USER), "/org/varkel/window/1/1"));
    ServePosted();
    EXPECT_EQ(phone.received.size(), 2u);

    EXPECT_FALSE(phone.windows.PostMessage(WindowHandle::None, {WM_USER, 0, 0}));
    EXPECT_FALSE(phone.windows.PostMessage(WindowHandle{0x12300}, {WM_USER, 0, 0}))
        << "no window has index 0";
    EXPECT_FALSE(phone.windows.PostMessage(phone.windows.FindWindow("3Gwindow"), {0xFFFF, 0, 0}))
        << "no name";
    EXPECT_EQ(phone.windows.RegisterWindowMessage(""), 0u);
    EXPECT_EQ(phone.windows.RegisterWindowMessage(std::string(257, 'n')), 0u);
    std::size_t names = 1;
    while (phone.windows.RegisterWindowMessage("name " + std::to_string(names)) != 0)
        ASSERT_LE(++names, WindowMessages::messageNameLimit);
    EXPECT_EQ(names, WindowMessages::messageNameLimit);
    int windows = 1;
    while (phone.Create("") != WindowHandle::None)
        ASSERT_LE(++windows, 255);
    EXPECT_EQ(windows, 255);
}

TEST_F(BusWindowMessagesTest, WorksAloneWithoutABusAndAfterItIsLost) {
    Program alone({BusKind::None, ""}, loop);
    const WindowHandle before = phone.Create("before");
    daemon.Stop();
    ASSERT_TRUE(ServeUntil([&] { return !phone.bus.Available(); }));
    for (Program* program : {&alone, &phone}) {
        const WindowHandle window = program->Create("window");
        ASSERT_NE(window, WindowHandle::None);
        const MessageId show = program->windows.RegisterWindowMessage("3Gwindow_SHOW");
        EXPECT_EQ(program->windows.FindWindow("window"), window);
        EXPECT_TRUE(program->windows.PostMessage(window, {show, 1, 2}));
        EXPECT_TRUE(program->windows.PostMessage(WindowHandle::Broadcast, {show, 3, 4}));
        EXPECT_FALSE(program->windows.PostMessage(WindowHandle{0x2A01}, {show, 5, 6}));
        EXPECT_EQ(program->windows.SendCopyData(window, 0, {}), std::nullopt);
        ServePosted();
        EXPECT_EQ(program->received.front(), (WindowMessage{show, 1, 2}));
        program->windows.SetWindowText(window, "renamed");
        EXPECT_EQ(program->windows.FindWindow("renamed"), window);
        program->windows.DestroyWindow(window);
    }
    EXPECT_EQ(alone.received.size(), 2u);
    EXPECT_EQ(phone.received.size(), 3u) << "the window from before is still there";
    EXPECT_TRUE(phone.windows.PostMessage(before, {WM_USER, 0, 0}));
}

TEST_F(BusWindowMessagesTest, AWindowMayDestroyItselfAndItsProgramMayEnd) {
    const auto descriptors = test::OpenDescriptors();
    {
        Program brief(daemon.Options(), loop);
        WindowHandle window = WindowHandle::None;
        int calls = 0;
        const auto onMessage = [&](const WindowMessage&) {
            ++calls;
            brief.windows.DestroyWindow(window);
        };
        window = brief.windows.CreateWindow("w", {onMessage, {}});
        EXPECT_TRUE(brief.windows.PostMessage(window, {WM_USER, 0, 0}));
        EXPECT_TRUE(brief.windows.PostMessage(window, {WM_USER, 0, 0}));
        ServePosted();
        EXPECT_EQ(calls, 1);
        EXPECT_FALSE(brief.windows.PostMessage(window, {WM_USER, 0, 0}));
        EXPECT_TRUE(brief.windows.PostMessage(brief.Create("left"), {WM_USER, 0, 0}));
    }
    ServePosted();  // what was posted to the program that has gone
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
}

}  // namespace
}  // namespace varkel
