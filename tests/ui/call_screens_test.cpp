// Dialling, tones, incoming calls and dialogues with the network, as the user's finger meets them.
#include "tests/ui/call_screens.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ui/screens/dial_pad.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/skin_button.h"

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
    void OpenPad() {
        pad.Show();
        bench.Settle();
    }
    std::string Display() { return bench.TextOf(pad, displayId); }
    ScreenMode Mode() { return bench.dialog->State().MainScreenMode; }
    CCallInDlg& Ring(const std::string& number = "13800138000") {
        bench.unit.Command("call " + number);
        return *bench.Await<CCallInDlg>();
    }
    // Dials a service code to which the network has a question.
    CUssdDlg& BeginDialogue() {
        bench.unit.Command("ussd-ask 1 Balance");
        bench.unit.Command("ussd 42.00");
        EXPECT_TRUE(bench.dialog->Calls().Dial("*100#"));
        CUssdDlg& ussd = *bench.Await<CUssdDlg>();
        bench.unit.TakeTrace();
        return ussd;
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
}

TEST_F(CallScreensTest, ThePadDialsWithEnoughPowerAndANumber) {
    OpenPad();
    bench.unit.Command("power 19");
    bench.Tap(pad, dialId);
    EXPECT_EQ(bench.TakeWarning(), 28);
    bench.unit.Command("power 20");
    bench.Press(KeyCode::Return);
    EXPECT_EQ(bench.TakeWarning(), 5);
    bench.Type("10000");
    bench.unit.Command("driver fail GetCurrentPowerValue");
    bench.Tap(pad, dialId);
    EXPECT_FALSE(pad.IsOpen());
    bench.RunFor(1500);
    EXPECT_THAT(bench.Commands(), ElementsAre("ATD10000;"));
    EXPECT_EQ(bench.Find<MainScreen>()->Bar().StatusText(), "Calling 10000");
}

TEST_F(CallScreensTest, ThePadFollowsTheCall) {
    bench.Tap(Ring(), acceptId);
    bench.RunFor(3000);
    OpenPad();
    bench.unit.TakeTrace();
    EXPECT_FALSE(pad.Get<CSkinButton>(dialId).IsWindowEnabled());
    bench.Tap(pad, 1018);
    bench.Type("5#");
    bench.RunFor(100);
    EXPECT_EQ(Display(), "+5#");
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
    while (bench.TakeWarning() != 0) {
    }
    bench.Tap(pad, dialId);
    EXPECT_EQ(bench.TakeWarning(), 18) << "the module is closed";
    bench.Tap(pad, padReturnId);
    EXPECT_FALSE(pad.IsOpen());
}

TEST_F(CallScreensTest, AnIncomingCallIsAboveAllAndCanBeTaken) {
    OpenPad();
    bench.unit.Command("call 13800138000");
    ASSERT_TRUE(bench.RunUntil([this] { return bench.Find<CCallInDlg>(); }, 3000));
    CCallInDlg& call = *bench.Find<CCallInDlg>();
    bench.Tap(call, acceptId);
    EXPECT_TRUE(call.Get<CSkinButton>(acceptId).IsWindowEnabled())
        << "a finger that was on its way to the pad takes no call";
    bench.RunFor(CCallInDlg::deafTime);
    bench.Type("1\r");
    bench.Press(KeyCode::Return);
    EXPECT_EQ(Display(), "");
    EXPECT_EQ(&bench.Top(), &call);
    EXPECT_EQ(bench.TextOf(call, 1100), "13800138000 is calling");
    EXPECT_EQ(bench.TextOf(call, 1101), "13800138000");
    bench.Tap(call, acceptId);
    EXPECT_FALSE(call.Get<CSkinButton>(acceptId).IsWindowEnabled());
    bench.RunFor(3000);
    EXPECT_EQ(Mode(), ScreenMode::InCall);
    EXPECT_EQ(&bench.Top(), bench.Find<MainScreen>()) << "the button that hangs up is at hand";
    bench.unit.Command("hangup");
    bench.RunFor(3000);
    EXPECT_EQ(&bench.Top(), &pad) << "what the call covered is back";
}

