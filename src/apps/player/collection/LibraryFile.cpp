#include "apps/player/collection/LibraryFile.h"

#include "apps/player/collection/Song.h"
#include "os/Descriptor.h"
#include "os/File.h"
#include "os/FileLock.h"
#include "os/Folder.h"
#include "os/Path.h"

#include <QByteArray>
#include <QCoreApplication>

#include <fcntl.h>
#include <utility>

namespace pxvis::player {

namespace {

struct Table
{
    const char* definition; // as the file has it, word for word
    const char* rows; // from a row on: its number, the key, and numbers
    const char* insert;
    int numbers;
};

constexpr Table tables[] = {
    { "CREATE TABLE songs(url TEXT NOT NULL UNIQUE, plays INTEGER NOT NULL DEFAULT 0, "
      "played INTEGER NOT NULL DEFAULT 0, rating INTEGER NOT NULL DEFAULT 0)",
        "SELECT rowid, url, plays, played, rating FROM songs NOT INDEXED WHERE rowid >= ?1 "
        "ORDER BY rowid",
        "INSERT OR IGNORE INTO songs(url, plays, played, rating) VALUES(?1, ?2, ?3, ?4)", 3 },
    { "CREATE TABLE scripts(mode TEXT NOT NULL UNIQUE, rating INTEGER NOT NULL DEFAULT 0)",
        "SELECT rowid, mode, rating FROM scripts NOT INDEXED WHERE rowid >= ?1 ORDER BY rowid",
        "INSERT OR IGNORE INTO scripts(mode, rating) VALUES(?1, ?2)", 1 },
    { "CREATE TABLE recent(url TEXT NOT NULL UNIQUE, opened INTEGER NOT NULL)",
        "SELECT rowid, url, opened FROM recent NOT INDEXED WHERE rowid >= ?1 ORDER BY rowid",
        "INSERT OR IGNORE INTO recent(url, opened) VALUES(?1, ?2)", 1 },
};

bool IsDamage(int result)
{
    return result == SQLITE_CORRUPT || result == SQLITE_NOTADB;
}

QString Line(const char* text, const std::string& path)
{
    return QCoreApplication::translate("SongLibrary", text)
        .arg(LineOf(QString::fromStdString(path)));
}

bool HasTables(const SqliteDatabase& database)
{
    SqliteStatement schema;
    // The order in which they were made; indexes of constraints have no text of their own.
    const char* query = "SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL ORDER BY rowid";
    if (schema.Prepare(database, query) != SQLITE_OK)
        return false;
    for (const Table& table : tables) {
        if (schema.Step() != SQLITE_ROW || schema.Text(0) != table.definition)
            return false;
    }
    return schema.Step() == SQLITE_DONE;
}

int CreateAll(SqliteDatabase& database)
{
    int result = SQLITE_OK;
    for (const Table& table : tables) {
        if (result == SQLITE_OK)
            result = database.Run(table.definition);
    }
    const std::string mark = "PRAGMA user_version = " + std::to_string(LibraryFile::version);
    return result == SQLITE_OK ? database.Run(mark.c_str()) : result;
}

// Copies rows from that one on until the end or a fault; `row` becomes the one behind the last that
// could be read.
int CopyRows(SqliteStatement& rows, SqliteStatement& insert, int numbers, int64_t& row)
{
    rows.Bind(1, row);
    int result = rows.Step();
    for (; result == SQLITE_ROW; result = rows.Step()) {
        row = rows.Number(0) + 1;
        insert.Bind(1, rows.Text(1));
        for (int i = 0; i < numbers; ++i)
            insert.Bind(2 + i, rows.Number(2 + i));
        insert.Step();
        insert.Reset();
    }
    rows.Reset();
    return result;
}

// Only a table just as ours are: a stranger's may be anything that calls itself so.
bool HasTable(const SqliteDatabase& database, const Table& table)
{
    SqliteStatement schema;
    const char* query = "SELECT 1 FROM sqlite_schema WHERE sql = ?1 AND rootpage > 0";
    if (schema.Prepare(database, query) != SQLITE_OK)
        return false;
    schema.Bind(1, std::string_view(table.definition));
    return schema.Step() == SQLITE_ROW;
}

// Where rows can't be read, tries those behind one by one, as many as fit into a page of the file,
// and then ever farther.
void CopyTable(const SqliteDatabase& from, const SqliteDatabase& to, const Table& table)
{
    constexpr int64_t mostRows = int64_t { 1 } << 40;
    constexpr int triesOneByOne = 256;
    SqliteStatement rows;
    SqliteStatement insert;
    if (!HasTable(from, table) || rows.Prepare(from, table.rows) != SQLITE_OK
        || insert.Prepare(to, table.insert) != SQLITE_OK)
        return;
    int64_t step = 1;
    int tries = 0;
    for (int64_t row = 0; row < mostRows; row += step) {
        const int64_t before = row;
        const int result = CopyRows(rows, insert, table.numbers, row);
        if (result == SQLITE_DONE || !(IsDamage(result) || result == SQLITE_IOERR))
            return;
        tries = row == before ? tries + 1 : 0;
        step = tries > triesOneByOne ? step * 2 : 1;
    }
}

}

LibraryFile::LibraryFile(std::string path)
    : m_path(std::move(path))
{
    const State state = Open();
    if (state == State::Damaged)
        Repair();
    else if (state != State::Whole)
        UseMemory(state);
}

LibraryFile::State LibraryFile::Open()
{
    m_database.Close();
    if (!os::IsUsablePath(m_path))
        return State::Unusable;
    os::MakeFolders(os::FolderOf(m_path), 0700);
    // Others need not know what somebody listens to. An empty file is an empty database.
    os::Descriptor made(::open(m_path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    made.Close(); // before SQLite locks it, since the process's locks on it would go with it
    if (os::FileSize(m_path) < 0)
        return State::Unusable;
    const int result = m_database.Open(m_path, SQLITE_OPEN_READWRITE);
    if (result == SQLITE_OK)
        return Check();
    return IsDamage(result) ? State::Damaged : State::Unusable;
}

LibraryFile::State LibraryFile::Check()
{
    // In this order: another process may just be making the tables, and it marks them with them.
    int64_t things = 0;
    int64_t found = 0;
    int result = m_database.Number("SELECT count(*) FROM sqlite_schema", things);
    if (result == SQLITE_OK)
        result = m_database.Number("PRAGMA user_version", found);
    if (result != SQLITE_OK)
        return IsDamage(result) ? State::Damaged : State::Unusable;
    if (found > version)
        return State::Newer;
    if (found == version)
        return CheckTables();
    return found == 0 && things == 0 ? CreateTables() : State::Foreign;
}

LibraryFile::State LibraryFile::CreateTables()
{
    if (m_database.IsReadOnly() || m_database.Run("BEGIN IMMEDIATE") != SQLITE_OK)
        return State::Unwritable;
    int64_t found = 0;
    m_database.Number("PRAGMA user_version", found); // another process may have been faster
    const bool isDone = (found != 0 || CreateAll(m_database) == SQLITE_OK)
        && m_database.Run("COMMIT") == SQLITE_OK;
    if (isDone)
        return found == 0 || HasTables(m_database) ? State::Whole : State::Unusable;
    m_database.Run("ROLLBACK");
    return State::Unwritable;
}

LibraryFile::State LibraryFile::CheckTables()
{
    if (!HasTables(m_database))
        return State::Damaged;
    m_database.SetTimeLimit(checkMilliseconds);
    SqliteStatement check;
    int result = check.Prepare(m_database, "PRAGMA quick_check(1)");
    if (result == SQLITE_OK)
        result = check.Step();
    const bool isDamaged = result == SQLITE_ROW ? check.Text(0) != "ok" : IsDamage(result);
    m_database.SetTimeLimit(0);
    if (isDamaged)
        return State::Damaged;
    check = {};
    return CheckWriting();
}

// A file that can be opened for writing may still have no room beside it for the journal.
LibraryFile::State LibraryFile::CheckWriting()
{
    if (m_database.IsReadOnly())
        return State::Unwritable;
    m_database.Run("PRAGMA journal_mode = DELETE"); // one file, which people can copy
    const int begun = m_database.Run("BEGIN IMMEDIATE");
    if (begun == SQLITE_BUSY)
        return State::Whole; // somebody else writes
    const std::string mark = "PRAGMA user_version = " + std::to_string(version);
    const bool canWrite = begun == SQLITE_OK && m_database.Run(mark.c_str()) == SQLITE_OK;
    m_database.Run("ROLLBACK");
    return canWrite ? State::Whole : State::Unwritable;
}

void LibraryFile::Repair()
{
    // Only one process may put the file aside: the next would take its new one away.
    os::FileLock lock;
    if (!lock.Acquire(m_path + ".lock", SqliteDatabase::busyMilliseconds)) {
        UseMemory(State::Damaged);
        return;
    }
    const State state = Open();
    if (state == State::Whole)
        return;
    m_database.Close();
    const std::string aside = state == State::Damaged ? PutAside() : std::string();
    if (aside.empty() || Open() != State::Whole) {
        if (!aside.empty())
            m_path = aside;
        UseMemory(aside.empty() ? state : State::Damaged);
        return;
    }
    Rescue(aside);
    m_warning = Line(QT_TRANSLATE_NOOP("SongLibrary",
                         "The library of songs was damaged. It is kept as %1, and what can be read "
                         "of it is used."),
        aside);
}

// Empty if it can't be renamed. A journal without its file would be played back into the new one.
std::string LibraryFile::PutAside() const
{
    for (int number = 1; number <= mostDamagedFiles; ++number) {
        const std::string aside = m_path + ".damaged-" + std::to_string(number);
        if (os::FileExists(aside) || os::FolderExists(aside))
            continue;
        for (const char* companion : { "-journal", "-wal" }) {
            if (os::FileExists(m_path + companion)
                && !os::MoveFile(m_path + companion, aside + companion))
                return {};
        }
        os::DeleteFile(m_path + "-shm"); // an index of the other, made anew when needed
        return os::MoveFile(m_path, aside) ? aside : std::string();
    }
    return {};
}

void LibraryFile::UseMemory(State state)
{
    m_isInMemory = true;
    m_database.Open(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    CreateAll(m_database);
    if (state == State::Damaged || state == State::Unwritable)
        Rescue(m_path);
    const char* text = QT_TRANSLATE_NOOP("SongLibrary",
        "The library of songs %1 can't be written: ratings and play counts will be forgotten.");
    if (state == State::Newer)
        text = QT_TRANSLATE_NOOP("SongLibrary",
            "The library of songs %1 is of a newer version: ratings and play counts will be "
            "forgotten.");
    else if (state == State::Foreign)
        text = QT_TRANSLATE_NOOP(
            "SongLibrary", "%1 is no library of songs: ratings and play counts will be forgotten.");
    else if (state == State::Damaged)
        text = QT_TRANSLATE_NOOP("SongLibrary",
            "The library of songs %1 is damaged and can't be replaced: ratings and play counts "
            "will be forgotten.");
    m_warning = Line(text, m_path);
}

// As an unchangeable file: nothing of it is written, nor is its journal looked at.
void LibraryFile::Rescue(const std::string& path)
{
    SqliteDatabase from;
    const std::string name = "file:"
        + QByteArray::fromStdString(path).toPercentEncoding("/").toStdString() + "?immutable=1";
    if (os::FileSize(path) <= 0
        || from.Open(name, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI) != SQLITE_OK)
        return;
    from.TolerateFaults();
    from.SetTimeLimit(rescueMilliseconds);
    m_database.Run("BEGIN IMMEDIATE");
    for (const Table& table : tables)
        CopyTable(from, m_database, table);
    m_database.Run("COMMIT");
}

}
