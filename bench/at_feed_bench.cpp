// How fast the channel takes in what a modem says: ordinary traffic in reads of 64 bytes.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <string>
#include <vector>

#include "platform/linux/linux_runtime.h"
#include "platform/linux/linux_unit_files.h"
#include "tests/modem/channel_parts.h"
#include "tests/support/scratch.h"

namespace {

using namespace varkel;
using namespace varkel::test;

// A minute of a module that is used: polls, a call, a message, the phonebook.
const std::string& Traffic() {
    static const std::string traffic = [] {
        std::string text;
        for (int i = 0; i < 6; ++i)
            text += "AT+CSQ\r\r\n+CSQ: 18,99\r\n\r\nOK\r\n";
        text +=
            "\r\nRING\r\n\r\n+CLIP: \"+8613800138000\",145,\"\",,\"\",0\r\n\r\nRING\r\n\r\nNO CARRIER\r\n";
        text += "\r\n+CMTI: \"SM\",3\r\nAT+CMGR=3\r\r\n+CMGR: 0,,44\r\n";
        text +=
            "0891683108100005F0240D91683108108300F000089030708150602318"
            "4F60597D002C0020006D0065006500740020006D0065\r\n\r\nOK\r\n";
        for (int i = 1; i <= 10; ++i) {
            text += "+CPBR: " + std::to_string(i) + ",\"1380013800" + std::to_string(i) +
                    "\",129,\"5F204E0900200031003200330034\"\r\n";
        }
        text += "\r\nOK\r\nAT+CREG?\r\r\n+CREG: 0,1\r\n\r\nOK\r\nAT+VTS=1\r\r\nOK\r\n\r\n+DISC: 0\r\n";
        return text;
    }();
    return traffic;
}

std::vector<std::string_view> Reads() {
    std::vector<std::string_view> reads;
    const std::string_view all = Traffic();
    for (std::size_t at = 0; at < all.size(); at += 64)
        reads.push_back(all.substr(at, 64));
    return reads;
}

void Report(benchmark::State& state) {
    const auto lines = std::count(Traffic().begin(), Traffic().end(), '\n');
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(Traffic().size()));
    state.counters["ns/line"] = benchmark::Counter(static_cast<double>(state.iterations() * lines) * 1e-9,
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void Feed(benchmark::State& state, LogLevel level) {
    const ScratchDirectory scratch;
    ChannelParts<LinuxRuntime, LinuxUnitFiles> parts{LinuxRuntime(),
                                                     LinuxUnitFiles(scratch.Path(), scratch.Path())};
    parts.log.Open("Nandflash\\3G", 4 << 20, level);
    ModemHandlers handlers;
    handlers.OnSignalStatus = handlers.OnMsComeIn = handlers.OnMsContent = handlers.OnRing =
        handlers.OnRingNo = handlers.OnPhoneBookContent =
            [](void*, std::string_view text) { benchmark::DoNotOptimize(text.data()); };
    handlers.OnAtResult = [](void*, AtResult result) { benchmark::DoNotOptimize(result); };
    parts.channel.SetHandlers(handlers);
    parts.channel.Attach(parts.link, &parts);
    const auto reads = Reads();
    for (auto _ : state) {
        for (const std::string_view read : reads)
            parts.channel.ProcessRcv(read);
    }
    Report(state);
}

void SearchInOnePass(benchmark::State& state) {
    const auto reads = Reads();
    for (auto _ : state) {
        for (const std::string_view read : reads) {
            KeywordHits hits = FindKeywords(read);
            while (!hits.Empty())
                benchmark::DoNotOptimize(hits.Position(hits.TakeFirst()));
        }
    }
    Report(state);
}

// What it is compared with: one search for each keyword.
void SearchWordByWord(benchmark::State& state) {
    const auto reads = Reads();
    for (auto _ : state) {
        for (const std::string_view read : reads) {
            for (const std::string_view keyword : keywordTable)
                benchmark::DoNotOptimize(read.find(keyword));
        }
    }
    Report(state);
}

BENCHMARK(SearchWordByWord);
BENCHMARK(SearchInOnePass);
BENCHMARK_CAPTURE(Feed, WithoutLog, LogLevel::None);
BENCHMARK_CAPTURE(Feed, WithLog, LogLevel::Debug);

}  // namespace

BENCHMARK_MAIN();
