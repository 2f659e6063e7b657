// varkelctl as a script runs it, against a program that is a double.
#include <csignal>
#include <gmock/gmock.h>
#include <memory>
#include <sstream>
#include <unistd.h>

#include "platform/linux/linux_unit_files.h"
#include "platform/linux/sqlite_registry.h"
#include "simulator/program/hosted_program.h"
#include "tests/client/phone_double.h"
#include "tests/platform/dialog_fixture.h"
#include "tests/platform/private_bus.h"

namespace varkel::test {
namespace {

using sim::HostedProgram;
using Lines = std::vector<std::string>;

struct Ended {
    int code = -1;
    std::string output;
    std::string errors;
};

struct Case {
    Lines arguments;
    int code;
    std::string output;
    Lines received;  // by the telephone program
};

class ClientTest : public DialogFixture {
  protected:
    ClientTest() { WriteUnitFile(daemon.Address()); }
    ~ClientTest() override { ShmNamedObjects::Remove(prefix); }

    void WriteUnitFile(const std::string& bus) const {
        WriteFile(scratch / "unit.conf", "[unit]\nregistry = registry.db\nobject_prefix = " + prefix +
                                             "\nbus = " + bus + "\nsystem_code_page = CP1251\n");
    }

    std::unique_ptr<PhoneDouble> StartPhone(std::string_view title = "3Gwindow") {
        return std::make_unique<PhoneDouble>(runtime, loop, log, daemon.Options(), prefix, title);
    }

    // Any program of the unit, on its bus.
    std::unique_ptr<HostedProgram> StartProgram(Lines command) const {
        command.insert(command.begin(), {"env", "DBUS_SESSION_BUS_ADDRESS=" + daemon.Address(),
                                         "PATH=" VARKELCTL_DIRECTORY ":/usr/bin:/bin"});
        std::string fault;
        auto program = HostedProgram::Start(command, fault);
        EXPECT_TRUE(program) << fault;
        return program;
    }

    std::unique_ptr<HostedProgram> Start(Lines arguments) const {
        arguments.insert(arguments.begin(), {"varkelctl", "--unit-file", scratch / "unit.conf"});
        return StartProgram(arguments);
    }

    Ended End(HostedProgram& client) {
        Ended ended;
        EXPECT_TRUE(ServeUntil([&] { return (ended.code = client.Collect().value_or(ended.code)) >= 0; }));
        while (client.Output() >= 0)
            ended.output += client.ReadOutput();
        while (client.Errors() >= 0)
            ended.errors += client.ReadErrors();
        return ended;
    }

    Ended Run(const Lines& arguments) { return End(*Start(arguments)); }
    void ExpectEnd(const Case& expected) {
        const Ended ended = Run(expected.arguments);
        const std::string command = expected.arguments[0] + " " + expected.arguments.back();
        EXPECT_EQ(ended.code, expected.code) << command << ": " << ended.errors;
        EXPECT_EQ(ended.output, expected.output) << command;
        EXPECT_EQ(ended.errors.empty(), expected.code == 0) << command << ": " << ended.errors;
    }

