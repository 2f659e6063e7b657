#include <map>

#include "platform/key_file.h"
#include "platform/linux/board_kovex_drv.h"
#include "platform/linux/bus_kovex_drv.h"
#include "platform/linux/kovex_drv_export.h"
#include "tests/platform/dialog_fixture.h"
#include "tests/platform/error_lines.h"
#include "tests/platform/private_bus.h"

namespace varkel {
namespace {

using Clock = std::chrono::steady_clock;

class BusKovexDrvTest : public test::DialogFixture {
  protected:
    KovexDrvExport::Executor OnLoop() {
        return [this](std::function<void()> work) { return loop.Post(std::move(work)); };
    }

    test::PrivateBus daemon;
    Bus serverBus{daemon.Options(), nullptr};
    Bus clientBus{daemon.Options(), nullptr};
    BusKovexDrv driver{clientBus};
};

TEST_F(BusKovexDrvTest, CarriesEveryFunctionOverTheBus) {
    std::map<DrvFunction, int> seen;
    const KovexDrvExport exported(
        serverBus,
        [&](DrvFunction function, int& value) {
            seen[function] = value;
            if (drvTable[static_cast<std::size_t>(function)].kind == DrvKind::Get)
                value = -static_cast<int>(function);
            return function != DrvFunction::GetCurrentPowerValue && function != DrvFunction::RestartMachine;
        },
        OnLoop());
    EXPECT_TRUE(exported.Exported());
    int value = 0;
    EXPECT_TRUE(Elsewhere([&] { return driver.GetMainHandle(value); }));
    EXPECT_EQ(value, -static_cast<int>(DrvFunction::GetMainHandle));
    EXPECT_TRUE(Elsewhere([&] { return driver.Set3GPower(-5); }));
    EXPECT_EQ(seen[DrvFunction::Set3GPower], -5);
    EXPECT_TRUE(Elsewhere([&] { return driver.RequireDisableKeySuspend(); }));
    EXPECT_TRUE(seen.contains(DrvFunction::RequireDisableKeySuspend));
    value = 123;
    EXPECT_FALSE(Elsewhere([&] { return driver.GetCurrentPowerValue(value); }));
    EXPECT_EQ(value, 123) << "a getter that failed leaves its value alone";
    EXPECT_FALSE(Elsewhere([&] { return driver.RestartMachine(); }));
    for (const DrvEntry& entry : drvTable)
        EXPECT_EQ(static_cast<std::size_t>(entry.function),
                  static_cast<std::size_t>(&entry - drvTable.data()));
}

TEST_F(BusKovexDrvTest, FailsInTimeWhenNobodyAnswers) {
    int value = 9;
    const auto expectFailure = [&](std::chrono::milliseconds limit) {
        const auto start = Clock::now();
        EXPECT_FALSE(driver.Get3GPower(value));
        EXPECT_LT(Clock::now() - start, limit);
        EXPECT_EQ(value, 9);
    };
    expectFailure(std::chrono::milliseconds(500));  // no such service, which is known at once
    int calls = 0;
    const auto count = [&](DrvFunction, int&) { return ++calls > 0; };
    {
        const KovexDrvExport exported(serverBus, count, OnLoop());
        expectFailure(std::chrono::milliseconds(1500));  // nobody serves the loop
    }
    ServePosted();
    EXPECT_EQ(calls, 0) << "the late work meets a service that has gone";
    const KovexDrvExport refusing(serverBus, count, [](const std::function<void()>&) { return false; });
    expectFailure(std::chrono::milliseconds(500));
}

TEST_F(BusKovexDrvTest, TellsTheLastAnswerWhileTheNextOneIsLate) {
    int present = 0;
    {
        const KovexDrvExport exported(
            serverBus, [](DrvFunction, int& value) { return (value = 7) == 7; }, OnLoop());
        EXPECT_TRUE(Elsewhere([&] { return driver.GetUsbHostStatus(present); }));
        for (int late = 0; late < BusKovexDrv::mostLate; ++late) {
            present = 0;
            EXPECT_TRUE(driver.GetUsbHostStatus(present)) << "nobody serves the loop";
            EXPECT_EQ(present, 7);
        }
        EXPECT_FALSE(driver.GetUsbHostStatus(present)) << "too often";
        EXPECT_TRUE(Elsewhere([&] { return driver.GetUsbHostStatus(present); }));
    }
    EXPECT_FALSE(driver.GetUsbHostStatus(present)) << "nobody is there, which is known at once";
}

TEST_F(BusKovexDrvTest, TheFirstExportAnswersUntilItEnds) {
    const auto constant = [](int number) {
        return [number](DrvFunction, int& value) {
            value = number;
            return true;
        };
    };
    auto first = std::make_unique<KovexDrvExport>(serverBus, constant(1), OnLoop());
    Bus thirdBus(daemon.Options(), nullptr);
    const KovexDrvExport second(thirdBus, constant(2), OnLoop());
    EXPECT_TRUE(first->Exported());
    EXPECT_FALSE(second.Exported());
    int value = 0;
    EXPECT_TRUE(Elsewhere([&] { return driver.Get3GPower(value); }));
    EXPECT_EQ(value, 1);
    first.reset();
    EXPECT_TRUE(Elsewhere([&] { return driver.Get3GPower(value); }));
    EXPECT_EQ(value, 2);
}

class BoardKovexDrvTest : public testing::Test {
  protected:
    BoardKovexDrv& Driver(const std::string& entries) {
        const auto answers = BoardAnswers::Parse(KeyFile::Parse("[driver]\n" + entries));
        EXPECT_TRUE(answers.errors.empty()) << answers.errors[0];
        driver = std::make_unique<BoardKovexDrv>(
            answers, scratch / "tty", [this](std::string_view problem) { problems.emplace_back(problem); });
        return *driver;
    }

