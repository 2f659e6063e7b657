#include "platform/linux/unit_settings.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/child_process.h"
#include "platform/linux/device_path.h"
#include "platform/linux/linux_processes.h"
#include "tests/platform/error_lines.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

TEST(UnitSettingsTest, UnderstandsTheExample) {
    const UnitSettings settings = LoadUnitSettings(VARKEL_DATA_DIRECTORY "/unit.conf.example");
    EXPECT_TRUE(settings.errors.empty()) << settings.errors[0];
    EXPECT_EQ(settings.TtyOf("COM7:"), "/dev/ttyUSB2");
}

TEST(UnitSettingsTest, ReadsTheUnitFile) {
    const UnitSettings settings = ParseUnitSettings(
        "[unit]\n"
        "root = flash\n"
        "assets = ../assets/.\n"
        "palette = Auto\n"
        "language = Russian\n"
        "system_code_page = CP936\n"
        "country_code =\n"
        "registry = /var/lib/varkel/registry.db\n"
        "initial_registry = initial.txt\n"
        "dial_up = \"/opt/my pppd\" debug\n"
        "ping = 10.0.0.1 ,192.168.1.1\n"
        "[Serial]\n"
        "com7: = /dev/ttyUSB3\n"
        "COM9: = ttyModem\n"
        "[driver]\n"
        "Get3GPower = constant:1\n"
        "[modem]\n"
        "profile = Standard\n"
        "[programs]\n"
        "\\ResidentFlash2\\bin\\IE\\IE.exe = browser \"two words\" --x\n",
        "/etc/unit");
    EXPECT_EQ(test::LinesOf(settings.errors), "");
    EXPECT_EQ(settings.root, "/etc/unit/flash");
    EXPECT_EQ(settings.assets, "/etc/assets/");
    EXPECT_EQ(settings.palette, PaletteChoice::Auto);
    EXPECT_EQ(settings.language, "russian");
    EXPECT_EQ(settings.systemCodePage, "CP936");
    EXPECT_EQ(settings.countryCode, "");
    EXPECT_EQ(settings.registry, "/var/lib/varkel/registry.db");
    EXPECT_EQ(settings.initialRegistry, "/etc/unit/initial.txt");
    EXPECT_EQ(settings.modem, ModemKind::Standard);
    EXPECT_EQ(settings.dialUp, (std::vector<std::string>{"/opt/my pppd", "debug"}));
    EXPECT_EQ(settings.pingAddresses, (std::vector<std::string>{"10.0.0.1", "192.168.1.1"}));
    EXPECT_EQ(settings.TtyOf("COM7:"), "/dev/ttyUSB3");
    EXPECT_EQ(settings.TtyOf("com9:"), "/etc/unit/ttyModem");
    EXPECT_EQ(settings.TtyOf("COM1:"), "");
    EXPECT_EQ(settings.board.answers[0].source, BoardSource::Constant);
    EXPECT_EQ(settings.programs.at("residentflash2\\bin\\ie\\ie.exe"),
              (std::vector<std::string>{"browser", "two words", "--x"}));
}

TEST(UnitSettingsTest, HasDefaultsForAUserWithoutAUnitFile) {
    setenv("HOME", "/home/somebody", 1);
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(DefaultUnitSettings().registry, "/home/somebody/.local/share/varkel/registry.db");
    setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(DefaultUnitSettings().root, "/home/somebody/.local/share/varkel/flash");
    setenv("XDG_DATA_HOME", "/data", 1);
    const UnitSettings settings = DefaultUnitSettings();
    EXPECT_EQ(settings.root, "/data/varkel/flash");
    EXPECT_EQ(settings.objectPrefix, "varkel-" + std::to_string(geteuid()));
    EXPECT_EQ(settings.TtyOf("COM7:"), "/dev/ttyUSB2");
    EXPECT_TRUE(settings.errors.empty());
}

TEST(UnitSettingsTest, FindsTheUsersOwnUnitFile) {
    test::ScratchDirectory scratch;
    setenv("XDG_CONFIG_HOME", scratch.Path().c_str(), 1);
    EXPECT_EQ(UserUnitSettings().countryCode, "86") << "none is needed";
    std::filesystem::create_directory(scratch / "varkel");
    test::WriteFile(scratch / "varkel/unit.conf", "[unit]\ncountry_code = 49\nroot = flash\n");
    EXPECT_EQ(UserUnitSettings().countryCode, "49");
    EXPECT_EQ(UserUnitSettings().root, scratch / "varkel/flash");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(scratch / "varkel");
    EXPECT_EQ(LoadUnitSettings("unit.conf").root, scratch / "varkel/flash") << "relative to the file";
    std::filesystem::current_path(before);
}