    PrivateBus daemon;
    ScratchDirectory scratch;
    const std::string prefix = "varkel-client-" + std::to_string(getpid());
    LinuxUnitFiles files{scratch / "flash", scratch / "assets"};
    Log log{runtime, files};
};

TEST_F(ClientTest, AsksAndTells) {
    const auto phone = StartPhone();
    phone->imsi = "460001234567890";
    phone->status = ConnectionStatus::NotUp;
    const Case cases[] = {
        {{"show"}, 0, "", {"3Gwindow_SHOW 0 0"}},
        {{"hide"}, 0, "", {"3Gwindow_HIDE 0 0"}},
        {{"open"}, 0, "", {"Network_interface 0 0"}},
        {{"call", "sos"}, 0, "", {"UM_QX_CALL 0 0"}},
        {{"call", "help"}, 0, "", {"UM_QX_CALL 1 0"}},
        {{"language", "russian"}, 0, "", {"LANGUAGE_CHANGE 0 0"}},
        {{"reg", "get", "Device\\CONFIG", "Language"}, 0, "russian\n", {}},
        {{"language", "klingon"}, 2, "", {}},
        {{"imsi"}, 0, "460001234567890\n", {"1002 0 0"}},
        {{"--timeout", "0.1", "imei"}, 4, "", {"1003 0 0"}},
        {{"status"}, 0, "down\n", {"1005 0 0"}},
        {{"quit", "--timeout", "0.1"}, 4, "", {"3Gwindow_QUIT 0 0"}},
        {{"imsi", "now"}, 2, "", {}},
        {{"call"}, 2, "", {}},
        {{"status", "--timeout", "soon"}, 2, "", {}},
    };
    for (const Case& each : cases) {
        phone->received.clear();
        ExpectEnd(each);
        // Who only posts does not wait for the program to hear it.
        ServeUntil([&] { return phone->received.size() >= each.received.size(); });
        ServePosted();
        EXPECT_EQ(phone->received, each.received) << each.arguments.front();
    }
}

TEST_F(ClientTest, TellsAProgramThatDoesNotRunFromOneThatDoesNotAnswer) {
    EXPECT_EQ(Run({"imsi"}).code, 3) << "never started on this unit";
    StartPhone().reset();
    EXPECT_EQ(Run({"imsi"}).code, 3) << "it has ended; its handle still stands in the block";
    {
        const auto other = StartPhone("another window");
        EXPECT_EQ(Run({"show"}).code, 3);
        EXPECT_TRUE(other->received.empty());
    }
    auto phone = StartPhone();
    const auto asking = Start({"imsi"});
    ASSERT_TRUE(ServeUntil([&] { return !phone->received.empty(); }));
    phone.reset();
    const Ended ended = End(*asking);
    EXPECT_EQ(ended.code, 3) << "it ends while it is asked";
    EXPECT_EQ(ended.errors, "varkelctl: varkel ended before it answered\n");

    phone = StartPhone();
    phone->onQuit = [&] { loop.Post([&] { phone.reset(); }); };
    EXPECT_EQ(Run({"quit"}).code, 0);
    EXPECT_FALSE(phone);
    WriteUnitFile("unix:path=/nonexistent");
    EXPECT_EQ(Run({"status"}).code, 3) << "no bus";
}

TEST_F(ClientTest, SeveralAtOnceAllGetTheirAnswerAndADeadOneHoldsNobodyUp) {
    const auto phone = StartPhone();
    auto dying = Start({"imsi"});
    ASSERT_TRUE(ServeUntil([&] { return !phone->received.empty(); }));
    dying.reset();  // killed while it waits with its turn
    phone->imsi = "460001234567890";
    phone->status = ConnectionStatus::Up;
    std::vector<std::unique_ptr<HostedProgram>> clients;
    for (int i = 0; i < 6; ++i)
        clients.push_back(Start({i % 2 == 0 ? "imsi" : "status"}));
    for (int i = 0; i < 6; ++i) {
        const Ended ended = End(*clients[static_cast<std::size_t>(i)]);
        EXPECT_EQ(ended.output, i % 2 == 0 ? "460001234567890\n" : "up\n") << ended.errors;
    }
}

TEST_F(ClientTest, WatchesUntilItIsInterruptedAndIsRemovedThen) {
    auto phone = StartPhone();
    const auto first = Start({"watch"});
    const auto second = Start({"watch"});
    ASSERT_TRUE(ServeUntil([&] { return phone->listeners.size() == 2; }));
    phone->Notify(1, 0);
    phone->Broadcast("UM_CALLIN");
    phone->Notify(2, 12);
    std::string seen;
    ASSERT_TRUE(ServeUntil([&] {
        pollfd output{first->Output(), POLLIN, 0};
        if (Poll({&output, 1}, std::chrono::milliseconds(0))) seen += first->ReadOutput();
        return seen.find("poor signal\n") != std::string::npos;
    }));
    EXPECT_EQ(seen, "link down 11, SIM not usable\nlink up\nUM_CALLIN 0 0\nlink down 12, poor signal\n");
    first->Signal(SIGINT);
    EXPECT_EQ(End(*first).code, 0);
    EXPECT_TRUE(ServeUntil([&] { return phone->listeners.size() == 1; }));
    phone.reset();
    EXPECT_EQ(End(*second).code, 3) << "nothing is left to be watched";
}

TEST_F(ClientTest, SendsAMessageInTheLayoutOfTheBlock) {
    const auto phone = StartPhone();
    EXPECT_EQ(Run({"send", "10086", "too early"}).code, 1);
    EXPECT_TRUE(phone->received.empty()) << "the module is not open";
    ASSERT_EQ(Run({"reg", "set", "GPRS\\OPENFLAG", "m_GprsOpenFlag", "dword:1"}).code, 0);
    ExpectEnd({{"send", "+86 (138) 0013-8000 01", "Привет"}, 0, "sent\n", {}});
    std::u16string block = u"+861380013800001";  // its 16 characters, behind as many of the sender
    block.insert(0, 16, u'\0');
    block += u"Привет";
    block += u'\0';
    EXPECT_EQ(phone->copied, std::string(reinterpret_cast<const char*>(block.data()), block.size() * 2));

    phone->sends = false;
    EXPECT_EQ(Run({"--timeout", "0.1", "send", "10086", "again"}).code, 4)
        << "an event that an earlier message has set is no result";
    phone->accepts = false;
    EXPECT_EQ(Run({"send", "10086", "no"}).code, 1);
    phone->received.clear();
    const Lines refused[] = {
        {"send", "", "no number"},
        {"send", "+1234567890123456", "too long a number"},
        {"send", "10086\r\x1A", "a number that ends a line"},
        {"send", "86+10086", "a plus inside"},
        {"send", "10086", std::string(116, 'x')},
        {"send", "10086", "日本 is not in the code page of this unit"},
    };
    for (const Lines& arguments : refused)
        EXPECT_EQ(Run(arguments).code, 2) << arguments.back();
    EXPECT_TRUE(phone->received.empty());
}

TEST_F(ClientTest, ReadsAndWritesTheRegistryAsText) {
    const Case cases[] = {
        {{"list"}, 1, "", {}},  // and makes no registry
        {{"get", "GPRS", "Account"}, 1, "", {}},
        {{"set", "GPRS\\NetworkMode\\", "Account", "dword:0x10"}, 0, "", {}},
        {{"set", "GPRS\\NetworkMode", "Name", "sz:день"}, 0, "", {}},
        {{"set", "GPRS\\ISP", "Blob", "hex:0a0B"}, 0, "", {}},
        {{"set", "Software", "Lines", "sz:two\nlines\x1B[2J"}, 0, "", {}},
        {{"get", "gprs\\networkmode\\", "account"}, 0, "16\n", {}},
        {{"get", "GPRS", "Account"}, 1, "", {}},  // a value of a key below is none of this key
        {{"list", "GPRS"},
         0,
         "[GPRS\\ISP]\nBlob = hex:0a0b\n\n[GPRS\\NetworkMode]\nAccount = dword:16\nName = sz:день\n",
         {}},
        {{"list", "Software"}, 0, "[Software]\nLines = sz:two?lines?[2J\n", {}},
        {{"set", "GPRS", "x", "17"}, 2, "", {}},
        {{"set", "GPRS", "x", "dword:4294967296"}, 2, "", {}},
        {{"set", "", "x", "dword:1"}, 1, "", {}},
    };
    for (Case each : cases) {
        each.arguments.insert(each.arguments.begin(), "reg");
        ExpectEnd(each);
    }
    // As the program writes it: the text's terminator is half there.
    const auto registry = SqliteRegistry::Open(scratch / "registry.db", {});
    bool created = false;
    const std::vector<std::byte> odd{std::byte{'4'}, {}, std::byte{'6'}, {}, {}};
    ASSERT_TRUE(registry->RegCreateKeyEx("Software\\QXGprsSim", created)
                    ->RegSetValueEx("IMSI", {RegistryType::Sz, odd}));
    EXPECT_EQ(Run({"reg", "get", "Software\\QXGprsSim", "IMSI"}).output, "46\n");
}

TEST_F(ClientTest, IsNotTheOnlyWayIn) {
    const auto phone = StartPhone();
    phone->imsi = "460001234567890";
    const Ended imsi = End(*StartProgram({VARKEL_EXAMPLES "/imsi.sh", "--unit-file", scratch / "unit.conf"}));
    EXPECT_EQ(imsi.output, "460\n") << imsi.errors;

    const auto listener = StartProgram({VARKEL_BUILT_EXAMPLES "/link_listener", "2"});
    ASSERT_TRUE(ServeUntil([&] { return phone->listeners.size() == 1; }));
    phone->Notify(1, 0);
    const Ended heard = End(*listener);
    EXPECT_EQ(heard.output, "no data, reason 11\ndata works, reason 0\n") << heard.errors;
    EXPECT_EQ(heard.code, 0);
    EXPECT_TRUE(ServeUntil([&] { return phone->listeners.empty(); }));
}

TEST_F(ClientTest, HasEveryCommandInItsManualAndItsCompletion) {
    const std::string help = Run({"--help"}).output;
    const std::string manual = FileContent(VARKEL_DATA_DIRECTORY "/man/varkelctl.1");
    const std::string completion = FileContent(VARKEL_DATA_DIRECTORY "/completions/varkelctl");
    std::istringstream lines(help.substr(help.find("Subcommands:\n")));
    int commands = 0;
    std::string line;
    for (std::getline(lines, line); std::getline(lines, line) && line.starts_with("  "); ++commands) {
        const std::string command = line.substr(2, line.find(' ', 2) - 2);
        EXPECT_THAT(manual, testing::ContainsRegex("\n\\.B[IR]? \"?" + command));
        EXPECT_THAT(completion, testing::HasSubstr(command));
    }
    EXPECT_GE(commands, 11);
}

}  // namespace
}  // namespace varkel::test
