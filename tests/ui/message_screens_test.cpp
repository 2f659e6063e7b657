// The screens of messages: boxes, reading, writing, phrases and new messages.
#include "tests/ui/screen_test.h"
#include "ui/screens/message_boxes_dlg.h"
#include "ui/screens/new_messages_dlg.h"
#include "ui/screens/read_message_dlg.h"
#include "ui/screens/write_message_dlg.h"
#include "ui/toolkit/edit_field.h"

namespace varkel::test {
namespace {

constexpr int openId = 1013, deleteId = 1014, replyId = 1024, exitId = 1075;
constexpr int recipientId = 1018, textId = 1021, sendId = 1022, phraseId = 1023, leaveId = 1025,
              countId = 1100;
constexpr Point outboxTab{300, 90}, draftsTab{500, 90}, deleteAll{440, 291};

SmsRecord Message(std::string_view content, SmsState state = SmsState::Opened,
                  std::string_view number = "10010") {
    return MakeSmsRecord(SmsTime("2009-03-07 18:05"), number, content, state);
}

struct MessageScreens : ScreenTest {
    MessageBoxes& Boxes() { return dialog->Messages().Boxes(); }
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
    std::string Written(int id) {
        return Top<CWriteMessageDlg>() ? TextOf<EditField>(*Top<CWriteMessageDlg>(), id) : "no screen";
    }
};

struct MessageBoxesScreen : MessageScreens {
    CMessageBoxesDlg screen{*context};
};

TEST_F(MessageBoxesScreen, CountsAndCannotOpenOrDeleteWhatIsNotThere) {
    Put(Boxes().outbox, {Message("a"), Message("b")});
    Open(screen);
    EXPECT_EQ(Counter(screen), "0/0");
    EXPECT_FALSE(Enabled(screen, openId) || Enabled(screen, deleteId));
    EXPECT_TRUE(Visible(screen, ListScreen::emptyId));
    Play({Press(KeyCode::Return), Tap(outboxTab)});
    EXPECT_EQ(Counter(screen), "1/2");
    EXPECT_TRUE(Enabled(screen, openId) && Enabled(screen, deleteId));
    EXPECT_FALSE(Visible(screen, ListScreen::emptyId));
    Play({Press(KeyCode::Down)});
    EXPECT_EQ(Counter(screen), "2/2");
    screen.Click(1009);
    EXPECT_EQ(Counter(screen), "0/0");
    Play({Tap(exitId)});
    EXPECT_FALSE(screen.IsOpen());
}

TEST_F(MessageBoxesScreen, OpensWhatIsTappedTwiceWithin150ms) {
    Put(Boxes().inbox, {Message("old"), Message("new", SmsState::Unread)});
    Open(screen);
    Play({Tap(Row(1)), Tap(Row(1))}, 200);
    EXPECT_EQ(Top<CReadMessageDlg>(), nullptr);
    EXPECT_EQ(Counter(screen), "2/2");
    Play({Tap(Row(0)), Tap(Row(1))}, 100);
    EXPECT_EQ(Top<CReadMessageDlg>(), nullptr) << "two rows";
    RunFor(200);
    std::string seen;
    const auto note = [&] { seen = TextOf<EditField>(*desktop.Active(), 1023); };
    Play({Tap(Row(0)), Tap(Row(0)), note, Tap(exitId)}, 100);
    EXPECT_EQ(seen, "new");
    EXPECT_EQ(Contents(Boxes().inbox), "old0 new0 ");
    Play({Tap(Row(0))});
    EXPECT_EQ(Top<CReadMessageDlg>(), nullptr) << "the pair was used up";
}

TEST_F(MessageBoxesScreen, DeletesTheMessageThatWasShownThoughOthersCome) {
    struct Case {
        std::vector<Step> answer;
        const char* left;
        const char* counter;
    };
    const std::vector<Case> cases = {
        {{Tap(idCancel)}, "a0 b0 lateu ", "2/3"},
        {{Tap(idOk)}, "a0 lateu ", "2/2"},
        {{Tap(deleteAll), Tap(idOk)}, "lateu ", "1/1"},
    };
    const auto comeLate = [&] {
        EXPECT_NE(Top<CWarnDlg>(), nullptr);
        Put(Boxes().inbox, {Message("late", SmsState::Unread)});
        screens.Repaint();
    };
    Open(screen);
    for (const Case& test : cases) {
        ASSERT_EQ(Boxes().inbox.DeleteAll(), StoreResult::Done);
        Put(Boxes().inbox, {Message("a"), Message("b")});
        screens.Repaint();
        std::vector<Step> steps = {Tap(Row(0)), Tap(deleteId), comeLate};
        steps.insert(steps.end(), test.answer.begin(), test.answer.end());
        Play(steps);
        EXPECT_EQ(Contents(Boxes().inbox), test.left);
        EXPECT_EQ(Counter(screen), test.counter);
    }
    files.freeBytes = 0;
    Play({Tap(deleteId), Tap(idOk)});
    EXPECT_EQ(Contents(Boxes().inbox), "") << "also on a full volume";
    EXPECT_EQ(Counter(screen), "0/0");
}

TEST_F(MessageBoxesScreen, ReadsNoFileToPaintAndHoldsManyDamagedRecords) {
    std::string bytes;
    for (int i = 0; i < 400 * 194; ++i)
        bytes += static_cast<char>(i * 37);
    files.WriteWhole("NandFlash\\System\\Phone\\InboxMs.msm", bytes + "tail");
    Open(screen);
    EXPECT_EQ(Counter(screen), "1/400");
    Play({Tap({576, 460}), Tap({748, 434}), Press(KeyCode::End)});
    EXPECT_EQ(Counter(screen), "400/400");
    files.refuseToRead = true;
    screen.Invalidate();
    RunFor(10);
    EXPECT_EQ(Counter(screen), "400/400");
    files.refuseToRead = false;
    Play({Press(KeyCode::Return), Press(KeyCode::Escape)});
    EXPECT_TRUE(screen.IsOpen());
}

struct WriteScreen : MessageScreens {
    void Write(std::string_view recipient, std::string_view text) {
        screen.emplace(*context, recipient, text);
        Open(*screen);
    }
    Step Click(int id) {
        return [this, id] { screen->Click(id); };
    }

