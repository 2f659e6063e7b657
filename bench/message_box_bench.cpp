// What an update of a full message box costs: in memory, on the file system, and with the wait for the flash.
#include <atomic>
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <filesystem>
#include <string>

#include "platform/linux/linux_unit_files.h"
#include "stores/message_box.h"
#include "tests/support/memory_files.h"
#include "tests/support/scratch.h"
#include "tests/support/virtual_runtime.h"

namespace {

using namespace varkel;
using namespace varkel::test;

std::atomic<bool> syncing = true;

SmsRecord Message(int number) {
    return MakeSmsRecord(SmsTime("2009-03-07 18:05"), std::to_string(13800138000 + number),
                         std::string(70, 'x'), SmsState::Unread);
}

struct InMemory {
    MemoryFiles files;
};

struct OnDisk {
    OnDisk() { std::filesystem::create_directories(scratch / "NandFlash/System/Phone"); }
    ScratchDirectory scratch;
    LinuxUnitFiles files{scratch.Path(), scratch.Path()};
};

template <class Place>
struct FullBox : Place {
    FullBox() {
        syncing = false;
        for (std::size_t i = 0; i < SmsBoxCapacity; ++i)
            (void)box.WriteSmsRecord(Message(static_cast<int>(i)));
        syncing = true;
    }
    VirtualRuntime runtime{1};
    Log log{runtime, this->files};
    MessageBox box{this->files, log, SmsBox::Inbox};
};

template <class Place>
void Load(benchmark::State& state) {
    FullBox<Place> full;
    for (auto _ : state)
        benchmark::DoNotOptimize(full.box.FindSmsRecord());
}

template <class Place, bool synced>
void Append(benchmark::State& state) {
    FullBox<Place> full;
    syncing = synced;
    int number = 1000;
    for (auto _ : state) {
        if (full.box.WriteSmsRecord(Message(number++)) != StoreResult::Done)
            state.SkipWithError("not appended");
    }
    syncing = true;
}

template <class Place, bool synced>
void MarkRead(benchmark::State& state) {
    FullBox<Place> full;
    syncing = synced;
    std::size_t row = SmsBoxCapacity;
    for (auto _ : state) {
        if (row == SmsBoxCapacity) {
            // All are read by now: a box of unread ones, without counting the time.
            state.PauseTiming();
            syncing = false;
            (void)full.box.DeleteAll();
            for (std::size_t i = 0; i < SmsBoxCapacity; ++i)
                (void)full.box.WriteSmsRecord(Message(static_cast<int>(i)));
            syncing = synced;
            row = 0;
            state.ResumeTiming();
        }
        const auto shown = full.box.FindSmsRecord();
        if (full.box.MarkRead(shown, row++) != StoreResult::Done) state.SkipWithError("not marked");
    }
    syncing = true;
}

BENCHMARK(Load<InMemory>);
BENCHMARK(Load<OnDisk>);
BENCHMARK(Append<InMemory, false>);
BENCHMARK(Append<OnDisk, false>);
BENCHMARK(Append<OnDisk, true>)->UseRealTime();
BENCHMARK(MarkRead<OnDisk, false>);
BENCHMARK(MarkRead<OnDisk, true>)->UseRealTime();

}  // namespace

// Stands before that of the C library.
extern "C" int fsync(int file) {
    static auto* const real = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "fsync"));
    return syncing ? real(file) : 0;
}

BENCHMARK_MAIN();
