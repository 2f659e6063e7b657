// Dialling, tones, incoming calls and dialogues with the network, as the user's finger meets them.
#include "tests/ui/call_screens.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ui/skin_button.h"

namespace varkel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
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

struct CallScreensTest : testing::Test {
    CallScreensTest() { bench.OpenModule(); }

    void OpenPad() {
        pad.Show();
        bench.RunFor(1);
    }
    std::string Display() { return bench.TextOf(pad, displayId); }
    Dialog& Top() { return *bench.desktop.Stack().back(); }
    ScreenMode Mode() { return bench.dialog->State().MainScreenMode; }
    void Ring(const std::string& number = "13800138000") {
        bench.unit.Command("call " + number);
        ASSERT_TRUE(bench.RunUntil([this] { return bench.callIn->TakesInput(); }, 3000));
    }
    void AcceptCall() {
        Ring();
        bench.Tap(*bench.callIn, acceptId);
        ASSERT_TRUE(bench.RunUntil([this] { return Mode() == ScreenMode::InCall; }, 5000));
        bench.RunFor(100);
    }
    // Dials a service code to which the network has a question.
    void BeginDialogue() {
        bench.unit.Command("ussd-ask 1 Balance");
        bench.unit.Command("ussd 42.00");
        ASSERT_TRUE(bench.dialog->Calls().Dial("*100#"));
        ASSERT_TRUE(bench.RunUntil([this] { return bench.ussd->IsOpen(); }, 5000));
        bench.unit.TakeTrace();
    }

    CallScreens bench;
    CDialPad pad{*bench.context};
};

TEST_F(CallScreensTest, ThePadTypesByFingerAndByKey) {
    OpenPad();
    const std::pair<int, const char*> keys[] = {
        {1007, "1"}, {1008, "2"}, {1009, "3"}, {1011, "4"}, {1012, "5"}, {1013, "6"}, {1015, "7"},
        {1016, "8"}, {1017, "9"}, {1019, "*"}, {1020, "0"}, {1021, "#"}, {1018, "+"}};
    std::string number;
    for (const auto& [id, character] : keys) {
        bench.Tap(pad, id);
        EXPECT_EQ(Display(), number += character);
    }
    for (std::size_t i = 0; i <= number.size(); ++i)
        bench.Tap(pad, backspaceId);
    EXPECT_EQ(Display(), "");
    bench.Type("1x2#");
    bench.Press(KeyCode::Back);
    EXPECT_EQ(Display(), "12");
    bench.Type(std::string(300, '7') + "89");
    EXPECT_THAT(Display(), StartsWith("…77")) << "its end stays in sight";
    EXPECT_EQ(Display().substr(Display().size() - 3), "777") << "more than can be dialled is not taken";
    bench.Tap(pad, padReturnId);
    EXPECT_FALSE(pad.IsOpen());
    EXPECT_THAT(bench.Commands(), IsEmpty()) << "no tone without a call";
    OpenPad();
    EXPECT_EQ(Display(), "") << "the number is lost";
    for (const TouchTarget& target : pad.Targets())
        EXPECT_GE(std::min(target.rect.width, target.rect.height), 63) << target.id;
}

TEST_F(CallScreensTest, ThePadDialsWithEnoughPowerAndANumber) {
    OpenPad();
    bench.unit.Command("power 19");
    bench.Tap(pad, dialId);
    EXPECT_EQ(bench.shown.Count("warn 28"), 1);
    bench.unit.Command("power 20");
    bench.Tap(pad, dialId);
    EXPECT_EQ(bench.shown.Count("warn 5"), 1);
    bench.Type("10000");
    bench.unit.Command("power 19");
    bench.Press(KeyCode::Return);
    EXPECT_EQ(bench.shown.Count("warn 28"), 2);
    EXPECT_EQ(Display(), "10000");
    bench.RunFor(1000);
    EXPECT_THAT(bench.Commands(), IsEmpty());

    bench.unit.Command("driver fail GetCurrentPowerValue");
    bench.Tap(pad, dialId);
    EXPECT_FALSE(pad.IsOpen());
    bench.RunFor(1500);
    EXPECT_THAT(bench.Commands(), ElementsAre("ATD10000;"));
    EXPECT_EQ(bench.shown.Count("status Calling 10000"), 1);
    const auto dialled = bench.dialog->Calls().Lists().dialled.FindCallRecord();
    ASSERT_EQ(dialled.size(), 1u);
    EXPECT_EQ(dialled[0].number.View(), "10000");
}

