// The screens of messages: boxes, reading, writing, phrases and new messages.
#include <gtest/gtest.h>

#include "tests/support/screen_bench.h"
#include "ui/screens/message_boxes_dlg.h"
#include "ui/screens/new_messages_dlg.h"
#include "ui/screens/read_message_dlg.h"
#include "ui/screens/write_message_dlg.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/radio_group.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {
namespace {

constexpr int newId = 1012, openId = 1013, deleteId = 1014, exitId = 1075;
constexpr int recipientId = 1018, textId = 1021, sendId = 1022, phraseId = 1023, leaveId = 1025;
constexpr Point newButton{700, 220}, deleteButton{700, 330}, exitButton{765, 25};
constexpr Point outboxTab{300, 90}, draftsTab{500, 90};
constexpr Point warnOk{320, 343}, warnCancel{480, 343}, deleteAll{440, 291};
constexpr Point onlyOk{474, 343};
constexpr Point Row(int row) {
    return {200, 130 + 86 * row + 40};
}

SmsRecord Message(std::string_view content, SmsState state = SmsState::Opened,
                  std::string_view number = "10010") {
    return MakeSmsRecord(SmsTime("2009-03-07 18:05"), number, content, state);
}

struct MessageScreens : testing::Test {
    MessageBoxes& Boxes() { return bench.dialog->Messages().Boxes(); }
    void Put(MessageBox& box, std::initializer_list<SmsRecord> records) {
        for (const SmsRecord& record : records)
            ASSERT_EQ(box.WriteSmsRecord(record), StoreResult::Done);
    }
    // The texts, oldest first.
    static std::string Contents(MessageBox& box) {
        std::string all;
        for (const SmsRecord& record : box.FindSmsRecord())
            all += std::string(record.szContent.View()) + static_cast<char>(record.Index) + " ";
        return all;
    }
    static std::string Counter(const Dialog& screen) {
        return screen.Get<StaticText>(ListScreen::counterId).GetWindowText();
    }
    std::string Written(int id) {
        auto* const screen = bench.Top<CWriteMessageDlg>();
        return screen ? screen->Get<EditField>(id).GetWindowText() : "no screen";
    }

    test::ScreenBench bench;
};

struct MessageBoxesScreen : MessageScreens {
    void Open() {
        screen.Show();
        bench.RunFor(10);
    }
    std::string Counter() { return MessageScreens::Counter(screen); }
    bool Enabled(int id) { return screen.Get<CSkinButton>(id).IsWindowEnabled(); }