    std::optional<CWriteMessageDlg> screen;
};

TEST_F(WriteScreen, StopsAt70UnitsAndWarnsAbove60WhenTheTextGetsTheFocus) {
    Write("10010", std::string(60, 'x'));
    EXPECT_EQ(Top<CWarnDlg>(), nullptr);
    Play({Type("\U0001F600"), Type("12345678901234567890")});
    EXPECT_EQ(TextOf(*screen, countId), "70/70");
    EXPECT_EQ(Top<CWarnDlg>(), nullptr) << "not while typing";
    screen->SetFocus(&screen->Get<EditField>(recipientId));
    Play({Tap({300, 200}), Answer(WarnCode::SmsCharacter), Press(KeyCode::Back)});
    EXPECT_EQ(TextOf(*screen, countId), "69/70");
}

TEST_F(WriteScreen, SendsWithoutThePlusAndTheWholeText) {
    std::string text;
    for (int i = 0; i < 70; ++i)
        text += "\u5b57";  // two bytes each in the record
    Write("+4915112345678", text);
    Play({Click(sendId)});
    EXPECT_FALSE(screen->IsOpen());
    const auto outbox = Boxes().outbox.FindSmsRecord();
    ASSERT_EQ(outbox.size(), 1u);
    EXPECT_EQ(outbox[0].szPhoneNo.View(), "4915112345678");
    EXPECT_EQ(outbox[0].szContent.View().size(), 140u);
    EXPECT_EQ(outbox[0].Index, SmsState::Opened);
    EXPECT_EQ(screens.Count("tip 3"), 1) << "the modem is off, which the tip tells";
}

TEST_F(WriteScreen, StaysOpenWithWhatCannotBeSent) {
    Write("", "text");
    Play({Click(sendId), Answer(WarnCode::NoNumber)});
    EXPECT_TRUE(screen->IsOpen());
    Write("10010", "");
    Play({Click(sendId), Answer(WarnCode::NoMessage)});
    EXPECT_TRUE(screen->IsOpen());
    Write("12345678901234567", "text");
    Play({Click(sendId)});
    EXPECT_EQ(screens.Count("warn 25"), 1);
    EXPECT_EQ(Written(textId), "text");
    EXPECT_TRUE(Boxes().outbox.FindSmsRecord().empty());
}

TEST_F(WriteScreen, AsksForADraftUnlessTheTextIsEmpty) {
    Write("10010", "");
    Play({Click(leaveId)});
    EXPECT_FALSE(screen->IsOpen());
    for (const auto& [text, answer, drafts] :
         {std::tuple("gone", idCancel, ""), std::tuple("kept", idOk, "kept0 ")}) {
        Write("10010", text);
        Play({Click(leaveId), Tap(answer)});
        EXPECT_FALSE(screen->IsOpen()) << text;
        EXPECT_EQ(Contents(Boxes().drafts), drafts);
    }
    // A part of a number is somebody else's.
    Write("12345678901234567890", "long");
    Play({Click(leaveId), Tap(idOk)});
    EXPECT_EQ(Boxes().drafts.FindSmsRecord().back().szPhoneNo.View(), "");
}

TEST_F(WriteScreen, TakesPhrasesWholeAndNumbersFromThePhonebook) {
    context->pickNumber = [] { return std::optional<std::string>("+8610010"); };
    Write("", "Hi. ");
    const std::string phrase = language.LoadString("IDS_PHRASESTR3");
    // The last tap is for the warning of a long text.
    const std::vector<Step> choose = {Click(phraseId), Tap({200, 180}), Tap({702, 436}), Tap({474, 343})};
    Play({Tap({702, 342})});  // no keyboard stands above its button
    EXPECT_EQ(Written(recipientId), "+8610010");
    Play(choose);
    EXPECT_EQ(Written(textId), "Hi. " + phrase);
    Play(choose);
    Play(choose);
    EXPECT_LE(Written(textId).size(), CWriteMessageDlg::mostUnits);
    EXPECT_EQ((Written(textId).size() - 4) % phrase.size(), 0u) << "no half phrase";
}

TEST_F(WriteScreen, GivesTheScreenToACallAndComesBackWithItsText) {
    Write("10010", "typed");
    dialog->State().m_bCallActive = true;
    HideWriteMessage(desktop);
    Repaint();
    EXPECT_FALSE(screen->IsWindowVisible());
    dialog->State().m_bCallActive = false;
    Repaint();
    EXPECT_TRUE(screen->IsWindowVisible());
    EXPECT_EQ(Written(textId), "typed");
}

TEST_F(MessageBoxesScreen, AnAnswerGoesToTheSenderAndADraftIsWrittenOn) {
    Put(Boxes().inbox, {Message("question", SmsState::Unread, "13800000000")});
    Put(Boxes().drafts, {Message("begun")});
    Open(screen);
    std::string seen;
    const auto note = [&] { seen += Written(recipientId) + ":" + Written(textId) + " "; };
    Play({Tap(openId), Tap(replyId), note, Press(KeyCode::Escape), Tap(exitId), Tap(draftsTab), Tap(openId),
          Tap(replyId), note, Press(KeyCode::Escape), Tap(idCancel), Tap(exitId)});
    EXPECT_EQ(seen, "13800000000: 10010:begun ");
    EXPECT_EQ(Contents(Boxes().inbox), "question0 ");
}

TEST_F(MessageScreens, NewMessagesAreShownOneByOneOrAsTheInbox) {
    std::atomic<int>& count = dialog->State().m_nNewMessages;
    CNewMessagesDlg news(*context);
    const auto come = [&](const char* text) {
        Put(Boxes().inbox, {Message(text, SmsState::Unread)});
        ++count;
    };
    news.Show();
    EXPECT_EQ(desktop.Active(), nullptr) << "an empty inbox";
    come("one");
    news.Show();
    RunFor(10);
    ASSERT_NE(Top<CReadMessageDlg>(), nullptr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(Contents(Boxes().inbox), "one0 ");
    come("two");
    news.Show();
    EXPECT_NE(Top<CReadMessageDlg>(), nullptr) << "it is not taken away";
    Play({Tap(exitId)});
    ASSERT_NE(Top<CMessageBoxesDlg>(), nullptr);
    EXPECT_EQ(Counter(*desktop.Active()), "1/2");
    EXPECT_EQ(TextOf(*desktop.Active(), ListScreen::titleId), "New messages: 2");
    Play({Tap(exitId)});
    EXPECT_EQ(desktop.Active(), nullptr);
    ASSERT_EQ(Boxes().inbox.MarkRead(Boxes().inbox.FindSmsRecord(), 0), StoreResult::Done);
    count = 1;
    news.Show();
    EXPECT_EQ(desktop.Active(), nullptr) << "one that has had no room, above one that has been read";
    come("three");
    come("four");
    news.Show();
    EXPECT_NE(Top<CMessageBoxesDlg>(), nullptr);
}

}  // namespace
}  // namespace varkel::test
