// How long a short message takes from hexadecimal text to record and back, in the code page of Chinese units.
#include <benchmark/benchmark.h>
#include <string>

#include "modem/hex_text.h"
#include "modem/sms_pdu.h"
#include "platform/linux/iconv_code_page.h"

namespace {

using namespace varkel;

const CodePage& Page() {
    static const auto page = IconvCodePage::Create("GB18030");
    return *page;
}

const std::string head = "0891683108100005F0240D91683108108300F0";
const std::string time = "90804121000023";
const std::string tail = "\r\n\r\nOK\r\n";

// Units as they come from `unitAt`, in a message.
template <class UnitAt>
std::string Ucs2Message(std::size_t units, UnitAt unitAt) {
    std::string hex = head + "0008" + time;
    const auto put = [&hex](unsigned octet) {
        const auto byte = static_cast<std::uint8_t>(octet);
        char text[3];
        BytesToHex({&byte, 1}, text);
        hex += text;
    };
    put(static_cast<unsigned>(2 * units));
    for (std::size_t i = 0; i < units; ++i) {
        const unsigned unit = unitAt(static_cast<unsigned>(i));
        put(unit >> 8);
        put(unit & 0xFF);
    }
    return hex + tail;
}

void Decode(benchmark::State& state, const std::string& hex, std::size_t length) {
    SmsPduRecord record;
    if (DecodeDeliverPdu(Page(), hex, record) != length) return state.SkipWithError("not decoded");
    for (auto _ : state) {
        benchmark::DoNotOptimize(DecodeDeliverPdu(Page(), hex, record));
        benchmark::ClobberMemory();
    }
}

void Encode(benchmark::State& state, const std::string& received) {
    SmsPduRecord record;
    if (DecodeDeliverPdu(Page(), received, record) == 0) return state.SkipWithError("not decoded");
    record.TP_DCS = 8;
    FixedText<512> pdu;
    if (EncodeSubmitPdu(Page(), record, pdu) == 0) return state.SkipWithError("not encoded");
    for (auto _ : state) {
        benchmark::DoNotOptimize(EncodeSubmitPdu(Page(), record, pdu));
        benchmark::ClobberMemory();
    }
}

const std::string septets = head + "0000" + time + "0CC8329BFD065DDF72363904" + tail;
const std::string chinese = Ucs2Message(67, [](unsigned i) { return 0x4E00 + 37 * i; });
const std::string arabic = Ucs2Message(67, [](unsigned i) { return 0x0627 + i % 20; });  // four bytes each

void Decode12Septets(benchmark::State& state) {
    Decode(state, septets, 12);
}
void Decode67Chinese(benchmark::State& state) {
    Decode(state, chinese, 67);
}
void Decode67Arabic(benchmark::State& state) {
    Decode(state, arabic, 67);
}
void Encode12Letters(benchmark::State& state) {
    Encode(state, septets);
}
void Encode67Chinese(benchmark::State& state) {
    Encode(state, chinese);
}
void MakePage(benchmark::State& state, const char* name) {
    for (auto _ : state)
        benchmark::DoNotOptimize(IconvCodePage::Create(name));
}

BENCHMARK(Decode12Septets);
BENCHMARK(Decode67Chinese);
BENCHMARK(Decode67Arabic);
BENCHMARK(Encode12Letters);
BENCHMARK(Encode67Chinese);
BENCHMARK_CAPTURE(MakePage, GB18030, "GB18030")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(MakePage, CP1251, "CP1251")->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
