// The program's entry: the command line, the thread that the screens live on, and the requests to end.
#include <cstdlib>

#include "app/options.h"
#include "app/unit.h"
#include "platform/linux/termination.h"

int main(int argc, char** argv) {
    using namespace varkel;
    int exitCode = EXIT_SUCCESS;
    const auto options = ParseOptions(argc, argv, exitCode);
    if (!options) return exitCode;
    LinuxRuntime runtime;
    MessageLoop loop(runtime);
    Run run{*options, runtime, loop, {}};
    {
        Termination termination([&] {
            loop.Post([&run] {
                if (run.quit) run.quit();
            });
        });
        exitCode = options->headless ? RunHeadless(run) : RunWindowed(run);
    }
    // A thread that hangs in a driver must not keep the program from ending.
    if (runtime.RunningThreads() > 0) std::quick_exit(exitCode);
    return exitCode;
}
