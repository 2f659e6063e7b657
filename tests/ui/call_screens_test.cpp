// Dialling, tones, incoming calls and dialogues with the network, as the user's finger meets them.
#include "tests/ui/call_screens.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/code_request.h"
#include "ui/screens/dial_pad.h"
#include "ui/toolkit/edit_field.h"

namespace varkel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr int displayId = 1006;
constexpr int backspaceId = 1010;
constexpr int dialId = 1022;
constexpr int padReturnId = 1075;
constexpr int acceptId = 1008;
constexpr int rejectId = 1009;
constexpr int replyId = 1102;
constexpr int ussdStateId = 1101;
constexpr const char* dialogueEnded = "The dialogue with the network has ended";

struct CallScreensTest : CallScreens {
    void OpenPad() {
        pad.Show();
        Settle();
    }
    std::string Typed() { return TextOf(pad, displayId); }
    CCallInDlg& Ring(const std::string& number = "13800138000") {
        unit.Command("call " + number);
        return Await<CCallInDlg>();
    }
    // Dials a service code to which the network has a question.
    CUssdDlg& BeginDialogue() {
        unit.Command("ussd-ask 1 Balance");
        unit.Command("ussd 42.00");
        EXPECT_TRUE(dialog->Calls().Dial("*100#"));
        CUssdDlg& ussd = Await<CUssdDlg>();
        unit.TakeTrace();
        return ussd;
    }

    CDialPad pad{*context};
};

TEST_F(CallScreensTest, ThePadTypesByFingerAndByKey) {
    OpenPad();
    const std::pair<int, const char*> keys[] = {
        {1007, "1"}, {1008, "2"}, {1009, "3"}, {1011, "4"}, {1012, "5"}, {1013, "6"}, {1015, "7"},
        {1016, "8"}, {1017, "9"}, {1019, "*"}, {1020, "0"}, {1021, "#"}, {1018, "+"}};
    std::string number;
    for (const auto& [id, character] : keys) {
        Tap(pad, id);
        EXPECT_EQ(Typed(), number += character);
    }
    for (std::size_t i = 0; i <= number.size(); ++i)
        Tap(pad, backspaceId);
    EXPECT_EQ(Typed(), "");
    Type("1x2#");
    Press(KeyCode::Back);
    EXPECT_EQ(Typed(), "12");
    Type(std::string(300, '7') + "89");
    EXPECT_THAT(Typed(), StartsWith("…77")) << "its end stays in sight";
    EXPECT_THAT(Typed(), EndsWith("777")) << "more than can be dialled is not taken";
    Tap(pad, padReturnId);
    EXPECT_FALSE(pad.IsOpen());
    EXPECT_THAT(Commands(), IsEmpty()) << "no tone without a call";
    OpenPad();
    EXPECT_EQ(Typed(), "") << "the number is lost";
}

TEST_F(CallScreensTest, ThePadDialsWithEnoughPowerAndANumber) {
    OpenPad();
    unit.Command("power 19");
    Tap(pad, dialId);
    EXPECT_EQ(TakeWarning(), 28);
    unit.Command("power 20");
    Press(KeyCode::Return);
    EXPECT_EQ(TakeWarning(), 5);
    Type("10000");
    unit.Command("driver fail GetCurrentPowerValue");
    Tap(pad, dialId);
    EXPECT_FALSE(pad.IsOpen());
    RunFor(1500);
    EXPECT_THAT(Commands(), ElementsAre("ATD10000;"));
    EXPECT_EQ(Find<MainScreen>()->Bar().StatusText(), "Calling 10000");
}

