// The parts of varkel-sim that touch the system.
#include <array>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <termios.h>
#include <thread>
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
    EXPECT_EQ(reader.Next(), "one");
    EXPECT_EQ(reader.Next(), "two");
    EXPECT_EQ(reader.Next(), std::nullopt);
    reader.Add("ee\n");
    EXPECT_EQ(reader.Next(), "three");
    for (int i = 0; i < 100; ++i) {
        reader.Add(std::string(1000, 'x'));
        EXPECT_EQ(reader.Next(), std::nullopt);
    }
    reader.Add("\n");
    EXPECT_EQ(reader.Next(), std::string(LineReader::longest, 'x'));
    reader.Add("no end");
    EXPECT_EQ(reader.Rest(), "no end");
}

TEST(Tasks, ComeFromOtherThreadsAndAreBounded) {
    TaskQueue queue;
    int done = 0;
    std::thread other([&] {
        for (int i = 0; i < 100; ++i)
            EXPECT_TRUE(queue.Post([&done] { ++done; }));
    });
    while (done < 100) {
        ASSERT_TRUE(Readable(queue.Descriptor()));
        queue.Run();
    }
    other.join();
    for (std::size_t i = 0; i < TaskQueue::limit; ++i)
        EXPECT_TRUE(queue.Post([] {}));
    EXPECT_FALSE(queue.Post([] {}));
    queue.Run();
    EXPECT_TRUE(queue.Post([&queue] { queue.Post([] {}); })) << "a task may hand in another";
    queue.Run();
}

TEST(PtyTest, IsARawDeviceThatComesAndGoes) {
    ScratchDirectory directory;
    const std::string link = directory.Path() + "/ttyModem";
    const auto before = OpenDescriptors();
    auto pty = Pty::Open(link);
    ASSERT_TRUE(pty);
    FileDescriptor program(open(link.c_str(), O_RDWR | O_NOCTTY));
    ASSERT_TRUE(program);
    termios settings{};
    ASSERT_EQ(tcgetattr(program.Get(), &settings), 0);
    EXPECT_EQ(settings.c_lflag & (ICANON | ECHO | ISIG), 0u);
    EXPECT_EQ(settings.c_iflag & ICRNL, 0u);

    ASSERT_TRUE(WriteAll(program.Get(), "AT\r\n"));
    ASSERT_TRUE(Readable(pty->Descriptor()));
    EXPECT_EQ(pty->Read(), "AT\r\n");
    pty->Write("\r\nOK\r\n");
    std::array<char, 16> answer{};
    EXPECT_EQ(read(program.Get(), answer.data(), answer.size()), 6);

    // Nobody reads: what the device cannot take waits, up to a bound.
    for (int i = 0; i < 1000; ++i)
        pty->Write(std::string(1000, 'x'));
    EXPECT_TRUE(pty->Waiting());

    program.Reset();
    program.Reset(open(link.c_str(), O_RDWR | O_NOCTTY));
    EXPECT_TRUE(program) << "it can be opened again";
    pty.reset();
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
    tcflush(program.Get(), TCIFLUSH);
    EXPECT_LE(read(program.Get(), answer.data(), answer.size()), 0) << "a hang-up";
    program.Reset();
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_FALSE(Pty::Open(directory.Path() + "/no/such/place"));
    EXPECT_EQ(OpenDescriptors(), before);
}

// What it prints until it closes its output.
std::string AllOutput(HostedProgram& program) {
    std::string all;
    while (program.Output() >= 0 && Readable(program.Output()))
        all += program.ReadOutput();
    return all;
}

int ExitCode(HostedProgram& program) {
    EXPECT_TRUE(Readable(program.EndDescriptor()));
    return program.Collect().value_or(-1);
}

