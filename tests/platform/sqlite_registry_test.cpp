#include "platform/linux/sqlite_registry.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <sqlite3.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

#include "platform/linux/initial_registry.h"
#include "platform/text.h"
#include "tests/platform/another_process.h"
#include "tests/platform/durable_files.h"
#include "tests/platform/error_lines.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

RegistryValue Bytes(std::string_view text, RegistryType type = RegistryType::Sz) {
    const auto* const first = reinterpret_cast<const std::byte*>(text.data());
    return {type, {first, first + text.size()}};
}

std::string Text(const RegistryValue& value) {
    return {reinterpret_cast<const char*>(value.bytes.data()), value.bytes.size()};
}

void Execute(const std::string& file, const char* sql, const std::function<void()>& meanwhile = {}) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK);
    if (meanwhile) meanwhile();
    sqlite3_close(database);
}

class SqliteRegistryTest : public testing::Test {
  protected:
    std::unique_ptr<SqliteRegistry> Open() { return Open(path); }
    std::unique_ptr<SqliteRegistry> Open(const std::string& file) {
        return SqliteRegistry::Open(file,
                                    [this](std::string_view problem) { problems.emplace_back(problem); });
    }
    static std::unique_ptr<RegistryKey> Key(Registry& registry, std::string_view key) {
        bool created = false;
        return registry.RegCreateKeyEx(key, created);
    }
    static bool Set(Registry& registry, std::string_view key, std::string_view name,
                    const RegistryValue& value) {
        const auto open = Key(registry, key);
        return open && open->RegSetValueEx(name, value);
    }
    static std::optional<RegistryValue> Get(Registry& registry, std::string_view key, std::string_view name) {
        const auto open = Key(registry, key);
        return open ? open->RegQueryValueEx(name) : std::nullopt;
    }

    test::ScratchDirectory scratch;
    std::string path = scratch / "unit/registry.db";
    std::vector<std::string> problems;
};

TEST_F(SqliteRegistryTest, KeepsKeysAndValuesOfAnyBytes) {
    const std::pair<const char*, RegistryValue> values[] = {
        {"CallStatus", Bytes("odd")},  // 3 bytes stay 3
        {"empty", Bytes("", RegistryType::Binary)},
        {"", Bytes("the key's own")},
        {"NUL", Bytes({"a\0b", 3}, RegistryType::Binary)},
    };
    auto registry = Open();
    bool created = false;
    for (const auto& [name, value] : values) {
        const auto key = registry->RegCreateKeyEx("Software\\Varkel\\", created);
        EXPECT_EQ(created, name == values[0].first);
        EXPECT_FALSE(key->RegQueryValueEx(name));
        EXPECT_TRUE(key->RegSetValueEx(name, value));
    }
    registry = Open();
    const auto key = registry->RegCreateKeyEx("SOFTWARE\\varkel", created);
    EXPECT_FALSE(created);
    for (const auto& [name, value] : values)
        EXPECT_EQ(key->RegQueryValueEx(LowerAscii(name)), value) << name;
    EXPECT_TRUE(key->RegSetValueEx("callstatus", Bytes("\1\0\0\0", RegistryType::Dword)));
    EXPECT_EQ(key->RegQueryValueEx("CallStatus")->type, RegistryType::Dword) << "a new type replaces the old";
    EXPECT_FALSE(Get(*registry, "GPRS\\OPENFLAG", "")) << "what marks the key is no value";
    EXPECT_TRUE(registry->RegCreateKeyEx("gprs\\openflag\\\\", created));
    EXPECT_FALSE(created);
    EXPECT_TRUE(registry->List("GPRS").empty());
    EXPECT_TRUE(problems.empty());
}