TEST_F(CallScreensTest, ThePadFollowsTheCall) {
    Tap(Ring(), acceptId);
    RunFor(3000);
    OpenPad();
    unit.TakeTrace();
    EXPECT_FALSE(Enabled(pad, dialId));
    Tap(pad, 1018);
    Type("5#");
    RunFor(100);
    EXPECT_EQ(Typed(), "+5#");
    EXPECT_THAT(Commands(), ElementsAre("AT+VTS=+", "AT+VTS=5", "AT+VTS=#"));
    Type(std::string(200, '1') + "9");
    EXPECT_THAT(Typed(), EndsWith("9")) << "tones have no end";

    unit.Command("hangup");
    RunFor(10'000);
    unit.TakeTrace();
    EXPECT_TRUE(Enabled(pad, dialId));
    Type("1");
    RunFor(100);
    EXPECT_THAT(Commands(), Not(Contains("AT+VTS=1")));
    unit.Command("usb down");
    RunFor(20'000);
    while (TakeWarning() != 0) {
    }
    Tap(pad, dialId);
    EXPECT_EQ(TakeWarning(), 18) << "the module is closed";
    Tap(pad, padReturnId);
    EXPECT_FALSE(pad.IsOpen());
}

TEST_F(CallScreensTest, AnIncomingCallIsAboveAllAndCanBeTaken) {
    OpenPad();
    unit.Command("call 13800138000");
    ASSERT_TRUE(RunUntil([this] { return Find<CCallInDlg>(); }, 3000));
    CCallInDlg& call = *Find<CCallInDlg>();
    Tap(call, acceptId);
    EXPECT_TRUE(Enabled(call, acceptId)) << "a finger that was on its way to the pad takes no call";
    RunFor(CCallInDlg::deafTime);
    Type("1\r");
    Press(KeyCode::Return);
    EXPECT_EQ(Typed(), "");
    EXPECT_EQ(desktop.Active(), &call);
    EXPECT_EQ(TextOf(call, 1100), "13800138000 is calling");
    EXPECT_EQ(TextOf(call, 1101), "13800138000");
    Tap(call, acceptId);
    EXPECT_FALSE(Enabled(call, acceptId));
    RunFor(3000);
    EXPECT_EQ(dialog->State().MainScreenMode, ScreenMode::InCall);
    EXPECT_NE(Top<MainScreen>(), nullptr) << "the button that hangs up is at hand";
    unit.Command("hangup");
    RunFor(3000);
    EXPECT_EQ(desktop.Active(), &pad) << "what the call covered is back";
}

TEST_F(CallScreensTest, AnIncomingCallIsRefusedOnceTheModemHears) {
    CCallInDlg& call = Ring("hidden");
    EXPECT_EQ(TextOf(call, 1100), "Unknown caller is calling");
    unit.Command("late 20s");
    Tap(call, rejectId);
    EXPECT_FALSE(Enabled(call, rejectId));
    RunFor(CCallInDlg::longestWait);
    EXPECT_TRUE(!call.IsOpen() || Enabled(call, rejectId)) << "nobody waits for ever";
    unit.Command("calm");
    RunFor(30'000);
    EXPECT_FALSE(call.IsOpen());

    // The next caller comes while the screen of the one before is leaving, and has no number.
    shown.ShowIncomingCall(true);
    Settle();
    shown.ShowIncomingCall(false);
    shown.ShowIncomingCall(true);
    Settle();
    ASSERT_EQ(desktop.Active(), &call);
    EXPECT_EQ(TextOf(call, 1101), "");
    RunFor(CCallInDlg::callerTime);
    EXPECT_EQ(TextOf(call, 1101), "Unknown caller");
}

TEST_F(CallScreensTest, CodesAreTypedIntoTheFieldThatIsActive) {
    CNumberDlg codes(*context, AskFor("puk:", "pin:", "12", "4"));
    codes.Show();
    for (const int id : {1059, 1033, 1070})
        Tap(codes, id);
    EXPECT_EQ(TextOf<EditField>(codes, 1104), "12#");
    for (const int id : {1105, 1034, 1071})
        Tap(codes, id);
    EXPECT_EQ(TextOf<EditField>(codes, 1104), "12") << "backspace is the first field's";
    EXPECT_EQ(TextOf<EditField>(codes, 1105), "3");
    Tap(codes, idOk);
    EXPECT_TRUE(codes.IsOpen());
    EXPECT_EQ(TakeWarning(), 26);
    EXPECT_EQ(desktop.Active(), &codes);
    EXPECT_EQ(TextOf<EditField>(codes, 1105), "") << "what no key corrects begins anew";
    Type("4");
    Press(KeyCode::Return);
    EXPECT_FALSE(codes.IsOpen());
    EXPECT_EQ(codes.Entry().first + "," + codes.Entry().second, "12,4");

    // Closed from outside, with the warning above it.
    codes.Show();
    Tap(codes, 1071);
    Tap(codes, idOk);
    codes.EndDialog(DialogResult::Cancel);
    RunFor(1);
    EXPECT_EQ(Find<CWarnDlg>(), nullptr);
    EXPECT_EQ(codes.Entry().first, "");
}

TEST_F(CallScreensTest, TheNetworksQuestionIsAnswered) {
    CUssdDlg& ussd = BeginDialogue();
    EXPECT_EQ(TextOf(ussd, ussdStateId), "The network expects an answer");
    Tap(ussd, replyId);
    EXPECT_EQ(TextOf(*desktop.Active(), 1100), "Reply to the network");
    Press(KeyCode::Escape);
    RunFor(2000);
    EXPECT_THAT(Commands(), IsEmpty()) << "a reply that was given up";

    Tap(ussd, replyId);
    Press(KeyCode::Return);
    EXPECT_EQ(TakeWarning(), 5) << "an empty reply is none";
    Type("1");
    Press(KeyCode::Return);
    RunFor(10);
    EXPECT_EQ(TextOf(ussd, ussdStateId), "Waiting for the network…");
    EXPECT_FALSE(Visible(ussd, replyId));
    RunFor(5000);
    EXPECT_THAT(Commands(), ElementsAre("AT+CSCS=\"GSM\"", "AT+CUSD=1,\"1\",15"));
    EXPECT_EQ(TextOf(ussd, ussdStateId), dialogueEnded);
    Tap(ussd, idOk);
    EXPECT_FALSE(ussd.IsOpen());
    RunFor(2000);
    EXPECT_THAT(Commands(), IsEmpty()) << "there is nothing to end";
}

TEST_F(CallScreensTest, ADialogueEndsWhoeverLeavesIt) {
    CUssdDlg& ussd = BeginDialogue();
    Tap(ussd, idOk);
    RunFor(2000);
    EXPECT_THAT(Commands(), ElementsAre("AT+CSCS=\"GSM\"", "AT+CUSD=0,\"*\",15")) << "the user";

    BeginDialogue();
    Tap(ussd, replyId);
    unit.Command("ussd-end");
    RunFor(1000);
    EXPECT_EQ(desktop.Active(), &ussd) << "the network, while a reply is typed";
    EXPECT_EQ(TextOf(ussd, ussdStateId), dialogueEnded);
    Tap(ussd, idOk);

    BeginDialogue();
    Tap(ussd, replyId);
    Type("1");
    Ring();
    RunFor(1000);
    EXPECT_FALSE(ussd.IsOpen() || Find<CNumberDlg>()) << "a caller";
    EXPECT_THAT(Commands(), Contains("AT+CUSD=0,\"*\",15").Times(1));
}

TEST_F(CallScreensTest, NobodyWaitsForTheNetworkForEver) {
    CUssdDlg& ussd = BeginDialogue();
    unit.Command("time ussd 10m");
    Tap(ussd, replyId);
    Type("1");
    Press(KeyCode::Return);
    RunFor(70'000);
    EXPECT_EQ(TakeWarning(), 16);
    EXPECT_TRUE(Visible(ussd, replyId));
    Tap(ussd, idOk);

    ASSERT_TRUE(dialog->Calls().Dial("*100#"));
    RunFor(70'000);
    EXPECT_EQ(TakeWarning(), 16);
    EXPECT_FALSE(dialog->Calls().Busy()) << "the line is free again";
}

}  // namespace
}  // namespace varkel::test