    CMessageBoxesDlg screen{*bench.context};
};

TEST_F(MessageBoxesScreen, CountsAndCannotOpenOrDeleteWhatIsNotThere) {
    Put(Boxes().outbox, {Message("a"), Message("b")});
    Open();
    EXPECT_EQ(Counter(), "0/0");
    EXPECT_FALSE(Enabled(openId) || Enabled(deleteId));
    EXPECT_TRUE(screen.Get<StaticText>(ListScreen::emptyId).IsWindowVisible());
    bench.Play({bench.Press(KeyCode::Return), bench.Tap(outboxTab)});
    EXPECT_EQ(Counter(), "1/2");
    EXPECT_TRUE(Enabled(openId) && Enabled(deleteId));
    EXPECT_FALSE(screen.Get<StaticText>(ListScreen::emptyId).IsWindowVisible());
    bench.Play({bench.Press(KeyCode::Down)});
    EXPECT_EQ(Counter(), "2/2");
    screen.Click(1009);
    EXPECT_EQ(Counter(), "0/0");
    bench.Play({bench.Tap(exitButton)});
    EXPECT_FALSE(screen.IsOpen());
}

TEST_F(MessageBoxesScreen, OpensWhatIsTappedTwiceWithin150ms) {
    Put(Boxes().inbox, {Message("old"), Message("new", SmsState::Unread)});
    Open();
    bench.Play({bench.Tap(Row(1)), bench.Tap(Row(1))}, 200);
    EXPECT_EQ(bench.Top<CReadMessageDlg>(), nullptr);
    EXPECT_EQ(Counter(), "2/2");
    bench.Play({bench.Tap(Row(0)), bench.Tap(Row(1))}, 100);
    EXPECT_EQ(bench.Top<CReadMessageDlg>(), nullptr) << "two rows";
    bench.RunFor(200);
    std::string seen;
    bench.Play({bench.Tap(Row(0)), bench.Tap(Row(0)),
                [&] {
                    if (auto* const read = bench.Top<CReadMessageDlg>())
                        seen = read->Get<EditField>(1023).GetWindowText();
                },
                bench.Tap(exitButton)},
               100);
    EXPECT_EQ(seen, "new");
    EXPECT_EQ(Contents(Boxes().inbox), "old0 new0 ");
    bench.Play({bench.Tap(Row(0))});
    EXPECT_EQ(bench.Top<CReadMessageDlg>(), nullptr) << "the pair was used up";
}

TEST_F(MessageBoxesScreen, FollowsItsBoxAndKeepsTheSelection) {
    Put(Boxes().inbox, {Message("a"), Message("b")});
    Open();
    bench.Play({bench.Tap(Row(1))});
    Put(Boxes().inbox, {Message("c", SmsState::Unread)});
    bench.screens.Repaint();
    bench.RunFor(10);
    EXPECT_EQ(Counter(), "3/3");
    EXPECT_EQ(screen.Get<ListBox>(ListScreen::listId).TopRow(), 0);
    ASSERT_EQ(Boxes().inbox.DeleteAll(), StoreResult::Done);
    bench.screens.Repaint();
    bench.RunFor(10);
    EXPECT_EQ(Counter(), "0/0");
}

TEST_F(MessageBoxesScreen, DeletesTheMessageThatWasShownThoughOthersCome) {
    const SmsRecord late = Message("late", SmsState::Unread);
    struct Case {
        std::vector<test::ScreenBench::Step> answer;
        const char* left;
        const char* counter;
    };
    const std::vector<Case> cases = {
        {{bench.Tap(warnCancel)}, "a0 b0 lateu ", "2/3"},
        {{bench.Tap(warnOk)}, "a0 lateu ", "2/2"},
        {{bench.Tap(deleteAll), bench.Tap(warnOk)}, "lateu ", "1/1"},
    };
    Open();
    for (const Case& test : cases) {
        ASSERT_EQ(Boxes().inbox.DeleteAll(), StoreResult::Done);
        Put(Boxes().inbox, {Message("a"), Message("b")});
        bench.screens.Repaint();
        std::vector<test::ScreenBench::Step> steps = {bench.Tap(Row(0)), bench.Tap(deleteButton), [&] {
                                                          EXPECT_NE(bench.Top<CWarnDlg>(), nullptr);
                                                          Put(Boxes().inbox, {late});
                                                          bench.screens.Repaint();
                                                      }};
        steps.insert(steps.end(), test.answer.begin(), test.answer.end());
        bench.Play(steps);
        EXPECT_EQ(Contents(Boxes().inbox), test.left);
        EXPECT_EQ(Counter(), test.counter);
    }
    bench.files.freeBytes = 0;
    bench.Play({bench.Tap(deleteButton), bench.Tap(warnOk)});
    EXPECT_EQ(Contents(Boxes().inbox), "") << "also on a full volume";
    EXPECT_EQ(Counter(), "0/0");
}

TEST_F(MessageBoxesScreen, ReadsNoFileToPaintAndHoldsManyDamagedRecords) {
    std::string bytes;
    for (int i = 0; i < 400 * 194; ++i)
        bytes += static_cast<char>(i * 37);
    bench.files.WriteWhole("NandFlash\\System\\Phone\\InboxMs.msm", bytes + "tail");
    Open();
    EXPECT_EQ(Counter(), "1/400");
    bench.Play({bench.Tap({576, 460}), bench.Tap({748, 434}), bench.Press(KeyCode::End)});
    EXPECT_EQ(Counter(), "400/400");
    bench.files.refuseToRead = true;
    screen.Invalidate();
    bench.RunFor(10);
    EXPECT_EQ(Counter(), "400/400");
    bench.files.refuseToRead = false;
    bench.Play({bench.Press(KeyCode::Return), bench.Press(KeyCode::Escape)});
    EXPECT_TRUE(screen.IsOpen());
}

struct WriteScreen : MessageScreens {
    void Open(std::string_view recipient, std::string_view text) {
        screen.emplace(*bench.context, recipient, text);
        screen->Show();
        bench.RunFor(10);
    }
    std::string CounterText() { return screen->Get<StaticText>(1100).GetWindowText(); }

