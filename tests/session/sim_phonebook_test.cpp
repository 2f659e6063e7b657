// The SIM's phonebook: reading it while the module opens, and writing into it afterwards.
#include "session/sim_phonebook.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/session/open_module.h"

namespace varkel::test {
namespace {

sim::UnitConfig SimWith(int slots, int nameOctets = 20) {
    sim::UnitConfig config;
    config.sim.phonebookSlots = slots;
    config.sim.nameOctets = nameOctets;
    return config;
}

struct PhoneBench : SessionBench {
    explicit PhoneBench(const sim::UnitConfig& config, std::uint64_t seed = 1) : SessionBench(seed, config) {}

    void Fill(int slot, const std::string& name = "Bob") {
        Happen("book add \"" + name + "\" " + std::to_string(1000 + slot) + " " + std::to_string(slot));
    }

    std::vector<SimEntry> Entries() { return dialog->Phones().Sim().Entries(); }
    std::vector<int> Slots() {
        std::vector<int> slots;
        for (const SimEntry& entry : Entries())
            slots.push_back(entry.slot);
        return slots;
    }

    // Commands of the phonebook and its character set since the trace was taken last.
    std::vector<std::string> Commands() { return StartingWith({"AT+CPB", "AT+CSCS"}, unit.TakeTrace()); }

