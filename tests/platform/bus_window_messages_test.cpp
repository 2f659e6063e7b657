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
    std::optional<std::uint32_t> CopyData(Program& from, WindowHandle to, std::uint32_t dwData,
                                          std::size_t size) {
        const std::vector<std::byte> data(size);
        return Elsewhere([&] { return from.windows.SendCopyData(to, dwData, data); });
    }

    bool CallRaw(Program& from, const BusMethod& method, const std::function<int(sd_bus_message*)>& append) {
        return Elsewhere([&] { return from.bus.Call(method, append, [](sd_bus_message*) { return 0; }); });
    }

    test::PrivateBus daemon;
};

TEST_F(BusWindowMessagesTest, PostsReachWindowsOfAnyProgramInOrder) {
    Program phone(daemon.Options(), loop);
    Program unit(daemon.Options(), loop);
    const WindowHandle dialog = phone.Create("3Gwindow");
    const WindowHandle main = unit.Create("MainWindow");
    EXPECT_NE(dialog, main);
    const MessageId quit = phone.windows.RegisterWindowMessage("3Gwindow_QUIT");
    EXPECT_EQ(phone.windows.RegisterWindowMessage("3Gwindow_QUIT"), quit);
    EXPECT_NE(phone.windows.RegisterWindowMessage("3Gwindow_HIDE"), quit);
    // The other program has its own numbers.
    unit.windows.RegisterWindowMessage("something else");
    const MessageId unitsQuit = unit.windows.RegisterWindowMessage("3Gwindow_QUIT");
    EXPECT_NE(quit, unitsQuit);

    for (std::uint32_t i = 0; i < 100; ++i)
        EXPECT_TRUE(unit.windows.PostMessage(dialog, {WM_USER + 1000, i, 0xFFFFFFFF}));
    EXPECT_TRUE(phone.windows.PostMessage(main, {quit, 1, 2}));
    EXPECT_TRUE(ServeUntil([&] { return phone.received.size() == 100 && !unit.received.empty(); }));
    for (std::uint32_t i = 0; i < 100; ++i)
        ASSERT_EQ(phone.received[i], (WindowMessage{WM_USER + 1000, i, 0xFFFFFFFF}));
    EXPECT_EQ(unit.received, std::vector<WindowMessage>({{unitsQuit, 1, 2}}));

    // To itself, from its own handler's thread: no bus in between.
    EXPECT_TRUE(phone.windows.PostMessage(dialog, {quit, 3, 4}));
    ServePosted();
    EXPECT_EQ(phone.received.back(), (WindowMessage{quit, 3, 4}));
}

TEST_F(BusWindowMessagesTest, ABroadcastReachesEveryWindowOnce) {
    Program phone(daemon.Options(), loop);
    Program unit(daemon.Options(), loop);
    Program deaf(daemon.Options(), loop);
    phone.Create("one");
    phone.Create("two");
    unit.Create("three");
    deaf.Create("four");
    const MessageId callIn = phone.windows.RegisterWindowMessage("UM_CALLIN");
    unit.windows.RegisterWindowMessage("UM_CALLIN");
    EXPECT_TRUE(phone.windows.PostMessage(WindowHandle::Broadcast, {callIn, 1, 1}));
    EXPECT_TRUE(ServeUntil([&] { return !unit.received.empty(); }));
    // Whatever else was on its way has arrived when a message sent later has.
    EXPECT_TRUE(unit.windows.PostMessage(phone.windows.FindWindow("one"), {WM_USER, 0, 0}));
    EXPECT_TRUE(ServeUntil([&] { return phone.received.size() >= 3; }));
    ServePosted();
    EXPECT_EQ(phone.received.size(), 3u) << "one for each window of the sender, and the later message";
    EXPECT_EQ(unit.received.size(), 1u);
    EXPECT_TRUE(deaf.received.empty()) << "it has not registered the name";
    EXPECT_FALSE(phone.windows.PostMessage(WindowHandle::Broadcast, {WM_USER + 1, 0, 0}));
}

