#include "apps/player/collection/SqliteDatabase.h"

#include "os/Clock.h"

namespace pxvis::player {

namespace {

constexpr int operationsBetweenLooks = 10'000;
constexpr int longestValue = 1 << 20; // bytes

int Plain(int result)
{
    return result & 0xFF;
}

}

int SqliteDatabase::Open(const std::string& name, int flags)
{
    Close();
    sqlite3* connection = nullptr;
    const int result
        = sqlite3_open_v2(name.c_str(), &connection, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    m_connection.reset(connection);
    if (result == SQLITE_OK)
        Harden();
    return Plain(result);
}

// The tables are plain, so whatever else a file may bring along is of no use but to an attacker.
void SqliteDatabase::Harden()
{
    sqlite3* connection = Get();
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, longestValue);
    sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, 0);
    SetBusyTime(busyMilliseconds);
    Run("PRAGMA cell_size_check = ON; PRAGMA mmap_size = 0; PRAGMA temp_store = MEMORY");
}

void SqliteDatabase::Close()
{
    m_connection.reset();
}

bool SqliteDatabase::IsReadOnly() const
{
    return !m_connection || sqlite3_db_readonly(Get(), "main") != 0;
}

void SqliteDatabase::SetBusyTime(int milliseconds)
{
    if (m_connection)
        sqlite3_busy_timeout(Get(), milliseconds);
}

int SqliteDatabase::IsLate(void* database)
{
    return os::MonotonicNanoseconds() > static_cast<SqliteDatabase*>(database)->m_deadline;
}

void SqliteDatabase::SetTimeLimit(int milliseconds)
{
    m_deadline = os::MonotonicNanoseconds() + int64_t { milliseconds } * 1'000'000;
    sqlite3_progress_handler(Get(), milliseconds > 0 ? operationsBetweenLooks : 0, IsLate, this);
}

void SqliteDatabase::TolerateFaults()
{
    sqlite3_db_config(Get(), SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
    sqlite3_db_config(Get(), SQLITE_DBCONFIG_WRITABLE_SCHEMA, 1, nullptr);
    Run("PRAGMA query_only = ON");
}

int SqliteDatabase::Run(const char* statements)
{
    return Plain(sqlite3_exec(Get(), statements, nullptr, nullptr, nullptr));
}

int SqliteDatabase::Number(const char* query, int64_t& number)
{
    number = 0;
    SqliteStatement statement;
    int result = statement.Prepare(*this, query);
    if (result != SQLITE_OK)
        return result;
    result = statement.Step();
    if (result == SQLITE_ROW)
        number = statement.Number(0);
    return result == SQLITE_ROW || result == SQLITE_DONE ? SQLITE_OK : result;
}

int SqliteStatement::Prepare(const SqliteDatabase& database, const char* text)
{
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v2(database.Get(), text, -1, &statement, nullptr);
    m_statement.reset(statement);
    return Plain(result);
}

void SqliteStatement::Bind(int parameter, std::string_view text)
{
    sqlite3_bind_text(
        m_statement.get(), parameter, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

void SqliteStatement::Bind(int parameter, int64_t number)
{
    sqlite3_bind_int64(m_statement.get(), parameter, number);
}

int SqliteStatement::Step()
{
    return Plain(sqlite3_step(m_statement.get()));
}

void SqliteStatement::Reset()
{
    sqlite3_reset(m_statement.get());
}

std::string SqliteStatement::Text(int column) const
{
    const unsigned char* text = sqlite3_column_text(m_statement.get(), column);
    const int length = sqlite3_column_bytes(m_statement.get(), column);
    return text ? std::string(reinterpret_cast<const char*>(text), static_cast<size_t>(length))
                : std::string();
}

int64_t SqliteStatement::Number(int column) const
{
    return sqlite3_column_int64(m_statement.get(), column);
}

}