    // Starts a change and lets the dialog thread work until it is done.
    template <class Change>
    PhoneBookResult Do(Change change) {
        std::optional<PhoneBookResult> result;
        change(dialog->Phones(), [&result](PhoneBookResult outcome) { result = outcome; });
        EXPECT_TRUE(RunUntil([&] { return result.has_value(); }, 60'000));
        return result.value_or(PhoneBookResult::NotFound);
    }
    PhoneBookResult Add(const std::string& name, const std::array<std::string, 4>& numbers,
                        PhoneBookKind book = PhoneBookKind::Sim) {
        return Do([&](PhoneBook& phones, auto done) { phones.Add(book, {name, numbers}, done); });
    }
    PhoneBookResult Delete(const PhoneEntry& seen) {
        return Do([&](PhoneBook& phones, auto done) { phones.Delete(seen, done); });
    }
    std::vector<PhoneEntry> Find(const char* part = "") {
        return dialog->Phones().Find(PhoneBooks::Both, part);
    }
};

TEST(SimPhonebookTest, ReadsBlocksOfTenUntilItHasAll) {
    struct Case {
        int slots;
        std::vector<int> filled;
        std::vector<std::string> commands;
        std::vector<int> read;
    };
    const std::vector<int> ten{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    const std::vector<int> twelve{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const Case cases[] = {
        {250, {}, {}, {}},
        {1, {1}, {}, {}},
        {2, {2}, {"AT+CPBR=1,2"}, {2}},
        {11, ten, {"AT+CPBR=1,10"}, ten},
        {12, twelve, {"AT+CPBR=1,10", "AT+CPBR=11,12"}, twelve},
        {250, {3, 10}, {"AT+CPBR=1,10"}, {3, 10}},
        {30, {2, 25}, {"AT+CPBR=1,10", "AT+CPBR=11,20", "AT+CPBR=21,30"}, {2, 25}},
    };
    for (const Case& each : cases) {
        PhoneBench bench(SimWith(each.slots));
        for (const int slot : each.filled)
            bench.Fill(slot);
        bench.OpenModule();
        EXPECT_EQ(StartingWith({"AT+CPBR"}, bench.unit.TakeTrace()), each.commands) << each.slots;
        EXPECT_EQ(bench.Slots(), each.read) << each.slots;
    }
}

TEST(SimPhonebookTest, NamesNoSlotAbove999AndWaitsForNoEmptyBlock) {
    PhoneBench bench(SimWith(1000));
    bench.Fill(999);
    const std::uint64_t start = bench.runtime.Elapsed();
    bench.OpenModule();
    EXPECT_THAT(bench.Slots(), ElementsAre(999));
    EXPECT_EQ(bench.unit.Count("AT+CPBR=991,999"), 1);
    EXPECT_LT(bench.runtime.Elapsed() - start, 80'000u) << "100 blocks, of which 99 are empty";
}

TEST(SimPhonebookTest, ReadsAFullSimWhateverTheChunks) {
    for (const char* fault : {"split 0", "split 1", "split 7", "split 64"}) {
        PhoneBench bench(SimWith(250, 40));
        for (int slot = 1; slot <= 250; ++slot)
            bench.Fill(slot, "张三李四王五赵六钱七孙八周九");
        bench.Happen(fault);
        bench.OpenModule();
        const auto entries = bench.Entries();
        ASSERT_EQ(entries.size(), 250u) << fault;
        EXPECT_EQ(entries[249], (SimEntry{250, "1250", "张三李四王五赵六钱七孙八周九"}));
        EXPECT_EQ(bench.dialog->Phones().NameOf("1007"), "张三李四王五赵六钱七孙八周九");
        bench.dialog->CloseModule();
        bench.RunFor(5000);
        EXPECT_THAT(bench.Entries(), IsEmpty()) << "the next SIM may be another one";
        EXPECT_EQ(bench.dialog->Phones().NameOf("1007"), "1007");
    }
}

// A phonebook of its own whose modem is the test.
struct LoneBook : SessionBench {
    LoneBook() { book.SetContentEvent(content); }

    std::shared_ptr<Thread> StartReading() {
        return runtime.CreateThread({.name = "reading"}, [this] { complete = book.Read(waits); });
    }
    void Receive(std::string_view chunk) {
        state.m_lastReceive = runtime.GetTickCount();
        book.OnChunk(chunk);
        const std::size_t keyword = chunk.find("+CPBR:");
        if (keyword != std::string_view::npos) book.OnPhoneBookContent(chunk.substr(keyword));
        runtime.Sleep(100);
    }

    SessionState state;
    Settings settings{registry};
    CATChannel at{runtime, unit, windows, log};
    Session session{platform, state, settings, at, screens};
    SimPhonebook book{session};
    OpenWaits waits{runtime};
    std::shared_ptr<Event> content = runtime.CreateEvent(EventReset::Manual);
    bool complete = false;
};

TEST(SimPhonebookTest, PutsLinesTogetherWhereverChunksEnd) {
    const std::string answer =
        "\r\n+CPBR: 1,\"101\",129,\"0041\"\r\n+CPBR: 2,\"102\",145,\"6B22\"\r\n+CPBR: 3,\"103\",129,\"\"\r\n";
    for (std::size_t cut = 1; cut < answer.size(); ++cut) {
        LoneBook bench;
        bench.book.OnPhoneBookNum("+CPBS: \"SM\",3,10\r\n");
        const auto reading = bench.StartReading();
        bench.runtime.Sleep(50);
        bench.Receive(answer.substr(0, cut));
        bench.Receive(answer.substr(cut));
        ASSERT_EQ(reading->Wait(2500), WaitResult::Object0);
        EXPECT_THAT(bench.book.Entries(),
                    testing::UnorderedElementsAre(SimEntry{1, "101", "A"}, SimEntry{2, "102", "欢"},
                                                  SimEntry{3, "103", ""}))
            << "cut at " << cut;
    }
}

TEST(SimPhonebookTest, GivesASilentBlockTwoSecondsAndACancelNone) {
    LoneBook bench;
    bench.book.OnPhoneBookNum("+CPBS: \"SM\",5,30\r\n");
    bench.content->Set();  // left over from before
    const std::uint64_t start = bench.runtime.Elapsed();
    EXPECT_EQ(bench.StartReading()->Wait(infiniteTicks), WaitResult::Object0);
    EXPECT_TRUE(bench.complete);
    EXPECT_NEAR(static_cast<double>(bench.runtime.Elapsed() - start), 6000, 100);
    EXPECT_FALSE(bench.at.OneShotPending());
    const auto reading = bench.StartReading();
    bench.runtime.Sleep(500);
    bench.waits.Cancel();
    EXPECT_EQ(reading->Wait(20), WaitResult::Object0);
    EXPECT_FALSE(bench.complete);
}

TEST(SimPhonebookTest, TakesNoMoreThanIsUsedAndNoSlotTwice) {
    LoneBook bench;
    bench.book.OnPhoneBookNum("+CPBS: \"SM\",2,10\r\n");
    bench.book.OnPhoneBookContent(
        "+CPBR: 1,\"101\",129,\"0041\"\r\n+CPBR: 1,\"102\",129,\"0042\"\r\n"
        "+CPBR: 2,\"10+CPBR: 3,\"103\r\n+CPBR: 4,\"104\",129,\"0044\"\r\n+CPBR: 5,\"105\",129,\"0045\"\r\n");
    EXPECT_THAT(bench.book.Entries(), ElementsAre(SimEntry{1, "101", "A"}, SimEntry{4, "104", "D"}));
    EXPECT_EQ(bench.book.FindName("104"), "D");
    EXPECT_EQ(bench.book.FindName(""), std::nullopt);
    EXPECT_EQ(bench.content->Wait(0), WaitResult::Object0);
}

TEST(SimPhonebookAnswers, AreReadWhateverTheirShape) {
    const std::pair<const char*, SimEntry> lines[] = {
        {"+CPBR: 7 ,\"+86138\",145,\"4f60597D\"", {7, "+86138", "你好"}},
        {"+CPBR: 999,\"\",129,\"0041FFFFFFFF\"", {999, "", "A"}},
        {"+CPBR: 1,\"1\",129,\"Bob Ö\"", {1, "1", "Bob Ö"}},
        {"+CPBR: 1,\"1\",129,\"00410\"", {1, "1", "A"}},
        {"+CPBR: 1,\"1\",129,\"Abe\"", {1, "1", "Abe"}},
        {"+CPBR: 1,\"1\",129,\"D83DDE00\"", {1, "1", "😀"}},
        {"+CPBR: 1,\"1\",129,\"D83D\"", {1, "1", "\xEF\xBF\xBD"}},
        {"+CPBR: 1,\"1\",129,\"\xFF\"", {1, "1", "\xEF\xBF\xBD"}},
    };
    for (const auto& [line, entry] : lines)
        EXPECT_EQ(ParseSimEntry(line), entry) << line;
    for (const char* line :
         {"+CPBR: 1,\"1\",129,\"0041", "+CPBR: 1,\"1,129,0041\"", "+CPBR: 1,1,129,A",
          "+CPBR: x,\"1\",129,\"0041\"", "+CPBR: -1,\"1\",129,\"0041\"", "+CPBR: 1000,\"1\",129,\"0041\"",
          "+CPBR: 99999999999999999999,\"1\",129,\"0041\"", "+CPBR: (1-250),20,20", "+CPBR:", ""})
        EXPECT_EQ(ParseSimEntry(line), std::nullopt) << line;

    const auto size = [](const char* text) {
        const auto parsed = ParseSimBookSize(text);
        return parsed ? std::make_pair(parsed->used, parsed->total) : std::make_pair(-1, -1);
    };
    EXPECT_EQ(size("+CPBS: \"SM\",12,250\r\n\r\nOK\r\n"), std::make_pair(12, 250));
    EXPECT_EQ(size("+CPBS: \"SM\", 0 , (11)\r\n"), std::make_pair(0, 11));
    for (const char* text : {"+CPBS:", "+CPBS: \"SM\",12", "+CPBS: \"SM\",-1,250", "+CPBS: (\"SM\",\"ME\")",
                             "+CPBS: \"SM\",1,99999999999"})
        EXPECT_EQ(size(text), std::make_pair(-1, -1)) << text;

    const auto limits = [](const char* text) {
        const SimBookLimits parsed = ParseSimBookLimits(text);
        return std::make_pair(parsed.number, parsed.name);
    };
    EXPECT_EQ(limits("+CPBW: (1-250),20,(129,145),14\r\n\r\nOK\r\n"), std::make_pair(20, 14));
    EXPECT_EQ(limits("+CPBW: (1-250),(40),(14)\r\n"), std::make_pair(0, 14));
    for (const char* text : {"+CPBW:", "+CPBW: (1-250)", "+CPBW: )))", "+CPBW: ),99999999999,(),99999999999"})
        EXPECT_EQ(limits(text), std::make_pair(0, 0)) << text;
}

TEST(SimPhonebookEditing, WritesInUcs2AndGoesBackToGsm) {
    PhoneBench bench(SimWith(20));
    bench.Fill(1);
    bench.OpenModule();
    bench.unit.TakeTrace();
    EXPECT_EQ(bench.Add("你好", {"138 0013-8000"}), PhoneBookResult::Done);
    EXPECT_THAT(
        bench.Commands(),
        ElementsAre("AT+CSCS=\"UCS2\"", "AT+CPBW=2,\"13800138000\",129,\"4f60597d\"", "AT+CSCS=\"GSM\""));
    EXPECT_EQ(bench.dialog->Phones().NameOf("13800138000"), "你好");
    EXPECT_EQ(bench.dialog->State().m_nSimBookUsed, 2);

    const PhoneEntry seen = bench.Find("0013").at(0);
    EXPECT_EQ(bench.Do([&](PhoneBook& phones, auto done) {
        phones.Change(seen, {"再见", {"10010"}}, done);
    }),
              PhoneBookResult::Done);
    EXPECT_THAT(bench.unit.Command("book list"), HasSubstr("2  10010  再见"));
    EXPECT_EQ(bench.Delete(seen), PhoneBookResult::NotFound) << "it is another entry now";
    EXPECT_EQ(bench.Delete(bench.Find("再").at(0)), PhoneBookResult::Done);
    EXPECT_THAT(bench.unit.Command("book list"), HasSubstr("1 of 20"));
    EXPECT_THAT(bench.Slots(), ElementsAre(1));
}

TEST(SimPhonebookEditing, SaysWhyItCannot) {
    PhoneBench bench(SimWith(2));
    bench.Start("");
    EXPECT_EQ(bench.Add("a", {"1"}), PhoneBookResult::ModuleClosed);
    bench.OpenModule();
    bench.unit.TakeTrace();
    const std::tuple<const char*, const char*, PhoneBookResult> refused[] = {
        {"a name of 21 letters.", "1", PhoneBookResult::NameTooLong},
        {"a", "", PhoneBookResult::NumberInvalid},
        {"a", "1\r\nATD112;", PhoneBookResult::NumberInvalid},
        {"a", "1\",129", PhoneBookResult::NumberInvalid},
        {"a", "123456789012345678901", PhoneBookResult::NumberTooLong},
    };
    for (const auto& [name, number, result] : refused)
        EXPECT_EQ(bench.Add(name, {number}), result) << number;
    EXPECT_THAT(bench.Commands(), IsEmpty()) << "none of it reached the modem";
    EXPECT_EQ(bench.Add("一二三四五六七八九十", {"1"}), PhoneBookResult::NameTooLong) << "said by the SIM";
    EXPECT_EQ(bench.Add("\" \r\nATD112;\r\n", {"+12345678901234567890"}), PhoneBookResult::Done);
    bench.Happen("lose 1");
    const std::uint64_t start = bench.runtime.Elapsed();
    EXPECT_EQ(bench.Add("b", {"2"}), PhoneBookResult::Refused) << "a modem that says nothing";
    EXPECT_LT(bench.runtime.Elapsed() - start, 12'000u);
    EXPECT_EQ(bench.Entries().size(), 1u);
    bench.Happen("lose 0");
    EXPECT_EQ(bench.Add("b", {"2"}), PhoneBookResult::Done);
    EXPECT_EQ(bench.Add("c", {"3"}), PhoneBookResult::SimFull);
}

TEST(SimPhonebookEditing, NeverWritesOverAnEntryThatWasNotRead) {
    PhoneBench bench(SimWith(11));
    for (int slot = 1; slot <= 11; ++slot) {
        if (slot != 5) bench.Fill(slot);
    }
    bench.OpenModule();
    EXPECT_THAT(bench.Slots(), ElementsAre(1, 2, 3, 4, 6, 7, 8, 9, 10)) << "the last slot is not read";
    EXPECT_EQ(bench.Add("new", {"5"}), PhoneBookResult::Done);
    EXPECT_EQ(bench.Add("newer", {"6"}), PhoneBookResult::SimFull);
    EXPECT_THAT(bench.unit.Command("book list"), HasSubstr("11  1011  Bob"));
    EXPECT_THAT(bench.unit.Command("book list"), HasSubstr("5  5  new"));
}

TEST(SimPhonebookEditing, KeepsApartFromMessagesAndThePoll) {
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        PhoneBench bench(SimWith(50), seed);
        bench.OpenModule();
        bench.dialog->Messages().SendSMDll("10010", "meanwhile");
        bench.Happen("sms 10086 \"and another\"", static_cast<Ticks>(seed * 37));
        int done = 0;
        for (int i = 0; i < 5; ++i) {
            bench.dialog->Phones().Add(
                PhoneBookKind::Sim, {"Bob", {std::to_string(i)}},
                [&done](PhoneBookResult result) { done += result == PhoneBookResult::Done; });
        }
        bench.RunFor(30'000);
        EXPECT_EQ(done, 5) << "seed " << seed;
        EXPECT_EQ(bench.Entries().size(), 5u) << "seed " << seed;
        EXPECT_EQ(bench.dialog->Messages().Boxes().inbox.Count(), 1u) << "seed " << seed;
        EXPECT_EQ(bench.Mode(), ScreenMode::Idle) << "seed " << seed;
    }
}

TEST(PhoneBookTest, LooksIntoTheLocalBookFirst) {
    PhoneBench bench(SimWith(20));
    bench.Arrange({"book add \"on the SIM\" 111", "book add \"hidden\" 222"});
    bench.OpenModule();
    constexpr PhoneBookKind local = PhoneBookKind::Local;
    EXPECT_EQ(bench.Add("Grüße 你好", {"333", "", "222", "+86 10"}, local), PhoneBookResult::Done);
    EXPECT_EQ(bench.Add("", {"444"}, local), PhoneBookResult::Done);
    EXPECT_EQ(bench.Add(std::string(60, 'n'), {"1"}, local), PhoneBookResult::NameTooLong);
    EXPECT_EQ(bench.Add("n", {"", std::string(60, '1')}, local), PhoneBookResult::NumberTooLong);
    PhoneBook& phones = bench.dialog->Phones();
    const std::pair<const char*, const char*> names[] = {
        {"111", "on the SIM"}, {"222", "Grüße 你好"}, {"+86 10", "Grüße 你好"},
        {"444", "444"},        {"555", "555"},        {"", ""},
    };
    for (const auto& [number, name] : names)
        EXPECT_EQ(phones.NameOf(number), name) << number;
    EXPECT_EQ(bench.Find().size(), 4u);
    EXPECT_EQ(bench.Find("gR").size(), 1u);
    EXPECT_EQ(bench.Find("22").size(), 2u);
    EXPECT_EQ(phones.Find(PhoneBooks::Sim, "").size(), 2u);
    EXPECT_EQ(phones.Find(PhoneBooks::Local, "").size(), 2u);

    const PhoneEntry seen = bench.Find("333").at(0);
    EXPECT_EQ(bench.Delete(seen), PhoneBookResult::Done);
    EXPECT_EQ(bench.Delete(seen), PhoneBookResult::NotFound);
    bench.files.freeBytes = 0;
    EXPECT_EQ(bench.Add("full", {"1"}, local), PhoneBookResult::VolumeFull);
}

}  // namespace
}  // namespace varkel::test