TEST(UnitSettingsTest, ListsWhatItCannotFollowAndKeepsTheDefault) {
    const UnitSettings settings = ParseUnitSettings(
        "[unit]\n"
        "language = klingon\n"
        "bus = tram\n"
        "driver = me\n"
        "object_prefix = a/b\n"
        "root =\n"
        "colour = blue\n"
        "system_code_page = UTF-8\n"
        "country_code = +86\n"
        "dial_up =\n"
        "ping = 10.0.0.1, localhost\n"
        "ping = 1.1.1.1,1.1.1.1,1.1.1.1,1.1.1.1,1.1.1.1,1.1.1.1,1.1.1.1,1.1.1.1,1.1.1.1\n"
        "[serial]\n"
        "COM7: =\n"
        "[programs]\n"
        "\\a = \"\n"
        "[driver]\n"
        "Get3GPower = 1\n"
        "[radio]\n"
        "x = y\n",
        "/");
    EXPECT_EQ(test::LinesOf(settings.errors), "2 3 4 5 6 7 8 9 10 11 12 14 16 20 18 ");
    EXPECT_EQ(settings.language, "english");
    EXPECT_EQ(settings.systemCodePage, "GB18030");
    EXPECT_EQ(settings.countryCode, "86");
    EXPECT_EQ(settings.dialUp, std::vector<std::string>{"/usr/sbin/pppd"});
    EXPECT_TRUE(settings.pingAddresses.empty());
    EXPECT_EQ(settings.TtyOf("COM7:"), "/dev/ttyUSB2");
    for (const char* path : {"/nowhere/unit.conf", "/tmp", "/dev/null/x"}) {
        const UnitSettings missing = LoadUnitSettings(path);
        EXPECT_EQ(missing.errors.size(), 1u) << path;
        EXPECT_EQ(missing.language, "english");
    }
}

TEST(SplitCommandTest, CutsAtBlanksOutsideQuotes) {
    using Parts = std::vector<std::string>;
    EXPECT_EQ(SplitCommand("  a  b\tc "), (Parts{"a", "b", "c"}));
    EXPECT_EQ(SplitCommand("a \"b c\" d\"e f\"g \"\""), (Parts{"a", "b c", "de fg", ""}));
    EXPECT_EQ(SplitCommand("a \"b"), Parts{});
    EXPECT_EQ(SplitCommand(" "), Parts{});
    std::string many = "a";
    for (int i = 1; i < 64; ++i)
        many += " a";
    EXPECT_EQ(SplitCommand(many).size(), 64u);
    EXPECT_EQ(SplitCommand(many + " a"), Parts{});
}

TEST(LinuxProcessesTest, StartsWatchesAndEndsPrograms) {
    const auto descriptors = test::OpenDescriptors();
    {
        LinuxRuntime runtime;
        LinuxProcesses processes(runtime, {{PlainDevicePath("\\Bin\\Short.exe"), {"true"}},
                                           {PlainDevicePath("\\Bin\\Long.exe"), {"sleep", "60"}},
                                           {PlainDevicePath("\\Bin\\None.exe"), {"/no/such/program"}}});
        EXPECT_EQ(processes.CreateProcess("\\Bin\\Unknown.exe"), nullptr);
        EXPECT_EQ(processes.CreateProcess("\\Bin\\None.exe"), nullptr);
        const auto brief = processes.CreateProcess("bin\\SHORT.EXE");
        EXPECT_EQ(brief->Wait(20'000), WaitResult::Object0);
        EXPECT_EQ(brief->Wait(0), WaitResult::Object0);
        brief->TerminateProcess();
        const auto lasting = processes.CreateProcess("\\bin\\long.exe");
        EXPECT_EQ(lasting->Wait(20), WaitResult::Timeout);
        const auto waiter = runtime.CreateThread(
            {"waiter"}, [&] { EXPECT_EQ(lasting->Wait(infiniteTicks), WaitResult::Object0); });
        lasting->TerminateProcess();
        EXPECT_EQ(waiter->Wait(20'000), WaitResult::Object0);
        processes.CreateProcess("\\bin\\long.exe")->TerminateProcess();
    }
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
}

}  // namespace
}  // namespace varkel
