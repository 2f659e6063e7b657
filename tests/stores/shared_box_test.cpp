// Several threads on one box, as when messages arrive while the user deletes others.
#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <set>
#include <thread>
#include <vector>

#include "tests/stores/stores_fixture.h"

namespace varkel::test {
namespace {

// Two threads append, two delete what they see and one marks it read. In the end the box holds exactly what
// was appended and not deleted, in the order of each thread; and so do the other boxes of the directory.
TEST(SharedBox, LosesNothingBetweenItsThreads) {
    constexpr int messagesPerThread = 60;
    StoresOnDisk disk;
    MessageBox& box = disk.boxes.inbox;
    std::atomic<int> running = 2;
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 2; ++writer) {
        threads.emplace_back([&, writer] {
            for (int i = 0; i < messagesPerThread; ++i)
                EXPECT_EQ(box.WriteSmsRecord(Message(1000 * writer + i)), StoreResult::Done);
            --running;
        });
    }
    MessageBox* const others[] = {&disk.boxes.outbox, &disk.boxes.drafts};
    for (MessageBox* const other : others) {
        threads.emplace_back([other] {
            for (int i = 0; i < 40; ++i)
                EXPECT_EQ(other->WriteSmsRecord(Message(i)), StoreResult::Done);
            EXPECT_EQ(other->Delete(other->FindSmsRecord(), 0), StoreResult::Done);
        });
    }
    std::vector<std::string> deleted[2];
    for (auto& mine : deleted) {
        threads.emplace_back([&] {
            while (running > 0) {
                const auto shown = box.FindSmsRecord();
                const std::size_t row = shown.size() / 2;
                const StoreResult result = box.Delete(shown, row);
                if (result == StoreResult::Done)
                    mine.emplace_back(AtRow(shown, row)->szPhoneNo.View());
                else
                    EXPECT_EQ(result, StoreResult::NotFound);
            }
        });
    }
    threads.emplace_back([&] {
        while (running > 0) {
            const auto shown = box.FindSmsRecord();
            const StoreResult result = box.MarkRead(shown, 0);
            EXPECT_TRUE(result == StoreResult::Done || result == StoreResult::NotFound);
        }
    });
    for (std::thread& thread : threads)
        thread.join();

    for (MessageBox* const other : others)
        EXPECT_EQ(BytesOf(other->FindSmsRecord()), BytesOf(Several(Message, 0, 38)));
    const auto list = box.FindSmsRecord();
    std::set<std::string> all;
    for (const SmsRecord& record : list)
        all.emplace(record.szPhoneNo.View());
    EXPECT_EQ(all.size(), list.size());
    for (const auto& mine : deleted) {
        for (const std::string& number : mine)
            EXPECT_TRUE(all.insert(number).second) << number << " was deleted and is there, or deleted twice";
    }
    EXPECT_EQ(all.size(), 2u * messagesPerThread) << "each is in the box or was deleted";
    EXPECT_TRUE(std::is_sorted(list.begin(), list.end(), [](const SmsRecord& a, const SmsRecord& b) {
        const auto thread = [](const SmsRecord& r) { return r.szPhoneNo.View().substr(0, 8); };
        return thread(a) == thread(b) && a.szPhoneNo.View() < b.szPhoneNo.View();
    })) << "each thread's messages are in their order";
}

}  // namespace
}  // namespace varkel::test