TEST_F(SqliteRegistryTest, ListsValuesInTheSpellingFirstWritten) {
    auto registry = Open();
    EXPECT_TRUE(Set(*registry, "GPRS\\NetworkMode", "NetworkMode", Bytes("1")));
    EXPECT_TRUE(Set(*registry, "gprs\\networkmode", "NETWORKMODE", Bytes("2")));
    EXPECT_TRUE(Set(*registry, "gprs\\networkmode", "Account", Bytes("3")));
    EXPECT_TRUE(Set(*registry, "GPRS", "Top", Bytes("4")));
    EXPECT_TRUE(Set(*registry, "GPRSHDVol", "x", Bytes("5")));
    const auto names = [&](std::string_view key) {
        std::string text;
        for (const RegistryEntry& entry : registry->List(key))
            text += entry.key + ":" + entry.name + "=" + static_cast<char>(entry.value.bytes[0]) + " ";
        return text;
    };
    EXPECT_EQ(names("gprs\\"), "GPRS:Top=4 GPRS\\NetworkMode:Account=3 GPRS\\NetworkMode:NetworkMode=2 ");
    EXPECT_EQ(registry->List().size(), 4u);
    EXPECT_TRUE(registry->List("GPR").empty());
}

TEST_F(SqliteRegistryTest, RefusesWhatIsBeyondItsLimits) {
    auto registry = Open();
    const std::string names[] = {"", "\\\\", std::string(256, 'k'), std::string("a\0b", 3)};
    for (const std::string& name : names)
        EXPECT_FALSE(Key(*registry, name)) << name;
    const auto key = Key(*registry, std::string(255, 'k'));
    ASSERT_TRUE(key);
    EXPECT_FALSE(key->RegSetValueEx(std::string(256, 'n'), Bytes("x")));
    EXPECT_FALSE(key->RegSetValueEx("type", Bytes("x", RegistryType{7})));
    const std::string large(Registry::largestValue, 'v');
    EXPECT_TRUE(key->RegSetValueEx("large", Bytes(large)));
    EXPECT_FALSE(key->RegSetValueEx("large", Bytes(large + "v")));
    EXPECT_EQ(key->RegQueryValueEx("large")->bytes.size(), large.size());
    // Texts that would end a statement are texts.
    EXPECT_TRUE(Set(*registry, "'); DROP TABLE registry; --", "\" %s ?1 \xFF", Bytes("x")));
    EXPECT_EQ(Get(*registry, "'); drop table registry; --", "\" %S ?1 \xFF"), Bytes("x"));
}

TEST_F(SqliteRegistryTest, BelongsToTheUserAloneAndLeavesNothingOpen) {
    const auto descriptors = test::OpenDescriptors();
    const int inheritable = test::InheritableDescriptors();
    const mode_t before = umask(0);
    auto registry = Open();
    EXPECT_EQ(test::InheritableDescriptors(), inheritable);
    EXPECT_TRUE(Set(*registry, "k", "n", Bytes("v")));
    EXPECT_EQ(test::FileMode(scratch / "unit"), 0700u);
    for (const char* suffix : {"", "-wal", "-shm", ".lock"})
        EXPECT_EQ(test::FileMode(path + suffix), 0600u) << suffix;
    registry.reset();
    chmod(path.c_str(), 0644);
    registry = Open();
    EXPECT_EQ(test::FileMode(path), 0600u);
    umask(before);
    registry.reset();
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
}

// Whatever sectors of what was not yet flushed are on the disk, at any moment and in the middle of a
// checkpoint, the registry is sound and holds what it held at the last flush or at some moment since.
TEST_F(SqliteRegistryTest, APowerCutLeavesAnEarlierOrALaterValue) {
    std::mt19937_64 random(1);
    int flushed = -1;
    int written = -1;
    int cuts = 0;
    int lost = 0;
    const auto cutPower = [&] {
        test::DurableFiles::CutPower(scratch / "after", random);
        const auto left = Open(scratch / "after/registry.db");
        ASSERT_TRUE(left);
        const auto value = Get(*left, "k", "n");
        const int number = value ? std::stoi(Text(*value)) : -1;
        EXPECT_TRUE(number >= flushed && number <= written) << flushed << " " << number << " " << written;
        ++cuts;
        lost += number < written;
    };
    const test::DurableFiles durable(scratch / "unit", [&] {
        if (written >= 0) cutPower();
    });
    auto registry = Open();
    while (cuts < 40 && !HasFailure()) {
        for (int j = 0; j < 60; ++j) {
            ASSERT_TRUE(Set(*registry, "k", std::to_string(j), Bytes(std::string(3000, 'x'))));
            ++written;
            ASSERT_TRUE(Set(*registry, "k", "n", Bytes(std::to_string(written))));
            if (random() % 100 == 0) cutPower();
        }
        ASSERT_TRUE(registry->RegFlushKey());
        flushed = written;
        cutPower();
    }
    EXPECT_GT(lost, 5) << "cuts that take nothing prove nothing";
    EXPECT_TRUE(problems.empty()) << problems[0];
}

