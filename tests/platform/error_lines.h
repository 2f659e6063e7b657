// Which lines of a text its reader complains about.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace varkel::test {

// "2 16 ", from errors that begin with "line 2:" and "line 16:".
inline std::string LinesOf(const std::vector<std::string>& errors) {
    std::string lines;
    for (const std::string& error : errors) {
        EXPECT_TRUE(error.starts_with("line ") && error.find(':') != std::string::npos) << error;
        lines += error.substr(5, error.find(':') - 5) + " ";
    }
    return lines;
}

}  // namespace varkel::test
