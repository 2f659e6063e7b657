// What the head unit orders: the window, the module, emergency calls, sleep.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "session/registry_values.h"
#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

using testing::IsEmpty;

void Post(SessionBench& bench, const char* name, std::uint32_t wParam = 0, std::uint32_t lParam = 0) {
    const MessageId id = bench.windows.RegisterWindowMessage(name);
    bench.windows.PostMessage(bench.dialog->Window(), {id, wParam, lParam});
    bench.RunFor(50);
}

bool Open(SessionBench& bench) {
    return bench.dialog->State().MainScreenMode == ScreenMode::Idle;
}

TEST(UnitMessagesTest, HideAndShowTheWindow) {
    OpenBench bench;
    Post(bench, "3Gwindow_HIDE");
    EXPECT_EQ(bench.windows.CountPosted("3Gwindow_HIDE 0 0"), 1);
    bench.RunFor(30'000);
    EXPECT_EQ(bench.unit.Count("AT+CSQ"), 0);
    Settings(bench.registry).WriteDword("Device\\CONFIG", "g_bTTSOpen", 0);
    Post(bench, "3Gwindow_SHOW");
    EXPECT_EQ(bench.screens.Shown().back(), "place 0");
    EXPECT_FALSE(bench.dialog->State().g_bTTSOpen);
    bench.RunFor(10'000);
    EXPECT_EQ(bench.unit.Count("AT+CSQ"), 2) << "the poll goes on";
    Post(bench, "3Gwindow_QUIT");
    bench.loop.Run([] { return false; });
    EXPECT_EQ(bench.unit.Count("Set3GPower 0"), 1);
}

TEST(UnitMessagesTest, ChangeTheLanguage) {
    OpenBench bench;
    const auto change = [&bench](const char16_t* language) {
        bool created = false;
        bench.registry.RegCreateKeyEx("Device\\CONFIG", created)
            ->RegSetValueEx("Language", TextValue(language, 32));
        Post(bench, "LANGUAGE_CHANGE");
        return bench.language.LoadString("IDS_RING");
    };
    bench.files.WriteWhole("\\ResidentFlash2\\bin\\Language\\russian.txt", "[GPRS]\nIDS_RING = звонит\n");
    EXPECT_EQ(change(u"russian"), "звонит");
    EXPECT_EQ(bench.screens.Count("texts"), 1);
    EXPECT_EQ(change(u"klingon"), "звонит") << "no language";
    EXPECT_EQ(change(u"portugal"), "звонит") << "no texts";
    EXPECT_EQ(bench.language.GetLanguage(), "russian");
    bench.files.WriteWhole("\\ResidentFlash2\\bin\\Language\\russian.txt", "[GPRS]\nIDS_RING = вызов\n");
    EXPECT_EQ(change(u"russian"), "вызов") << "the texts have changed, not the language";
}

TEST(UnitMessagesTest, OpenAndCloseTheModule) {
    OpenBench bench;
    for (const std::uint32_t order : {1u, 2u, 0u})
        Post(bench, "Network_interface", 0, order);
    bench.RunFor(5000);
    EXPECT_TRUE(Open(bench)) << "nothing of that closes it";
    Post(bench, "3Gwindow_HIDE");
    Post(bench, "Network_interface", 0, 0);
    EXPECT_FALSE(bench.dialog->State().m_bOpenPending) << "it is open: a call must get through";
    Post(bench, "NEED_CLOSE_USB_HOST");
    bench.RunFor(6000);
    Post(bench, "Network_interface", 0, 0);
    bench.RunFor(60'000);
    EXPECT_FALSE(Open(bench)) << "not while the window is hidden";
    Post(bench, "NEED_CLOSE_USB_HOST");
    EXPECT_FALSE(bench.dialog->State().m_bOpenPending) << "taken back";
    Post(bench, "Network_interface", 0, 0);
    Post(bench, "3Gwindow_SHOW");
    bench.RunFor(60'000);
    EXPECT_TRUE(Open(bench));
    EXPECT_FALSE(bench.dialog->State().m_bOpenPending);
    for (const char* order : {"NEED_CLOSE_USB_HOST", "Network_interface", "NEED_CLOSE_USB_HOST"})
        Post(bench, order);
    bench.RunFor(60'000);
    EXPECT_FALSE(bench.dialog->State().m_bModuleOpen) << "what waits to be opened is taken back as well";
}

TEST(UnitMessagesTest, CallForHelp) {
    struct Row {
        std::u16string sos;
        std::uint32_t which;
        std::vector<std::string> commands;
        const char* warning;
        const char* world = "";
    };
    const Row rows[] = {
        {u"110", 0, {"ATD110;"}, ""},
        {u"110", 1, {}, "warn 5"},
        {u"110", 2, {}, ""},
        {u"110;\rAT+CFUN=0", 0, {}, "warn 26"},
        {u"110", 0, {}, "warn 15", "sim out"},
    };
    for (const Row& row : rows) {
        OpenBench bench;
        bench.unit.Command(row.world);
        bench.registry.SetValue("Software\\QXPhoneNum", "SOS", TextValue(row.sos, row.sos.size() * 2 + 2));
        Post(bench, "UM_QX_CALL", row.which);
        bench.RunFor(2000);
        EXPECT_EQ(bench.Commands(), row.commands);
        EXPECT_EQ(bench.screens.Count(row.warning), *row.warning ? 1 : 0) << row.warning;
        EXPECT_THAT(bench.dialog->Calls().Lists().dialled.FindCallRecord(), IsEmpty()) << "as a redial";
    }
}

// Sleep shuts an open module down, and only that one is opened again: at any time of opening, being open,
// dialling, in a call, closing.
TEST(Sleep, LeavesTheModuleAsItWas) {
    for (Ticks when = 500; when <= 48'000; when += 1500) {
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
        const bool closing = Settings(bench.registry).ReadOpenFlag() == 1;
        Post(bench, "UM_3G_SIMCARDDETACH");
        bench.RunFor(6000);
        EXPECT_EQ(bench.dialog->State().m_bModuleOpen, !closing) << when;
        bench.windows.PostMessage(bench.dialog->Window(),
                                  {when % 1000 == 0 ? WM_KEYDOWN : WM_SYSKEYDOWN, 0xEE, 0});
        bench.RunFor(90'000);
        EXPECT_TRUE(Open(bench)) << when;
        EXPECT_EQ(bench.unit.Count("Set3GPower 1"), open || closing ? 2 : 1) << when;
        EXPECT_EQ(bench.unit.SuspendLocks(), 0);
    }
}

TEST(Sleep, WakesNoModuleThatWasClosed) {
    OpenBench bench;
    bench.dialog->CloseModule();
    bench.RunFor(6000);
    Post(bench, "UM_3G_SIMCARDDETACH");
    bench.dialog->OnKey(0xEE);
    bench.RunFor(60'000);
    EXPECT_FALSE(Open(bench));
    EXPECT_FALSE(bench.dialog->OnKey(0x41));
}

}  // namespace
}  // namespace varkel::test
