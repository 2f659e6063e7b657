// A thin layer over the SQLite calls that the registry makes.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace varkel {

enum class SqliteStep { Row, Done, Failed };

// One statement, run once. What is bound must live until the last Step.
class SqliteStatement {
  public:
    SqliteStatement(sqlite3* database, std::string_view sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    // Parameters count from 1, columns from 0.
    SqliteStatement& BindText(int parameter, std::string_view text);
    SqliteStatement& BindBlob(int parameter, std::span<const std::byte> bytes);
    SqliteStatement& BindInt(int parameter, long long value);
    SqliteStep Step();
    // Runs it to its end; false when it failed.
    bool Run();

    // Views are valid until the next Step.
    std::string_view Text(int column) const;
    std::span<const std::byte> Blob(int column) const;
    long long Int(int column) const;

  private:
    sqlite3_stmt* m_statement = nullptr;
};

// A database file; every call on it from one thread at a time.
class SqliteDatabase {
  public:
    // Opens an existing file for reading and writing. Other processes may hold it for up to a second before a
    // statement gives up.
    bool Open(const std::string& path);
    void Close() { m_database.reset(); }

    sqlite3* Get() const { return m_database.get(); }
    bool Execute(const char* sql);
    // The rows that the last statement inserted, changed or deleted.
    int Changes() const;
    // The system's word for the last failure, and whether it means that the file itself is spoilt.
    std::string LastProblem() const;
    bool Damaged() const;
    // Puts every committed change on the disk.
    bool Sync();

    static constexpr int busyTimeout = 1000;  // ms

  private:
    struct Closer {
        void operator()(sqlite3* database) const;
    };
    std::unique_ptr<sqlite3, Closer> m_database;
};

}  // namespace varkel
