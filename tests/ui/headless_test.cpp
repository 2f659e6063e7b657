// The program without a window: what a user reads and types.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/memory_terminal.h"
#include "tests/support/session_bench.h"
#include "ui/terminal/headless_commands.h"
#include "ui/terminal/headless_screens.h"
#include "ui/toolkit/warn_texts.h"

namespace varkel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct HeadlessTest : testing::Test {
    HeadlessTest() {
        files.WriteWhole("ResidentFlash2\\bin\\Language\\english.txt",
                         "[GPRS]\nIDS_NO_SIM = No SIM card\nIDS_NUMBER_INVALID = Not valid\n");
        language = std::make_unique<Language>(files, "english");
        screens = std::make_unique<HeadlessScreens>(runtime, loop, terminal, *language);
        screens->Start(state, [this](std::string_view line) { commands.emplace_back(line); });
    }

    static CodeRequest Puk() {
        return {.title = "Please Input:",
                .firstLabel = "puk:",
                .secondLabel = "pin:",
                .check = [](std::string_view first, std::string_view second) -> std::optional<WarnCode> {
                    if (first == "12345678" && second == "1234") return std::nullopt;
                    return WarnCode::NumberInvalid;
                },
                .cancelled = [] { return false; }};
    }

    // Asks on a thread of its own, as the open thread does.
    std::shared_ptr<Thread> Ask(const CodeRequest& request) {
        return runtime.CreateThread({.name = "asking"},
                                    [this, request] { answer = screens->AskCodes(request); });
    }

    void RunFor(Ticks time) {
        bool over = false;
        loop.SetTimer(1, time, [&over] { over = true; });
        loop.Run([&over] { return over; });
        loop.KillTimer(1);
    }

    VirtualRuntime runtime{1};
    MessageLoop loop{runtime};
    MemoryFiles files;
    MemoryTerminal terminal{loop};
    SessionState state;
    std::unique_ptr<Language> language;
    std::unique_ptr<HeadlessScreens> screens;
    std::vector<std::string> commands;
    std::optional<CodeEntry> answer;
};

TEST_F(HeadlessTest, ShowsWhatChangesOnce) {
    screens->SetSignalLevel(3);
    screens->SetSignalLevel(3);
    state.MainScreenMode = ScreenMode::Idle;
    screens->Repaint();
    screens->Repaint();
    screens->SetStatusText("");
    screens->Warn(WarnCode::NoSim);
    screens->Warn(WarnCode::NoSim);
    screens->ShowMessageBox("buf < 0", "error");
    EXPECT_THAT(terminal.TakeLines(), ElementsAre("[signal] 3 of 5", "[screen] the modem is open",
                                                  "[warning] No SIM card", "[box] error: buf < 0"));
    RunFor(11'000);
    screens->Warn(WarnCode::NoSim);
    EXPECT_THAT(terminal.TakeLines(), Contains("[warning] No SIM card")) << "again after a while";
}

TEST_F(HeadlessTest, AsksUntilTheEntryIsAccepted) {
    const auto asking = Ask(Puk());
    RunFor(10);
    for (const char* line : {"12345678", "9", "12345678", "1234"})
        terminal.Type(line);
    terminal.Type("status");
    RunFor(10);
    ASSERT_EQ(asking->Wait(0), WaitResult::Object0);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->first, "12345678");
    EXPECT_EQ(answer->second, "1234");
    EXPECT_THAT(commands, ElementsAre("status")) << "a line without a question is a command";
    EXPECT_THAT(terminal.TakeLines(), Contains("[warning] Not valid"));
}

TEST_F(HeadlessTest, GivesUpByWordByRequestAndAtTheEndOfTheInput) {
    const std::function<void()> ends[] = {
        [this] { terminal.Type("cancel"); },
        [this] { screens->CancelPrompts(); },
        [this] { terminal.End(); },
    };
    for (const auto& end : ends) {
        answer = CodeEntry{};
        const auto asking = Ask(Puk());
        RunFor(10);
        EXPECT_EQ(asking->Wait(0), WaitResult::Timeout);
        end();
        RunFor(10);
        ASSERT_EQ(asking->Wait(0), WaitResult::Object0);
        EXPECT_FALSE(answer);
    }
    const auto asking = Ask(Puk());
    RunFor(10);
    EXPECT_EQ(asking->Wait(0), WaitResult::Object0) << "nobody can answer any more";
}

TEST_F(HeadlessTest, MissesNoCancelThatComesWhileItOpens) {
    CodeRequest request = Puk();
    request.cancelled = [] { return true; };
    const auto asking = Ask(request);
    RunFor(10);
    EXPECT_EQ(asking->Wait(0), WaitResult::Object0);
    EXPECT_FALSE(answer);
}

TEST_F(HeadlessTest, HoldsAMessageBoxUntilItIsDismissedOrClosed) {
    const auto closed = runtime.CreateEvent(EventReset::Manual);
    const auto box = [this, closed] {
        return runtime.CreateThread({.name = "box"}, [this, closed] {
            screens->MessageBox("write port failed!", "warning", closed.get());
        });
    };
    auto waiting = box();
    RunFor(1000);
    EXPECT_EQ(waiting->Wait(0), WaitResult::Timeout);
    EXPECT_EQ(box()->Wait(100), WaitResult::Object0) << "one box for one text";
    terminal.Type("");
    RunFor(200);
    EXPECT_EQ(waiting->Wait(0), WaitResult::Object0);

    waiting = box();
    RunFor(1000);
    closed->Set();
    RunFor(200);
    EXPECT_EQ(waiting->Wait(0), WaitResult::Object0);
    EXPECT_THAT(commands, IsEmpty());

    terminal.Type("");
    screens->MessageBox("on the dialog thread", "", nullptr);
    EXPECT_THAT(terminal.TakeLines(), Contains("[box] on the dialog thread (press Enter)"));
}

TEST_F(HeadlessTest, KnowsAKeyForEveryWarning) {
    for (int code = 1; code <= 39; ++code) {
        EXPECT_NE(WarnText(static_cast<WarnCode>(code), *language), "") << code;
    }
    EXPECT_EQ(WarnText(WarnCode::NoSim, *language), WarnText(WarnCode::NoSimAgain, *language));
    EXPECT_EQ(WarnText(WarnCode::PortOpenFailed, *language), "打开3G串口失败，机器需要重启，3G才能正常使用");
    EXPECT_EQ(WarnText(static_cast<WarnCode>(0), *language), "");
    EXPECT_EQ(WarnText(static_cast<WarnCode>(40), *language), "");
}

// What is typed, and what it prints in a row.
using Dialogue = std::vector<std::pair<const char*, const char*>>;

struct HeadlessCommandsTest : testing::Test {
    HeadlessCommandsTest() {
        bench.unit.Command("book add \"王五\" 10010");
        bench.dialUp.connects = true;
        bench.OpenModule();
        commands.emplace(*bench.dialog, bench.windows, bench.codePage, terminal);
    }

    std::string Answer(std::string_view line) {
        commands->Run(line);
        bench.RunFor(6000);
        std::string text;
        for (const std::string& each : terminal.TakeLines())
            text += (text.empty() ? "" : "|") + each;
        return text;
    }
    void Converse(const Dialogue& dialogue) {
        for (const auto& [line, expected] : dialogue)
            EXPECT_EQ(Answer(line), expected) << line;
    }

    SessionBench bench;
    MemoryTerminal terminal{bench.loop};
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
    EXPECT_TRUE(bench.dialog->Data().Connected());
    EXPECT_TRUE(bench.dialog->State().m_bWindowHidden);
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
