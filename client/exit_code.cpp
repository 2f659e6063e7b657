#include "client/exit_code.h"

#include <cstdio>

namespace varkel::client {

ExitCode Fail(ExitCode code, std::string_view why) {
    std::fprintf(stderr, "varkelctl: %.*s\n", static_cast<int>(why.size()), why.data());
    return code;
}

bool PrintLine(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    return std::fflush(stdout) == 0;
}

}  // namespace varkel::client
