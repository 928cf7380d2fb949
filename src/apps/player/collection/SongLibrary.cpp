#include "apps/player/collection/SongLibrary.h"

#include "apps/player/collection/LibraryFile.h"
#include "os/UserFolders.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace pxvis::player {

namespace {

constexpr int mostRecent = 20;
constexpr int highestRating = 5;
constexpr int busyMillisecondsAgain = 100; // while changes wait for another process

enum Query
{
    GetPlays,
    GetPlayed,
    GetRating,
    GetScriptRating,
    GetRecent,
    AddPlay,
    PutRating,
    PutScriptRating,
    AddRecent,
    TrimRecent,
    ClearRecentAll,
    QueryCount
};

constexpr const char* queries[QueryCount] = {
    "SELECT plays FROM songs WHERE url = ?1",
    "SELECT played FROM songs WHERE url = ?1",
    "SELECT rating FROM songs WHERE url = ?1",
    "SELECT rating FROM scripts WHERE mode = ?1",
    "SELECT url FROM recent ORDER BY opened DESC LIMIT ?2",
    "INSERT INTO songs(url, plays, played) VALUES(?1, 1, ?2) ON CONFLICT(url) "
    "DO UPDATE SET plays = plays + 1, played = max(played, excluded.played)",
    "INSERT INTO songs(url, rating) VALUES(?1, ?2) ON CONFLICT(url) "
    "DO UPDATE SET rating = excluded.rating",
    "INSERT INTO scripts(mode, rating) VALUES(?1, ?2) ON CONFLICT(mode) "
    "DO UPDATE SET rating = excluded.rating",
    "INSERT INTO recent(url, opened) VALUES(?1, "
    "(SELECT ifnull(max(opened), 0) + 1 FROM recent)) ON CONFLICT(url) "
    "DO UPDATE SET opened = excluded.opened",
    "DELETE FROM recent WHERE url NOT IN (SELECT url FROM recent ORDER BY opened DESC LIMIT ?2)",
    "DELETE FROM recent",
};

std::string KeyOf(const QUrl& url)
{
    return url.toEncoded().toStdString();
}

}

struct SongLibrary::Database
{
    struct Change
    {
        Query query;
        std::string key;
        int64_t value;
    };

    explicit Database(const std::string& libraryPath)
        : path(libraryPath)
        , file(std::make_unique<LibraryFile>(libraryPath))
    {
    }

    ~Database();

    SqliteStatement* Statement(Query query);
    void Reopen();
    int64_t Read(Query query, const std::string& key);
    QList<QUrl> ReadRecent();
    int Write(const Change& change);
    bool WriteWaiting();
    void Make(const Change& change);

    std::string path;
    std::unique_ptr<LibraryFile> file;
    std::array<SqliteStatement, QueryCount> statements; // gone before the file
    std::vector<Change> waiting; // for another process to let go of the file
};

SongLibrary::Database::~Database()
{
    WriteWaiting();
}

SqliteStatement* SongLibrary::Database::Statement(Query query)
{
    SqliteStatement& statement = statements[query];
    if (!statement.IsPrepared() && statement.Prepare(file->Database(), queries[query]) != SQLITE_OK)
        return nullptr;
    statement.Reset();
    return &statement;
}

// What has gone wrong meanwhile is seen to as at the start.
void SongLibrary::Database::Reopen()
{
    statements = {};
    file.reset();
    file = std::make_unique<LibraryFile>(path);
}

int64_t SongLibrary::Database::Read(Query query, const std::string& key)
{
    SqliteStatement* statement = Statement(query);
    if (!statement)
        return 0;
    statement->Bind(1, key);
    const int64_t number = statement->Step() == SQLITE_ROW ? statement->Number(0) : 0;
    statement->Reset();
    return number;
}