TEST_F(CallScreensTest, ThePadFollowsTheCall) {
    OpenPad();
    bench.Type("55");
    AcceptCall();
    bench.unit.TakeTrace();
    EXPECT_FALSE(pad.Get<CSkinButton>(dialId).IsWindowEnabled());
    bench.Tap(pad, 1018);
    bench.Type("5#");
    bench.RunFor(100);
    EXPECT_EQ(Display(), "55+5#");
    EXPECT_THAT(bench.Commands(), ElementsAre("AT+VTS=+", "AT+VTS=5", "AT+VTS=#"));
    bench.Type(std::string(200, '1') + "9");
    EXPECT_EQ(Display().back(), '9') << "tones have no end";

    bench.unit.Command("hangup");
    bench.RunFor(10'000);
    bench.unit.TakeTrace();
    EXPECT_TRUE(pad.Get<CSkinButton>(dialId).IsWindowEnabled());
    bench.Type("1");
    bench.RunFor(100);
    EXPECT_THAT(bench.Commands(), Not(Contains("AT+VTS=1")));
    bench.unit.Command("usb down");
    bench.RunFor(20'000);
    bench.Tap(pad, dialId);
    bench.Tap(pad, padReturnId);
    EXPECT_FALSE(pad.IsOpen()) << "without a module there is a way back, too";
}

TEST_F(CallScreensTest, ThePadOpensLikeACurtainWhereTheUnitWantsThat) {
    OpenPad();
    EXPECT_TRUE(pad.TakesInput()) << "\"Gprs\" is 0";
    bench.Tap(pad, padReturnId);
    EXPECT_FALSE(pad.IsOpen());
    Settings(bench.registry).WriteDword(Settings::dialogTypeKey, "Gprs", 1);
    OpenPad();
    EXPECT_FALSE(pad.TakesInput());
    bench.RunFor(200);
    EXPECT_TRUE(pad.TakesInput());
    bench.Tap(pad, padReturnId);
    EXPECT_TRUE(pad.IsOpen());
    bench.RunFor(200);
    EXPECT_FALSE(pad.IsOpen());
}

TEST_F(CallScreensTest, AnIncomingCallIsAboveAllAndCanBeTaken) {
    OpenPad();
    bench.unit.Command("call 13800138000");
    ASSERT_TRUE(bench.RunUntil([this] { return bench.callIn->IsOpen(); }, 3000));
    bench.Tap(*bench.callIn, acceptId);
    EXPECT_TRUE(bench.callIn->Get<CSkinButton>(acceptId).IsWindowEnabled())
        << "a finger that was on its way to the pad takes no call";
    bench.RunFor(CCallInDlg::deafTime);
    pad.EndDialog(DialogResult::Cancel);
    bench.RunFor(1);
    OpenPad();
    EXPECT_EQ(&Top(), bench.callIn.get());
    bench.Type("1\r");
    EXPECT_EQ(Display(), "");
    EXPECT_EQ(bench.TextOf(*bench.callIn, 1100), "13800138000 is calling");
    EXPECT_EQ(bench.TextOf(*bench.callIn, 1101), "13800138000");
    bench.Tap(*bench.callIn, acceptId);
    EXPECT_FALSE(bench.callIn->Get<CSkinButton>(acceptId).IsWindowEnabled());
    bench.RunFor(3000);
    EXPECT_EQ(Mode(), ScreenMode::InCall);
    EXPECT_FALSE(bench.callIn->IsOpen());
    EXPECT_TRUE(pad.IsOpen());
}

TEST_F(CallScreensTest, AnIncomingCallCanBeRefusedAndMadeAgain) {
    Ring("hidden");
    EXPECT_EQ(bench.TextOf(*bench.callIn, 1100), "Unknown caller is calling");
    bench.Press(KeyCode::Return);
    EXPECT_TRUE(bench.callIn->Get<CSkinButton>(acceptId).IsWindowEnabled());
    bench.unit.Command("late 20s");
    bench.Tap(*bench.callIn, rejectId);
    EXPECT_FALSE(bench.callIn->Get<CSkinButton>(rejectId).IsWindowEnabled());
    bench.RunFor(CCallInDlg::longestWait);
    EXPECT_FALSE(bench.callIn->IsOpen() && !bench.callIn->Get<CSkinButton>(rejectId).IsWindowEnabled())
        << "nobody waits for ever";
    bench.unit.Command("calm");
    bench.unit.Command("late 0s");
    bench.RunFor(30'000);
    EXPECT_FALSE(bench.callIn->IsOpen());

    // The next caller comes while the screen of the one before is leaving.
    bench.callIn->Show();
    bench.callIn->EndDialog(DialogResult::Cancel);
    bench.callIn->Show();
    bench.RunFor(10);
    EXPECT_TRUE(bench.callIn->TakesInput() || bench.callIn->IsWindowVisible());
    EXPECT_EQ(bench.TextOf(*bench.callIn, 1101), "");
    bench.RunFor(CCallInDlg::callerTime);
    EXPECT_EQ(bench.TextOf(*bench.callIn, 1101), "Unknown caller") << "no number was reported";
}

TEST_F(CallScreensTest, CodesAreTypedIntoTheFieldThatIsActive) {
    const CodeRequest request{
        .title = "Please Input:",
        .firstLabel = "puk:",
        .secondLabel = "pin:",
        .check = [](std::string_view first, std::string_view second) -> std::optional<WarnCode> {
            if (first == "12" && second == "4") return std::nullopt;
            return WarnCode::NumberInvalid;
        },
        .cancelled = nullptr,
    };
    CNumberDlg codes(*bench.context, request);
    codes.Show();
    const auto text = [&codes](int id) { return codes.Get<EditField>(id).GetWindowText(); };
    for (const int id : {1059, 1033, 1070})
        bench.Tap(codes, id);
    EXPECT_EQ(text(1104), "12#");
    bench.Tap(codes, 1105);
    bench.Tap(codes, 1034);
    bench.Tap(codes, 1071);
    EXPECT_EQ(text(1104), "12") << "backspace is the first field's";
    EXPECT_EQ(text(1105), "3");
    bench.Tap(codes, idOk);
    EXPECT_TRUE(codes.IsOpen());
    EXPECT_NE(&Top(), &codes) << "a warning";
    bench.Press(KeyCode::Return);
    EXPECT_EQ(&Top(), &codes);
    EXPECT_EQ(text(1105), "") << "what no key corrects begins anew";
    bench.Type("4");
    bench.Press(KeyCode::Return);
    EXPECT_FALSE(codes.IsOpen());
    EXPECT_EQ(codes.Entry().first + "," + codes.Entry().second, "12,4");

    // Closed from outside, with the warning above it.
    codes.Show();
    bench.Tap(codes, 1071);
    bench.Tap(codes, idOk);
    codes.EndDialog(DialogResult::Cancel);
    bench.RunFor(1);
    EXPECT_THAT(bench.desktop.Stack(), IsEmpty());
    EXPECT_EQ(codes.Entry().first, "");
}

TEST_F(CallScreensTest, TheNetworksQuestionIsAnswered) {
    BeginDialogue();
    EXPECT_EQ(bench.TextOf(*bench.ussd, ussdStateId), "The network expects an answer");
    bench.Tap(*bench.ussd, replyId);
    EXPECT_EQ(bench.TextOf(Top(), 1100), "Reply to the network");
    bench.Press(KeyCode::Escape);
    bench.RunFor(2000);
    EXPECT_THAT(bench.Commands(), IsEmpty()) << "a reply that was given up";

    bench.Tap(*bench.ussd, replyId);
    bench.Press(KeyCode::Return);
    EXPECT_EQ(bench.desktop.Stack().size(), 3u) << "an empty reply is none";
    bench.Press(KeyCode::Return);
    bench.Type("1");
    bench.Press(KeyCode::Return);
    bench.RunFor(10);
    EXPECT_EQ(bench.TextOf(*bench.ussd, ussdStateId), "Waiting for the network…");
    EXPECT_FALSE(bench.ussd->Get<CSkinButton>(replyId).IsWindowVisible());
    bench.RunFor(5000);
    EXPECT_THAT(bench.Commands(), ElementsAre("AT+CSCS=\"GSM\"", "AT+CUSD=1,\"1\",15"));
    EXPECT_EQ(bench.shown.Count("ussd 42.00"), 1);
    EXPECT_EQ(bench.TextOf(*bench.ussd, ussdStateId), "The dialogue with the network has ended");
    bench.Tap(*bench.ussd, idOk);
    EXPECT_FALSE(bench.ussd->IsOpen());
    bench.RunFor(2000);
    EXPECT_THAT(bench.Commands(), IsEmpty()) << "there is nothing to end";
}

TEST_F(CallScreensTest, ADialogueEndsWhoeverLeavesIt) {
    const auto cancelled = ElementsAre("AT+CSCS=\"GSM\"", "AT+CUSD=0,\"*\",15");
    BeginDialogue();
    bench.Tap(*bench.ussd, idOk);
    bench.RunFor(2000);
    EXPECT_THAT(bench.Commands(), cancelled) << "the user";

    BeginDialogue();
    bench.Tap(*bench.ussd, replyId);
    bench.unit.Command("ussd-end");
    bench.RunFor(1000);
    EXPECT_EQ(&Top(), bench.ussd.get()) << "the network, while a reply is typed";
    EXPECT_EQ(bench.TextOf(*bench.ussd, ussdStateId), "The dialogue with the network has ended");
    bench.Tap(*bench.ussd, idOk);

    BeginDialogue();
    bench.Tap(*bench.ussd, replyId);
    bench.Type("1");
    Ring();
    bench.RunFor(1000);
    EXPECT_THAT(bench.desktop.Stack(), ElementsAre(bench.callIn.get())) << "a caller";
    const std::vector<std::string> commands = bench.Commands();
    EXPECT_EQ(std::count(commands.begin(), commands.end(), "AT+CUSD=0,\"*\",15"), 1);
}

TEST_F(CallScreensTest, NobodyWaitsForTheNetworkForEver) {
    BeginDialogue();
    bench.unit.Command("time ussd 10m");
    bench.Tap(*bench.ussd, replyId);
    bench.Type("1");
    bench.Press(KeyCode::Return);
    bench.RunFor(70'000);
    EXPECT_EQ(bench.shown.Count("warn 16"), 1);
    EXPECT_TRUE(bench.ussd->Get<CSkinButton>(replyId).IsWindowVisible());
    bench.Tap(*bench.ussd, idOk);

    ASSERT_TRUE(bench.dialog->Calls().Dial("*100#"));
    bench.RunFor(70'000);
    EXPECT_EQ(bench.shown.Count("warn 16"), 2);
    EXPECT_FALSE(bench.dialog->Calls().Busy()) << "the line is free again";
}

}  // namespace
}  // namespace varkel::test
