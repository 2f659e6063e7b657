#include "platform/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/memory_files.h"
#include "tests/support/virtual_runtime.h"

namespace varkel::test {
namespace {

using testing::HasSubstr;

TEST(LogTest, WritesLinesAsRequired) {
    VirtualRuntime runtime(1);
    MemoryFiles files;
    Log log(runtime, files);
    log.Trace("before it is open");
    ASSERT_TRUE(log.Open("Nandflash\\3G", 1 << 20, LogLevel::Debug));
    log.Trace("[BTNEV]enter On%s", "Cpin");
    log.Write(LogLevel::Warning, "%s", std::string(600, 'x').c_str());
    log.Trace("%s", ("x" + std::string(510, 'y') + "虫").c_str());
    log.MaskDigits(true);
    log.Trace("%s", LogText(log, std::string_view("1\0a2", 4)).CStr());
    EXPECT_EQ(files.Content("nandflash\\3g.ini"), "18:05:00 T [BTNEV]enter OnCpin\n18:05:00 W " +
                                                      std::string(512, 'x') + "\n18:05:00 T x" +
                                                      std::string(510, 'y') + "\n18:05:00 T *.a*\n");
    ASSERT_TRUE(log.Open("Nandflash\\3G", 1 << 20, LogLevel::Info));
    log.Trace("not wanted");
    EXPECT_EQ(files.Content("nandflash\\3g.ini"), "") << "begun anew, and silent at this level";
}

TEST(LogTest, SetsAFullFileAsideAndKeepsTheNewestLines) {
    VirtualRuntime runtime(1);
    MemoryFiles files;
    Log log(runtime, files);
    ASSERT_TRUE(log.Open("3G", 1000, LogLevel::Debug));
    for (int i = 0; i < 200; ++i) {
        log.Trace("line %d", i);
        ASSERT_LE(files.Content("3G.ini").size(), 1000u);
    }
    EXPECT_THAT(files.Content("3G.ini"), HasSubstr("line 199\n"));
    EXPECT_GT(files.Content("3G.old.ini").size(), 900u);
}

}  // namespace
}  // namespace varkel::test
