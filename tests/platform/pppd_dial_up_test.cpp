#include "platform/linux/pppd_dial_up.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/pppd_language.h"
#include "tests/platform/dialog_fixture.h"
#include "tests/platform/problem_list.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using States = std::vector<RasState>;

using enum RasState;

constexpr std::string_view connects =
    "echo 'Serial connection established.'\n"
    "echo 'Using interface ppp0'\n"
    "echo 'Connect: ppp0 <--> /dev/ttyUSB0'\n"
    "echo 'CHAP authentication succeeded'\n"
    "echo 'local  IP address 10.20.30.40'\n"
    "echo 'remote IP address 10.64.64.64'\n";

// The program is a script of the test's own.
class PppdDialUpTest : public test::DialogFixture {
  protected:
    PppdDialUpTest() { Make(); }

    void Install(std::string_view script) {
        test::WriteFile(program, "#!/bin/sh\ncd " + scratch.Path() + "\n" + std::string(script));
        chmod(program.c_str(), 0700);
    }
    void Make(std::chrono::milliseconds patience = std::chrono::seconds(20)) {
        dialUp = std::make_unique<PppdDialUp>(runtime, loop, std::vector{program}, problems.Sink(), patience);
    }
    RasError Dial(const RasDialParams& params = {"connet", "", ""}) {
        states.clear();
        return dialUp->RasDial(
            params, [this](RasState state) { states.push_back(state); }, handle);
    }
    bool Reached(RasState state) {
        return ServeUntil([this, state] { return !states.empty() && states.back() == state; });
    }
    bool Exists(std::string_view name) { return std::filesystem::exists(scratch / name); }
    std::string Content(std::string_view name) { return test::FileContent(scratch / name); }
    bool HelperEnds() {
        const auto helper = static_cast<pid_t>(std::stol(Content("helper")));
        return ServeUntil([helper] { return kill(helper, 0) != 0; });
    }

    test::ScratchDirectory scratch;
    const std::string program = scratch / "pppd";
    test::ProblemList problems;
    States states;
    RasHandle handle = RasHandle::None;
    std::unique_ptr<PppdDialUp> dialUp;
};

TEST_F(PppdDialUpTest, TellsHowFarItIsAndWhyItEnded) {
    struct Case {
        std::string script;
        States states;
        std::string problem;
    };
    const std::string all(connects);
    const Case cases[] = {
        {all + "echo Modem hangup; echo Connect time 0.1 minutes.; echo Connection terminated.; echo Exit.; "
               "exit 16\n",
         {OpenPort, ConnectDevice, DeviceConnected, Authenticate, Authenticated, Connected, Disconnected},
         "dial-up: the modem has hung up (16); it said last: Modem hangup"},
        {"echo Connect script failed >&2; echo Exit.; exit 8\n",
         {OpenPort, ConnectDevice, Disconnected},
         "dial-up: the script that dials has failed (8); it said last: Connect script failed"},
        {"kill -9 $$\n", {OpenPort, ConnectDevice, Disconnected}, "dial-up: pppd was killed"},
        {"exit 77\n", {OpenPort, ConnectDevice, Disconnected}, "dial-up: pppd has ended (77)"},
        {all + all + "printf 'my words are top secret\\033\\n'; exit 19\n",
         {OpenPort, ConnectDevice, DeviceConnected, Authenticate, Authenticated, Connected, Disconnected},
         "dial-up: user or password were refused (19); it said last: my words are ****?"},
        {"head -c 300000 /dev/zero | tr '\\0' x; head -c 300000 /dev/urandom; echo; echo; sleep 1000 & echo "
         "$! >helper\n"
         "echo 'local  IP address 1.2.3.4'; echo 'remote IP address $(reboot)'; exit 0\n",
         {OpenPort, ConnectDevice, Connected, Disconnected},
         "dial-up: the other end has closed the link (0); it said last: remote IP address $(reboot)"},
    };
    const auto descriptors = test::OpenDescriptors();
    for (const Case& each : cases) {
        Install(each.script);
        ASSERT_EQ(Dial({"connet", "", "top secret"}), RasError::None);
        EXPECT_TRUE(Reached(Disconnected)) << each.problem;
        EXPECT_EQ(states, each.states) << each.problem;
        EXPECT_EQ(problems.All(), std::vector{each.problem});
        EXPECT_EQ(dialUp->PeerAddress(handle), "");
        dialUp->RasHangUp(handle);
        problems.Clear();
    }
    dialUp.reset();
    EXPECT_LE(test::OpenDescriptors(), descriptors);
    EXPECT_TRUE(HelperEnds()) << "it leaves nobody behind";
}