TEST(Hosted, ReadsWhatIsTypedAndEndsWithItsCode) {
    const auto before = OpenDescriptors();
    {
        std::string fault;
        const auto program = HostedProgram::Start({"sh", "-c", "cat; exit 5"}, fault);
        ASSERT_TRUE(program) << fault;
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
        EXPECT_EQ(ExitCode(*program), 5);
    }
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(Hosted, IsAskedToEndInAGroupOfItsOwn) {
    std::string fault;
    const auto program = HostedProgram::Start(
        {"sh", "-c", "trap 'echo caught; exit 7' INT; echo ready; while :; do sleep 0.1; done"}, fault);
    ASSERT_TRUE(program) << fault;
    ASSERT_TRUE(Readable(program->Output()));
    EXPECT_EQ(program->ReadOutput(), "ready\n");
    program->Signal(SIGINT);
    EXPECT_EQ(AllOutput(*program), "caught\n");
    EXPECT_EQ(ExitCode(*program), 7);
    program->Signal(SIGINT);  // nobody is there any more, and nobody else is hit
}

TEST(Hosted, DiesWithItsOwner) {
    std::string fault;
    auto program = HostedProgram::Start({"sh", "-c", "echo $$; exec sleep 1000"}, fault);
    ASSERT_TRUE(program) << fault;
    ASSERT_TRUE(Readable(program->Output()));
    const pid_t pid = static_cast<pid_t>(std::stol(program->ReadOutput()));
    EXPECT_EQ(kill(pid, 0), 0);
    program.reset();
    EXPECT_EQ(kill(pid, 0), -1);
}

TEST(Hosted, MayCloseItsInput) {
    signal(SIGPIPE, SIG_IGN);
    std::string fault;
    const auto program = HostedProgram::Start({"sh", "-c", "exec <&-; echo closed; sleep 1000"}, fault);
    ASSERT_TRUE(program) << fault;
    ASSERT_TRUE(Readable(program->Output()));
    static_cast<void>(program->Type("nobody reads\n"));
    EXPECT_FALSE(program->Waiting());
    EXPECT_FALSE(program->Type("nobody reads\n"));
}

TEST(Hosted, SaysWhyItCannotStart) {
    const auto before = OpenDescriptors();
    std::string fault;
    EXPECT_FALSE(HostedProgram::Start({"/no/such/program"}, fault));
    EXPECT_EQ(fault, "/no/such/program: No such file or directory");
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(DialSocketTest, ServesOneProgramAfterTheOther) {
    ScratchDirectory directory;
    // Far longer than a socket's address may be.
    const std::string path = directory.Path() + "/" + std::string(200, 'x');
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
        ASSERT_TRUE(first && second);
        for (const std::string& packet : {std::string("dial "), std::string("nonsense"),
                                          std::string("hangup"), "dial " + std::string(100'000, 'x')})
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
        using Heard = std::vector<std::string>;
        EXPECT_EQ(heard, (Heard{"", "(hangup)", std::string(longestDialPacket - 5, 'x'), "user", "(gone)"}));
        FileDescriptor third = ConnectDialSocket(path);
        socket->Serve();
        for (int i = 0; i < 10'000; ++i)
            socket->Print("to one that does not read");
        EXPECT_FALSE(ConnectDialSocket(directory.Path())) << "no simulator there";
    }
    EXPECT_FALSE(ConnectDialSocket(path)) << "nor any more";
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(Place, IsReadableAsTheProgramReadsIt) {
    ScratchDirectory directory;
    const std::string path = directory.Path() + "/a unit";
    std::string fault;
    auto place = MakeUnitPlace(path, {.dialProgram = "/x y/pppd"}, fault);
    ASSERT_TRUE(place) << fault;
    const UnitSettings settings = LoadUnitSettings(place->unitFile);
    EXPECT_TRUE(settings.errors.empty()) << settings.errors.front();
    EXPECT_EQ(settings.root, path + "/flash");
    EXPECT_EQ(settings.driver, DriverKind::Bus);
    EXPECT_EQ(settings.TtyOf("COM7:"), path + "/ttyModem");
    EXPECT_EQ(settings.dialUp, (std::vector<std::string>{"/x y/pppd", path}));
    EXPECT_EQ(settings.objectPrefix, place->objectPrefix);
    EXPECT_EQ(settings.initialRegistry, path + "/registry.txt");
    EXPECT_EQ(FileMode(path), 0700u);

    EXPECT_FALSE(MakeUnitPlace(path, {.dialProgram = "/x y/pppd"}, fault)) << "one simulator a directory";
    EXPECT_EQ(fault, "another simulator runs in " + path);
    EXPECT_EQ(settings.modem, varkel::ModemKind::Unit);
    place.reset();
    place = MakeUnitPlace(path, {.modem = ModemKind::Standard}, fault);
    ASSERT_TRUE(place) << fault;
    EXPECT_EQ(LoadUnitSettings(place->unitFile).modem, varkel::ModemKind::Auto);
    EXPECT_FALSE(MakeUnitPlace("/proc/nowhere", {}, fault));
    EXPECT_FALSE(MakeUnitPlace("with\na line end", {}, fault));
}

}  // namespace
}  // namespace varkel::sim
