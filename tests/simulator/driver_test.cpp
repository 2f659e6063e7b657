#include <gtest/gtest.h>

#include "tests/simulator/bench_unit.h"

namespace varkel::sim {
namespace {

using test::BenchUnit;

TEST(DriverLibrary, CountsSuspendLocksAndNoticesOneTooFew) {
    BenchUnit bench;
    bench.Driver(DrvFunction::RequireDisableKeySuspend);
    bench.Driver(DrvFunction::RequireDisableKeySuspend);
    bench.Driver(DrvFunction::RequireDisableAutoSuspend);
    bench.Driver(DrvFunction::ReleaseDisableKeySuspend);
    EXPECT_EQ(bench.unit.Head().keySuspendLocks, 1);
    EXPECT_EQ(bench.unit.Head().autoSuspendLocks, 1);
    bench.Driver(DrvFunction::ReleaseDisableAutoSuspend);
    bench.Driver(DrvFunction::ReleaseDisableAutoSuspend);
    EXPECT_EQ(bench.unit.Head().autoSuspendLocks, 0) << "released more often than held";
}

TEST(DriverLibrary, RestartsTheWholeUnit) {
    BenchUnit bench;
    bench.Do({"module on"});
    bench.Start();
    bench.Driver(DrvFunction::SetTmcPower, 1);
    bench.Driver(DrvFunction::SetAudioTo3G, 1);
    bench.Driver(DrvFunction::RequireDisableKeySuspend);
    bench.Driver(DrvFunction::RestartMachine);
    EXPECT_EQ(bench.restarts, 1);
    EXPECT_EQ(bench.Driver(DrvFunction::Get3GPower), 0);
    EXPECT_FALSE(bench.unit.LinePresent());
    EXPECT_EQ(bench.unit.Head().audioTo3G + bench.unit.Head().tmcPower + bench.unit.Head().keySuspendLocks,
              0);
}

}  // namespace
}  // namespace varkel::sim