    test::ScratchDirectory scratch;
    std::vector<std::string> problems;
    std::unique_ptr<BoardKovexDrv> driver;
};

TEST_F(BoardKovexDrvTest, HasADefaultForEveryFunction) {
    BoardKovexDrv& board = Driver("");
    const auto get = [&](bool (KovexDrvApi::*getter)(int&)) {
        int value = 99;
        return (board.*getter)(value) ? value : -1;
    };
    EXPECT_EQ(get(&KovexDrvApi::Get3GSimStatus), 1);
    EXPECT_EQ(get(&KovexDrvApi::GetCurrentPowerValue), -1);
    EXPECT_EQ(get(&KovexDrvApi::GetUsbHostStatus), 0) << "no tty";
    test::WriteFile(scratch / "tty", "");
    EXPECT_EQ(get(&KovexDrvApi::GetUsbHostStatus), 1);
    EXPECT_EQ(get(&KovexDrvApi::GetGprsHpSpkStatus), 0);
    EXPECT_TRUE(board.SetGprsHpSpkStatus(1));
    EXPECT_EQ(get(&KovexDrvApi::GetGprsHpSpkStatus), 1);
    EXPECT_TRUE(board.SetTmcPower(1) && board.RequireDisableAutoSuspend());
    EXPECT_TRUE(problems.empty());
    EXPECT_TRUE(board.RestartMachine());
    EXPECT_EQ(problems.size(), 1u);
}

TEST_F(BoardKovexDrvTest, ReadsAndWritesFiles) {
    BoardKovexDrv& board =
        Driver("Get3GPower = file:" + (scratch / "power") + "\nset3gpower = FILE: " + (scratch / "power") +
               "\nGetCurrentPowerValue = file:" + (scratch / "supply") +
               "\nRestartMachine = file:" + (scratch / "restart") + "\n");
    int value = 99;
    EXPECT_FALSE(board.Get3GPower(value));
    EXPECT_FALSE(board.Get3GPower(value));
    EXPECT_EQ(value, 99);
    EXPECT_EQ(problems.size(), 1u) << "said once";
    EXPECT_FALSE(board.Set3GPower(1)) << "a file that does not exist is not made";
    test::WriteFile(scratch / "power", "12345");
    EXPECT_TRUE(board.Set3GPower(1));
    EXPECT_EQ(test::FileContent(scratch / "power"), "1\n");
    EXPECT_TRUE(board.Get3GPower(value));
    EXPECT_EQ(value, 1);
    const std::tuple<const char*, bool, int> contents[] = {
        {"voltage: -14 mV 3", true, -14}, {"no number", false, 1}, {"99999999999", false, 1}, {"", false, 1}};
    for (const auto& [text, good, number] : contents) {
        test::WriteFile(scratch / "supply", text);
        value = 1;
        EXPECT_EQ(board.GetCurrentPowerValue(value), good) << text;
        EXPECT_EQ(value, number) << text;
    }
    test::WriteFile(scratch / "restart", "");
    EXPECT_TRUE(board.RestartMachine());
    EXPECT_EQ(test::FileContent(scratch / "restart"), "1\n");
    std::filesystem::remove(scratch / "supply");
    ASSERT_EQ(mkfifo((scratch / "supply").c_str(), 0600), 0);
    EXPECT_FALSE(board.GetCurrentPowerValue(value)) << "a pipe holds nobody up";
}

TEST_F(BoardKovexDrvTest, RunsCommandsWithoutAShellAndInTime) {
    const auto descriptors = test::OpenDescriptors();
    BoardKovexDrv& board = Driver(
        "GetCurrentPowerValue = command:echo \"supply is\" 14\n"
        "SetTmcPower = command:test %d -eq 1\n"
        "Get3GSimStatus = command:sh -c \"sleep 60 & sleep 60\"\n"
        "GetUsbHostStatus = command:echo $HOME;3\n"
        "GetSDCardStatus = command:yes 7\n"
        "Get3GPower = command:/no/such/program\n"
        "RestartMachine = command:sh -c \"exit 3\"\n"
        "SetAudioTo3G = command:sh -c \"head -c 1000000 /dev/zero\"\n");
    int value = 0;
    EXPECT_TRUE(board.GetCurrentPowerValue(value));
    EXPECT_EQ(value, 14);
    EXPECT_TRUE(board.SetTmcPower(1));
    EXPECT_FALSE(board.SetTmcPower(0)) << "the exit code counts";
    EXPECT_TRUE(board.GetUsbHostStatus(value));
    EXPECT_EQ(value, 3) << "no shell looks at it";
    EXPECT_FALSE(board.Get3GPower(value));
    EXPECT_FALSE(board.RestartMachine());
    EXPECT_TRUE(board.SetAudioTo3G(1)) << "what it prints does not hold it up";
    for (const auto slow : {&KovexDrvApi::Get3GSimStatus, &KovexDrvApi::GetSDCardStatus}) {
        const auto start = Clock::now();
        EXPECT_FALSE((board.*slow)(value));
        const auto passed = Clock::now() - start;
        EXPECT_GT(passed, std::chrono::milliseconds(900));
        EXPECT_LT(passed, std::chrono::milliseconds(2500));
    }
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
}

TEST_F(BoardKovexDrvTest, ListsWhatItCannotFollow) {
    const auto answers =
        BoardAnswers::Parse(KeyFile::Parse("[driver]\n"
                                           "Get3GPower = constant:1\n"
                                           "Get4GPower = constant:1\n"
                                           "Get3GSimStatus = constant:one\n"
                                           "GetUsbHostStatus = constant:1x\n"
                                           "GetSDCardStatus = file:relative/path\n"
                                           "GetMainHandle = command:\n"
                                           "RestartMachine = command:a \"b\n"
                                           "Set3GPower = 1\n"
                                           "[other]\n"
                                           "SetTmcPower = nonsense\n"));
    EXPECT_EQ(test::LinesOf(answers.errors), "3 4 5 6 7 8 9 ");
    BoardKovexDrv board(answers, "", nullptr);
    int value = 0;
    EXPECT_TRUE(board.Get3GPower(value));
    EXPECT_EQ(value, 1);
    EXPECT_TRUE(board.Get3GSimStatus(value)) << "the default";
}

}  // namespace
}  // namespace varkel
