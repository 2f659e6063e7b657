#include "platform/linux/sqlite_registry.h"

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <utility>

#include "platform/linux/directories.h"
#include "platform/linux/file_descriptor.h"
#include "platform/linux/sqlite_database.h"

namespace varkel {

namespace {

constexpr long long markerType = 0;

// WAL lets other processes read while we write. NORMAL leaves the waiting for the disk to RegFlushKey; a
// power cut before it may lose the last values but never spoils the file. The cache is 64 KiB.
constexpr const char* setUp =
    "PRAGMA journal_mode=WAL;"
    "PRAGMA synchronous=NORMAL;"
    "PRAGMA cache_size=-64;"
    "CREATE TABLE IF NOT EXISTS registry("
    "key TEXT NOT NULL COLLATE NOCASE, name TEXT NOT NULL COLLATE NOCASE, type INTEGER NOT NULL, "
    "value BLOB NOT NULL, PRIMARY KEY(key, name)) WITHOUT ROWID";

std::string_view WithoutTrailingBackslashes(std::string_view key) {
    while (key.ends_with('\\'))
        key.remove_suffix(1);
    return key;
}

bool ValidName(std::string_view name) {
    return name.size() <= Registry::longestName && name.find('\0') == std::string_view::npos;
}

std::optional<RegistryType> KnownType(long long type) {
    for (const RegistryType known : {RegistryType::Sz, RegistryType::Binary, RegistryType::Dword}) {
        if (type == static_cast<long long>(known)) return known;
    }
    return std::nullopt;
}

// Two programs that find a damaged file at once must not set each other's new one aside. Whoever holds the
// lock is done within the busy time-outs of a few statements; after that a stuck one is no reason to wait.
FileDescriptor LockOpening(const std::string& path) {
    FileDescriptor lock(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    constexpr int tries = 100;
    for (int i = 0; lock && i < tries && flock(lock.Get(), LOCK_EX | LOCK_NB) != 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
    return lock;
}

// The value in columns `type` and `type` + 1 of the current row.
std::optional<RegistryValue> ValueOfRow(const SqliteStatement& row, int type) {
    const auto known = KnownType(row.Int(type));
    const auto bytes = row.Blob(type + 1);
    if (!known || bytes.size() > Registry::largestValue) return std::nullopt;
    return RegistryValue{*known, {bytes.begin(), bytes.end()}};
}

}  // namespace

// The open database with its lock.
class SqliteRegistry::File {
  public:
    File(std::string path, ProblemSink onProblem)
        : m_path(std::move(path)), m_onProblem(std::move(onProblem)) {}

    bool Open();
    bool CreateKey(std::string_view key, bool& created);
    std::optional<RegistryValue> Query(std::string_view key, std::string_view name);
    bool Set(std::string_view key, std::string_view name, const RegistryValue& value);
    bool Sync();
    std::vector<RegistryEntry> List(std::string_view key);

  private:
    enum class State { Sound, Damaged, Unusable };
    State TryOpen();
    bool MakeFile();
    void SetAside();
    // Hands `succeeded` on; tells of the first failure after a success.
    bool Checked(bool succeeded);

    const std::string m_path;
    const ProblemSink m_onProblem;
    std::mutex m_mutex;
    SqliteDatabase m_database;
    bool m_failing = false;
};

bool SqliteRegistry::File::Open() {
    const std::string directory = std::filesystem::path(m_path).parent_path().string();
    if (!MakePrivateDirectories(directory)) {
        Report(m_onProblem, "the registry's directory " + directory + " cannot be made");
        return false;
    }
    const FileDescriptor lock = LockOpening(m_path + ".lock");
    State state = MakeFile() ? TryOpen() : State::Unusable;
    if (state == State::Damaged) {
        m_database.Close();
        SetAside();
        state = MakeFile() ? TryOpen() : State::Unusable;
    }
    if (state == State::Sound) return true;
    Report(m_onProblem, "the registry " + m_path + " cannot be opened");
    return false;
}

// SQLite would make the file readable for everybody. An existing file is never opened here, because closing
// it again would give up the locks that this process holds on it.
bool SqliteRegistry::File::MakeFile() {
    const FileDescriptor file(open(m_path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (file) return true;
    struct stat status {};
    if (lstat(m_path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    return (status.st_mode & 0777) == 0600 || chmod(m_path.c_str(), 0600) == 0;
}

SqliteRegistry::File::State SqliteRegistry::File::TryOpen() {
    const auto failed = [this] { return m_database.Damaged() ? State::Damaged : State::Unusable; };
    if (!m_database.Open(m_path) || !m_database.Execute(setUp)) return failed();
    SqliteStatement check(m_database.Get(), "PRAGMA quick_check(1)");
    if (check.Step() != SqliteStep::Row) return failed();
    if (check.Text(0) != "ok") return State::Damaged;
    // A table of that name with other columns is no registry.
    SqliteStatement columns(m_database.Get(), "SELECT key, name, type, value FROM registry LIMIT 0");
    return columns.Run() ? State::Sound : State::Damaged;
}

void SqliteRegistry::File::SetAside() {
    const std::string aside = m_path + ".damaged";
    std::remove((aside + "-wal").c_str());
    std::rename((m_path + "-wal").c_str(), (aside + "-wal").c_str());
    std::remove((m_path + "-shm").c_str());
    std::rename(m_path.c_str(), aside.c_str());
    Report(m_onProblem,
           "the registry " + m_path + " was damaged; it is now " + aside + ", and a new one begins");
}

bool SqliteRegistry::File::Checked(bool succeeded) {
    if (!succeeded && !m_failing)
        Report(m_onProblem, "the registry " + m_path + " fails: " + m_database.LastProblem());
    m_failing = !succeeded;
    return succeeded;
}

bool SqliteRegistry::File::CreateKey(std::string_view key, bool& created) {
    std::lock_guard lock(m_mutex);
    SqliteStatement insert(m_database.Get(),
                           "INSERT INTO registry SELECT ?1, '', ?2, x'' "
                           "WHERE NOT EXISTS (SELECT 1 FROM registry WHERE key = ?1)");
    const bool done = Checked(insert.BindText(1, key).BindInt(2, markerType).Run());
    created = done && m_database.Changes() == 1;
    return done;
}

std::optional<RegistryValue> SqliteRegistry::File::Query(std::string_view key, std::string_view name) {
    std::lock_guard lock(m_mutex);
    SqliteStatement query(m_database.Get(), "SELECT type, value FROM registry WHERE key = ?1 AND name = ?2");
    const SqliteStep step = query.BindText(1, key).BindText(2, name).Step();
    if (!Checked(step != SqliteStep::Failed) || step == SqliteStep::Done) return std::nullopt;
    return ValueOfRow(query, 0);
}

bool SqliteRegistry::File::Set(std::string_view key, std::string_view name, const RegistryValue& value) {
    std::lock_guard lock(m_mutex);
    // Key and name keep the spelling in which they were first written.
    SqliteStatement upsert(m_database.Get(),
                           "INSERT INTO registry VALUES("
                           "COALESCE((SELECT key FROM registry WHERE key = ?1 LIMIT 1), ?1), ?2, ?3, ?4) "
                           "ON CONFLICT DO UPDATE SET type = ?3, value = ?4");
    upsert.BindText(1, key).BindText(2, name).BindInt(3, static_cast<long long>(value.type));
    return Checked(upsert.BindBlob(4, value.bytes).Run());
}

bool SqliteRegistry::File::Sync() {
    std::lock_guard lock(m_mutex);
    return Checked(m_database.Sync());
}

std::vector<RegistryEntry> SqliteRegistry::File::List(std::string_view key) {
    std::lock_guard lock(m_mutex);
    // "]" follows the backslash, so the range holds exactly what begins with the key and a backslash.
    SqliteStatement query(
        m_database.Get(),
        "SELECT key, name, type, value FROM registry WHERE type <> ?1 AND (?2 = '' OR key = ?2 "
        "OR (key > ?2 || '\\' AND key < ?2 || ']')) ORDER BY key, name LIMIT ?3");
    query.BindInt(1, markerType).BindText(2, key).BindInt(3, static_cast<long long>(listLimit));
    std::vector<RegistryEntry> entries;
    SqliteStep step = query.Step();
    for (; step == SqliteStep::Row; step = query.Step()) {
        if (auto value = ValueOfRow(query, 2))
            entries.push_back({std::string(query.Text(0)), std::string(query.Text(1)), std::move(*value)});
    }
    Checked(step == SqliteStep::Done);
    return entries;
}

namespace {

class SqliteRegistryKey final : public RegistryKey {
  public:
    SqliteRegistryKey(std::shared_ptr<SqliteRegistry::File> file, std::string key)
        : m_file(std::move(file)), m_key(std::move(key)) {}

    std::optional<RegistryValue> RegQueryValueEx(std::string_view name) override {
        return ValidName(name) ? m_file->Query(m_key, name) : std::nullopt;
    }

    bool RegSetValueEx(std::string_view name, const RegistryValue& value) override {
        if (!ValidName(name) || value.bytes.size() > Registry::largestValue) return false;
        return KnownType(static_cast<long long>(value.type)) && m_file->Set(m_key, name, value);
    }

  private:
    const std::shared_ptr<SqliteRegistry::File> m_file;
    const std::string m_key;
};

}  // namespace

std::unique_ptr<SqliteRegistry> SqliteRegistry::Open(const std::string& path, ProblemSink onProblem) {
    auto file = std::make_shared<File>(path, std::move(onProblem));
    if (!file->Open()) return nullptr;
    return std::unique_ptr<SqliteRegistry>(new SqliteRegistry(std::move(file)));
}

SqliteRegistry::SqliteRegistry(std::shared_ptr<File> file) : m_file(std::move(file)) {}

SqliteRegistry::~SqliteRegistry() = default;

std::unique_ptr<RegistryKey> SqliteRegistry::RegCreateKeyEx(std::string_view key, bool& created) {
    created = false;
    const std::string_view path = WithoutTrailingBackslashes(key);
    if (path.empty() || !ValidName(path) || !m_file->CreateKey(path, created)) return nullptr;
    return std::make_unique<SqliteRegistryKey>(m_file, std::string(path));
}

bool SqliteRegistry::RegFlushKey() {
    return m_file->Sync();
}

std::vector<RegistryEntry> SqliteRegistry::List(std::string_view key) {
    return m_file->List(WithoutTrailingBackslashes(key));
}

}  // namespace varkel
