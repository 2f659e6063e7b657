// The receive path allocates nothing but the chunk itself, and the message codec nothing at all. Not under a
// sanitizer, which has an allocator of its own.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

#include "modem/sms_pdu.h"
#include "tests/modem/channel_parts.h"
#include "tests/support/code_pages.h"

namespace {
thread_local std::size_t allocations = 0;
}

void* operator new(std::size_t size) {
    ++allocations;
    if (void* const memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace varkel::test {
namespace {

TEST(Allocation, IsNotNeededToParseAChunk) {
    VirtualChannel parts;
    parts.channel.Attach(parts.link, &parts);
    const std::string chunks[] = {"AT+CSQ\r\r\n+CSQ: 18,99\r\n\r\nOK\r\n",
                                  "AT+CIMI\r\r\n",
                                  "460001234567890\r\n\r\nOK\r\n",
                                  "\r\nRING\r\n\r\n+CLIP: \"123\",129\r\n",
                                  "+CUSD: 0,\"Hello\",15\r\n",
                                  "ERROR"};
    const std::size_t before = allocations;
    for (int round = 0; round < 100; ++round) {
        for (const std::string& chunk : chunks)
            parts.channel.ProcessRcv(chunk);
    }
    EXPECT_EQ(allocations - before, 0u);
}

TEST(Allocation, IsNotNeededToEncodeOrDecodeAMessage) {
    const CodePage& page = CodePageNamed("GB18030");
    const std::string_view received[] = {
        "0891683108100005F0240D91683108108300F000089080412100002304866B64AD",
        "0891683108100005F0240D91683108108300F00000908041210000230AE8329BFD4697D9EC37\r\n",
        "0891683108100005F0240D91683108108300F000049080412100002303B3E67A"};
    const std::size_t before = allocations;
    std::size_t characters = 0;
    for (const std::string_view hex : received) {
        SmsPduRecord record;
        characters += DecodeDeliverPdu(page, hex, record);
        FixedText<512> pdu;
        characters += EncodeSubmitPdu(page, record, pdu);
        SmsPduRecord made;
        characters += MakeSubmitRecord(page, "+1", "2", record.TP_UD.View(), made) == ValueFault::None;
    }
    EXPECT_EQ(allocations - before, 0u);
    EXPECT_GT(characters, 100u);
}

}  // namespace
}  // namespace varkel::test

#endif