TEST_F(PppdDialUpTest, HangsUpAndLeavesNobodyBehind) {
    Install(std::string(connects) +
            "trap 'touch asked; exit 5' TERM\n"
            "(trap '' TERM; exec sleep 1000) & echo $! >helper; touch ready; wait\n");
    ASSERT_EQ(Dial(), RasError::None);
    ASSERT_TRUE(ServeUntil([this] { return Exists("ready"); }));
    ASSERT_TRUE(Reached(Connected));
    EXPECT_EQ(dialUp->PeerAddress(handle), "10.64.64.64");
    const RasHandle first = handle;
    RasHandle second = first;
    EXPECT_EQ(dialUp->RasDial({"connet", "", ""}, {}, second), RasError::Busy);
    EXPECT_EQ(second, RasHandle::None);
    dialUp->RasHangUp(RasHandle::None);
    dialUp->RasHangUp(RasHandle(99));
    EXPECT_FALSE(Exists("asked"));
    dialUp->RasHangUp(first);
    ServePosted();
    EXPECT_TRUE(Exists("asked"));
    EXPECT_EQ(states.back(), Connected) << "who hangs up needs not be told";
    EXPECT_EQ(dialUp->PeerAddress(first), "");
    EXPECT_TRUE(HelperEnds()) << "the whole group ends";
    EXPECT_THAT(problems.All(), IsEmpty());

    for (const char* const name : {"asked", "ready"})
        std::filesystem::remove(scratch / name);
    ASSERT_EQ(Dial(), RasError::None);
    EXPECT_NE(handle, first);
    ASSERT_TRUE(ServeUntil([this] { return Exists("ready"); }));
    dialUp.reset();
    EXPECT_TRUE(Exists("asked")) << "a program that ends hangs up";
}

TEST_F(PppdDialUpTest, KillsWhatDoesNotEnd) {
    Make(std::chrono::milliseconds(50));
    Install("trap '' TERM\n" + std::string(connects) + "while :; do echo 'and on and on'; done\n");
    ASSERT_EQ(Dial(), RasError::None);
    ASSERT_TRUE(Reached(Connected));
    dialUp->RasHangUp(handle);
    EXPECT_THAT(problems.All(), ElementsAre("dial-up: pppd did not end when asked to and was killed"));
}

TEST_F(PppdDialUpTest, PassesUserAndPasswordInMemoryOnly) {
    Install(
        "echo $* >arguments; cat \"$8\" >options; tr '\\0' ' ' </proc/$$/cmdline >visible\n"
        "tr '\\0' ' ' </proc/$$/environ >>visible; stat -L -c %a /proc/$$/fd/0 >mode; exit 8\n");
    ASSERT_EQ(Dial({"connet", "o'n\"e\\ #1", "Pa ss#\\\"w\xC3\xB6rd"}), RasError::None);
    ASSERT_TRUE(Reached(Disconnected));
    EXPECT_EQ(Content("arguments"), "call connet nodetach nopersist logfd 1 file /dev/stdin\n");
    EXPECT_EQ(Content("options"), "user \"o'n\\\"e\\\\ #1\"\npassword \"Pa ss#\\\\\\\"w\xC3\xB6rd\"\n");
    EXPECT_THAT(Content("visible"), AllOf(HasSubstr("connet"), Not(HasSubstr("Pa ss"))));
    EXPECT_EQ(Content("mode"), "600\n");
}

TEST_F(PppdDialUpTest, RefusesWhatCannotBeDialled) {
    Install("exit 0\n");
    const std::string tooLong(256, 'x');
    const RasDialParams refused[] = {{"connet", "line\nend", ""},
                                     {"connet", "", std::string("nul\0", 4)},
                                     {"connet", tooLong, ""},
                                     {"connet", "", tooLong},
                                     {"", "", ""},
                                     {"../options", "", ""},
                                     {".", "", ""},
                                     {"a\tb", "", ""}};
    for (const RasDialParams& params : refused)
        EXPECT_EQ(Dial(params), RasError::CannotDial) << params.entryName << params.userName;
    EXPECT_EQ(problems.All().size(), std::size(refused));
    std::filesystem::remove(program);
    EXPECT_EQ(Dial(), RasError::CannotDial);
    EXPECT_EQ(problems.All().back(), "dial-up: " + program + " cannot be started");
    ServePosted();
    EXPECT_EQ(handle, RasHandle::None);
    EXPECT_THAT(states, IsEmpty());
}

}  // namespace
}  // namespace varkel