TEST_F(CallScreensTest, AnIncomingCallIsRefusedOnceTheModemHears) {
    CCallInDlg& call = Ring("hidden");
    EXPECT_EQ(bench.TextOf(call, 1100), "Unknown caller is calling");
    bench.unit.Command("late 20s");
    bench.Tap(call, rejectId);
    EXPECT_FALSE(call.Get<CSkinButton>(rejectId).IsWindowEnabled());
    bench.RunFor(CCallInDlg::longestWait);
    EXPECT_TRUE(!call.IsOpen() || call.Get<CSkinButton>(rejectId).IsWindowEnabled())
        << "nobody waits for ever";
    bench.unit.Command("calm");
    bench.RunFor(30'000);
    EXPECT_FALSE(call.IsOpen());

    // The next caller comes while the screen of the one before is leaving, and has no number.
    bench.shown.ShowIncomingCall(true);
    bench.Settle();
    bench.shown.ShowIncomingCall(false);
    bench.shown.ShowIncomingCall(true);
    bench.Settle();
    ASSERT_EQ(&bench.Top(), &call);
    EXPECT_EQ(bench.TextOf(call, 1101), "");
    bench.RunFor(CCallInDlg::callerTime);
    EXPECT_EQ(bench.TextOf(call, 1101), "Unknown caller");
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
    EXPECT_EQ(bench.TakeWarning(), 26);
    EXPECT_EQ(&bench.Top(), &codes);
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
    EXPECT_EQ(bench.Find<CWarnDlg>(), nullptr);
    EXPECT_EQ(codes.Entry().first, "");
}

TEST_F(CallScreensTest, TheNetworksQuestionIsAnswered) {
    CUssdDlg& ussd = BeginDialogue();
    EXPECT_EQ(bench.TextOf(ussd, ussdStateId), "The network expects an answer");
    bench.Tap(ussd, replyId);
    EXPECT_EQ(bench.TextOf(bench.Top(), 1100), "Reply to the network");
    bench.Press(KeyCode::Escape);
    bench.RunFor(2000);
    EXPECT_THAT(bench.Commands(), IsEmpty()) << "a reply that was given up";

    bench.Tap(ussd, replyId);
    bench.Press(KeyCode::Return);
    EXPECT_EQ(bench.TakeWarning(), 5) << "an empty reply is none";
    bench.Type("1");
    bench.Press(KeyCode::Return);
    bench.RunFor(10);
    EXPECT_EQ(bench.TextOf(ussd, ussdStateId), "Waiting for the network…");
    EXPECT_FALSE(ussd.Get<CSkinButton>(replyId).IsWindowVisible());
    bench.RunFor(5000);
    EXPECT_THAT(bench.Commands(), ElementsAre("AT+CSCS=\"GSM\"", "AT+CUSD=1,\"1\",15"));
    EXPECT_EQ(bench.TextOf(ussd, ussdStateId), "The dialogue with the network has ended");
    bench.Tap(ussd, idOk);
    EXPECT_FALSE(ussd.IsOpen());
    bench.RunFor(2000);
    EXPECT_THAT(bench.Commands(), IsEmpty()) << "there is nothing to end";
}

TEST_F(CallScreensTest, ADialogueEndsWhoeverLeavesIt) {
    const auto cancelled = ElementsAre("AT+CSCS=\"GSM\"", "AT+CUSD=0,\"*\",15");
    CUssdDlg& ussd = BeginDialogue();
    bench.Tap(ussd, idOk);
    bench.RunFor(2000);
    EXPECT_THAT(bench.Commands(), cancelled) << "the user";

    BeginDialogue();
    bench.Tap(ussd, replyId);
    bench.unit.Command("ussd-end");
    bench.RunFor(1000);
    EXPECT_EQ(&bench.Top(), &ussd) << "the network, while a reply is typed";
    EXPECT_EQ(bench.TextOf(ussd, ussdStateId), "The dialogue with the network has ended");
    bench.Tap(ussd, idOk);

    BeginDialogue();
    bench.Tap(ussd, replyId);
    bench.Type("1");
    Ring();
    bench.RunFor(1000);
    EXPECT_FALSE(ussd.IsOpen() || bench.Find<CNumberDlg>()) << "a caller";
    const std::vector<std::string> commands = bench.Commands();
    EXPECT_EQ(std::count(commands.begin(), commands.end(), "AT+CUSD=0,\"*\",15"), 1);
}

TEST_F(CallScreensTest, NobodyWaitsForTheNetworkForEver) {
    CUssdDlg& ussd = BeginDialogue();
    bench.unit.Command("time ussd 10m");
    bench.Tap(ussd, replyId);
    bench.Type("1");
    bench.Press(KeyCode::Return);
    bench.RunFor(70'000);
    EXPECT_EQ(bench.TakeWarning(), 16);
    EXPECT_TRUE(ussd.Get<CSkinButton>(replyId).IsWindowVisible());
    bench.Tap(ussd, idOk);

    ASSERT_TRUE(bench.dialog->Calls().Dial("*100#"));
    bench.RunFor(70'000);
    EXPECT_EQ(bench.TakeWarning(), 16);
    EXPECT_FALSE(bench.dialog->Calls().Busy()) << "the line is free again";
}

}  // namespace
}  // namespace varkel::test