QList<QUrl> SongLibrary::Database::ReadRecent()
{
    QList<QUrl> urls;
    SqliteStatement* statement = Statement(GetRecent);
    if (!statement)
        return urls;
    statement->Bind(2, mostRecent);
    while (statement->Step() == SQLITE_ROW) {
        const QUrl url = QUrl::fromEncoded(QByteArray::fromStdString(statement->Text(0)));
        if (url.isValid() && !url.isEmpty())
            urls.append(url);
    }
    statement->Reset();
    return urls;
}

int SongLibrary::Database::Write(const Change& change)
{
    SqliteStatement* statement = Statement(change.query);
    if (!statement)
        return SQLITE_ERROR;
    statement->Bind(1, change.key);
    statement->Bind(2, change.value);
    const int result = statement->Step();
    statement->Reset();
    return result;
}

bool SongLibrary::Database::WriteWaiting()
{
    size_t done = 0;
    while (done < waiting.size() && Write(waiting[done]) != SQLITE_BUSY)
        ++done;
    waiting.erase(waiting.begin(), waiting.begin() + static_cast<ptrdiff_t>(done));
    return waiting.empty();
}

void SongLibrary::Database::Make(const Change& change)
{
    int result = WriteWaiting() ? Write(change) : SQLITE_BUSY;
    if (result != SQLITE_DONE && result != SQLITE_BUSY && !file->IsInMemory()) {
        Reopen();
        result = Write(change);
    }
    if (result == SQLITE_BUSY)
        waiting.push_back(change);
    file->Database().SetBusyTime(
        waiting.empty() ? SqliteDatabase::busyMilliseconds : busyMillisecondsAgain);
}

SongLibrary::SongLibrary(const QString& path)
    : m_database(std::make_unique<Database>(path.toStdString()))
{
}

SongLibrary::~SongLibrary() = default;

QString SongLibrary::Warning() const
{
    return m_database->file->Warning();
}

QString SongLibrary::DefaultPath()
{
    const std::string folder = os::UserFolder("XDG_DATA_HOME", ".local/share");
    return folder.empty() ? QString() : QString::fromStdString(folder + "/pxvis/library.sqlite");
}

int SongLibrary::PlayCount(const QUrl& song) const
{
    const int64_t plays = m_database->Read(GetPlays, KeyOf(song));
    return static_cast<int>(std::clamp<int64_t>(plays, 0, std::numeric_limits<int>::max()));
}

QDateTime SongLibrary::LastPlayed(const QUrl& song) const
{
    const int64_t played = m_database->Read(GetPlayed, KeyOf(song));
    return played > 0 ? QDateTime::fromMSecsSinceEpoch(played) : QDateTime();
}

void SongLibrary::NotePlayed(const QUrl& song)
{
    m_database->Make({ AddPlay, KeyOf(song), QDateTime::currentMSecsSinceEpoch() });
}

int SongLibrary::Rating(const QUrl& song) const
{
    const int64_t rating = m_database->Read(GetRating, KeyOf(song));
    return static_cast<int>(std::clamp<int64_t>(rating, noRating, highestRating));
}

void SongLibrary::SetRating(const QUrl& song, int rating)
{
    m_database->Make({ PutRating, KeyOf(song), std::clamp(rating, noRating, highestRating) });
}

int SongLibrary::ScriptRating(const QString& mode) const
{
    const int64_t rating = m_database->Read(GetScriptRating, mode.toStdString());
    return static_cast<int>(std::clamp<int64_t>(rating, never, highestRating));
}

void SongLibrary::SetScriptRating(const QString& mode, int rating)
{
    m_database->Make(
        { PutScriptRating, mode.toStdString(), std::clamp(rating, never, highestRating) });
}

QList<QUrl> SongLibrary::Recent() const
{
    return m_database->ReadRecent();
}

void SongLibrary::NoteOpened(const QUrl& url)
{
    m_database->Make({ AddRecent, KeyOf(url), 0 });
    m_database->Make({ TrimRecent, {}, mostRecent });
}

void SongLibrary::ClearRecent()
{
    m_database->Make({ ClearRecentAll, {}, 0 });
}

}