TEST_F(SqliteRegistryTest, AFailingDiskIsReportedAndKeepsTheOldValue) {
    const test::DurableFiles durable(scratch / "unit");
    auto registry = Open();
    ASSERT_TRUE(Set(*registry, "k", "n", Bytes("old")) && registry->RegFlushKey());
    test::DurableFiles::FailSyncs(true);
    EXPECT_FALSE(registry->RegFlushKey());
    EXPECT_EQ(problems.size(), 1u);
    test::DurableFiles::FailSyncs(false);
    EXPECT_TRUE(registry->RegFlushKey());

    // No file grows any more.
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit full{std::filesystem::file_size(path + "-wal"), limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &full);
    const bool set = Set(*registry, "k", "n", Bytes(std::string(60'000, 'n')));
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, before);
    EXPECT_FALSE(set);
    EXPECT_EQ(problems.size(), 2u);
    EXPECT_EQ(Get(*registry, "k", "n"), Bytes("old"));
    EXPECT_TRUE(Set(*registry, "k", "n", Bytes("new")) && registry->RegFlushKey());
    EXPECT_EQ(Get(*registry, "k", "n"), Bytes("new"));
}

TEST_F(SqliteRegistryTest, SetsADamagedFileAsideAndBeginsAnew) {
    Set(*Open(), "k", "n", Bytes(std::string(60'000, 'x')));
    const std::string sound = test::FileContent(path);
    Execute(scratch / "other.db", "CREATE TABLE registry(a, b)");
    const std::pair<const char*, std::string> damaged[] = {
        {"text", "this is no database, not at all"},
        {"zeroes behind the header", sound.substr(0, 100) + std::string(sound.size() - 100, '\0')},
        {"zeroes in the middle", std::string(sound).replace(20'480, 4096, 4096, '\0')},
        {"cut", sound.substr(0, sound.size() - 4096)},
        {"a table of another shape", test::FileContent(scratch / "other.db")},
    };
    for (const auto& [name, bytes] : damaged) {
        test::WriteFile(path, bytes);
        problems.clear();
        const auto registry = Open();
        ASSERT_TRUE(registry) << name;
        EXPECT_EQ(problems.size(), 1u) << name;
        EXPECT_TRUE(std::filesystem::exists(path + ".damaged")) << name;
        EXPECT_TRUE(registry->List().empty()) << name;
        EXPECT_TRUE(Set(*registry, "k", "n", Bytes("v"))) << name;
    }
}

TEST_F(SqliteRegistryTest, ReportsWhatCannotBeOpened) {
    test::WriteFile(scratch / "file", "");
    EXPECT_FALSE(Open(scratch / "file/registry.db"));
    std::filesystem::create_directory(scratch / "directory.db");
    EXPECT_FALSE(Open(scratch / "directory.db"));
    std::filesystem::create_symlink("/etc/passwd", scratch / "link.db");
    EXPECT_FALSE(Open(scratch / "link.db"));
    EXPECT_EQ(problems.size(), 3u);
}

TEST_F(SqliteRegistryTest, IsSharedWithOtherProcessesAndThreads) {
    const auto registry = Open();
    ASSERT_TRUE(registry);
    constexpr std::size_t writers = 4;
    constexpr std::size_t rounds = 50;
    std::vector<pid_t> children;
    for (std::size_t child = 0; child < writers; ++child) {
        children.push_back(test::InAnotherProcess([&] {
            const auto own = Open();  // a connection does not survive a fork
            ASSERT_TRUE(own);
            for (std::size_t i = 0; i < rounds; ++i) {
                const std::string name = std::to_string(child) + "." + std::to_string(i);
                ASSERT_TRUE(Set(*own, "shared", name, Bytes(name)) && (i % 10 != 0 || own->RegFlushKey()));
            }
        }));
    }
    std::jthread reader([&](const std::stop_token& end) {
        while (!end.stop_requested())
            EXPECT_LE(registry->List("shared").size(), writers * rounds);
    });
    for (std::size_t i = 0; i < rounds; ++i)
        EXPECT_TRUE(Set(*registry, "parent", std::to_string(i), Bytes("x")));
    for (const pid_t child : children)
        EXPECT_EQ(test::StatusOf(child), 0);
    EXPECT_EQ(registry->List("shared").size(), writers * rounds);
    EXPECT_EQ(Get(*registry, "SHARED", "3.49"), Bytes("3.49"));
}

TEST_F(SqliteRegistryTest, AWriterElsewhereHoldsItUpForASecondAtMost) {
    const auto registry = Open();
    EXPECT_TRUE(Set(*registry, "k", "n", Bytes("v")));
    Execute(path, "BEGIN IMMEDIATE", [&] {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(Set(*registry, "k", "n", Bytes("w")));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2500));
    });
    EXPECT_EQ(problems.size(), 1u);
    EXPECT_TRUE(Set(*registry, "k", "n", Bytes("w")));
}

TEST_F(SqliteRegistryTest, LoadsInitialValuesThatAreMissing) {
    auto registry = Open();
    EXPECT_TRUE(Set(*registry, "GPRS\\NetworkMode", "Account", Bytes("mine")));
    const auto errors = LoadInitialRegistry(*registry,
                                            "orphan = dword:1\n"
                                            "[GPRS\\OPENFLAG]\n"
                                            "m_GprsAutoOpenFlag = dword:7\n"
                                            "m_GprsAutoOpenFlag = DWORD:0xFFFFFFFF\n"
                                            "bad = dword:4294967296\n"
                                            "[gprs\\networkmode]\n"
                                            "ACCOUNT = dword:2\n"
                                            "[Software\\QXPhoneNum]\n"
                                            "SOS = sz:112 \xD0\xAF\n"
                                            "Empty = sz:\n"
                                            "Blob = hex:0a0Bff\n"
                                            "None = hex:\n"
                                            "bad = hex:0a0\n"
                                            "bad = hex:0g\n"
                                            "bad = 17\n"
                                            "nonsense\n");
    EXPECT_EQ(test::LinesOf(errors), "16 1 5 13 14 15 ");
    EXPECT_EQ(Get(*registry, "GPRS\\NetworkMode", "Account"), Bytes("mine")) << "what is there stays";
    const auto flag = Get(*registry, "GPRS\\OPENFLAG", "m_GprsAutoOpenFlag");
    EXPECT_EQ(flag, Bytes("\xFF\xFF\xFF\xFF", RegistryType::Dword)) << "the later line holds";
    EXPECT_EQ(Get(*registry, "Software\\QXPhoneNum", "sos"), Bytes({"1\0001\0002\0 \0\x2F\x04\0\0", 12}));
    EXPECT_EQ(Get(*registry, "Software\\QXPhoneNum", "empty"), Bytes({"\0\0", 2}));
    EXPECT_EQ(Get(*registry, "Software\\QXPhoneNum", "blob"), Bytes("\x0A\x0B\xFF", RegistryType::Binary));
    EXPECT_EQ(Get(*registry, "Software\\QXPhoneNum", "none"), Bytes("", RegistryType::Binary));
    EXPECT_FALSE(Get(*registry, "Software\\QXPhoneNum", "bad"));
}

}  // namespace
}  // namespace varkel