TEST_F(BusWindowMessagesTest, FindsWindowsByTitleInAnyProgramAndReadsTitles) {
    Program phone(daemon.Options(), loop);
    Program other(daemon.Options(), loop);
    const char* const titles[] = {"3Gwindow", "a b/c.d", "\xE8\x99\xAB"};
    for (const char* title : titles) {
        const WindowHandle handle = phone.Create(title);
        EXPECT_EQ(other.windows.FindWindow(title), handle) << title;
        EXPECT_EQ(phone.windows.FindWindow(title), handle) << title;
    }
    EXPECT_EQ(other.windows.FindWindow("nobody"), WindowHandle::None);
    EXPECT_EQ(other.windows.FindWindow(""), WindowHandle::None);
    EXPECT_EQ(other.windows.FindWindow("3gWINDOW"), WindowHandle::None);
    EXPECT_EQ(other.windows.FindWindow(std::string(1000, 'x')), WindowHandle::None);
    const WindowHandle longTitle = phone.Create(std::string(1000, 'x'));
    EXPECT_EQ(phone.windows.FindWindow(std::string(1000, 'x')), longTitle);

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
    Program phone(daemon.Options(), loop);
    Program client(daemon.Options(), loop);
    const WindowHandle dialog = phone.Create("3Gwindow");
    for (const std::size_t size : {0u, 1u, 66u, 4096u}) {
        EXPECT_EQ(CopyData(client, dialog, 3, size), 77u) << size;
        EXPECT_EQ(phone.copied.back(), std::pair(3u, size));
    }
    EXPECT_EQ(CopyData(client, dialog, 3, 4097), std::nullopt);
    const BusMethod method{phone.bus.UniqueName(), "/org/varkel/window/1", "org.varkel.Window1", "CopyData"};
    const std::vector<std::byte> large(4097);
    EXPECT_FALSE(CallRaw(client, method, [&](sd_bus_message* m) {
        const int appended = sd_bus_message_append(m, "u", 0u);
        return appended < 0 ? appended : sd_bus_message_append_array(m, 'y', large.data(), large.size());
    })) << "and not from a client of another kind either";
    EXPECT_EQ(phone.copied.size(), 4u);
    EXPECT_EQ(CopyData(client, WindowHandle{(1u << 20) << 8 | 1u}, 0, 4), std::nullopt) << "nobody";
    EXPECT_EQ(CopyData(client, WindowHandle{static_cast<std::uint32_t>(dialog) + 1}, 0, 4), std::nullopt);

    // The window goes while the data waits for the dialog thread.
    auto result = std::async(std::launch::async, [&] {
        return client.windows.SendCopyData(dialog, 1, std::span<const std::byte>());
    });
    client.bus.Run([](sd_bus*) {});
    phone.windows.DestroyWindow(dialog);
    EXPECT_TRUE(
        ServeUntil([&] { return result.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    EXPECT_EQ(result.get(), std::nullopt);
}

TEST_F(BusWindowMessagesTest, AFloodIsBoundedAndLeavesRoomForTheProgramsOwnWork) {
    Program phone(daemon.Options(), loop);
    Program flooder(daemon.Options(), loop);
    const WindowHandle dialog = phone.Create("3Gwindow");
    int sent = 0;
    for (int i = 0; i < 5000; ++i) {
        while (!flooder.windows.PostMessage(dialog, {WM_USER, 0, 0}))
            std::this_thread::yield();
        ++sent;
    }
    // The last one waits for its answer, so all before it have been handled.
    EXPECT_FALSE(flooder.bus.Call(
        {phone.bus.UniqueName(), "/org/varkel/window/1", "org.varkel.Window1", "Post"},
        [](sd_bus_message* m) { return sd_bus_message_append(m, "uuu", 1024u, 0u, 0u); },
        [](sd_bus_message*) { return 0; }))
        << "the flooded window answers with an error";
    EXPECT_TRUE(loop.Post([] {}));
    EXPECT_EQ(phone.problems, 1) << "one line for all of them";
    ServePosted();
    EXPECT_EQ(phone.received.size(), WindowTable::mostWaiting);
    EXPECT_TRUE(flooder.windows.PostMessage(dialog, {WM_USER + 1, 0, 0}));
    EXPECT_TRUE(ServeUntil([&] { return phone.received.back().id == WM_USER + 1; }));
}

TEST_F(BusWindowMessagesTest, RefusesWhatMakesNoSense) {
    Program phone(daemon.Options(), loop);
    Program client(daemon.Options(), loop);
    phone.Create("3Gwindow");
    phone.windows.RegisterWindowMessage("known");
    const auto method = [&](const char* member, const char* path = "/org/varkel/window/1") {
        return BusMethod{phone.bus.UniqueName(), path, "org.varkel.Window1", member};
    };
    struct Case {
        const char* name;
        BusMethod to;
        std::function<int(sd_bus_message*)> append;
        bool good;
    };
    const auto post = [](std::uint32_t id) {
        return [id](sd_bus_message* m) { return sd_bus_message_append(m, "uuu", id, 1u, 2u); };
    };
    const auto postNamed = [](const char* name) {
        return [name](sd_bus_message* m) { return sd_bus_message_append(m, "suu", name, 1u, 2u); };
    };
    const Case cases[] = {
        {"fixed", method("Post"), post(WM_USER), true},
        {"a registered number", method("Post"), post(firstRegisteredMessage), false},
        {"known name", method("PostRegistered"), postNamed("known"), true},
        {"unknown name", method("PostRegistered"), postNamed("unknown"), true},
        {"wrong types", method("Post"), postNamed("known"), false},
        {"no such method", method("Send"), post(WM_USER), false},
        {"no such window", method("Post", "/org/varkel/window/2"), post(WM_USER), false},
        {"not a window", method("Post", "/org/varkel/window/1/1"), post(WM_USER), false},
    };
    for (const Case& entry : cases)
        EXPECT_EQ(CallRaw(client, entry.to, entry.append), entry.good) << entry.name;
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
    Program phone(daemon.Options(), loop);
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
        Program phone(daemon.Options(), loop);
        WindowHandle window = WindowHandle::None;
        int calls = 0;
        window = phone.windows.CreateWindow("w", {[&](const WindowMessage&) {
                                                      ++calls;
                                                      phone.windows.DestroyWindow(window);
                                                  },
                                                  {}});
        EXPECT_TRUE(phone.windows.PostMessage(window, {WM_USER, 0, 0}));
        EXPECT_TRUE(phone.windows.PostMessage(window, {WM_USER, 0, 0}));
        ServePosted();
        EXPECT_EQ(calls, 1);
        EXPECT_FALSE(phone.windows.PostMessage(window, {WM_USER, 0, 0}));
        EXPECT_TRUE(phone.windows.PostMessage(phone.Create("left"), {WM_USER, 0, 0}));
    }
    ServePosted();  // what was posted to the program that has gone
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
}

}  // namespace
}  // namespace varkel
