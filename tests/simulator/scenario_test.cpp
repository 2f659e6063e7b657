#include "simulator/scenario.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/scenario_player.h"
#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::Repeated;

std::string Shown(const ScenarioStep& step) {
    constexpr std::string_view kinds[] = {"command", "expect", "type", "type-secret", "end"};
    std::string text = std::to_string(step.line) + (step.relative ? ": +" : ": ") + DurationText(step.time);
    text += " " + std::string(kinds[static_cast<std::size_t>(step.kind)]) + " [" + step.text + "]";
    return text + (step.within > 0 ? " within " + DurationText(step.within) : "");
}

TEST(ScenarioFile, IsReadLineByLine) {
    const Scenario scenario = ParseScenario(
        "# a comment\r\n"
        "\r\n"
        "0s pin 1234\r\n"
        "  1.5s   signal 12   \n"
        "1440m expect \"say \\\"PIN\\\"\" within 61.05s\n"
        "+500ms type-secret 1234\n"
        "type  two words \n"
        "+1s urc +CMTI: \"SM\",3\n"
        "answer\n"  // a call that only the run can have
        "end");
    std::vector<std::string> steps;
    for (const ScenarioStep& step : scenario.steps)
        steps.push_back(Shown(step));
    EXPECT_THAT(steps, testing::ElementsAre("3: 0ms command [pin 1234]", "4: 1.5s command [signal 12]",
                                            "5: 86400s expect [say \"PIN\"] within 61.05s",
                                            "6: +500ms type-secret [1234]", "7: +0ms type [two words]",
                                            "8: +1s command [urc +CMTI: \"SM\",3]",
                                            "9: +0ms command [answer]", "10: +0ms end []"));
    EXPECT_THAT(scenario.errors, testing::IsEmpty());
}

TEST(ScenarioFile, NamesTheLineOfEveryMistake) {
    constexpr std::string_view lines =
        "5x sim out|5 sim out|2s|+ sim out|5h sim out|1441m sim out|-1s sim out|1e3s sim out|infs sim "
        "out|nans sim out|1s nonsense|1s signal 99999|"
        "expect PIN within 3s|expect \"PIN\"|expect \"PIN\" within ever|expect \"\" within 3s|"
        "expect \"PIN within 3s|end now|1s \x01\x02\xFF";
    for (const std::string& line : test::Lines(lines)) {
        const Scenario scenario = ParseScenario("# first\n" + line + "\n0s sim in\n");
        EXPECT_THAT(scenario.errors, testing::ElementsAre(testing::StartsWith("line 2: "))) << line;
        EXPECT_EQ(scenario.steps.size(), 1u);
    }
}

TEST(ScenarioFile, IsBoundedAndTriesEachLineOutByItself) {
    EXPECT_THAT(ParseScenario(Repeated("sms-burst 100\n", 300)).errors, testing::IsEmpty());
    EXPECT_EQ(ParseScenario(Repeated("sim maybe\n", 20'000)).errors.size(), Scenario::mostErrors);
    EXPECT_EQ(ParseScenario(Repeated("type x\n", 20'000)).steps.size(), Scenario::mostSteps);
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

TEST_F(PlayerTest, WaitsForTheOutputOfTheProgramAndOfTheUnit) {
    ScenarioPlayer player = Player(
        "1s expect \"PIN?\" within 10s\n"
        "+1s type 1234\n"
        "expect \"module powered\" within 1s\n"
        "expect \"ready\" within 1s\n"
        "type go\n"
        "expect \"OK\" within 2s\n");
    player.ProgramPrinted("OK, starting. PI");
    Run(player, 3000);
    EXPECT_EQ(m_notes, "");
    player.ProgramPrinted("N? rea");
    player.UnitSaid("unit: module powered");
    player.ProgramPrinted("dy");
    Run(player, 10'000);
    EXPECT_EQ(m_notes, "4000 > 1234; 4000 > go; ");
    EXPECT_EQ(player.Failure(), "line 6: \"OK\" did not come within 2s") << "the first OK came too early";
    EXPECT_FALSE(player.NextDeadline());
}

TEST_F(PlayerTest, FailsOnACommandThatDoesNotWorkAndOnAProgramThatEnds) {
    const std::pair<const char*, const char*> failures[] = {
        {"1s sim out\n", "line 1: it does not work"},
        {"type nobody reads\nsignal 1\n", "line 1: there is no program that reads it"},
    };
    for (const auto& [scenario, failure] : failures) {
        m_now = 0;
        ScenarioPlayer player = Player(scenario);
        Run(player, 2000);
        EXPECT_EQ(player.Failure(), failure);
    }
    ScenarioPlayer waiting = Player("1s signal 1\n2s expect \"x\" within 1s\n");
    waiting.ProgramEnded();
    EXPECT_EQ(waiting.Failure(), "line 2: \"x\" never came, the program has ended");
    ScenarioPlayer content = Player("1s signal 1\n");
    content.ProgramEnded();
    EXPECT_FALSE(content.Done());
}

TEST_F(PlayerTest, ForgetsOldOutputInTheEnd) {
    ScenarioPlayer player = Player("1s expect \"early\" within 1s\n");
    player.ProgramPrinted("early" + std::string(ScenarioPlayer::remembered, 'x'));
    Run(player, 5000);
    EXPECT_NE(player.Failure(), "");
}

}  // namespace
}  // namespace varkel::sim
