// What the program writes into its options file is what the simulated unit's dialling program reads there.
#include <gtest/gtest.h>
#include <random>

#include "platform/linux/pppd_language.h"
#include "simulator/dial_options.h"

namespace varkel {
namespace {

TEST(DialOptionsAgreement, UserAndPasswordArriveAsTheyAre) {
    constexpr std::string_view characters = "\"\"\\\\\\' #aZ09;$`=\xC3\xB6";
    std::mt19937 random(1);
    const auto anyText = [&] {
        std::string text;
        for (auto left = random() % 12; left > 0; --left)
            text += characters[random() % characters.size()];
        return text;
    };
    for (int i = 0; i < 20'000; ++i) {
        const RasDialParams params{"connet", anyText(), anyText()};
        const auto file = PppdOptions(params);
        ASSERT_TRUE(file);
        const std::string arguments[] = {"call", "connet", "file", "/dev/stdin"};
        const auto options = sim::ParseDialOptions(arguments, [&](const std::string&) { return file; });
        ASSERT_EQ(options.fault, "") << *file;
        ASSERT_EQ(options.user, params.userName) << *file;
        ASSERT_EQ(options.password, params.password) << *file;
    }
}

}  // namespace
}  // namespace varkel
