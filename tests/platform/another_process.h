// Parts of a test that run in a process of their own.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace varkel::test {

// Ends with 0 when everything that `body` expects came true.
template <class Body>
pid_t InAnotherProcess(Body body) {
    const pid_t child = fork();
    if (child == 0) {
        body();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    return child;
}

inline int StatusOf(pid_t child) {
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

}  // namespace varkel::test
