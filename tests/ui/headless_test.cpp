// The program without a window: what a user reads and types.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/code_request.h"
#include "tests/support/memory_terminal.h"
#include "tests/support/session_bench.h"
#include "ui/terminal/headless_commands.h"
#include "ui/terminal/headless_screens.h"

namespace varkel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct HeadlessTest : testing::Test, SessionBench {
    HeadlessTest() {
        files.WriteWhole("ResidentFlash2\\bin\\Language\\english.txt",
                         "[GPRS]\nIDS_NO_SIM = No SIM card\nIDS_NUMBER_INVALID = Not valid\n");
        EXPECT_TRUE(language.Change("english"));
        shown.Start(state, [this](std::string_view line) { commands.emplace_back(line); });
    }

    // Asks on a thread of its own, as the open thread does.
    std::shared_ptr<Thread> Ask(bool cancelled = false) {
        CodeRequest puk = AskFor("puk:", "pin:", "12345678", "1234");
        puk.cancelled = [cancelled] { return cancelled; };
        answer = CodeEntry{};
        auto asking = runtime.CreateThread({.name = "asking"}, [this, puk] { answer = shown.AskCodes(puk); });
        RunFor(10);
        return asking;
    }
    std::shared_ptr<Thread> ShowBox() {
        auto showing = runtime.CreateThread(
            {.name = "box"}, [this] { shown.MessageBox("write port failed!", "warning", closed.get()); });
        RunFor(100);
        return showing;
    }

    MemoryTerminal terminal{loop};
    SessionState state;
    HeadlessScreens shown{runtime, loop, terminal, language};
    std::vector<std::string> commands;
    std::optional<CodeEntry> answer;
    const std::shared_ptr<Event> closed = runtime.CreateEvent(EventReset::Manual);
};

TEST_F(HeadlessTest, ShowsWhatChangesOnce) {
    shown.SetSignalLevel(3);
    shown.SetSignalLevel(3);
    state.MainScreenMode = ScreenMode::Idle;
    shown.Repaint();
    shown.Repaint();
    shown.SetStatusText("");
    shown.Warn(WarnCode::NoSim);
    shown.Warn(WarnCode::NoSim);
    shown.ShowMessageBox("buf < 0", "error");
    EXPECT_THAT(terminal.TakeLines(), ElementsAre("[signal] 3 of 5", "[screen] the modem is open",
                                                  "[warning] No SIM card", "[box] error: buf < 0"));
    RunFor(11'000);
    shown.Warn(WarnCode::NoSim);
    EXPECT_THAT(terminal.TakeLines(), Contains("[warning] No SIM card")) << "again after a while";
}

TEST_F(HeadlessTest, AsksUntilTheEntryIsAccepted) {
    const auto asking = Ask();
    for (const char* line : {"12345678", "9", "12345678", "1234", "status"})
        terminal.Type(line);
    RunFor(10);
    ASSERT_EQ(asking->Wait(0), WaitResult::Object0);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->first + "," + answer->second, "12345678,1234");
    EXPECT_THAT(commands, ElementsAre("status")) << "a line without a question is a command";
    EXPECT_THAT(terminal.TakeLines(), Contains("[warning] Not valid"));
}

TEST_F(HeadlessTest, GivesUpByWordByRequestAndAtTheEndOfTheInput) {
    EXPECT_EQ(Ask(true)->Wait(0), WaitResult::Object0) << "a request that came while it opened";
    EXPECT_FALSE(answer);
    const std::function<void()> ends[] = {
        [this] { terminal.Type("cancel"); },
        [this] { shown.CancelPrompts(); },
        [this] { terminal.End(); },
    };
    for (const auto& end : ends) {
        const auto asking = Ask();
        EXPECT_EQ(asking->Wait(0), WaitResult::Timeout);
        end();
        RunFor(10);
        ASSERT_EQ(asking->Wait(0), WaitResult::Object0);
        EXPECT_FALSE(answer);
    }
    EXPECT_EQ(Ask()->Wait(0), WaitResult::Object0) << "nobody can answer any more";
}

