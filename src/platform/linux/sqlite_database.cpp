#include "platform/linux/sqlite_database.h"

#include <sqlite3.h>

namespace varkel {

SqliteStatement::SqliteStatement(sqlite3* database, std::string_view sql) {
    sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &m_statement, nullptr);
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(m_statement);
}

SqliteStatement& SqliteStatement::BindText(int parameter, std::string_view text) {
    // A null pointer would bind NULL instead of the empty text.
    const char* const bytes = text.empty() ? "" : text.data();
    sqlite3_bind_text(m_statement, parameter, bytes, static_cast<int>(text.size()), SQLITE_STATIC);
    return *this;
}

SqliteStatement& SqliteStatement::BindBlob(int parameter, std::span<const std::byte> bytes) {
    if (bytes.empty()) {
        sqlite3_bind_zeroblob(m_statement, parameter, 0);
    } else {
        sqlite3_bind_blob(m_statement, parameter, bytes.data(), static_cast<int>(bytes.size()),
                          SQLITE_STATIC);
    }
    return *this;
}

SqliteStatement& SqliteStatement::BindInt(int parameter, long long value) {
    sqlite3_bind_int64(m_statement, parameter, value);
    return *this;
}

SqliteStep SqliteStatement::Step() {
    if (!m_statement) return SqliteStep::Failed;
    const int result = sqlite3_step(m_statement);
    return result == SQLITE_ROW    ? SqliteStep::Row
           : result == SQLITE_DONE ? SqliteStep::Done
                                   : SqliteStep::Failed;
}

bool SqliteStatement::Run() {
    SqliteStep step = SqliteStep::Row;
    while (step == SqliteStep::Row)
        step = Step();
    return step == SqliteStep::Done;
}

std::string_view SqliteStatement::Text(int column) const {
    const unsigned char* const text = sqlite3_column_text(m_statement, column);
    if (!text) return {};
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column));
    return {reinterpret_cast<const char*>(text), size};
}

std::span<const std::byte> SqliteStatement::Blob(int column) const {
    const void* const bytes = sqlite3_column_blob(m_statement, column);
    if (!bytes) return {};
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column));
    return {static_cast<const std::byte*>(bytes), size};
}

long long SqliteStatement::Int(int column) const {
    return sqlite3_column_int64(m_statement, column);
}

void SqliteDatabase::Closer::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}

bool SqliteDatabase::Open(const std::string& path) {
    sqlite3* database = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX;
    const int result = sqlite3_open_v2(path.c_str(), &database, flags, nullptr);
    m_database.reset(database);
    if (result != SQLITE_OK) return false;
    sqlite3_extended_result_codes(database, 0);
    sqlite3_busy_timeout(database, busyTimeout);
    return true;
}

bool SqliteDatabase::Execute(const char* sql) {
    return sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

int SqliteDatabase::Changes() const {
    return sqlite3_changes(m_database.get());
}

std::string SqliteDatabase::LastProblem() const {
    return sqlite3_errmsg(m_database.get());
}

bool SqliteDatabase::Damaged() const {
    const int code = sqlite3_errcode(m_database.get()) & 0xFF;
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

bool SqliteDatabase::Sync() {
    // A commit leaves its pages in the write-ahead log and does not wait for the disk.
    sqlite3_file* log = nullptr;
    if (sqlite3_file_control(m_database.get(), "main", SQLITE_FCNTL_JOURNAL_POINTER, &log) != SQLITE_OK)
        return false;
    if (!log || !log->pMethods) return false;
    return log->pMethods->xSync(log, SQLITE_SYNC_NORMAL) == SQLITE_OK;
}

}  // namespace varkel
