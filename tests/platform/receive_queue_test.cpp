#include "platform/receive_queue.h"

#include <gtest/gtest.h>
#include <string>

namespace varkel {
namespace {

std::string TakeChunk(ReceiveQueue& queue, Ticks now) {
    std::string chunk(queue.ChunkSize(), '\0');
    chunk.resize(queue.Take(chunk, now));
    return chunk;
}

TEST(ReceiveQueueTest, IsDueWhenTheLineIsQuietOrTheFirstByteIsOld) {
    ReceiveQueue queue;
    const Ticks start = 0xFFFFFFF0;  // across the wrap
    EXPECT_EQ(queue.DueIn(start), infiniteTicks);
    for (Ticks t = 0; t < 95; t += 5)
        queue.Add("x", start + t);
    EXPECT_EQ(queue.DueIn(start + 90), 10u) << "never quiet, so the first byte counts";
    EXPECT_EQ(queue.DueIn(start + 99), 1u);
    EXPECT_TRUE(queue.Due(start + 100));

    queue.Clear();
    queue.Add("OK\r\n", start);
    EXPECT_FALSE(queue.Due(start + 9));
    EXPECT_TRUE(queue.Due(start + 10));
}

TEST(ReceiveQueueTest, IsDueAtOnceWhenNearlyFullAndTakesNoMoreThanFits) {
    ReceiveQueue queue;
    queue.Add(std::string(767, 'x'), 0);
    EXPECT_FALSE(queue.Due(0));
    queue.Add("x", 0);
    EXPECT_TRUE(queue.Due(0));
    EXPECT_EQ(queue.Add(std::string(1000, 'y'), 0), 256u);
    EXPECT_EQ(queue.Room(), 0u);
    EXPECT_EQ(TakeChunk(queue, 0).size(), 1024u) << "without a line end everything goes";
}

TEST(ReceiveQueueTest, CutsLongDataAtALineEndButNeverAPrompt) {
    const std::string line = std::string(298, 'a') + "\r\n";  // 300
    const struct {
        const char* name;
        std::string queued;
        std::size_t chunk;
    } cuts[] = {
        {"short data goes whole", std::string(500, 'a') + "\r\nrest", 506},
        {"long data ends at the last line end", line + line + "+CPBR: 1", 600},
        {"a closing line end is the last", line + line, 600},
        {"no line end", std::string(700, 'a'), 700},
        {"a closing prompt goes along", line + line + "\r\n> ", 604},
        {"a prompt that is still arriving stays whole", line + line + "+CMGS\r\n>", 600},
        {"a bracket elsewhere is no prompt", line + line + "a> ", 600},
    };
    for (const auto& cut : cuts) {
        ReceiveQueue queue;
        queue.Add(cut.queued, 0);
        EXPECT_EQ(queue.ChunkSize(), cut.chunk) << cut.name;
        const std::string first = TakeChunk(queue, 0);
        EXPECT_EQ(first + TakeChunk(queue, 0), cut.queued) << cut.name;
        EXPECT_TRUE(queue.Empty());
    }
}

}  // namespace
}  // namespace varkel
