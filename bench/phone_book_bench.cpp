// What it costs to find the name for a number among 2000 local entries on the file system and 250 of the SIM:
// one of the last local ones, one of the SIM, and one that nobody has.
#include <benchmark/benchmark.h>

#include "session/phone_book.h"
#include "tests/stores/stores_fixture.h"
#include "tests/support/session_bench.h"

namespace {

using namespace varkel;
using namespace varkel::test;

struct FullBooks : SessionBench {
    FullBooks() {
        std::filesystem::create_directories(scratch / "NandFlash/System/Phone");
        (void)disk.WriteWhole("NandFlash\\System\\Phone\\phonebook.msm", BytesOf(Several(Phone, 1, 2000)));
        for (int i = 1; i <= 250; ++i)
            phones.Sim().Put({i, std::to_string(13900000000 + i), "张三李四王五赵六钱七孙八周九"});
    }

    ScratchDirectory scratch;
    LinuxUnitFiles disk{scratch.Path(), scratch.Path()};
    Platform onDisk{runtime, loop,      serial, registry, objects, windows,  unit,     dialUp, icmp,
                    disk,    processes, sound,  speech,   notices, language, codePage, log};
    SessionState state;
    Settings settings{registry};
    CATChannel at{runtime, unit, windows, log};
    Session session{onDisk, state, settings, at, screens};
    CommandTurn turn{runtime, at};
    PhoneBook phones{session, turn};
};

void NameOf(benchmark::State& state, const char* number) {
    FullBooks books;
    for (auto _ : state)
        benchmark::DoNotOptimize(books.phones.NameOf(number));
}

BENCHMARK_CAPTURE(NameOf, OfTheLastLocalEntry, "13800140000")->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK_CAPTURE(NameOf, OfTheLastSimEntry, "13900000250")->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK_CAPTURE(NameOf, OfNobody, "112")->Repetitions(9)->ReportAggregatesOnly();

}  // namespace

BENCHMARK_MAIN();
