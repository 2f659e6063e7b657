// Random changes, made to a box and to a plain list, always leave the same.
#include <algorithm>
#include <gtest/gtest.h>
#include <random>

#include "tests/stores/box_fixture.h"
#include "tests/support/memory_files.h"
#include "tests/support/seeds.h"
#include "tests/support/virtual_runtime.h"

namespace varkel::test {
namespace {

class Model {
  public:
    explicit Model(std::uint64_t seed) : m_random(seed) {
        m_list = Messages(0, static_cast<int>(m_random() % 161) - 1);
        m_files.WriteWhole(path, BytesOf(m_list) + std::string(m_random() % 194, 't'));
        m_shown = m_box.FindSmsRecord();
    }

    void Change() {
        m_files.freeBytes = m_random() % 8 == 0 ? 4096 : 1 << 20;
        const std::size_t row = m_random() % (m_shown.size() + 1);
        const auto choice = m_random() % 128;
        if (choice == 0)
            Expect(m_box.DeleteAll(), StoreResult::Done, {});
        else if (choice < 24)
            Delete(row);
        else if (choice < 48)
            MarkRead(row);
        else if (choice < 72)
            m_shown = m_list;  // the screen looks again
        else
            Append();
        ASSERT_EQ(BytesOf(m_box.FindSmsRecord()), BytesOf(m_list));
        ASSERT_EQ(m_box.UnreadCount(), static_cast<std::size_t>(std::count_if(
                                           m_list.begin(), m_list.end(), [](const SmsRecord& record) {
                                               return record.Index == SmsState::Unread;
                                           })));
    }

  private:
    void Append() {
        const SmsRecord message = Message(m_next++);
        if (m_files.freeBytes < 1 << 20)
            return Expect(m_box.WriteSmsRecord(message), StoreResult::VolumeFull, m_list);
        MessageBox::List expected = m_list;
        expected.push_back(message);
        Expect(m_box.WriteSmsRecord(message), StoreResult::Done, std::move(expected));
    }

    // No two messages are alike here, so that the number tells them apart.
    std::ptrdiff_t PositionOf(std::size_t row) const {
        if (row >= m_shown.size()) return -1;
        const std::string_view number = m_shown[m_shown.size() - 1 - row].szPhoneNo.View();
        for (std::size_t i = 0; i < m_list.size(); ++i) {
            if (m_list[i].szPhoneNo == number) return static_cast<std::ptrdiff_t>(i);
        }
        return -1;
    }

    void Delete(std::size_t row) {
        const auto position = PositionOf(row);
        MessageBox::List expected = m_list;
        if (position >= 0) expected.erase(expected.begin() + position);
        Expect(m_box.Delete(m_shown, row), position < 0 ? StoreResult::NotFound : StoreResult::Done,
               expected);
    }

    void MarkRead(std::size_t row) {
        const auto position = PositionOf(row);
        MessageBox::List expected = m_list;
        if (position >= 0) expected[static_cast<std::size_t>(position)].Index = SmsState::Opened;
        Expect(m_box.MarkRead(m_shown, row), position < 0 ? StoreResult::NotFound : StoreResult::Done,
               expected);
    }

    void Expect(StoreResult result, StoreResult wanted, MessageBox::List expected) {
        EXPECT_EQ(result, wanted);
        if (wanted == StoreResult::Done && expected.size() > SmsBoxCapacity)
            expected.erase(expected.begin(), expected.end() - SmsBoxCapacity);
        m_list = std::move(expected);
    }

    static constexpr const char* path = "NandFlash\\System\\Phone\\InboxMs.msm";
    std::mt19937_64 m_random;
    VirtualRuntime m_runtime{1};
    MemoryFiles m_files;
    Log m_log{m_runtime, m_files};
    MessageBox m_box{m_files, m_log, SmsBox::Inbox};
    MessageBox::List m_list;
    MessageBox::List m_shown;
    int m_next = 1000;
};

TEST(RandomChanges, LeaveWhatAListWouldHold) {
    const std::uint64_t seeds = SeedCount(300);
    for (std::uint64_t seed = 1; seed <= seeds && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Model model(seed);
        for (int i = 0; i < 100 && !testing::Test::HasFatalFailure(); ++i)
            model.Change();
    }
}

}  // namespace
}  // namespace varkel::test
