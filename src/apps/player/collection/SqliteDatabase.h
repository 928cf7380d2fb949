#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace pxvis::player {

// A connection to an SQLite file that may come from a stranger. Results are SQLite's codes, without
// their extension. One thread at a time.
class SqliteDatabase
{
public:
    static constexpr int busyMilliseconds = 3000; // how long it waits for another process

    // `flags` of sqlite3_open_v2. What was open is closed.
    int Open(const std::string& name, int flags);
    void Close();

    bool IsReadOnly() const; // though asked for otherwise

    void SetBusyTime(int milliseconds);
    // Operations that take longer than that from now on give SQLITE_INTERRUPT; 0: no limit.
    void SetTimeLimit(int milliseconds);
    // Reads what lies in front of a fault, of which nothing may be written.
    void TolerateFaults();

    int Run(const char* statements);
    int Number(const char* query, int64_t& number); // the first column of the only row

    sqlite3* Get() const { return m_connection.get(); }

private:
    struct Closer
    {
        void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
    };

    static int IsLate(void* database);
    void Harden();

    std::unique_ptr<sqlite3, Closer> m_connection;
    int64_t m_deadline = 0; // of the monotonic clock, ns
};

// A prepared statement of a database that outlives it.
class SqliteStatement
{
public:
    int Prepare(const SqliteDatabase& database, const char* text);

    bool IsPrepared() const { return m_statement != nullptr; }

    // Parameters are numbered from 1, columns from 0. Texts are copied.
    void Bind(int parameter, std::string_view text);
    void Bind(int parameter, int64_t number);
    int Step();
    void Reset(); // the parameters stay
    std::string Text(int column) const;
    int64_t Number(int column) const;

private:
    struct Closer
    {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    std::unique_ptr<sqlite3_stmt, Closer> m_statement;
};

}
