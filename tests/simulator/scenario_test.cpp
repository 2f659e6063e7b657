#include "simulator/scenario.h"

#include <gtest/gtest.h>

#include "simulator/scenario_player.h"
#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

TEST(ScenarioFile, IsReadLineByLine) {
    const Scenario scenario = ParseScenario(
        "# a comment\r\n"
        "\r\n"
        "0s pin 1234\r\n"
        "  1.5s   signal 12   \n"
        "2m expect \"say \\\"PIN\\\"\" within 30s\n"
        "+500ms type-secret 1234\n"
        "type  two words \n"
        "+1s urc +CMTI: \"SM\",3\n"
        "end");
    EXPECT_TRUE(scenario.errors.empty()) << scenario.errors.front();
    ASSERT_EQ(scenario.steps.size(), 7u);
    EXPECT_EQ(scenario.steps[0].line, 3);
    EXPECT_FALSE(scenario.steps[0].relative);
    EXPECT_EQ(scenario.steps[1].time, 1500u);
    EXPECT_EQ(scenario.steps[1].text, "signal 12");
    EXPECT_EQ(scenario.steps[2].kind, StepKind::Expect);
    EXPECT_EQ(scenario.steps[2].text, "say \"PIN\"");
    EXPECT_EQ(scenario.steps[2].within, 30'000u);
    EXPECT_EQ(scenario.steps[3].kind, StepKind::TypeSecret);
    EXPECT_TRUE(scenario.steps[3].relative);
    EXPECT_EQ(scenario.steps[4].text, "two words");
    EXPECT_EQ(scenario.steps[5].text, "urc +CMTI: \"SM\",3");
    EXPECT_EQ(scenario.steps[6].kind, StepKind::End);
}

TEST(ScenarioFile, MayHoldACallThatOnlyTheRunCanHave) {
    const Scenario scenario = ParseScenario(
        "network off\nanswer\nhangup\nbusy\ncall 10010\nhangup\nmodule off\nno-answer\nussd-end\n");
    EXPECT_TRUE(scenario.errors.empty()) << scenario.errors.front();
}

TEST(ScenarioFile, NamesTheLineOfEveryMistake) {
    constexpr std::string_view lines =
        "5x sim out|2s|+ sim out|99999999h sim out|-1s sim out|1s nonsense|1s signal 99999|"
        "expect PIN within 3s|expect \"PIN\"|expect \"PIN\" within ever|expect \"\" within 3s|"
        "expect \"PIN within 3s|end now|1s \x01\x02\xFF";
    for (const std::string& line : test::Lines(lines)) {
        const Scenario scenario = ParseScenario("# first\n" + line + "\n0s sim in\n");
        ASSERT_EQ(scenario.errors.size(), 1u) << line;
        EXPECT_EQ(scenario.errors[0].substr(0, 8), "line 2: ") << scenario.errors[0];
        EXPECT_EQ(scenario.steps.size(), 1u);
    }
    std::string messages;
    for (int i = 0; i < 300; ++i)
        messages += "sms-burst 100\n";
    EXPECT_TRUE(ParseScenario(messages).errors.empty())
        << "what one line leaves is not in the next one's way";
    std::string many;
    for (int i = 0; i < 20'000; ++i)
        many += "sim maybe\n";
    EXPECT_EQ(ParseScenario(many).errors.size(), Scenario::mostErrors);
    for (int i = 0; i < 20'000; ++i)
        many += "type x\n";
    EXPECT_EQ(ParseScenario(many).steps.size(), Scenario::mostSteps);
}

// Notes what the player does, and when.
class PlayerTest : public testing::Test {
  protected:
    ScenarioPlayer Player(std::string_view text) {
        ScenarioHooks hooks;
        hooks.command = [this](std::string_view line) {
            Note(line);
            return CommandResult{line != "sim out", "it does not work"};
        };
        hooks.type = [this](std::string_view line, bool secret) {
            Note((secret ? "***" : "> ") + std::string(line));
            return line != "nobody reads";
        };
        hooks.end = [this] { Note("end"); };
        return ScenarioPlayer(ParseScenario(text), std::move(hooks));
    }

    void Run(ScenarioPlayer& player, Millis until) {
        while (true) {
            player.Advance(m_now);
            const auto next = player.NextDeadline();
            if (!next || *next > until) break;
            ASSERT_GT(*next, m_now) << "a deadline that settles nothing";
            m_now = *next;
        }
        m_now = until;
        player.Advance(m_now);
    }

    void Note(std::string_view text) { m_notes += std::to_string(m_now) + " " + std::string(text) + "; "; }

    Millis m_now = 0;
    std::string m_notes;
};

TEST_F(PlayerTest, KeepsTheTimes) {
    ScenarioPlayer player =
        Player("2s signal 1\n1s signal 2\n+500ms signal 3\nsignal 4\n5s type-secret 1\nend\n");
    Run(player, 60'000);
    EXPECT_EQ(m_notes, "2000 signal 1; 2000 signal 2; 2500 signal 3; 2500 signal 4; 5000 ***1; 5000 end; ");
    EXPECT_TRUE(player.Done());
    EXPECT_EQ(player.Failure(), "");
}

TEST_F(PlayerTest, WaitsForTheProgramsOutput) {
    ScenarioPlayer player = Player("1s expect \"PIN?\" within 10s\n+1s type 1234\nexpect \"OK\" within 2s\n");
    player.ProgramPrinted("OK, starting. PI");
    Run(player, 3000);
    EXPECT_FALSE(player.Done());
    player.ProgramPrinted("N? ");
    Run(player, 10'000);
    EXPECT_EQ(m_notes, "4000 > 1234; ");
    EXPECT_EQ(player.Failure(), "line 3: \"OK\" did not come within 2s") << "the first OK came too early";
    EXPECT_FALSE(player.NextDeadline());
}

TEST_F(PlayerTest, FindsWhatWasPrintedBeforeItsStepBegan) {
    ScenarioPlayer player = Player("2s expect \"ready\" within 30s\ntype go\n");
    player.ProgramPrinted("ready");
    Run(player, 10'000);
    EXPECT_EQ(m_notes, "2000 > go; ");
}

TEST_F(PlayerTest, HearsTheUnitAsWellAsTheProgram) {
    ScenarioPlayer player = Player(
        "expect \"module powered\" within 1s\nexpect \"ready\" within 1s\ntype go\nexpect \"ready\" within "
        "1s\n");
    player.ProgramPrinted("rea");
    player.UnitSaid("unit: module powered");
    player.ProgramPrinted("dy");
    Run(player, 500);
    EXPECT_EQ(m_notes, "0 > go; ");
    Run(player, 5000);
    EXPECT_EQ(player.Failure(), "line 4: \"ready\" did not come within 1s");
}

TEST_F(PlayerTest, FailsOnACommandThatDoesNotWorkAndOnAProgramThatEnds) {
    ScenarioPlayer player = Player("1s sim out\n");
    Run(player, 2000);
    EXPECT_EQ(player.Failure(), "line 1: it does not work");
    ScenarioPlayer typing = Player("type nobody reads\nsignal 1\n");
    Run(typing, 2000);
    EXPECT_EQ(typing.Failure(), "line 1: there is no program that reads it");

    ScenarioPlayer waiting = Player("1s signal 1\n2s expect \"x\" within 1s\n");
    waiting.ProgramEnded();
    EXPECT_EQ(waiting.Failure(), "line 2: \"x\" never came, the program has ended");
    ScenarioPlayer content = Player("1s signal 1\n");
    content.ProgramEnded();
    EXPECT_FALSE(content.Done());
}

TEST_F(PlayerTest, ForgetsOldOutputInTheEnd) {
    ScenarioPlayer player = Player("1s expect \"early\" within 1s\n");
    player.ProgramPrinted("early");
    for (int i = 0; i < 300; ++i)
        player.ProgramPrinted(std::string(1024, 'x'));
    Run(player, 5000);
    EXPECT_NE(player.Failure(), "");
}

TEST(Durations, AreReadAndWritten) {
    EXPECT_EQ(ParseDuration("0s"), 0u);
    EXPECT_EQ(ParseDuration("500ms"), 500u);
    EXPECT_EQ(ParseDuration("1.25s"), 1250u);
    EXPECT_EQ(ParseDuration("1440m"), 86'400'000u);
    for (const std::string_view bad :
         {"", "s", "5", "5h", "-1s", "1e3s", "inf s", "infs", "nans", "1441m", "1s "})
        EXPECT_EQ(ParseDuration(bad), std::nullopt) << bad;
    EXPECT_EQ(DurationText(999), "999ms");
    EXPECT_EQ(DurationText(2000), "2s");
    EXPECT_EQ(DurationText(61'050), "61.05s");
}

}  // namespace
}  // namespace varkel::sim
