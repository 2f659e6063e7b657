// What the head unit orders: the window, the module, emergency calls, sleep.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "session/registry_values.h"
#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

void Post(SessionBench& bench, const char* name, std::uint32_t wParam = 0, std::uint32_t lParam = 0) {
    bench.windows.PostMessage(bench.dialog->Window(),
                              {bench.windows.RegisterWindowMessage(name), wParam, lParam});
    bench.RunFor(50);
}

bool Open(SessionBench& bench) {
    return bench.dialog->State().MainScreenMode == ScreenMode::Idle;
}

TEST(UnitMessagesTest, HideAndShowTheWindow) {
    OpenBench bench;
    Post(bench, "3Gwindow_HIDE");
    EXPECT_EQ(bench.windows.CountPosted("3Gwindow_HIDE 0 0"), 1);
    EXPECT_TRUE(bench.dialog->State().m_bWindowHidden);
    bench.RunFor(30'000);
    EXPECT_EQ(bench.unit.Count("AT+CSQ"), 0);
    bench.registry.SetValue("Device\\CONFIG", "g_bTTSOpen",
                            {RegistryType::Dword, {std::byte{0}, std::byte{0}, std::byte{0}, std::byte{0}}});
    Post(bench, "3Gwindow_SHOW");
    EXPECT_EQ(bench.screens.Shown().back(), "place 0");
    EXPECT_FALSE(bench.dialog->State().g_bTTSOpen);
    bench.RunFor(10'000);
    EXPECT_EQ(bench.unit.Count("AT+CSQ"), 2) << "the poll goes on";
    Post(bench, "LANGUAGE_CHANGE");
    EXPECT_EQ(bench.screens.Count("texts"), 1);
    Post(bench, "3Gwindow_QUIT");
    bench.loop.Run([] { return false; });
    EXPECT_EQ(bench.unit.Count("Set3GPower 0"), 1);
}

TEST(UnitMessagesTest, OpenAndCloseTheModule) {
    OpenBench bench;
    Post(bench, "Network_interface", 0, 1);
    Post(bench, "Network_interface", 0, 2);
    Post(bench, "Network_interface", 0, 0);
    bench.RunFor(5000);
    EXPECT_TRUE(Open(bench)) << "nothing of that closes it";
    Post(bench, "3Gwindow_HIDE");
    Post(bench, "Network_interface", 0, 0);
    EXPECT_FALSE(bench.dialog->State().m_bOpenPending) << "it is open: a call must get through";
    Post(bench, "NEED_CLOSE_USB_HOST");
    bench.RunFor(6000);
    EXPECT_FALSE(Open(bench));
    Post(bench, "Network_interface", 0, 0);
    bench.RunFor(60'000);
    EXPECT_FALSE(Open(bench)) << "not while the window is hidden";
    Post(bench, "3Gwindow_SHOW");
    bench.RunFor(60'000);
    EXPECT_TRUE(Open(bench));
    EXPECT_FALSE(bench.dialog->State().m_bOpenPending);
}

TEST(UnitMessagesTest, CallForHelp) {
    const auto number = [](const char16_t* text) {
        return TextValue(text, std::u16string_view(text).size() * 2 + 2);
    };
    struct Row {
        const char16_t* sos;
        std::uint32_t which;
        std::vector<std::string> commands;
        const char* warning;
    };
    const Row rows[] = {
        {u"110", 0, {"ATD110;"}, ""}, {u"110", 1, {"ATD112;"}, ""},           {u"110", 2, {}, ""},
        {u"", 0, {}, "warn 5"},       {u"110;\rAT+CFUN=0", 0, {}, "warn 26"},
    };
    for (const Row& row : rows) {
        OpenBench bench;
        bench.registry.SetValue("Software\\QXPhoneNum", "SOS", number(row.sos));
        bench.registry.SetValue("Software\\QXPhoneNum", "HELP", number(u"112"));
        Post(bench, "UM_QX_CALL", row.which);
        bench.RunFor(2000);
        EXPECT_EQ(bench.Commands(), row.commands);
        EXPECT_EQ(bench.screens.Count(row.warning), *row.warning ? 1 : 0);
        EXPECT_THAT(bench.dialog->Calls().Lists().dialled.FindCallRecord(), IsEmpty()) << "as a redial";
    }
    OpenBench bench;
    bench.unit.Command("sim out");
    Post(bench, "UM_QX_CALL", 0);
    EXPECT_EQ(bench.screens.Count("warn 15"), 1);
    bench.dialog->State().m_externalClient = true;
    Post(bench, "UM_QX_CALL", 0);
    EXPECT_EQ(bench.screens.Count("warn 15"), 1);
    EXPECT_THAT(bench.Commands(), IsEmpty());
}

// Sleep shuts an open module down, and only that one is opened again: at any time of opening, being open,
// dialling, in a call, closing.
TEST(Sleep, LeavesTheModuleAsItWas) {
    for (Ticks when = 500; when <= 48'000; when += 1500) {
        SCOPED_TRACE(when);
        SessionBench bench(when);
        bench.Start("");
        bench.dialog->OpenModule();
        bench.RunFor(when / 2);
        if (when % 2000 == 0) bench.unit.Command("urc RING");
        bench.RunFor(when / 2);
        const bool open = Settings(bench.registry).ReadOpenFlag() == 1;
        EXPECT_TRUE(bench.dialog->OnKey(0x5F));
        bench.RunFor(when % 4000);  // perhaps the unit wakes up before all is shut down
        EXPECT_TRUE(bench.dialog->OnKey(0xEE));
        if (when % 1000 == 0) {
            const bool closing = Settings(bench.registry).ReadOpenFlag() == 1;
            bench.dialog->OnKey(0x5F);
            bench.RunFor(6000);
            EXPECT_EQ(bench.dialog->State().m_bModuleOpen, !closing);
            bench.dialog->OnKey(0xEE);
        }
        bench.dialog->OnKey(0xEE);
        bench.RunFor(90'000);
        EXPECT_TRUE(Open(bench));
        EXPECT_EQ(bench.unit.Count("Set3GPower 1"), open ? 2 : 1) << "what was being opened went on";
        EXPECT_EQ(bench.unit.SuspendLocks(), 0);
    }
}

TEST(Sleep, WakesNoModuleThatWasClosed) {
    OpenBench bench;
    EXPECT_FALSE(bench.dialog->OnKey(0x41));
    bench.dialog->CloseModule();
    bench.RunFor(6000);
    Post(bench, "UM_3G_SIMCARDDETACH");
    bench.dialog->OnKey(0xEE);
    bench.RunFor(60'000);
    EXPECT_FALSE(Open(bench));
    bench.dialog->OpenModule();
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    Post(bench, "UM_3G_SIMCARDDETACH");
    bench.RunFor(6000);
    EXPECT_FALSE(Open(bench));
    bench.dialog->OnKey(0xEE);
    ASSERT_TRUE(bench.RunUntilOpenEnds());
    EXPECT_TRUE(Open(bench));
}

}  // namespace
}  // namespace varkel::test
