#include "platform/linux/linux_unit_files.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/statvfs.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "tests/support/scratch.h"

namespace varkel {
namespace {

namespace fs = std::filesystem;

class LinuxUnitFilesTest : public testing::Test {
  protected:
    test::ScratchDirectory scratch;
    std::string root = scratch / "home/unit";
    std::string assets = scratch / "assets";
    LinuxUnitFiles files{root, assets};
};

TEST_F(LinuxUnitFilesTest, FindsFilesInAnyCaseAndSpelling) {
    const std::string file = "NandFlash\\System\\Phone\\InboxMs.msm";
    EXPECT_FALSE(files.Exists("NandFlash\\System"));
    EXPECT_TRUE(files.CreateDirectory("Nandflash\\System"));
    EXPECT_TRUE(files.CreateDirectory("NANDFLASH\\SYSTEM\\Phone\\"));
    EXPECT_TRUE(files.CreateDirectory("NandFlash\\System")) << "exists already";
    EXPECT_TRUE(files.WriteWhole("\\NandFlash\\system\\phone\\InboxMs.msm", "one"));
    EXPECT_TRUE(files.WriteWhole("nandflash\\\\System\\Phone\\INBOXMS.MSM", "two"));
    EXPECT_EQ(files.ReadWhole("NandFlash\\System\\Phone\\inboxms.msm", 100), "two");
    EXPECT_EQ(test::FileContent(root + "/Nandflash/System/Phone/InboxMs.msm"), "two")
        << "one file, first spelling";
    test::WriteFile(root + "/Nandflash/System/Phone/inboxms.msm", "exact");
    EXPECT_EQ(files.ReadWhole("NandFlash\\System\\Phone\\inboxms.msm", 100), "exact")
        << "the exact name comes first";
    EXPECT_EQ(files.ReadWhole(file, 3), "two");
    std::string bytes = "?";
    EXPECT_EQ(files.Read("NandFlash\\System\\Phone\\none", 100, bytes), FileRead::Missing);
    EXPECT_EQ(files.Read("NandFlash\\none\\none", 100, bytes), FileRead::Missing);
    EXPECT_EQ(files.Read(file, 2, bytes), FileRead::TooLarge);
    EXPECT_EQ(files.Read("NandFlash\\System\\Phone", 100, bytes), FileRead::Failed);
    EXPECT_EQ(files.Read(file + "\\x", 2, bytes), FileRead::Failed);
    EXPECT_EQ(bytes, "");
    EXPECT_FALSE(files.CreateDirectory(file)) << "a file";
    EXPECT_FALSE(files.CreateDirectory("NandFlash\\a\\b")) << "only the last name is made";
    EXPECT_FALSE(files.WriteWhole("NandFlash\\a\\b", "x"));
    EXPECT_TRUE(files.WriteWhole("Other Volume\\file", "x")) << "a volume is always there";
}

TEST_F(LinuxUnitFilesTest, ReadsTheSkinAndTheAssetsBelowTheUnitsOwnFiles) {
    fs::create_directories(assets + "/ResidentFlash2/bin");
    test::WriteFile(assets + "/ResidentFlash2/bin/Msg.wav", "installed");
    EXPECT_EQ(files.ReadWhole("\\residentflash2\\BIN\\msg.wav", 100), "installed");
    EXPECT_TRUE(files.Exists("\\ResidentFlash2\\bin\\msg.wav"));
    EXPECT_FALSE(files.Rename("\\ResidentFlash2\\bin\\msg.wav", "\\ResidentFlash2\\bin\\old.wav"));
    EXPECT_FALSE(files.WriteWhole("\\ResidentFlash2\\bin\\msg.wav", "own"))
        << "no such directory on the unit";
    EXPECT_TRUE(files.CreateDirectory("\\ResidentFlash2\\bin"));
    EXPECT_TRUE(files.WriteWhole("\\ResidentFlash2\\bin\\msg.wav", "own"));
    EXPECT_EQ(files.ReadWhole("\\ResidentFlash2\\bin\\MSG.WAV", 100), "own");
    EXPECT_EQ(test::FileContent(assets + "/ResidentFlash2/bin/Msg.wav"), "installed") << "never written";

    const std::string skin = scratch / "skin";
    fs::create_directories(skin + "/ResidentFlash2/bin");
    test::WriteFile(skin + "/ResidentFlash2/bin/Radio.bmp", "skin");
    test::WriteFile(assets + "/ResidentFlash2/bin/Radio.bmp", "asset");
    LinuxUnitFiles skinned(scratch / "other", assets, skin);
    EXPECT_EQ(skinned.ReadWhole("\\residentflash2\\bin\\Radio.bmp", 100), "skin");
    EXPECT_EQ(skinned.ReadWhole("\\residentflash2\\bin\\Msg.wav", 100), "installed");
    EXPECT_EQ(files.ReadWhole("\\residentflash2\\bin\\Radio.bmp", 100), "asset");
}

TEST_F(LinuxUnitFilesTest, NothingLeadsOutOfTheUnit) {
    test::WriteFile(scratch / "secret", "secret");
    fs::create_directories(root + "/NandFlash");
    fs::create_symlink(scratch.Path(), root + "/NandFlash/out");
    fs::create_symlink(scratch / "secret", root + "/NandFlash/link");
    fs::create_symlink("../../../secret", root + "/NandFlash/relative");
    std::string deep;
    for (int i = 0; i < 1000; ++i)
        deep += "d\\";
    const std::string paths[] = {"..\\secret",
                                 "NandFlash\\..\\..\\..\\secret",
                                 "NandFlash\\.\\..\\secret",
                                 "../../secret",
                                 scratch / "secret",
                                 "NandFlash/../../../secret",
                                 "NandFlash\\out\\secret",
                                 "NandFlash\\link",
                                 "NandFlash\\relative",
                                 std::string("NandFlash\\link\0x", 16),
                                 std::string(300, 'x'),
                                 deep};
    for (const std::string& path : paths) {
        EXPECT_EQ(files.ReadWhole(path, 100), std::nullopt) << path.substr(0, 50);
        EXPECT_EQ(files.StartFile(path + "\\new"), nullptr) << path.substr(0, 50);
        EXPECT_FALSE(files.CreateDirectory(path + "\\new")) << path.substr(0, 50);
    }
    for (const char* path : {"", "\\", "\\\\"}) {
        EXPECT_FALSE(files.Exists(path));
        EXPECT_FALSE(files.WriteWhole(path, "x"));
        EXPECT_EQ(files.StartFile(path), nullptr);
    }
    // Writing over a link replaces the link, not what it leads to.
    EXPECT_TRUE(files.WriteWhole("NandFlash\\link", "own"));
    EXPECT_EQ(files.StartFile("NandFlash\\relative"), nullptr);
    // Nor does a link that waits where a new file is prepared lead there.
    for (const char* name : {"/NandFlash/list.new~", "/NandFlash/reserve~"}) {
        fs::remove(root + name);
        fs::create_symlink(scratch / "secret", root + name);
    }
    (void)files.WriteWhole("NandFlash\\list", "own");
    EXPECT_EQ(test::FileContent(scratch / "secret"), "secret");
}

TEST_F(LinuxUnitFilesTest, BelongsToTheUserAlone) {
    const mode_t before = umask(0);
    EXPECT_TRUE(files.CreateDirectory("NandFlash\\System"));
    EXPECT_TRUE(files.WriteWhole("NandFlash\\System\\file", "x"));
    EXPECT_NE(files.StartFile("NandFlash\\log"), nullptr);
    umask(before);
    for (const char* directory : {"", "/unit", "/unit/NandFlash", "/unit/NandFlash/System"})
        EXPECT_EQ(test::FileMode((scratch / "home") + directory), 0700u) << directory;
    for (const char* file : {"/NandFlash/System/file", "/NandFlash/log"})
        EXPECT_EQ(test::FileMode(root + file), 0600u) << file;
}

TEST_F(LinuxUnitFilesTest, AFailedWriteLeavesTheOldFile) {
    EXPECT_TRUE(files.WriteWhole("NandFlash\\list", "old"));
    const auto descriptors = test::OpenDescriptors();
    // The disk takes 1000 bytes and no more.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{1000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string large(5000, 'x');
    EXPECT_FALSE(files.WriteWhole("NandFlash\\list", large));
    auto log = files.StartFile("NandFlash\\log");
    EXPECT_TRUE(log->Append(std::string(900, 'x')));
    EXPECT_FALSE(log->Append(std::string(900, 'x')));
    log.reset();
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(files.ReadWhole("NandFlash\\list", 100), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(root + "/NandFlash"), {}), 3)
        << "list, log and reserve: nothing is left over";
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
    EXPECT_TRUE(files.WriteWhole("NandFlash\\list", large)) << "and the next write works";
    EXPECT_EQ(files.ReadWhole("NandFlash\\list", 5000), large);
}

TEST_F(LinuxUnitFilesTest, WritersAtOnceLeaveOneOfTheirFilesWhole) {
    EXPECT_TRUE(files.CreateDirectory("NandFlash"));
    std::vector<std::jthread> writers;
    for (char c = 'a'; c < 'e'; ++c)
        writers.emplace_back([&, c] {
            for (int i = 0; i < 20; ++i)
                EXPECT_TRUE(files.WriteWhole("NandFlash\\list", std::string(3000, c)));
        });
    for (int i = 0; i < 200; ++i) {
        const auto content = files.ReadWhole("NandFlash\\list", 10'000);
        if (content) {
            ASSERT_EQ(*content, std::string(3000, content->at(0)));
        }
    }
}

TEST_F(LinuxUnitFilesTest, StartsAndRenamesFilesThatGrow) {
    auto log = files.StartFile("Nandflash\\3G.ini");
    ASSERT_TRUE(log);
    EXPECT_TRUE(log->Append("one\n"));
    EXPECT_TRUE(files.Rename("NandFlash\\3g.INI", "NandFlash\\3G.old.ini"));
    EXPECT_TRUE(log->Append("two\n")) << "an open file goes on under its new name";
    log = files.StartFile("Nandflash\\3G.ini");
    EXPECT_TRUE(log->Append("three\n"));
    EXPECT_EQ(files.ReadWhole("Nandflash\\3G.old.ini", 100), "one\ntwo\n");
    log = files.StartFile("Nandflash\\3G.INI");
    EXPECT_EQ(files.ReadWhole("Nandflash\\3G.ini", 100), "") << "begun anew";
    EXPECT_TRUE(files.Rename("NandFlash\\3g.INI", "NandFlash\\3G.OLD.ini"));
    EXPECT_EQ(std::distance(fs::directory_iterator(root + "/Nandflash"), {}), 1) << "over the older one";
    EXPECT_FALSE(files.Rename("NandFlash\\none", "NandFlash\\x"));
}

TEST_F(LinuxUnitFilesTest, TellsTheFreeSpaceOfAVolume) {
    struct statvfs status {};
    ASSERT_EQ(statvfs("/tmp", &status), 0);
    const auto space = files.GetDiskFreeSpace("NandFlash");
    ASSERT_TRUE(space);
    const double expected = static_cast<double>(status.f_bavail) * static_cast<double>(status.f_frsize);
    EXPECT_NEAR(static_cast<double>(*space), expected, expected / 10);
    EXPECT_TRUE(files.GetDiskFreeSpace("\\NandFlash\\System\\whatever"));
    EXPECT_FALSE(files.GetDiskFreeSpace(".."));
}

}  // namespace
}  // namespace varkel