    std::optional<CWriteMessageDlg> screen;
};

TEST_F(WriteScreen, StopsAt70UnitsAndWarnsAbove60WhenTheTextGetsTheFocus) {
    Open("10010", std::string(60, 'x'));
    EXPECT_EQ(bench.Top<CWarnDlg>(), nullptr);
    bench.Play({bench.Type("\U0001F600"), bench.Type("12345678901234567890")});
    EXPECT_EQ(CounterText(), "70/70");
    EXPECT_EQ(bench.Top<CWarnDlg>(), nullptr) << "not while typing";
    screen->SetFocus(&screen->Get<EditField>(recipientId));
    bench.Play({bench.Tap({300, 200})});
    ASSERT_NE(bench.Top<CWarnDlg>(), nullptr);
    EXPECT_EQ(bench.Top<CWarnDlg>()->Code(), WarnCode::SmsCharacter);
    bench.Play({bench.Tap(onlyOk), bench.Press(KeyCode::Back)});
    EXPECT_EQ(CounterText(), "69/70");
}

TEST_F(WriteScreen, SendsWithoutThePlusAndTheWholeText) {
    std::string text;
    for (int i = 0; i < 70; ++i)
        text += "\u5b57";  // two bytes each in the record
    Open("+4915112345678", text);
    bench.Play({[&] { screen->Click(sendId); }});
    EXPECT_FALSE(screen->IsOpen());
    const auto outbox = Boxes().outbox.FindSmsRecord();
    ASSERT_EQ(outbox.size(), 1u);
    EXPECT_EQ(outbox[0].szPhoneNo.View(), "4915112345678");
    EXPECT_EQ(outbox[0].szContent.View().size(), 140u);
    EXPECT_EQ(outbox[0].Index, SmsState::Opened);
    EXPECT_EQ(bench.screens.Count("tip 3"), 1) << "the modem is off, which the tip tells";
}

TEST_F(WriteScreen, StaysOpenWithWhatCannotBeSent) {
    struct Case {
        const char* recipient;
        const char* text;
        WarnCode shown;
    };
    for (const Case& test : {Case{"", "text", WarnCode::NoNumber}, Case{"10010", "", WarnCode::NoMessage}}) {
        Open(test.recipient, test.text);
        bench.Play({[&] { screen->Click(sendId); },
                    [&] {
                        ASSERT_NE(bench.Top<CWarnDlg>(), nullptr);
                        EXPECT_EQ(bench.Top<CWarnDlg>()->Code(), test.shown);
                    },
                    bench.Tap(onlyOk)});
        EXPECT_TRUE(screen->IsOpen());
    }
    Open("12345678901234567", "text");
    bench.Play({[&] { screen->Click(sendId); }});
    EXPECT_EQ(bench.screens.Count("warn 25"), 1);
    EXPECT_EQ(Written(textId), "text");
    EXPECT_TRUE(Boxes().outbox.FindSmsRecord().empty());
}

TEST_F(WriteScreen, AsksForADraftUnlessTheTextIsEmpty) {
    struct Case {
        const char* text;
        Point answer;
        const char* drafts;
    };
    for (const Case& test :
         {Case{"", {}, ""}, Case{"gone", warnCancel, ""}, Case{"kept", warnOk, "kept0 "}}) {
        Open("10010", test.text);
        bench.Play({[&] { screen->Click(leaveId); }, bench.Tap(test.answer)});
        EXPECT_FALSE(screen->IsOpen()) << test.text;
        EXPECT_EQ(Contents(Boxes().drafts), test.drafts);
    }
    // A part of a number is somebody else's.
    Open("12345678901234567890", "long");
    bench.Play({[&] { screen->Click(leaveId); }, bench.Tap(warnOk)});
    EXPECT_EQ(Boxes().drafts.FindSmsRecord().back().szPhoneNo.View(), "");
}

TEST_F(WriteScreen, TakesPhrasesWholeAndNumbersFromThePhonebook) {
    bench.context->pickNumber = [] { return std::optional<std::string>("+8610010"); };
    Open("", "Hi. ");
    const std::string phrase = bench.texts.LoadString("IDS_PHRASESTR3");
    const std::vector<test::ScreenBench::Step> choose = {
        [&] { screen->Click(phraseId); }, bench.Tap({200, 180}), bench.Tap({702, 436}), bench.Tap(onlyOk)};
    bench.Play({bench.Tap({702, 342})});  // no keyboard stands above its button
    EXPECT_EQ(Written(recipientId), "+8610010");
    bench.Play(choose);
    EXPECT_EQ(Written(textId), "Hi. " + phrase);
    bench.Play(choose);
    bench.Play(choose);
    EXPECT_LE(Written(textId).size(), CWriteMessageDlg::mostUnits);
    EXPECT_EQ((Written(textId).size() - 4) % phrase.size(), 0u) << "no half phrase";
}

TEST_F(WriteScreen, GivesTheScreenToACallAndComesBackWithItsText) {
    Open("10010", "typed");
    bench.dialog->State().m_bCallActive = true;
    HideWriteMessage(bench.desktop);
    bench.screens.Repaint();
    bench.RunFor(10);
    EXPECT_FALSE(screen->IsWindowVisible());
    bench.dialog->State().m_bCallActive = false;
    bench.screens.Repaint();
    bench.RunFor(10);
    EXPECT_TRUE(screen->IsWindowVisible());
    EXPECT_EQ(Written(textId), "typed");
}

TEST_F(MessageScreens, AnAnswerGoesToTheSenderAndADraftIsWrittenOn) {
    Put(Boxes().inbox, {Message("question", SmsState::Unread, "13800000000")});
    Put(Boxes().drafts, {Message("begun")});
    CMessageBoxesDlg screen(*bench.context);
    screen.Show();
    std::string seen;
    const auto note = [&] { seen += Written(recipientId) + ":" + Written(textId) + " "; };
    constexpr Point openButton{700, 110}, replyButton{700, 110};
    bench.Play({bench.Tap(openButton), bench.Tap(replyButton), note, bench.Press(KeyCode::Escape),
                bench.Tap(exitButton), bench.Tap(draftsTab), bench.Tap(openButton), bench.Tap(replyButton),
                note, bench.Press(KeyCode::Escape), bench.Tap(warnCancel), bench.Tap(exitButton)});
    EXPECT_EQ(seen, "13800000000: 10010:begun ");
    EXPECT_EQ(Contents(Boxes().inbox), "question0 ");
}

TEST_F(MessageScreens, NewMessagesAreShownOneByOneOrAsTheInbox) {
    std::atomic<int>& count = bench.dialog->State().m_nNewMessages;
    CNewMessagesDlg news(*bench.context);
    const auto come = [&](const char* text) {
        Put(Boxes().inbox, {Message(text, SmsState::Unread)});
        ++count;
    };
    news.Show();
    EXPECT_EQ(bench.desktop.Active(), nullptr) << "an empty inbox";
    come("one");
    news.Show();
    bench.RunFor(10);
    ASSERT_NE(bench.Top<CReadMessageDlg>(), nullptr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(Contents(Boxes().inbox), "one0 ");
    come("two");
    news.Show();
    EXPECT_NE(bench.Top<CReadMessageDlg>(), nullptr) << "it is not taken away";
    bench.Play({bench.Tap(exitButton)});
    auto* const boxes = bench.Top<CMessageBoxesDlg>();
    ASSERT_NE(boxes, nullptr);
    EXPECT_EQ(Counter(*boxes), "1/2");
    EXPECT_EQ(boxes->Get<StaticText>(ListScreen::titleId).GetWindowText(), "New messages: 2");
    bench.Play({bench.Tap(exitButton)});
    EXPECT_EQ(bench.desktop.Active(), nullptr);
    ASSERT_EQ(Boxes().inbox.MarkRead(Boxes().inbox.FindSmsRecord(), 0), StoreResult::Done);
    count = 1;
    news.Show();
    EXPECT_EQ(bench.desktop.Active(), nullptr) << "one that has had no room, above one that has been read";
    come("three");
    come("four");
    news.Show();
    EXPECT_NE(bench.Top<CMessageBoxesDlg>(), nullptr);
}

}  // namespace
}  // namespace varkel
