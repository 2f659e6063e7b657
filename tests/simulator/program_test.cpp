// The parts of varkel-sim that touch the system.
#include <array>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/unit_settings.h"
#include "simulator/program/dial_socket.h"
#include "simulator/program/hosted_program.h"
#include "simulator/program/line_reader.h"
#include "simulator/program/pty.h"
#include "simulator/program/task_queue.h"
#include "simulator/program/unit_place.h"
#include "tests/support/scratch.h"

namespace varkel::sim {
namespace {

using varkel::test::FileMode;
using varkel::test::OpenDescriptors;
using varkel::test::ScratchDirectory;

constexpr auto longEnough = std::chrono::seconds(20);

bool Readable(int descriptor) {
    std::array<pollfd, 1> polled{{{descriptor, POLLIN, 0}}};
    return Poll(polled, longEnough);
}

TEST(Lines, AreCutFromWhatArrives) {
    LineReader reader;
    reader.Add("one\r\ntwo\nthr");
    for (const std::optional<std::string> line : {"one", "two"})
        EXPECT_EQ(reader.Next(), line);
    EXPECT_EQ(reader.Next(), std::nullopt);
    reader.Add("ee" + std::string(100'000, 'x'));
    EXPECT_EQ(reader.Next(), std::nullopt);
    reader.Add("\n");
    EXPECT_EQ(reader.Next(), "three" + std::string(LineReader::longest - 5, 'x'));
}

TEST(Tasks, AreBoundedAndMayHandInAnother) {
    TaskQueue queue;
    for (std::size_t i = 0; i < TaskQueue::limit; ++i)
        EXPECT_TRUE(queue.Post([] {}));
    EXPECT_FALSE(queue.Post([] {}));
    queue.Run();
    EXPECT_TRUE(queue.Post([&queue] { queue.Post([] {}); }));
    queue.Run();
    EXPECT_TRUE(Readable(queue.Descriptor()));
}

TEST(PtyTest, KeepsABoundedRestForAProgramThatDoesNotReadAndGoesWithoutATrace) {
    ScratchDirectory directory;
    const std::string link = directory / "ttyModem";
    const auto before = OpenDescriptors();
    auto pty = Pty::Open(link);
    ASSERT_TRUE(pty);
    for (int i = 0; i < 2; ++i) {
        const FileDescriptor program(open(link.c_str(), O_RDWR | O_NOCTTY));
        ASSERT_TRUE(WriteAll(program.Get(), "AT\r\n")) << "it can be opened again";
        ASSERT_TRUE(Readable(pty->Descriptor()));
        EXPECT_EQ(pty->Read(), "AT\r\n");
        pty->Write("\r\n> ");
        std::array<char, 16> answer{};
        EXPECT_EQ(read(program.Get(), answer.data(), answer.size()), 4) << "at once, and as it is";
    }
    for (int i = 0; i < 1000; ++i)
        pty->Write(std::string(1000, 'x'));
    EXPECT_TRUE(pty->Waiting());
    pty.reset();
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
    EXPECT_FALSE(Pty::Open(directory / "no/such/place"));
    EXPECT_EQ(OpenDescriptors(), before);
}

// A shell that runs the script on the simulated unit.
struct Hosted : testing::Test {
    void Start(const char* script) {
        std::string fault;
        program = HostedProgram::Start({"sh", "-c", script}, fault);
        ASSERT_TRUE(program) << fault;
    }
    std::string Printed() { return Readable(program->Output()) ? program->ReadOutput() : ""; }
    int ExitCode() { return Readable(program->EndDescriptor()) ? program->Collect().value_or(-1) : -1; }

    const std::ptrdiff_t before = OpenDescriptors();
    std::unique_ptr<HostedProgram> program;
};

TEST_F(Hosted, ReadsWhatIsTypedAndEndsWithItsCode) {
    Start("cat; exit 5");
    EXPECT_EQ(program->Collect(), std::nullopt) << "it runs";
    // More than a pipe holds: the rest waits and goes out in the end.
    const std::string line = std::string(999, 'x') + "\n";
    std::size_t typed = 0;
    while (!program->Waiting() && program->Type(line))
        typed += line.size();
    program->CloseInput();
    EXPECT_FALSE(program->Type("too late\n"));
    std::size_t got = 0;
    while (program->Output() >= 0 && Readable(program->Output())) {
        got += program->ReadOutput().size();
        program->FlushInput();
    }
    EXPECT_EQ(got, typed);
    EXPECT_EQ(ExitCode(), 5);
    EXPECT_EQ(program->Collect(), std::nullopt) << "only once";
    program.reset();
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(Hosted, DiesWithItsOwner) {
    Start("echo $$; exec sleep 1000");
    const pid_t pid = static_cast<pid_t>(std::stol(Printed()));
    EXPECT_EQ(kill(pid, 0), 0);
    program.reset();
    EXPECT_EQ(kill(pid, 0), -1);
}

TEST_F(Hosted, MayCloseItsInput) {
    signal(SIGPIPE, SIG_IGN);
    Start("exec <&-; echo closed; sleep 1000");
    EXPECT_EQ(Printed(), "closed\n");
    static_cast<void>(program->Type("nobody reads\n"));
    EXPECT_FALSE(program->Waiting());
    EXPECT_FALSE(program->Type("nobody reads\n"));
}

TEST_F(Hosted, SaysWhyItCannotStart) {
    std::string fault;
    EXPECT_FALSE(HostedProgram::Start({"/no/such/program"}, fault));
    EXPECT_EQ(fault, "/no/such/program: No such file or directory");
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(DialSocketTest, ServesOneProgramAfterTheOther) {
    ScratchDirectory directory;
    // Far longer than a socket's address may be.
    const std::string path = directory / std::string(200, 'x');
    std::filesystem::create_directory(path);
    const auto before = OpenDescriptors();
    {
        std::vector<std::string> heard;
        const auto socket = DialSocket::Open(
            path, {[&](std::string_view user) { heard.emplace_back(user); },
                   [&] { heard.emplace_back("(hangup)"); }, [&] { heard.emplace_back("(gone)"); }});
        ASSERT_TRUE(socket);
        socket->Print("for nobody");
        const auto serve = [&](std::size_t wanted) {
            while (heard.size() < wanted && Readable(socket->Descriptor()))
                socket->Serve();
        };
        FileDescriptor first = ConnectDialSocket(path);
        FileDescriptor second = ConnectDialSocket(path);
        const std::string longUser = "dial " + std::string(100'000, 'x');
        for (const std::string_view packet : {"dial ", "nonsense", "hangup", longUser.c_str()})
            EXPECT_TRUE(SendDialPacket(first, packet));
        EXPECT_TRUE(SendDialPacket(second, "dial user"));
        serve(3);
        socket->Print("a line");
        socket->End(7);
        EXPECT_EQ(ReceiveDialPacket(first), "line a line");
        EXPECT_EQ(ReceiveDialPacket(first), "end 7");
        EXPECT_EQ(ReceiveDialPacket(first), std::nullopt);
        serve(4);
        second.Reset();
        serve(5);
        EXPECT_THAT(heard, testing::ElementsAre("", "(hangup)", std::string(longestDialPacket - 5, 'x'),
                                                "user", "(gone)"));
        FileDescriptor third = ConnectDialSocket(path);
        socket->Serve();
        for (int i = 0; i < 10'000; ++i)
            socket->Print("to one that does not read");
    }
    EXPECT_FALSE(ConnectDialSocket(path)) << "no simulator there";
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(Place, IsReadableAsTheProgramReadsIt) {
    ScratchDirectory directory;
    const std::string path = directory / "a unit";
    std::string fault;
    auto place = MakeUnitPlace(path, {.dialProgram = "/x y/pppd"}, fault);
    ASSERT_TRUE(place) << fault;
    const UnitSettings settings = LoadUnitSettings(place->unitFile);
    EXPECT_TRUE(settings.errors.empty()) << settings.errors.front();
    EXPECT_EQ(settings.root, path + "/flash");
    EXPECT_EQ(settings.TtyOf("COM7:"), path + "/ttyModem");
    EXPECT_EQ(settings.dialUp, (std::vector<std::string>{"/x y/pppd", path}));
    EXPECT_EQ(settings.modem, varkel::ModemKind::Unit);
    EXPECT_EQ(FileMode(path), 0700u);

    EXPECT_FALSE(MakeUnitPlace(path, {.dialProgram = "/x y/pppd"}, fault)) << "one simulator a directory";
    EXPECT_EQ(fault, "another simulator runs in " + path);
    EXPECT_FALSE(MakeUnitPlace("/proc/nowhere", {}, fault));
    EXPECT_FALSE(MakeUnitPlace("with\na line end", {}, fault));
}

}  // namespace
}  // namespace varkel::sim
