// What the head unit orders: the window, the module, emergency calls, sleep.
#include <gtest/gtest.h>

#include "session/registry_values.h"
#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

struct UnitMessagesTest : testing::Test, OpenBench {
    void Order(const char* name, std::uint32_t wParam = 0, std::uint32_t lParam = 0) {
        Post(name, wParam, lParam);
        RunFor(50);
    }
};

TEST_F(UnitMessagesTest, HideAndShowTheWindow) {
    Order("3Gwindow_HIDE");
    EXPECT_EQ(windows.CountPosted("3Gwindow_HIDE 0 0"), 1);
    EXPECT_EQ(screens.Count("place 3"), 1);
    RunFor(30'000);
    EXPECT_EQ(unit.Count("AT+CSQ"), 0) << "the poll stops while the window is hidden";
    Settings(registry).WriteDword("Device\\CONFIG", "g_bTTSOpen", 0);
    Order("3Gwindow_SHOW");
    EXPECT_EQ(screens.Shown().back(), "place 0");
    EXPECT_FALSE(dialog->State().g_bTTSOpen);
    RunFor(10'000);
    EXPECT_EQ(unit.Count("AT+CSQ"), 2) << "the poll goes on";
    Order("3Gwindow_QUIT");
    loop.Run([] { return false; });
    EXPECT_EQ(unit.Count("Set3GPower 0"), 1);
}

TEST_F(UnitMessagesTest, ChangeTheLanguage) {
    const auto change = [this](const char16_t* name) {
        registry.SetValue("Device\\CONFIG", "Language", TextValue(name, 32));
        Order("LANGUAGE_CHANGE");
        return language.LoadString("IDS_RING");
    };
    files.WriteWhole("\\ResidentFlash2\\bin\\Language\\russian.txt", "[GPRS]\nIDS_RING = звонит\n");
    EXPECT_EQ(change(u"russian"), "звонит");
    EXPECT_EQ(screens.Count("texts"), 1);
    EXPECT_EQ(change(u"klingon"), "звонит") << "no language";
    EXPECT_EQ(change(u"portugal"), "звонит") << "no texts";
    EXPECT_EQ(language.GetLanguage(), "russian");
    files.WriteWhole("\\ResidentFlash2\\bin\\Language\\russian.txt", "[GPRS]\nIDS_RING = вызов\n");
    EXPECT_EQ(change(u"russian"), "вызов") << "the texts have changed, not the language";
}

TEST_F(UnitMessagesTest, OpenAndCloseTheModule) {
    for (const std::uint32_t order : {1u, 2u, 0u})
        Order("Network_interface", 0, order);
    RunFor(5000);
    EXPECT_EQ(Mode(), ScreenMode::Idle) << "nothing of that closes it";
    Order("3Gwindow_HIDE");
    Order("Network_interface", 0, 0);
    EXPECT_FALSE(dialog->State().m_bOpenPending) << "it is open: a call must get through";
    Order("NEED_CLOSE_USB_HOST");
    RunFor(6000);
    Order("Network_interface", 0, 0);
    RunFor(60'000);
    EXPECT_EQ(Mode(), ScreenMode::Closed) << "not while the window is hidden";
    Order("NEED_CLOSE_USB_HOST");
    EXPECT_FALSE(dialog->State().m_bOpenPending) << "taken back";
    Order("Network_interface", 0, 0);
    Order("3Gwindow_SHOW");
    RunFor(60'000);
    EXPECT_EQ(Mode(), ScreenMode::Idle);
    EXPECT_FALSE(dialog->State().m_bOpenPending);
    for (const char* order : {"NEED_CLOSE_USB_HOST", "Network_interface", "NEED_CLOSE_USB_HOST"})
        Order(order);
    RunFor(60'000);
    EXPECT_FALSE(dialog->State().m_bModuleOpen) << "what waits to be opened is taken back as well";
    Order("UM_3G_SIMCARDDETACH");
    EXPECT_TRUE(dialog->OnKey(0xEE));
    EXPECT_FALSE(dialog->OnKey(0x41));
    RunFor(60'000);
    EXPECT_EQ(Mode(), ScreenMode::Closed) << "it was not asleep";
}

TEST(EmergencyCall, DialsTheStoredNumberOrSaysWhyNot) {
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
        bench.Happen(row.world);
        bench.registry.SetValue("Software\\QXPhoneNum", "SOS", TextValue(row.sos, row.sos.size() * 2 + 2));
        bench.Post("UM_QX_CALL", row.which);
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
        if (when % 2000 == 0) bench.Happen("urc RING");
        bench.RunFor(when / 2);
        const bool open = Settings(bench.registry).ReadOpenFlag() == 1;
        EXPECT_TRUE(bench.dialog->OnKey(0x5F));
        bench.RunFor(when % 4000);  // perhaps the unit wakes up before all is shut down
        EXPECT_TRUE(bench.dialog->OnKey(0xEE));
        const bool closing = Settings(bench.registry).ReadOpenFlag() == 1;
        bench.Post("UM_3G_SIMCARDDETACH");
        bench.RunFor(6000);
        EXPECT_EQ(bench.dialog->State().m_bModuleOpen, !closing) << when;
        bench.Post(when % 1000 == 0 ? WM_KEYDOWN : WM_SYSKEYDOWN, 0xEE);
        bench.RunFor(90'000);
        EXPECT_EQ(bench.Mode(), ScreenMode::Idle) << when;
        EXPECT_EQ(bench.unit.Count("Set3GPower 1"), open || closing ? 2 : 1) << when;
        EXPECT_EQ(bench.unit.SuspendLocks(), 0);
    }
}

}  // namespace
}  // namespace varkel::test
