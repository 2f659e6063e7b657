#include <cstdlib>
#include <gtest/gtest.h>

#include "platform/linux/linux_runtime.h"
#include "platform/linux/linux_unit_files.h"
#include "stores/isp_list.h"
#include "tests/support/scratch.h"

namespace varkel::test {
namespace {

TEST(Operators, OfANewUnitServeTheirOwnSimsAndAllOthers) {
    ScratchDirectory scratch;
    LinuxRuntime runtime;
    LinuxUnitFiles files(scratch / "flash", VARKEL_ASSETS);
    Log log(runtime, files);
    IspList isps(files, log);
    const auto list = isps.Load();
    EXPECT_GE(list.size(), 120u);
    for (const ISP_Struct& isp : list) {
        const std::string code(isp.operatorCode.View());
        const auto found = isps.Find(code + "0123456789");
        ASSERT_TRUE(found);
        EXPECT_EQ(found->name.View(), isp.name.View()) << code;
        EXPECT_TRUE(isp.dialNumber.View().starts_with("*99") && isp.dialNumber.View().ends_with("#")) << code;
    }
    const std::pair<const char*, const char*> accessPoints[] = {{"460001234567890", "CMNET"},
                                                                {"262011234567890", "internet.telekom"},
                                                                {"310410123456789", "broadband"},
                                                                {"001010123456789", "internet"}};
    for (const auto& [imsi, accessPoint] : accessPoints)
        EXPECT_EQ(isps.Find(imsi)->szAPN.View(), accessPoint) << imsi;
}

TEST(Operators, OfADoubtfulTableMakeNoList) {
    ScratchDirectory scratch;
    const std::string table = scratch / "operators.txt";
    const std::string any = "|Internet|any|internet|||*99#\n";
    const auto make = [&](const std::string& lines) {
        WriteFile(table, lines);
        return std::system(
                   (VARKEL_MAKE_ISP_LIST " " + table + " " + scratch / "list" + " 2>" + scratch / "errors")
                       .c_str()) == 0;
    };
    ASSERT_TRUE(make("# comment\n\nA|B|26201 310410|c|d|e|*99#\n" + any));
    EXPECT_EQ(FileContent(scratch / "list").size(), 3 * 768u);
    const std::string good = "A|B|26201|c|||*99#\n";
    const std::string bad[] = {
        "A|B|26202|c||*99#\n",
        "A||26202|c|||*99#\n",
        "A|B||c|||*99#\n",
        "A|B|2620|c|||*99#\n",
        "A|B|2620x|c|||*99#\n",
        "A|B|26202|c|||\n",
        "A|B|262017|c|||*99#\n",
        "A|B|26202 26202|c|||*99#\n",
        "A|\xC3\xA4|26202|c|||*99#\n",
        "A|B|26202|c|" + std::string(129, 'u') + "||*99#\n",
    };
    for (const std::string& line : bad) {
        EXPECT_FALSE(make(good + line + any)) << line;
        EXPECT_NE(FileContent(scratch / "errors").find(":2: "), std::string::npos) << line;
    }
    EXPECT_FALSE(make(any + good)) << "hidden by the one that serves all";
    EXPECT_FALSE(make(good)) << "some SIMs would have none";
}

}  // namespace
}  // namespace varkel::test