TEST_F(HeadlessTest, HoldsAMessageBoxUntilItIsDismissedOrClosed) {
    const std::function<void()> ends[] = {[this] { terminal.Type(""); }, [this] { closed->Set(); }};
    for (const auto& end : ends) {
        const auto waiting = ShowBox();
        EXPECT_EQ(waiting->Wait(0), WaitResult::Timeout);
        EXPECT_EQ(ShowBox()->Wait(0), WaitResult::Object0) << "one box for one text";
        end();
        RunFor(200);
        EXPECT_EQ(waiting->Wait(0), WaitResult::Object0);
    }
    EXPECT_THAT(commands, IsEmpty());

    terminal.Type("");
    shown.MessageBox("on the dialog thread", "", nullptr);
    EXPECT_THAT(terminal.TakeLines(), Contains("[box] on the dialog thread (press Enter)"));
}

struct HeadlessCommandsTest : testing::Test, SessionBench {
    HeadlessCommandsTest() {
        unit.Command("book add \"王五\" 10010");
        dialUp.connects = true;
        OpenModule();
        commands.emplace(*dialog, windows, codePage, terminal);
    }

    std::string Answer(std::string_view line) {
        commands->Run(line);
        RunFor(6000);
        std::string text;
        for (const std::string& each : terminal.TakeLines())
            text += (text.empty() ? "" : "|") + each;
        return text;
    }
    // What is typed, and what it prints in a row.
    void Converse(const std::vector<std::pair<const char*, const char*>>& dialogue) {
        for (const auto& [line, expected] : dialogue)
            EXPECT_EQ(Answer(line), expected) << line;
    }

    MemoryTerminal terminal{loop};
    std::optional<HeadlessCommands> commands;
};

TEST_F(HeadlessCommandsTest, DialTestAndObeyTheUnit) {
    Converse({
        {"data", "[data] connected, CMCC, access point \"CMNET\""},
        {"test", "[data] the link works"},
        {"data off", ""},
        {"data", "[data] off, CMCC, access point \"CMNET\""},
        {"test", "[data] nobody answers"},
        {"data on", ""},
        {"key 5G", "[error] not a key of the unit"},
        {"post 3Gwindow_HIDE", ""},
    });
    EXPECT_TRUE(dialog->Data().Connected());
    EXPECT_TRUE(dialog->State().m_bWindowHidden);
}

TEST_F(HeadlessCommandsTest, KeepThePhonebook) {
    Converse({
        {"add \"Anna Maria\" +491", "[phonebook] added"},
        {"add-sim Bob  10086", "[phonebook] added"},
        {"phonebook",
         "[phonebook] 3 entries|  1  Anna Maria  +491|  2  王五  10010  (SIM)|  3  Bob  10086  (SIM)"},
        {"phonebook \"a m\"", "[phonebook] 1 entry|  1  Anna Maria  +491"},
        {"find 10086", "[phonebook] 10086 is Bob"},
        {"find 112", "[phonebook] 112 is 112"},
        {"add Bob", "[error] a name and a number are wanted"},
        {"add-sim Bob x", "[error] that is no number"},
        {"remove 2", "[error] the list has no entry \"2\""},
        {"change 1 \"Ann\" 111", "[phonebook] changed"},
        {"find 111", "[phonebook] 111 is Ann"},
        {"phonebook Ann", "[phonebook] 1 entry|  1  Ann  111"},
        {"remove 1", "[phonebook] removed"},
        {"remove 1", "[error] that entry is gone"},
        {"phonebook 10", "[phonebook] 2 entries|  1  王五  10010  (SIM)|  2  Bob  10086  (SIM)"},
        {"remove 2", "[phonebook] removed"},
        {"find", "[error] usage: find NUMBER"},
    });
    EXPECT_THAT(Answer("help"), HasSubstr("  add-sim NAME NUMBER             a new entry on the SIM"));
}

}  // namespace
}  // namespace varkel::test
