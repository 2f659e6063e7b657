// How long a short message takes from hexadecimal text to record and back, in the code page of Chinese units.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <string>

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

const std::string septets = head + "0000" + time + "0CC8329BFD065DDF72363904" + tail;
const std::string chinese = [] {
    std::string hex = head + "0008" + time + "86";
    for (unsigned i = 0; i < 67; ++i) {
        char unit[5];
        std::snprintf(unit, sizeof unit, "%04X", 0x4E00 + 37 * i);
        hex += unit;
    }
    return hex + tail;
}();

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

BENCHMARK_CAPTURE(Decode, Septets12, septets, 12);
BENCHMARK_CAPTURE(Decode, Chinese67, chinese, 67);
BENCHMARK_CAPTURE(Encode, Letters12, septets);
BENCHMARK_CAPTURE(Encode, Chinese67, chinese);

}  // namespace

BENCHMARK_MAIN();
